#pragma once

#include <QSize>
#include <QString>
#include <QWidget>

#include <gtest/gtest.h>

// Lays `page` out in a window page's area (627 x 370 pixels, the
// application font) and checks that every named control (o_, b_, l_, f_) is
// visible, lies inside the area at no less than its minimum size, and that
// no two controls of a page overlap, frames aside.
::testing::AssertionResult fits_page_area(QWidget& page, QSize area = QSize(627, 370));

// Saves a picture of the page to $QD_GRAB_DIR/<name>.png when that is set,
// so that a developer can look at the layout.
void grab_if_asked(QWidget& page, const QString& name);

// Sets the window's font (DejaVu Sans 8 pt) for the life of the object.
class WindowFont {
public:
    WindowFont();
    ~WindowFont();

private:
    QFont saved_;
};
