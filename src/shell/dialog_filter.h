#pragma once

#include <QColor>
#include <QString>
#include <QStringList>

// Conversions between the dialog arguments the commands use and what Qt's
// dialogs take. No widgets here, so the commands' tests can check them.

// "Name (*.x)|*.x|All Files (*.*)|*.*" (description and patterns in turns,
// ";" between patterns) becomes Qt's name filters, one per pair:
// "Name (*.x)", "All Files (*)". "*.*" is every file, so it becomes "*". A
// description without patterns gets "(*)". An empty filter gives no entry.
QStringList qt_name_filters(const QString& filter);

// Colour numbers keep red in the low byte, then green, then blue.
QColor color_from_number(int number);
int color_number(const QColor& color);
