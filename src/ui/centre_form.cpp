#include "ui/centre_form.h"

#include <QApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

void centre_form(QWidget* form) {
    if (!form) {
        return;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QScreen* screen = form->screen() ? form->screen() : QGuiApplication::primaryScreen();
    if (screen) {
        const QRect area = screen->geometry();
        const QRect frame = form->frameGeometry();
        const int top = area.height() / 2 - frame.height() / 2;
        const int left = area.width() / 2 - frame.width() / 2;
        form->move(area.left() + left, area.top() + top);
    }
    while (QApplication::overrideCursor()) {
        QApplication::restoreOverrideCursor();
    }
}
