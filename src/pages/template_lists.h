#pragma once

class Workbench;

// Refills the template names of the Templates tab's list and of the Index
// tab's four frame boxes from the `template` table, in the table's own row
// order. An empty table leaves every list as it was. Each Index box keeps
// the name it showed when that name is still there, and shows none when it
// has gone. Boxes that the window does not hold are passed by.
void fill_template_lists(Workbench& wb);

// The start's fill: the Templates tab's list alone, by the same steps.
void fill_template_list(Workbench& wb);
