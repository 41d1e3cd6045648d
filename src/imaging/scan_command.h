#pragma once

#include <QString>

#include <functional>

class ImageControl;
class ItemList;
struct Context;

// What the scan commands need of the Scan tab.
struct ScanPanel {
    ImageControl& viewer;       // o_scan_image_view: receives the scan and saves it
    ItemList& files;            // o_scan_file_list
    std::function<void()> fit;  // fits the viewer to its frame
};

// The settings key that remembers the chosen source.
inline const QString kScanSection = QStringLiteral("Scan");
inline const QString kScanSourceKey = QStringLiteral("Source");

// The name a scan is saved under. A name with a "." has its directory part
// (set in `directory`, else left alone) and, when the file part holds a ".",
// loses everything from the file part's first "." on, in favour of ".jpg":
// "a.b.tif" is saved as "a.jpg". A "." only in the directory leaves the name
// as typed; a name with no "." at all gets ".jpg".
QString scan_file_name(const QString& chosen, QString* directory);

// "Select Source": lists the scanners in a chooser, opened on the remembered
// one, and remembers the choice in the settings.
void select_scan_source(Context& ctx);

// "Scan Image": takes one image from the remembered scanner (or the first
// there is) with the device's defaults, shows it, asks for its name, saves
// it as JPEG and adds the name to the list unless a row already has it
// (compared in lower case). A cancelled name leaves the picture shown and
// unsaved, with no message. No scanner, or a failure to save, gives
// "An error occurred searching for a scanning device."; a scanner that fails
// during the transfer gives its driver's message.
void scan_image(Context& ctx, ScanPanel& panel);
