#pragma once

#include "core/context.h"
#include "core/item_list.h"
#include "pages/template_expander.h"

#include <QString>

// The choices of one "Create Web Page(s)" run, as the Web Pages tab shows
// them (the command-line program fills the same). `page` carries what the
// page engine reads, the stop signal among them.
struct WebPageRequest {
    PageOptions page;
    QString image_page;      // name of the first or only page
    QString image_template;  // template to expand
    QString max_size;        // the Resize tab's largest image side: both limits
    QString thumbnail_size;  // the Resize tab's thumbnail size
    bool delete_files = false;
    bool slide_show_loop = false;
};

struct WebPageResult {
    bool refused = false;  // a validation message was shown, no file touched
    QString first_page;    // the page given to the browser ("" when none)
    bool stopped = false;  // a slide show ended by Stop: no page was opened
};

// The run: validation (only the last complaint is shown), the notice of files
// that are no web images, the clearing of the target directory when asked,
// then one page of all files, or one page per file chained as a slide show,
// and the first page opened with `open_document`. Files that no longer exist
// leave `main_list` for good. The run fills in the thumbnail size ("100") and
// the slide show delay ("5") in `request` when they are empty, for the caller
// to show. Every failure of the work itself is passed over.
WebPageResult create_web_pages(Context& ctx, WebPageRequest& request, ItemList& main_list);

// Removes the entries whose file does not exist. The walk runs over the
// indices as they stood at its start and removes at the current index, so the
// entry after a removed one is passed over and stays.
void remove_missing_files(ItemList& list);

// The message for `count` files of the main list that are no web images.
QString non_web_notice(int count);

// "Total File Size (MB)": the sizes of the files of `main_list` that exist,
// counted in diskettes of 1,457,664 bytes, cut to two places and written as
// a number is shown, with no closing zeros ("0.5", "1", "12345.67").
QString total_file_size_text(const ItemList& main_list);
