#include "slides/slide_show_player.h"

#include "imaging/numeric_text.h"
#include "core/context.h"
#include "slides/music_operation.h"
#include "slides/music_player.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTime>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace {

// The longest the wait sleeps before it looks again on its own, for the
// cases no event announces (the clock passing midnight).
constexpr qint64 kLongestSleepMs = 5000;

}  // namespace

SlideShowPlayer::SlideShowPlayer(Context& ctx, SlideScreen& screen, MusicControls* music,
                                 QObject* parent)
    : QObject(parent), ctx_(ctx), screen_(screen), music_(music) {}

double SlideShowPlayer::clock_seconds() {
    return QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
}

void SlideShowPlayer::wake() {
    if (waiting_) {
        waiting_->quit();
    }
}

bool SlideShowPlayer::wait_for_slide(double t0, double delay_seconds) {
    AppState& app = ctx_.app;
    const double whole_delay = std::floor(delay_seconds);
    // One turn of the event loop for every slide, so that even a delay of 0
    // leaves the window able to take a key or a close.
    QCoreApplication::processEvents();
    while (screen_.is_open()) {
        const double now = clock_seconds();
        if (!app.slide_show_paused && std::floor(now - t0) >= whole_delay) {
            return true;
        }
        QEventLoop loop;
        QTimer mark;
        mark.setSingleShot(true);
        mark.setTimerType(Qt::PreciseTimer);
        connect(&mark, &QTimer::timeout, &loop, &QEventLoop::quit);
        qint64 sleep_ms = kLongestSleepMs;
        if (!app.slide_show_paused) {
            const auto due = static_cast<qint64>(std::ceil((t0 + whole_delay - now) * 1000.0));
            sleep_ms = std::clamp<qint64>(due, 1, kLongestSleepMs);
        }
        mark.start(static_cast<int>(sleep_ms));
        waiting_ = &loop;
        loop.exec();
        waiting_ = nullptr;
    }
    return false;
}

void SlideShowPlayer::run(const SlideShowInput& in) {
    AppState& app = ctx_.app;
    ctx_.ui.set_busy(true);
    if (in.images.isEmpty()) {
        ctx_.dialogs.info(
            QStringLiteral("There are no images to display.  Use the 'Load' tab to add images to "
                           "the main file list."));
        screen_.finish();
        ctx_.ui.set_busy(false);
        return;
    }
    app.preview_file = in.selected_text;
    // The music starts from the top of its list.
    if (music_ && !music_->music_rows().isEmpty() && music_->selected_music_row() >= 0) {
        music_->select_music_row(-1);
    }
    if (app.music_player) {
        app.music_player->forget_failures();
    }
    music_operation(app, 3);
    music_operation(app, 1);
    screen_.open();
    int first = std::max(0, in.first);
    bool running = true;
    while (running) {
        for (int i = first; i < in.images.size(); ++i) {
            app.preview_file = in.images.at(i);
            screen_.load();
            const double t0 = clock_seconds();
            app.slide_show_paused = false;
            if (!wait_for_slide(t0, val_of_text(in.delay))) {
                music_operation(app, 3);
                break;
            }
        }
        if (!in.loop) {
            music_operation(app, 3);
            running = false;
        } else if (!screen_.is_open()) {
            running = false;
        }
        first = 0;  // a looping show comes back to the top, not to the selected row
    }
    music_operation(app, 3);
    screen_.finish();
    ctx_.ui.set_busy(false);
}
