#pragma once

#include <QString>

class ImageView;
class QListWidget;
class QWidget;
class Workbench;

// The seven tabs that show a selected file beside their list, by panel word:
// "main", "load", "printing", "scan", "search", "slides", "thumbnail".
struct Panel {
    QWidget* frame = nullptr;
    ImageView* viewer = nullptr;
};

// The frame and viewer of a panel word; both null for any other word.
Panel find_panel(Workbench& wb, const QString& word);

// Fits the panel's viewer to its frame. Any other word does nothing.
void fit_panel(Workbench& wb, const QString& word);

// Shows `path`, the list's current text, in the panel: a file that is no
// image clears the viewer to 1815 x 1215 twips; an image is loaded, becomes
// the selected and the preview file, and is fitted. With `resume_on_error`
// (the lists whose click goes on after a failed statement) a picture that
// cannot be read leaves what the viewer held, with no message, and the rest
// still runs; without it the load's RunError reaches the caller.
void show_panel_file(Workbench& wb, const QString& word, const QString& path,
                     bool resume_on_error = true);

// The text of a list's current row, which its click shows; "" with none.
QString current_row_text(const QListWidget* list);

// Clears a viewer: no picture, 1815 x 1215 twips.
void clear_viewer(ImageView* viewer);
