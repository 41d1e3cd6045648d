#include "ui/widget_rows.h"

#include "core/item_list.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QListWidget>

QStringList rows_of(const QWidget* control) {
    QStringList out;
    if (const auto* list = qobject_cast<const QListWidget*>(control)) {
        for (int i = 0; i < list->count(); ++i) {
            out << list->item(i)->text();
        }
    } else if (const auto* combo = qobject_cast<const QComboBox*>(control)) {
        for (int i = 0; i < combo->count(); ++i) {
            out << combo->itemText(i);
        }
    } else if (const auto* view = qobject_cast<const QAbstractItemView*>(control)) {
        if (const auto* items = qobject_cast<const ItemList*>(view->model())) {
            return items->items();
        }
        if (const QAbstractItemModel* model = view->model()) {
            for (int i = 0; i < model->rowCount(); ++i) {
                out << model->index(i, 0).data().toString();
            }
        }
    }
    return out;
}

void set_rows(QWidget* control, const QStringList& rows) {
    if (auto* list = qobject_cast<QListWidget*>(control)) {
        list->clear();
        list->addItems(rows);
    } else if (auto* combo = qobject_cast<QComboBox*>(control)) {
        combo->clear();
        combo->addItems(rows);
    } else if (auto* view = qobject_cast<QAbstractItemView*>(control)) {
        if (auto* items = qobject_cast<ItemList*>(view->model())) {
            items->set_items(rows);
        }
    }
}
