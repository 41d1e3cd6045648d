#pragma once

#include "core/context.h"
#include "imaging/file_failures.h"
#include "pages/template_store.h"

#include <QString>

#include <functional>

// What the page engine reads of the Web Pages tab. The tab, the template
// editor's preview and the command-line program each fill one.
struct PageOptions {
    QString target_directory;      // where images go, and the background image always
    bool make_slide_show = false;  // refresh line and slide tags active
    QString slide_show_delay;      // seconds of the refresh line, as typed
    QString background_image;      // source of [background]
    QString background_color;      // colour text of [bgcolor]
    QString text_color;            // colour text of [textcolor]
    // The template selected on the Templates tab. A fresh working copy starts
    // from it, so a name that has no row expands this one instead.
    QString listed_template;
    // The stop signal: true while "Create Web Page(s)" is showing, that is,
    // while no run is going on or after Stop was pressed. Unset means never.
    std::function<bool()> create_button_visible;
    // Told of each file whose loading, resizing, thumbnail or copy failed,
    // besides passing it over; the window leaves it unset and says nothing.
    FailureSink failed;

    bool stop_requested() const { return create_button_visible && create_button_visible(); }
};

// Expands one template over the files of the hidden file list (`app.file_list`)
// into one output file, replacing it. Each file is staged beside the page
// (copied, or resized when it is larger than the limits), its tags are filled
// from the catalog, thumbnails are made for [timgsrc], and every write ends in
// CR LF. All failures are passed over: a step that fails is skipped and the
// next one runs, and nothing is reported but to `page.failed`.
//
// `no_copy` other than "" leaves out the staging; `max_height`/`max_width` ""
// or 0 mean no resizing; `preview` "yes" puts sample texts in place of the
// catalog's and images beside the output file. The four links are bare page
// names, but for `previous_page`, which the caller may give as a full path.
//
// The template is read from the catalog at each call, unless `working` gives
// the copy to expand (the editor's fields, with their unsaved changes).
void expand_template(Context& ctx, const PageOptions& page, const QString& template_name,
                     const QString& output_path, const QString& no_copy, const QString& max_height,
                     const QString& max_width, const QString& preview, const QString& next_page,
                     const QString& previous_page, const QString& first_page,
                     const QString& last_page, const TemplateSections* working = nullptr);
