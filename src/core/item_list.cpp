#include "core/item_list.h"

#include "core/run_error.h"

ItemList::ItemList(QObject* parent) : QAbstractListModel(parent), selection_(this) {}

void ItemList::check_row(int row) const {
    if (row < 0 || row >= count()) {
        throw RunError(QStringLiteral("Invalid property array index"));
    }
}

QString ItemList::item(int row) const {
    if (row < 0) {
        throw RunError(QStringLiteral("Invalid property array index"));
    }
    return row < count() ? rows_.at(row) : QString();
}

void ItemList::set_item(int row, const QString& text) {
    check_row(row);
    rows_[row] = text;
    const QModelIndex i = index(row);
    Q_EMIT dataChanged(i, i, {Qt::DisplayRole});
}

void ItemList::add(const QString& text) {
    beginInsertRows(QModelIndex(), count(), count());
    rows_.append(text);
    endInsertRows();
}

void ItemList::add_many(const QStringList& texts) {
    if (texts.isEmpty()) {
        return;
    }
    if (rows_.isEmpty()) {
        set_items(texts);
        return;
    }
    beginInsertRows(QModelIndex(), count(), count() + static_cast<int>(texts.size()) - 1);
    rows_.append(texts);
    endInsertRows();
}

void ItemList::remove(int row) {
    check_row(row);
    beginRemoveRows(QModelIndex(), row, row);
    rows_.removeAt(row);
    endRemoveRows();
}

void ItemList::clear() {
    beginResetModel();
    rows_.clear();
    endResetModel();
    selection_.clear();
}

void ItemList::set_items(const QStringList& texts) {
    beginResetModel();
    rows_ = texts;
    endResetModel();
    selection_.clear();
}

bool ItemList::selected(int row) const {
    check_row(row);
    return selection_.isSelected(index(row));
}

void ItemList::set_selected(int row, bool on) {
    check_row(row);
    selection_.select(index(row), on ? QItemSelectionModel::Select : QItemSelectionModel::Deselect);
}

void ItemList::clear_selection() {
    selection_.clearSelection();
}

QList<int> ItemList::selected_rows() const {
    QList<int> out;
    const QModelIndexList sel = selection_.selectedIndexes();
    for (const QModelIndex& i : sel) {
        out << i.row();
    }
    std::sort(out.begin(), out.end());
    return out;
}

int ItemList::list_index() const {
    const QModelIndex i = selection_.currentIndex();
    return i.isValid() ? i.row() : -1;
}

void ItemList::set_list_index(int row) {
    if (row < 0) {
        selection_.setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
        return;
    }
    check_row(row);
    selection_.setCurrentIndex(index(row), QItemSelectionModel::NoUpdate);
}

int ItemList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant ItemList::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) {
        return QVariant();
    }
    if (role == Qt::DisplayRole || role == Qt::EditRole) {
        return rows_.at(index.row());
    }
    return QVariant();
}
