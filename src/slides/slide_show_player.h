#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class MusicControls;
class QEventLoop;
struct Context;

// What the slide show needs of the preview window.
class SlideScreen {
public:
    virtual ~SlideScreen() = default;
    // Opens the window without waiting for it, centred, with the main
    // window's tabs disabled.
    virtual void open() = 0;
    // Shows the preview file.
    virtual void load() = 0;
    // False once the user has closed the window.
    virtual bool is_open() const = 0;
    // The show is over: the tabs are enabled again; the window stays.
    virtual void finish() = 0;
};

// The Slides tab's controls as the show starts.
struct SlideShowInput {
    QStringList images;
    int first = 0;          // the first selected row, 0 with none
    QString selected_text;  // the list's current text, the first preview file
    QString delay;          // as typed; whole seconds of its value count
    bool loop = false;
};

// Plays a slide show in the preview window: each image from the selected row
// on stays for the whole seconds of the delay, counted from the moment it was
// shown, while the music plays behind. The space key in the window holds the
// wait; a looping show starts again at the top; closing the window ends it.
// Runs on the user-interface thread: the wait sleeps in the event loop, which
// serves the window, the keys and the music timer meanwhile, and wakes at the
// slide's mark or when `wake` is called.
class SlideShowPlayer : public QObject {
    Q_OBJECT
public:
    SlideShowPlayer(Context& ctx, SlideScreen& screen, MusicControls* music,
                    QObject* parent = nullptr);

    void run(const SlideShowInput& in);
    // Something the wait depends on may have changed (a key, the window
    // closed): it looks again.
    void wake();

    // Seconds since midnight, the show's clock.
    static double clock_seconds();

private:
    // Waits out one slide; false when the window was closed meanwhile.
    bool wait_for_slide(double t0, double delay_seconds);

    Context& ctx_;
    SlideScreen& screen_;
    MusicControls* music_;
    QEventLoop* waiting_ = nullptr;
};
