#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

// Small readers of our own for three run-length raster types that nothing
// else here reads: IFF ILBM/PBM (Amiga and Deluxe Paint), GEM raster (.img,
// .gem) and Microsoft Paint (.msp). Each gives the size from the first bytes
// and the picture from the whole file, and throws RunError (through
// fail_to_read) on anything out of place: a reader never reads past its data.

QSize iff_size(const QByteArray& head, const QString& path);
QImage decode_iff(const QByteArray& data, const QString& path);

QSize gem_size(const QByteArray& head, const QString& path);
QImage decode_gem(const QByteArray& data, const QString& path);

QSize msp_size(const QByteArray& head, const QString& path);
QImage decode_msp(const QByteArray& data, const QString& path);

// Reads bytes in order and remembers running off the end instead of reading
// past it; a reader checks `ok()` where it matters and fails then.
class ByteCursor {
public:
    ByteCursor(const QByteArray& data, qsizetype start = 0, qsizetype end = -1)
        : data_(reinterpret_cast<const uchar*>(data.constData())),
          pos_(start),
          end_(end < 0 || end > data.size() ? data.size() : end) {}
    uchar next() {
        if (pos_ >= end_) {
            ended_ = true;
            return 0;
        }
        return data_[pos_++];
    }
    int be16() {
        const int hi = next();
        return (hi << 8) | next();
    }
    int le16() {
        const int lo = next();
        return lo | (next() << 8);
    }
    quint32 be32() {
        const quint32 hi = static_cast<quint32>(be16());
        return (hi << 16) | static_cast<quint32>(be16());
    }
    void skip(qsizetype n) {
        if (n > end_ - pos_) {
            pos_ = end_;
            ended_ = true;
        } else {
            pos_ += n;
        }
    }
    qsizetype pos() const { return pos_; }
    qsizetype left() const { return end_ - pos_; }
    bool at_end() const { return pos_ >= end_; }
    bool ok() const { return !ended_; }

private:
    const uchar* data_;
    qsizetype pos_;
    qsizetype end_;
    bool ended_ = false;
};
