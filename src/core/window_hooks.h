#pragma once

#include <QString>

// What a running command needs of the window around it: the text of the first
// panel of the status bar, a turn of the message loop, and the busy pointer.
// The default does nothing, which is what the command-line program wants.
class UiHooks {
public:
    virtual ~UiHooks() = default;
    virtual void set_status(const QString& text) { status_ = text; }
    virtual QString status() const { return status_; }
    // Gives the message loop a turn, so that a stop button can be pressed.
    virtual void yield() {}
    virtual void set_busy(bool busy) { busy_ = busy; }
    bool busy() const { return busy_; }
    // The progress of a long command beside the status text: DONE of TOTAL
    // items, or only DONE when TOTAL is 0 (no end known). `end_progress`
    // hides it. Commands reach these through `Progress`.
    virtual void show_progress(int done, int total) {
        (void)done;
        (void)total;
    }
    virtual void end_progress() {}

private:
    friend class Progress;
    QString status_;
    bool busy_ = false;
    int progress_depth_ = 0;
};

// The progress of one long command, shown from its start to its end however
// the command ends. A command run inside another (the resizes of a page run)
// leaves the outer command's progress alone.
class Progress {
public:
    Progress(UiHooks& ui, int total) : ui_(ui), total_(total), outer_(ui.progress_depth_++ == 0) {
        if (outer_) {
            ui_.show_progress(0, total_);
        }
    }
    ~Progress() {
        --ui_.progress_depth_;
        if (outer_) {
            ui_.end_progress();
        }
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void step(int done) {
        if (outer_ && done != done_) {
            done_ = done;
            ui_.show_progress(done, total_);
        }
    }

private:
    UiHooks& ui_;
    int total_;
    int done_ = 0;
    bool outer_;
};
