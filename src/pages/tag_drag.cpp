#include "pages/tag_drag.h"

#include <QDropEvent>
#include <QListWidget>
#include <QMimeData>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QTextCursor>

TagDrag::TagDrag(QListWidget* tags, QObject* parent) : QObject(parent), tags_(tags) {
    tags_->setDragEnabled(false);
    tags_->setDragDropMode(QAbstractItemView::DragOnly);
    tags_->setDefaultDropAction(Qt::CopyAction);
    tags_->viewport()->installEventFilter(this);
}

void TagDrag::add_target(QPlainTextEdit* box, std::function<void(QPlainTextEdit*)> on_drop) {
    box->setAcceptDrops(true);
    box->viewport()->setAcceptDrops(true);
    box->viewport()->installEventFilter(this);
    viewports_.append({box->viewport(), box});
    handlers_.append(std::move(on_drop));
}

namespace {

// A drag that comes from the tag list: the list itself, or, when the drag
// carries no source widget, rows of an item view while the list's dragging is on.
bool from_tags(const QDropEvent* event, const QListWidget* tags) {
    if (event->source() == tags) {
        return true;
    }
    return event->source() == nullptr && tags->dragEnabled() && event->mimeData() &&
           event->mimeData()->hasFormat(QStringLiteral("application/x-qabstractitemmodeldatalist"));
}

}  // namespace

bool TagDrag::eventFilter(QObject* watched, QEvent* event) {
    if (watched == tags_->viewport()) {
        if (event->type() == QEvent::MouseButtonPress) {
            const auto* press = static_cast<QMouseEvent*>(event);
            tags_->setDragEnabled(press->button() == Qt::LeftButton);
        }
        return false;
    }
    for (int i = 0; i < viewports_.size(); ++i) {
        if (viewports_.at(i).first != watched) {
            continue;
        }
        switch (event->type()) {
            case QEvent::DragEnter:
            case QEvent::DragMove: {
                auto* drag = static_cast<QDropEvent*>(event);
                if (from_tags(drag, tags_)) {
                    drag->setDropAction(Qt::CopyAction);
                    drag->accept();
                } else {
                    drag->ignore();
                }
                return true;
            }
            case QEvent::Drop: {
                auto* drop = static_cast<QDropEvent*>(event);
                if (from_tags(drop, tags_)) {
                    drop->setDropAction(Qt::CopyAction);
                    drop->accept();
                    handlers_.at(i)(viewports_.at(i).second);
                    tags_->setDragEnabled(false);
                } else {
                    drop->ignore();
                }
                return true;
            }
            default:
                return false;
        }
    }
    return false;
}

void insert_at_selection_start(QPlainTextEdit* box, const QString& insert) {
    // Put in where the selection starts, not over it; the rest of the box's
    // text is not rewritten, so it keeps every character it had.
    QTextCursor cursor = box->textCursor();
    cursor.setPosition(cursor.selectionStart());
    cursor.insertText(insert);
}
