#pragma once

#include "core/context.h"

#include <QString>

#include <functional>

class ItemList;

// One title, catalog and description for every file selected in the main
// list: a file without a row gets one, a file with a row has all three
// fields overwritten (an empty field erases). Every row is deselected, and
// afterwards the remembered row is selected again: the first selected row
// above row 0, or row 0. Errors are not caught: the rows before an error are
// already written.
//
// A catalog typed in is added to the catalog table first, after which
// `refill_catalogs` (when given) refills the lists that offer the names.
//
// Returns false, after the message, when all three fields are empty.
bool apply_same_information(Context& ctx, ItemList& main_list, const QString& title,
                            const QString& catalog, const QString& description,
                            const std::function<void()>& refill_catalogs = {});
