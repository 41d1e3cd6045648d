#include "ui/directory_box.h"

#include "core/directory_reader.h"
#include "core/run_error.h"

#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QStyle>
#include <QStyledItemDelegate>

namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr int kDepthRole = Qt::UserRole + 1;
constexpr int kIndent = 12;  // pixels per level of depth

// Draws each row shifted right by its depth, icon included.
class DepthDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem shifted(option);
        shifted.rect.setLeft(shifted.rect.left() + kIndent * index.data(kDepthRole).toInt());
        QStyledItemDelegate::paint(painter, shifted, index);
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.rwidth() += kIndent * index.data(kDepthRole).toInt();
        return size;
    }
};

QString absolute_clean(const QString& path) {
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

}  // namespace

DirectoryBox::DirectoryBox(QWidget* parent) : QListWidget(parent) {
    setItemDelegate(new DepthDelegate(this));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformItemSizes(true);
    connect(this, &QListWidget::itemActivated, this, &DirectoryBox::open_row);
    path_ = absolute_clean(QDir::currentPath());
    refresh();
}

QString DirectoryBox::row_path(const QListWidgetItem* item) {
    return item ? item->data(kPathRole).toString() : QString();
}

void DirectoryBox::set_path(const QString& path) {
    if (path.trimmed().isEmpty()) {
        throw RunError(QStringLiteral("Path not found"));
    }
    const QString target = absolute_clean(path);
    if (!QFileInfo(target).isDir()) {
        throw RunError(QStringLiteral("Path not found"));
    }
    const bool changed = target != path_;
    path_ = target;
    refresh();
    if (changed) {
        Q_EMIT path_changed(path_);
    }
}

void DirectoryBox::refresh() {
    children_ = subdirectory_paths(path_);
    const QIcon open_icon = style()->standardIcon(QStyle::SP_DirOpenIcon);
    const QIcon closed_icon = style()->standardIcon(QStyle::SP_DirClosedIcon);

    clear();
    // The chain of parents: "/", then one row per component down to path_.
    QStringList chain{QStringLiteral("/")};
    const QStringList parts = path_.split(u'/', Qt::SkipEmptyParts);
    QString walked;
    for (const QString& part : parts) {
        walked += u'/' + part;
        chain << walked;
    }
    for (int depth = 0; depth < chain.size(); ++depth) {
        const QString& full = chain.at(depth);
        auto* row = new QListWidgetItem(open_icon, depth == 0 ? full : parts.at(depth - 1), this);
        row->setData(kPathRole, full);
        row->setData(kDepthRole, depth);
    }
    QListWidgetItem* current = item(count() - 1);
    const int child_depth = static_cast<int>(chain.size());
    for (const QString& child : children_) {
        auto* row = new QListWidgetItem(closed_icon, child.section(u'/', -1), this);
        row->setData(kPathRole, child);
        row->setData(kDepthRole, child_depth);
    }
    setCurrentItem(current);
}

void DirectoryBox::open_row(QListWidgetItem* row) {
    const QString target = row_path(row);
    if (target.isEmpty()) {
        return;
    }
    try {
        set_path(target);
    } catch (const RunError&) {
        // The directory went away since it was listed: show what is there now.
        refresh();
    }
}
