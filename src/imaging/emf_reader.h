#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

// Enhanced metafiles (EMF): libemf2svg turns the records (lines, text,
// bitmaps) into SVG, and Qt SVG draws that at the picture's size. The library
// is loaded the first time a metafile is opened, as the other decoders of the
// older types are. Throws RunError (through fail_to_read).

// The picture's size in pixels, from the bounds in the file's header record.
QSize emf_size(const QByteArray& head, const QString& path);
// The picture drawn at `size`, transparent where the metafile draws nothing.
QImage decode_emf(const QByteArray& data, const QString& path, QSize size);
