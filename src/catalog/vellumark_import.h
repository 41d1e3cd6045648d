#pragma once

#include "core/context.h"

// Import of the ini file of Vellumark, the earlier thumbnail product: every
// "image path=text file path" line whose two files exist becomes a row of
// the catalog, with the text file's lines as its description and the title
// that the file's "Associated Text Title" section gives the image. A file
// imported before stays as it was. Every failure is passed over and nothing
// is reported, not even the end.
void import_vellumark_ini(Context& ctx);
