#pragma once

#include "slides/music_device.h"

#include <QObject>

#include <functional>
#include <memory>

class QAudioOutput;
class QMediaPlayer;

// The music device on Qt Multimedia: one player and one audio output, made
// when the first file is opened. Opening waits, with user input held back, until
// the file is loaded or refused (a few seconds at most), so that its length
// is known at once. A file that cannot be played is told to `on_failure` with
// its path and the reason, and leaves the device without sound.
class QtMusicDevice : public QObject, public MusicDevice {
    Q_OBJECT
public:
    using FailureSink = std::function<void(const QString& path, const QString& why)>;

    explicit QtMusicDevice(FailureSink on_failure = {}, QObject* parent = nullptr);
    ~QtMusicDevice() override;

    bool open(const QString& path, const QString& alias) override;
    void play() override;
    void pause() override;
    void resume() override;
    void stop() override;
    void close() override;
    // -1 when nothing is open.
    qint64 length() const override;
    // -1 when nothing is open; the length once the track has played to its end.
    qint64 position() const override;
    void set_speed(int percent) override;
    void set_mute(bool on) override;

    // The alias of the open file, "" when none.
    const QString& alias() const { return alias_; }

private:
    void make_player();
    void drop_player();
    void fail(const QString& why);

    FailureSink on_failure_;
    std::unique_ptr<QAudioOutput> output_;
    std::unique_ptr<QMediaPlayer> player_;
    QString path_;
    QString alias_;
    bool open_ = false;
};
