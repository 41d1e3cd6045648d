#include "imaging/resample.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

double lanczos3(double x) {
    x = std::abs(x);
    if (x < 1e-8) {
        return 1.0;
    }
    if (x >= 3.0) {
        return 0.0;
    }
    const double px = std::numbers::pi * x;
    return 3.0 * std::sin(px) * std::sin(px / 3.0) / (px * px);
}

// For each output position, the first input position it reads and the
// normalised weights of the input positions from there on.
struct Taps {
    int first = 0;
    std::vector<float> weights;
};

std::vector<Taps> make_taps(int in, int out) {
    const double scale = double(out) / in;
    const double stretch = std::min(scale, 1.0);  // widen the filter when reducing
    const double support = 3.0 / stretch;
    std::vector<Taps> taps(static_cast<size_t>(out));
    for (int i = 0; i < out; ++i) {
        const double centre = (i + 0.5) / scale - 0.5;
        const int left = static_cast<int>(std::ceil(centre - support));
        const int right = static_cast<int>(std::floor(centre + support));
        const int first = std::clamp(left, 0, in - 1);
        const int last = std::clamp(right, 0, in - 1);
        std::vector<float> w(static_cast<size_t>(last - first + 1), 0.0f);
        double total = 0;
        for (int j = left; j <= right; ++j) {
            const double v = lanczos3((j - centre) * stretch);
            w[static_cast<size_t>(std::clamp(j, 0, in - 1) - first)] += static_cast<float>(v);
            total += v;
        }
        if (std::abs(total) > 1e-12) {
            for (float& x : w) {
                x = static_cast<float>(x / total);
            }
        }
        taps[static_cast<size_t>(i)] = {first, std::move(w)};
    }
    return taps;
}

uchar to_byte(float v) {
    return static_cast<uchar>(std::clamp(std::lround(v), 0L, 255L));
}

QImage lanczos(const QImage& source, QSize size) {
    const QImage in = source.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const int iw = in.width();
    const int ih = in.height();
    const int ow = size.width();
    const int oh = size.height();
    const std::vector<Taps> hx = make_taps(iw, ow);
    const std::vector<Taps> vy = make_taps(ih, oh);

    // Horizontal pass into floats, one row of the input at a time.
    std::vector<float> mid(static_cast<size_t>(ow) * ih * 4);
    for (int y = 0; y < ih; ++y) {
        const uchar* row = in.constScanLine(y);
        float* dst = &mid[static_cast<size_t>(y) * ow * 4];
        for (int x = 0; x < ow; ++x) {
            const Taps& t = hx[static_cast<size_t>(x)];
            float acc[4] = {0, 0, 0, 0};
            for (size_t k = 0; k < t.weights.size(); ++k) {
                const uchar* p = row + (t.first + static_cast<int>(k)) * 4;
                const float wk = t.weights[k];
                acc[0] += wk * p[0];
                acc[1] += wk * p[1];
                acc[2] += wk * p[2];
                acc[3] += wk * p[3];
            }
            std::copy(acc, acc + 4, dst + x * 4);
        }
    }
    QImage out(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < oh; ++y) {
        const Taps& t = vy[static_cast<size_t>(y)];
        uchar* dst = out.scanLine(y);
        for (int x = 0; x < ow; ++x) {
            float acc[4] = {0, 0, 0, 0};
            for (size_t k = 0; k < t.weights.size(); ++k) {
                const float* p =
                    &mid[(static_cast<size_t>(t.first) + k) * ow * 4 + static_cast<size_t>(x) * 4];
                const float wk = t.weights[k];
                acc[0] += wk * p[0];
                acc[1] += wk * p[1];
                acc[2] += wk * p[2];
                acc[3] += wk * p[3];
            }
            // Keep the premultiplied rule: no colour above its alpha.
            const uchar a = to_byte(acc[3]);
            dst[x * 4 + 3] = a;
            for (int c = 0; c < 3; ++c) {
                dst[x * 4 + c] = std::min(to_byte(acc[c]), a);
            }
        }
    }
    return source.hasAlphaChannel() ? out : out.convertToFormat(QImage::Format_RGB32);
}

// Scaling averages neighbouring pixels, which only comes out right on 8-bit
// channels with the colour already weighed by its alpha: a palette or 1-bit
// picture scaled as it stands keeps one of its colours, and a 16-bit one with
// alpha mixes colours by their straight values.
QImage premultiplied_8bit(const QImage& image) {
    const QImage::Format want =
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    return image.format() == want ? image : image.convertToFormat(want);
}

}  // namespace

Resampling resampling_for_dither(int dither) {
    switch (dither) {
        case 0:
            return Resampling::Fast;
        case 2:
            return Resampling::High;
        default:
            return Resampling::Default;
    }
}

QImage resample(const QImage& image, QSize size, Resampling quality) {
    if (image.isNull() || size.isEmpty()) {
        return QImage();
    }
    if (image.size() == size) {
        return image;
    }
    switch (quality) {
        case Resampling::Fast:
            return image.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
        case Resampling::High:
            return lanczos(image, size);
        case Resampling::Default:
            break;
    }
    return premultiplied_8bit(image).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}
