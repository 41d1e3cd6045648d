#include "lists/list_transfer.h"

#include <QSet>

bool pass_to_main_list(Context& ctx, const ItemList& source, ItemList& main_list, bool append,
                       UpdateListOption& option) {
    if (source.empty()) {
        return false;
    }
    if (!main_list.empty()) {
        const QString question =
            append ? QStringLiteral(
                         "Are you sure you want to append the main list of files with the loaded "
                         "results?")
                   : QStringLiteral(
                         "Are you sure you want to replace the main list of files with the loaded "
                         "results?");
        if (!ctx.dialogs.ask_yes_no(question)) {
            return false;
        }
    }
    if (option == UpdateListOption::None) {
        option = UpdateListOption::EntireList;
    }
    if (!append) {
        main_list.clear();
    }
    if (option == UpdateListOption::EntireList) {
        // Appending the whole list again may hold a path twice: kept so.
        main_list.add_many(source.items());
        return true;
    }
    // A selection never adds a path that the main list holds already.
    QSet<QString> present(main_list.items().cbegin(), main_list.items().cend());
    QStringList added;
    for (const int row : source.selected_rows()) {
        const QString path = source.item(row);
        if (!present.contains(path)) {
            present.insert(path);
            added << path;
        }
    }
    main_list.add_many(added);
    return true;
}

int search_file_list(Context& ctx, ItemList& list) {
    const QString answer =
        ctx.dialogs.input(QStringLiteral("Enter the search text."), QStringLiteral("Text Search"));
    if (answer.isEmpty()) {
        return -1;
    }
    const QString text = answer.toLower();
    for (int row = 0; row < list.count(); ++row) {
        if (list.item(row).toLower().contains(text)) {
            list.set_selected(row, false);
            list.set_selected(row, true);
            list.set_list_index(row);
            return row;
        }
    }
    return -1;
}
