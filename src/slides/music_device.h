#pragma once

#include <QString>

// The one music player of the application: a single device that plays one
// file at a time under one alias. The slide show's music commands and the
// preview's pause, resume and stop all go through it. Failures are silent:
// a file that will not open leaves the device without sound.
class MusicDevice {
public:
    virtual ~MusicDevice() = default;

    // Opens `path` under `alias`; false when it cannot be opened.
    virtual bool open(const QString& path, const QString& alias) = 0;
    virtual void play() = 0;
    virtual void pause() = 0;
    virtual void resume() = 0;
    virtual void stop() = 0;
    // Closes whatever the device has open.
    virtual void close() = 0;
    // The open track's length and the position in it, in milliseconds.
    virtual qint64 length() const = 0;
    virtual qint64 position() const = 0;
    // 50, 100 or 150 per cent of normal speed.
    virtual void set_speed(int percent) = 0;
    virtual void set_mute(bool on) = 0;
};
