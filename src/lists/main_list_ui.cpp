#include "lists/main_list_ui.h"

#include "catalog/catalog_names.h"
#include "ui/workbench.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>

namespace {

void refill_combo(QComboBox* box, const QStringList& names) {
    if (!box) {
        return;
    }
    box->clear();
    box->addItems(names);
    // The box shows no name until the user picks or types one.
    box->setCurrentIndex(-1);
    box->clearEditText();
}

}  // namespace

void fill_catalog_lists(Workbench& wb) {
    const QStringList names = catalog_names(wb.context());
    if (auto* list = wb.find<QListWidget>(QStringLiteral("o_category_list"))) {
        list->clear();
        list->addItems(names);
    }
    refill_combo(wb.find<QComboBox>(QStringLiteral("o_main_category")), names);
    refill_combo(wb.find<QComboBox>(QStringLiteral("o_load_catalog")), names);
    refill_combo(wb.find<QComboBox>(QStringLiteral("o_scan_catalog")), names);
}

void set_main_file_count(Workbench& wb) {
    if (auto* frame = wb.find<QGroupBox>(QStringLiteral("f_main"))) {
        frame->setTitle(QStringLiteral("File Count: ") +
                        QString::number(wb.context().app.main_list.count()));
    }
}

void clear_main_fields(Workbench& wb) {
    if (auto* title = wb.find<QLineEdit>(QStringLiteral("o_main_file_title"))) {
        title->clear();
    }
    if (auto* category = wb.find<QComboBox>(QStringLiteral("o_main_category"))) {
        category->setCurrentIndex(-1);
        category->clearEditText();
    }
    if (auto* description = wb.find<QPlainTextEdit>(QStringLiteral("o_main_image_description"))) {
        description->clear();
    }
}
