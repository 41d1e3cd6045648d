#pragma once

#include <QStringList>

class QWidget;

// The rows of a list-like control, whatever its kind: a list widget, a
// combo box, or a view over a model.
QStringList rows_of(const QWidget* control);
// Replaces the rows of a list-like control; the typed text of a combo box
// is not kept.
void set_rows(QWidget* control, const QStringList& rows);
