#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QStringList>

// Sample pictures for the imaging tests, made at test time: by Qt, by the
// GraphicsMagick and netpbm programs, or byte by byte from a type's layout.

// The left half `left`, the right half `right`; red and blue; black and white.
QImage halves(int width, int height, QRgb left, QRgb right);
QImage halves_picture(int width, int height);
// A picture with detail at every scale: gradients, stripes and noise.
QImage detailed_picture(int width, int height);

// Writes bytes to a file, directories made; returns the path.
QString write_bytes(const QString& path, const QByteArray& bytes);
QByteArray encoded(const QImage& img, const char* format, int quality = -1);
// How loading a file into the worker and making a small JPEG of it ended:
// "" when it worked, else the error's text.
QString load_failure(const QString& path);

// Runs a converter that writes its result on standard output into `output`;
// returns false (with the reason in `error`) when it fails.
bool run_to_file(const QString& program, const QStringList& args, const QString& output,
                 QString* error = nullptr);

// Hand-made files of the types no installed program writes.
QByteArray msp_file(const QImage& mono, bool packed);
QByteArray cut_file(int width, int height);
QByteArray hrz_file();
QByteArray emf_file();

// Pixel comparisons with room for lossy and reduced palettes.
bool near_colour(QRgb a, QRgb b, int tolerance = 48);
