#pragma once

#include "pages/template_expander.h"

class Workbench;

// Reads what the page engine takes from the Web Pages tab out of the window's
// controls, by their names: the target directory, the slide show box and its
// delay, the background image, the two colour labels, the template selected
// on the Templates tab, and the stop signal (the "Create Web Page(s)" button
// not hidden; isHidden, not isVisible, so that it holds in a hidden window).
// A control the window does not hold reads as empty.
PageOptions read_page_options(Workbench& wb);
