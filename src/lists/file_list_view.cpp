#include "lists/file_list_view.h"

#include <QKeyEvent>
#include <QMouseEvent>

FileListView::FileListView(QWidget* parent) : QListView(parent) {
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
}

void FileListView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        event->accept();
        Q_EMIT right_pressed();
        return;
    }
    QListView::mousePressEvent(event);
    if (event->button() == Qt::LeftButton) {
        Q_EMIT left_pressed();
    }
}

void FileListView::keyPressEvent(QKeyEvent* event) {
    const QModelIndex before = currentIndex();
    QListView::keyPressEvent(event);
    if (currentIndex() != before) {
        Q_EMIT current_moved_by_key();
    }
}
