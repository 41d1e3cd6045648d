#pragma once

#include "core/context.h"
#include "core/item_list.h"

#include <QString>

#include <functional>

// The kinds of index, as the option buttons of the Index tab number them;
// kNotSet when no button of the group is on.
namespace index_choice {
inline constexpr int kNotSet = -1;
inline constexpr int kNoFrames = 0;
inline constexpr int kTopLeftRight = 1;
inline constexpr int kLeftRight = 2;
inline constexpr int kThumbnails = 0;
inline constexpr int kFileNames = 1;
}  // namespace index_choice

// The choices of one "Create Index" run, as the Index tab shows them (the
// command-line program fills the same).
struct IndexRequest {
    QString target_directory;  // where the pages go and the listed files are taken to be
    int frame_type = index_choice::kNotSet;
    int index_type = index_choice::kNotSet;
    bool new_browser = false;
    // Template names.
    QString no_frame;
    QString top_frame;
    QString left_frame;
    QString right_frame;
    // Page names.
    QString index_file_name;
    QString top_frame_file_name;
    QString left_frame_file_name;
    QString right_frame_file_name;
    // The thumbnail size box of the Resize tab, passed to the thumbnail
    // engine as its limits (which a thumbnail does not read).
    QString thumbnail_size;
    // Sets the thumbnail options up before a thumbnail index: the Resize
    // tab's fill from the settings, Flat when no thumbnail type is chosen,
    // the file type Thumbnail, and the target directory as the thumbnail
    // directory. Unset: nothing is set up.
    std::function<void()> prepare_thumbnails;
};

struct IndexResult {
    bool refused = false;  // a validation message was shown, no file touched
    QString opened;        // the URL given to the browser ("" when refused)
};

// The validation in its fixed order: each failed test replaces the message,
// so only the last complaint is returned; "" when the run may go on.
QString index_refusal(const IndexRequest& r, const ItemList& main_list);

// The settings text of a frame type ("None", "Top/Left/Right", "Left/Right")
// and of an index type ("Thumbnail", "File Name"); "" for none set.
QString frame_type_setting(int frame_type);
QString index_type_setting(int index_type);

// "Create Index": validation, the notice that nothing is copied, the replace
// questions (whose answers spare no file), the thumbnail set-up, then the
// pages of the frame type and the index opened in the browser. Every failure
// of the work itself is passed over. The frame type is written once more to
// section Index of the settings, as the tab's option button does when it is
// set again before the pages are written.
IndexResult create_index(Context& ctx, const IndexRequest& r, const ItemList& main_list);
