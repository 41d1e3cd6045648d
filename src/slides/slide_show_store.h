#pragma once

#include <QString>
#include <QStringList>

#include <optional>

struct AppState;
class ProfileFile;

// The saved slide shows. A show is a title in section `Slide Show Titles`
// under its file stem, the stem in a numbered slot of section `Slide Shows`,
// and two files in the slide_shows directory: stem + ".img" (delay, loop word,
// then the images) and stem + ".mus" (the music), lines ended by CR LF.

// What the Slides tab holds of one show.
struct SlideShow {
    QString delay;  // as typed
    bool loop = false;
    QStringList images;
    QStringList music;
};

// What a selection loaded: the lists of every show whose line matched,
// joined, and the delay and loop of the last of them (none when no ".img"
// file was found).
struct SelectedShow {
    std::optional<QString> delay;
    std::optional<bool> loop;
    QStringList images;
    QStringList music;
};

// "show_0001" ... "show_9999".
QString slide_show_key(int number);

// The titles in slot order, for the show box. The walk stops at the first
// empty slot; a slot with no title (a deleted one) adds nothing.
QStringList slide_show_titles(const ProfileFile& settings);

// Saves `show` under `title` (trimmed) and returns its stem. A title already
// saved keeps its stem and its files are rewritten; a new one takes the last
// free slot found, or the first empty one, and a new random stem. Throws
// RunError when a file cannot be written.
QString save_slide_show(AppState& app, const QString& title, const SlideShow& show);

// Deletes the show with exactly this title: its slot becomes "{deleted}", its
// title goes, and its files are removed. False, with nothing changed, when no
// such title is found before the first empty slot.
bool delete_slide_show(AppState& app, const QString& title);

// Loads by scanning the settings file as plain text: every line that holds
// `title` (case counting) and a "=" names a stem by its text before the "=";
// each stem with an ".img" file stops the music and adds its images and music
// that still exist. Titles that overlap therefore join their shows.
SelectedShow select_slide_show(AppState& app, const QString& title);

// A new file stem: a whole number from 1 to 90,000,000 as text.
QString new_slide_show_stem();
