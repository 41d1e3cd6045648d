#include "imaging/scanner.h"

#include <sane/sane.h>

#include <QByteArray>

#include <cstring>
#include <memory>
#include <vector>

namespace {

QString status_text(SANE_Status status) {
    return QString::fromLocal8Bit(sane_strstatus(status));
}

// One frame's samples as 8-bit values: 16-bit samples (native byte order)
// keep their high byte; 1-bit samples are black for a set bit.
std::vector<uchar> samples_8bit(const QByteArray& data, const SANE_Parameters& p, int channels) {
    const int values = p.pixels_per_line * channels;
    const int lines = p.bytes_per_line > 0 ? static_cast<int>(data.size() / p.bytes_per_line) : 0;
    std::vector<uchar> out(static_cast<size_t>(values) * lines);
    for (int y = 0; y < lines; ++y) {
        const auto* line = reinterpret_cast<const uchar*>(data.constData()) + y * p.bytes_per_line;
        uchar* dst = out.data() + static_cast<size_t>(y) * values;
        for (int i = 0; i < values; ++i) {
            if (p.depth == 16) {
                quint16 v;
                std::memcpy(&v, line + i * 2, 2);
                dst[i] = static_cast<uchar>(v >> 8);
            } else if (p.depth == 1) {
                dst[i] = (line[i / 8] & (0x80 >> (i % 8))) ? 0 : 255;
            } else {
                dst[i] = line[i];
            }
        }
    }
    return out;
}

struct DeviceHandle {
    SANE_Handle h = nullptr;
    ~DeviceHandle() {
        if (h) {
            sane_cancel(h);
            sane_close(h);
        }
    }
};

}  // namespace

Scanner::Scanner() {
    SANE_Int version = 0;
    started_ = sane_init(&version, nullptr) == SANE_STATUS_GOOD;
}

Scanner::~Scanner() {
    if (started_) {
        sane_exit();
    }
}

QList<Scanner::Source> Scanner::sources() {
    if (!started_) {
        throw ScanError(QStringLiteral("The scanner library could not start."), true);
    }
    const SANE_Device** list = nullptr;
    const SANE_Status status = sane_get_devices(&list, SANE_FALSE);
    if (status != SANE_STATUS_GOOD) {
        throw ScanError(status_text(status), true);
    }
    QList<Source> out;
    for (int i = 0; list && list[i]; ++i) {
        const SANE_Device* d = list[i];
        out.push_back({QString::fromLocal8Bit(d->name),
                       QString::fromLocal8Bit(d->name) + QStringLiteral(" (") +
                           QString::fromLocal8Bit(d->vendor) + u' ' +
                           QString::fromLocal8Bit(d->model) + QStringLiteral(", ") +
                           QString::fromLocal8Bit(d->type) + u')'});
    }
    return out;
}

QImage Scanner::acquire(const QString& device) {
    if (!started_) {
        throw ScanError(QStringLiteral("The scanner library could not start."), true);
    }
    DeviceHandle dev;
    const QByteArray name = device.toLocal8Bit();
    SANE_Status status = sane_open(name.constData(), &dev.h);
    if (status != SANE_STATUS_GOOD) {
        dev.h = nullptr;
        throw ScanError(status_text(status), true);
    }
    // Frames: one grey or RGB frame, or three of red, green and blue.
    std::vector<uchar> grey, rgb, planes[3];
    SANE_Parameters p{};
    bool last = false;
    int width = 0, height = 0;
    while (!last) {
        status = sane_start(dev.h);
        if (status == SANE_STATUS_CANCELLED || status == SANE_STATUS_NO_DOCS) {
            return {};
        }
        if (status != SANE_STATUS_GOOD) {
            throw ScanError(status_text(status), false);
        }
        status = sane_get_parameters(dev.h, &p);
        if (status != SANE_STATUS_GOOD) {
            throw ScanError(status_text(status), false);
        }
        QByteArray data;
        if (p.lines > 0 && p.bytes_per_line > 0) {
            data.reserve(p.lines * p.bytes_per_line);
        }
        SANE_Byte buffer[32768];
        for (;;) {
            SANE_Int got = 0;
            status = sane_read(dev.h, buffer, sizeof buffer, &got);
            if (status == SANE_STATUS_EOF) {
                break;
            }
            if (status == SANE_STATUS_CANCELLED) {
                return {};
            }
            if (status != SANE_STATUS_GOOD) {
                throw ScanError(status_text(status), false);
            }
            data.append(reinterpret_cast<const char*>(buffer), got);
        }
        width = p.pixels_per_line;
        height = p.bytes_per_line > 0 ? static_cast<int>(data.size() / p.bytes_per_line) : 0;
        switch (p.format) {
            case SANE_FRAME_GRAY:
                grey = samples_8bit(data, p, 1);
                break;
            case SANE_FRAME_RGB:
                rgb = samples_8bit(data, p, 3);
                break;
            case SANE_FRAME_RED:
            case SANE_FRAME_GREEN:
            case SANE_FRAME_BLUE:
                planes[p.format - SANE_FRAME_RED] = samples_8bit(data, p, 1);
                break;
            default:
                throw ScanError(QStringLiteral("The scanner sent a picture of an unknown kind."),
                                false);
        }
        last = p.last_frame;
    }
    if (width <= 0 || height <= 0) {
        return {};
    }
    QImage img(width, height, QImage::Format_RGB32);
    const size_t n = static_cast<size_t>(width) * height;
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(img.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const size_t i = static_cast<size_t>(y) * width + x;
            if (rgb.size() >= n * 3) {
                line[x] = qRgb(rgb[i * 3], rgb[i * 3 + 1], rgb[i * 3 + 2]);
            } else if (grey.size() >= n) {
                line[x] = qRgb(grey[i], grey[i], grey[i]);
            } else {
                const auto at = [&](int c) { return planes[c].size() >= n ? planes[c][i] : 0; };
                line[x] = qRgb(at(0), at(1), at(2));
            }
        }
    }
    return img;
}
