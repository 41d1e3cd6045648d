#include "lists/list_commands.h"

#include "catalog/update_database.h"
#include "core/run_error.h"
#include "lists/list_transfer.h"
#include "lists/main_list_ui.h"
#include "lists/panel_table.h"
#include "ui/workbench.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QRadioButton>

namespace {

ListControls find_controls(Workbench& wb, const char* list, const char* catalog,
                           const char* option0, const char* option1, const char* append) {
    ListControls c;
    c.list = wb.find<QAbstractItemView>(QLatin1String(list));
    c.catalog = wb.find<QComboBox>(QLatin1String(catalog));
    c.entire_list = wb.find<QRadioButton>(QLatin1String(option0));
    c.selected_files = wb.find<QRadioButton>(QLatin1String(option1));
    c.append_files = wb.find<QCheckBox>(QLatin1String(append));
    return c;
}

UpdateListOption option_of(const ListControls& c) {
    if (c.entire_list && c.entire_list->isChecked()) {
        return UpdateListOption::EntireList;
    }
    if (c.selected_files && c.selected_files->isChecked()) {
        return UpdateListOption::SelectedFiles;
    }
    return UpdateListOption::None;
}

}  // namespace

ListControls load_list_controls(Workbench& wb) {
    return find_controls(wb, "o_load_filelist", "o_load_catalog", "o_load_update_list_0",
                         "o_load_update_list_1", "o_load_append_files");
}

ListControls scan_list_controls(Workbench& wb) {
    return find_controls(wb, "o_scan_file_list", "o_scan_catalog", "o_scan_update_list_0",
                         "o_scan_update_list_1", "o_scan_append_files");
}

ItemList* item_list_of(QAbstractItemView* view) {
    return view ? qobject_cast<ItemList*>(view->model()) : nullptr;
}

void pass_list_to_main(Workbench& wb, const ListControls& c) {
    ItemList* source = item_list_of(c.list);
    if (!source) {
        return;
    }
    UpdateListOption option = option_of(c);
    const bool append = c.append_files && c.append_files->isChecked();
    if (!pass_to_main_list(wb.context(), *source, wb.context().app.main_list, append, option)) {
        return;
    }
    if (option == UpdateListOption::EntireList && c.entire_list) {
        c.entire_list->setChecked(true);
    }
    set_main_file_count(wb);
    clear_main_fields(wb);
}

void enter_list_into_catalog(Workbench& wb, const ListControls& c) {
    ItemList* source = item_list_of(c.list);
    if (!source) {
        return;
    }
    const bool entire = c.entire_list && c.entire_list->isChecked();
    run_update_database(wb.context(), *source, c.catalog ? c.catalog->currentText() : QString(),
                        entire);
    fill_catalog_lists(wb);
}

void default_update_option(const ListControls& c) {
    if (option_of(c) == UpdateListOption::None && c.entire_list) {
        c.entire_list->setChecked(true);
    }
}

void scan_update_main_list(Workbench& wb) {
    pass_list_to_main(wb, scan_list_controls(wb));
}

void scan_update_database(Workbench& wb) {
    enter_list_into_catalog(wb, scan_list_controls(wb));
}

void enter_scan_lists(Workbench& wb) {
    fill_catalog_lists(wb);
    default_update_option(scan_list_controls(wb));
}

void show_list_row(Workbench& wb, const ItemList& list, const QString& panel_word) {
    QString path;
    passed_over([&] { path = list.item(list.list_index()); });
    passed_over([&] { show_panel_file(wb, panel_word, path); });
}
