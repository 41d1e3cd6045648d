#include "slides/qt_music_device.h"

#include <QAudioOutput>
#include <QEventLoop>
#include <QFileInfo>
#include <QMediaPlayer>
#include <QTimer>
#include <QUrl>

namespace {

// Long enough for a slow disk to hand over the start of a file; a file that
// takes longer counts as one that cannot be played.
constexpr int kLoadLimitMs = 5000;

bool settled(QMediaPlayer::MediaStatus s) {
    return s == QMediaPlayer::LoadedMedia || s == QMediaPlayer::BufferedMedia ||
           s == QMediaPlayer::EndOfMedia || s == QMediaPlayer::InvalidMedia;
}

}  // namespace

QtMusicDevice::QtMusicDevice(FailureSink on_failure, QObject* parent)
    : QObject(parent), on_failure_(std::move(on_failure)) {}

QtMusicDevice::~QtMusicDevice() {
    on_failure_ = {};
    if (player_) {
        player_->disconnect(this);
        player_->stop();
    }
}

void QtMusicDevice::make_player() {
    if (player_) {
        return;
    }
    output_ = std::make_unique<QAudioOutput>();
    player_ = std::make_unique<QMediaPlayer>();
    player_->setAudioOutput(output_.get());
    // An error while playing (the sound device gone, a damaged frame) leaves
    // the track silent; it is told once, like a file that would not open.
    connect(player_.get(), &QMediaPlayer::errorOccurred, this,
            [this](QMediaPlayer::Error, const QString& text) {
                if (open_) {
                    fail(text);
                }
            });
}

void QtMusicDevice::drop_player() {
    // A player keeps the error of its last file: the next file starts on a
    // fresh one.
    player_->disconnect(this);
    player_.reset();
    output_.reset();
}

void QtMusicDevice::fail(const QString& why) {
    if (on_failure_) {
        on_failure_(path_, why);
    }
}

bool QtMusicDevice::open(const QString& path, const QString& alias) {
    close();
    path_ = path;
    if (!QFileInfo(path).isFile()) {
        fail(QStringLiteral("the file does not exist."));
        return false;
    }
    if (player_ && player_->error() != QMediaPlayer::NoError) {
        drop_player();
    }
    make_player();
    QEventLoop wait;
    QTimer limit;
    limit.setSingleShot(true);
    connect(&limit, &QTimer::timeout, &wait, &QEventLoop::quit);
    const auto status = connect(player_.get(), &QMediaPlayer::mediaStatusChanged, &wait,
                                [&wait](QMediaPlayer::MediaStatus s) {
                                    if (settled(s)) {
                                        wait.quit();
                                    }
                                });
    const auto error =
        connect(player_.get(), &QMediaPlayer::errorOccurred, &wait, &QEventLoop::quit);
    player_->setSource(QUrl::fromLocalFile(path));
    if (!settled(player_->mediaStatus()) && player_->error() == QMediaPlayer::NoError) {
        limit.start(kLoadLimitMs);
        wait.exec(QEventLoop::ExcludeUserInputEvents);
    }
    disconnect(status);
    disconnect(error);
    const QMediaPlayer::MediaStatus s = player_->mediaStatus();
    if (player_->error() != QMediaPlayer::NoError || s == QMediaPlayer::InvalidMedia ||
        !settled(s)) {
        const QString why = player_->error() != QMediaPlayer::NoError
                                ? player_->errorString()
                                : QStringLiteral("the file is not music that can be played.");
        drop_player();
        fail(why.isEmpty() ? QStringLiteral("the file cannot be played.") : why);
        return false;
    }
    alias_ = alias;
    open_ = true;
    return true;
}

void QtMusicDevice::play() {
    if (open_) {
        player_->play();
    }
}

void QtMusicDevice::pause() {
    if (open_) {
        player_->pause();
    }
}

void QtMusicDevice::resume() {
    if (open_) {
        player_->play();
    }
}

void QtMusicDevice::stop() {
    if (open_) {
        player_->stop();
    }
}

void QtMusicDevice::close() {
    if (player_ && open_) {
        player_->stop();
        player_->setSource(QUrl());
    }
    open_ = false;
    alias_.clear();
}

qint64 QtMusicDevice::length() const {
    return open_ ? player_->duration() : -1;
}

qint64 QtMusicDevice::position() const {
    if (!open_) {
        return -1;
    }
    // At the end the player goes back to the start; the track has been played
    // through, which is what the end-of-track test asks.
    if (player_->mediaStatus() == QMediaPlayer::EndOfMedia) {
        return player_->duration();
    }
    return player_->position();
}

void QtMusicDevice::set_speed(int percent) {
    if (open_) {
        player_->setPlaybackRate(percent / 100.0);
    }
}

void QtMusicDevice::set_mute(bool on) {
    if (output_) {
        output_->setMuted(on);
    }
}
