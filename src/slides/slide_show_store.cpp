#include "slides/slide_show_store.h"

#include "core/app_state.h"
#include "core/file_helpers.h"
#include "core/run_error.h"
#include "imaging/numeric_text.h"
#include "slides/music_operation.h"

#include <QFile>
#include <QRandomGenerator>

namespace {

const QString kShows = QStringLiteral("Slide Shows");
const QString kTitles = QStringLiteral("Slide Show Titles");
const QString kDeleted = QStringLiteral("{deleted}");
constexpr int kLastSlot = 9999;

// Where a walk of the slots ended.
struct SlotWalk {
    QString stem;        // the matching show's stem, "" when none
    QString key;         // the slot of the match, or the first empty slot
    QString free_slot;   // the last "{deleted}" slot passed
    bool ended = false;  // an empty slot was reached
};

SlotWalk walk_slots(const ProfileFile& settings, const QString& title) {
    SlotWalk w;
    for (int i = 1; i <= kLastSlot; ++i) {
        const QString key = slide_show_key(i);
        const QString value = settings.read(kShows, key);
        if (value.isEmpty()) {
            w.key = key;
            w.ended = true;
            return w;
        }
        if (value == kDeleted) {
            w.free_slot = key;
        }
        // A "{deleted}" slot has no title, so it matches the empty title.
        if (settings.read(kTitles, value) == title) {
            w.stem = value;
            w.key = key;
            return w;
        }
    }
    return w;
}

QString show_path(const AppState& app, const QString& stem, const char* extension) {
    return join_path(app.slide_shows_directory, stem + QLatin1String(extension));
}

// Writes the lines, each ended by CR LF, as the whole file, so that a failed
// write leaves the former show whole.
void write_lines(const QString& path, const QStringList& lines) {
    QByteArray bytes;
    for (const QString& line : lines) {
        bytes += line.toUtf8();
        bytes += "\r\n";
    }
    const QString failure = write_whole_file(path, bytes);
    if (!failure.isEmpty()) {
        throw RunError(QStringLiteral("Cannot write %1: %2").arg(path, failure));
    }
}

// The lines of a text file, without their line ends; an unreadable file has none.
QStringList read_lines(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    if (!lines.isEmpty() && lines.last().isEmpty()) {
        lines.removeLast();
    }
    for (QString& line : lines) {
        if (line.endsWith(u'\r')) {
            line.chop(1);
        }
    }
    return lines;
}

// Adds each path that names an existing file, trimmed as the test leaves it.
void add_existing(QStringList& to, const QStringList& paths) {
    for (QString path : paths) {
        if (file_exists(path)) {
            to << path;
        }
    }
}

}  // namespace

QString slide_show_key(int number) {
    return QStringLiteral("show_%1").arg(number, 4, 10, QChar(u'0'));
}

QStringList slide_show_titles(const ProfileFile& settings) {
    QStringList titles;
    for (int i = 1; i <= kLastSlot; ++i) {
        const QString value = settings.read(kShows, slide_show_key(i));
        if (value.isEmpty()) {
            break;
        }
        const QString title = settings.read(kTitles, value);
        if (!title.isEmpty()) {
            titles << title;
        }
    }
    return titles;
}

QString new_slide_show_stem() {
    const double r = QRandomGenerator::global()->generateDouble();
    return QString::number(static_cast<qint64>(r * 89999999) + 1);
}

QString save_slide_show(AppState& app, const QString& title_text, const SlideShow& show) {
    const QString title = title_text.trimmed();
    const SlotWalk w = walk_slots(app.settings, title);
    QString stem = w.stem;
    QString key = w.free_slot.isEmpty() ? w.key : w.free_slot;
    if (stem.isEmpty()) {
        if (key.isEmpty()) {
            // Every slot holds a show: saving would overwrite one of them.
            throw RunError(QStringLiteral("There is no free slot for another slide show."));
        }
        stem = new_slide_show_stem();
        app.settings.write(kShows, key, stem);
        app.settings.write(kTitles, stem, title);
    }
    QStringList img{show.delay, show.loop ? QStringLiteral("Yes") : QStringLiteral("No")};
    img += show.images;
    write_lines(show_path(app, stem, ".img"), img);
    write_lines(show_path(app, stem, ".mus"), show.music);
    return stem;
}

bool delete_slide_show(AppState& app, const QString& title) {
    const SlotWalk w = walk_slots(app.settings, title);
    if (w.stem.isEmpty()) {
        return false;
    }
    app.settings.write(kShows, w.key, kDeleted);
    app.settings.remove(kTitles, w.stem);
    for (const char* extension : {".img", ".mus"}) {
        const QString path = show_path(app, w.stem, extension);
        if (file_exists_at(path)) {
            delete_file(path);
        }
    }
    return true;
}

SelectedShow select_slide_show(AppState& app, const QString& title) {
    SelectedShow shown;
    for (const QString& line : read_lines(app.ini_path)) {
        const qsizetype equals = line.indexOf(u'=');
        if (equals < 0 || !line.contains(title, Qt::CaseSensitive)) {
            continue;
        }
        const QString stem = line.left(equals);
        const QString img = show_path(app, stem, ".img");
        if (file_exists_at(img)) {
            music_operation(app, 3);
            const QStringList lines = read_lines(img);
            shown.delay = QString::number(val_of_text(lines.value(0)), 'g', 15);
            shown.loop = lines.value(1) == QLatin1String("Yes");
            add_existing(shown.images, lines.mid(2));
        }
        const QString mus = show_path(app, stem, ".mus");
        if (file_exists_at(mus)) {
            add_existing(shown.music, read_lines(mus));
        }
    }
    return shown;
}
