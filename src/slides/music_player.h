#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTimer>

struct Context;

// What the music needs of the Slides tab: the rows of o_slides_music with
// their selection, and the caption of b_slides_play.
class MusicControls {
public:
    virtual ~MusicControls() = default;
    virtual QStringList music_rows() const = 0;
    // The selected row, -1 for none.
    virtual int selected_music_row() const = 0;
    virtual void select_music_row(int row) = 0;
    virtual void set_play_caption(const QString& caption) = 0;
};

// The music of the slide shows: plays the rows of the music list one after
// another on the application's music device, with a timer that looks once a
// second whether the track has reached its end and then starts the next row,
// wrapping to the top. Lives on the user-interface thread; the timer is served
// by the event loop, during a slide show by the show's wait.
class MusicPlayer : public QObject {
    Q_OBJECT
public:
    MusicPlayer(Context& ctx, MusicControls& controls, QObject* parent = nullptr);
    ~MusicPlayer() override;

    // One of the operations of `music_operation`.
    void operation(int op);
    // Opens `path` on the device, plays it, keeps its length and starts the
    // end-of-track timer.
    void play_track(const QString& path);
    // One beat of the timer: at or past the end, the next track.
    void tick();

    // A file the device cannot play: its message goes to the status bar the
    // first time only, so that a list that keeps coming back to it does not
    // repeat it. `forget_failures` lets the next attempt report again.
    void report_failure(const QString& path, const QString& why);
    void forget_failures() { reported_.clear(); }

    QTimer& mci_timer() { return mci_timer_; }
    // The last length and position the device reported, as text; "0" after a stop.
    const QString& length_label() const { return length_label_; }
    const QString& position_label() const { return position_label_; }

private:
    void next_track();

    Context& ctx_;
    MusicControls& controls_;
    QTimer mci_timer_;
    QString length_label_ = QStringLiteral("0");
    QString position_label_ = QStringLiteral("0");
    qint64 length_ = 0;
    QSet<QString> reported_;
};
