#pragma once

class Workbench;

// Routines over the window's controls that several tabs share.

// Refills the four lists that offer catalog names (`o_category_list`,
// `o_main_category`, `o_load_catalog`, `o_scan_catalog`) from the catalog.
// The text typed into a combo box is not kept. A list the window does not
// have is passed by.
void fill_catalog_lists(Workbench& wb);

// The caption of `f_main`: "File Count: " + the rows of the main list.
void set_main_file_count(Workbench& wb);

// Empties the Main tab's fields: title, catalog and description.
void clear_main_fields(Workbench& wb);
