#pragma once

#include <QString>
#include <QStringList>

class ProfileFile;

// The Web Pages tab's choices that a web profile holds, with the profile box
// (its typed text and its entries), read from the tab before an operation and
// written back after it.
struct WebProfileControls {
    QString name;         // the typed text of the profile box
    QStringList entries;  // the entries of the profile box
    QString target_directory;
    QString image_page;
    QString image_template;
    bool delete_files = false;
    bool slide_show = false;
    bool slide_show_loop = false;
};

// One operation on the web profiles of the settings file: "load" fills the
// entries from section `Profile List` (Profile1, Profile2, ... up to the
// first empty value), "refresh" takes the named profile's values into the
// controls (an empty text value leaves its control; an empty flag clears its
// box), "save" writes the controls to section "Profile - <name>" and lists a
// new name, "delete" removes the profile's keys, moves the later names up one
// place and removes the entry. Any other word does nothing. Deleting a name
// that is not listed removes its keys and then fails to remove an entry past
// the last: that error is thrown, as nothing in the routine catches it.
void web_profile(ProfileFile& settings, const QString& operation, WebProfileControls& c);
