#include "slides/music_player.h"

#include "imaging/numeric_text.h"
#include "core/context.h"
#include "slides/music_device.h"

namespace {

const QString kAlias = QStringLiteral("mp3");

}  // namespace

MusicPlayer::MusicPlayer(Context& ctx, MusicControls& controls, QObject* parent)
    : QObject(parent), ctx_(ctx), controls_(controls) {
    mci_timer_.setInterval(1000);
    connect(&mci_timer_, &QTimer::timeout, this, &MusicPlayer::tick);
}

MusicPlayer::~MusicPlayer() = default;

void MusicPlayer::operation(int op) {
    MusicDevice* device = ctx_.app.music_device;
    switch (op) {
        case 1:
            next_track();
            break;
        case 2:
            if (device) {
                device->pause();
            }
            // Pausing always ends the end-of-track timer, and resuming does not
            // start it again: a resumed track plays to its end and no further.
            mci_timer_.stop();
            break;
        case 3:
            if (device) {
                device->stop();
                device->close();
            }
            controls_.set_play_caption(QStringLiteral("Play Music"));
            mci_timer_.stop();
            length_label_ = QStringLiteral("0");
            position_label_ = QStringLiteral("0");
            break;
        case 6:
        case 7:
        case 15:
            if (device) {
                device->set_speed(op == 6 ? 50 : op == 7 ? 150 : 100);
            }
            break;
        case 8:
            // The playing and mute flags are fresh at every call, so the
            // toggle never finds anything to switch.
            break;
        case 21:
            if (device) {
                device->resume();
            }
            break;
        default:
            break;
    }
}

void MusicPlayer::next_track() {
    const QStringList rows = controls_.music_rows();
    if (rows.isEmpty()) {
        return;
    }
    int row = controls_.selected_music_row() + 1;
    if (row >= rows.size()) {
        row = 0;
    }
    controls_.select_music_row(row);
    play_track(rows.at(row));
}

void MusicPlayer::play_track(const QString& path) {
    controls_.set_play_caption(QStringLiteral("Stop Music"));
    if (MusicDevice* device = ctx_.app.music_device) {
        device->open(path, kAlias);
        device->play();
        // A device with nothing open has no reply, and the label keeps its text.
        const qint64 length = device->length();
        if (length >= 0) {
            length_label_ = QString::number(length);
        }
    }
    length_ = static_cast<qint64>(val_of_text(length_label_));
    mci_timer_.start();
}

void MusicPlayer::tick() {
    if (MusicDevice* device = ctx_.app.music_device) {
        const qint64 position = device->position();
        if (position >= 0) {
            position_label_ = QString::number(position);
        }
    }
    if (val_of_text(position_label_) >= val_of_text(length_label_)) {
        length_label_ = QStringLiteral("0");
        position_label_ = QStringLiteral("0");
        operation(3);
        operation(1);
    }
}

void MusicPlayer::report_failure(const QString& path, const QString& why) {
    if (reported_.contains(path)) {
        return;
    }
    reported_.insert(path);
    ctx_.ui.set_status(QStringLiteral("Cannot play %1: %2").arg(path, why));
}
