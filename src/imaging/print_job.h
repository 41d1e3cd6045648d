#pragma once

#include <QImage>
#include <QRectF>
#include <QSizeF>
#include <QString>

class ImageControl;
class ItemList;
struct Context;

// The printer a job draws on. Each page is a document of its own for the
// spooler: opening one is the "one blank" that starts it, and ending one
// sends it. Failures throw RunError.
class PrintDevice {
public:
    virtual ~PrintDevice() = default;
    // 1 portrait, 2 landscape; in force from the next document opened.
    virtual void set_orientation(int orientation) = 0;
    // -1 Draft ... -4 High; in force from the next document opened.
    virtual void set_quality(int quality) = 0;
    // Opens the next document. False when the user declined it (a file name
    // not given), which ends the job before anything is drawn.
    virtual bool open_document() = 0;
    // The page's drawable size in printer pixels (SW, SH) of the open document.
    virtual QSizeF scale_size() const = 0;
    // Draws a picture into `target`, in printer pixels.
    virtual void draw(const QImage& picture, const QRectF& target) = 0;
    // Sends the open document to the printer.
    virtual void end_document() = 0;
    // Cancels the open document: nothing of it reaches the printer.
    virtual void kill_document() = 0;
};

// What a job needs of the Printing tab: its list, its viewer, and the
// buttons that a running job disables.
class PrintPanel {
public:
    virtual ~PrintPanel() = default;
    virtual ItemList& list() = 0;
    virtual ImageControl& viewer() = 0;
    // The selection's click on `row`: shows its file in the viewer, fitted;
    // a file that cannot be read leaves the viewer as it was.
    virtual void show_row(int row) = 0;
    virtual void fit_viewer() = 0;
    virtual void set_viewer_visible(bool visible) = 0;
    // Print disabled and Cancel enabled while printing; the other way after.
    virtual void set_printing(bool printing) = 0;
};

// The tab's controls as a job reads them.
struct PrintChoices {
    QString layout;
    bool portrait = false;
    bool landscape = false;
    QString quality;
    bool selected_files = false;
    bool use_max_size = false;
};

// How a job ended, for its callers and tests.
struct PrintOutcome {
    QString message;  // the validation message shown, if any
    int printed = 0;  // pictures drawn
    bool cancelled = false;
};

// "Print Image(s)": validates the choices (the last failing check is the one
// shown), then prints the list's pictures N to a page, each page ended as a
// document of its own. The stop flag (app.stop_scan) is looked at only after
// a picture is shown and after it is drawn, so one more picture may still be
// drawn after Cancel; the document open then is killed, the pages already
// ended stay sent. A printer error ends the job, kills its open document and
// reaches the caller as RunError.
PrintOutcome print_images(Context& ctx, const PrintChoices& choices, PrintPanel& panel,
                          PrintDevice& device);
