#pragma once

#include "imaging/jpeg_writer.h"
#include "imaging/source_file.h"

#include <QByteArray>
#include <QSize>
#include <QString>

#include <optional>

// Everything that decides the bytes a control's SaveJpeg writes: which
// version of which file, and every setting that shapes the output. Two
// controls with equal keys write equal files, so a JPEG encoded ahead on
// another thread can stand in for the worker's own.
struct RenderKey {
    QString path;
    FileIdentity identity;
    QSize shown;
    int thumb_size = 0;
    int appearance = 1;
    QString back_color;
    int dither = 1;
    JpegSettings jpeg;
    bool operator==(const RenderKey&) const = default;
};

// An encoded JPEG, or the text of the error that encoding it raised.
struct EncodedJpeg {
    QByteArray bytes;
    QString error;
};

// Where a control looks for a JPEG encoded ahead before it encodes its own.
// `take` may wait for work under way; it returns nothing when no such output
// was planned. Called on the control's own thread.
class PrefetchedJpegs {
public:
    virtual ~PrefetchedJpegs() = default;
    virtual std::optional<EncodedJpeg> take(const RenderKey& key) = 0;
};
