// The slide show's wait, measured in a window built offscreen with the real
// Slides tab and preview window:
//   - 20 slides of one second: how late each slide comes after its
//     whole-second mark (the next picture's decode included), worst and mean;
//     target: under 100 ms;
//   - one slide of ten seconds: the processor time the program spends while
//     it stands, as a share of one core; target: under 2 %.
// With an MP3 as argument the ten-second slide is measured a second time with
// that music playing behind it.
// Usage: slide_show_bench [MUSIC.mp3]

#include "app/program_state.h"
#include "bench_window.h"
#include "imaging/preview_window.h"
#include "slides/slides_tab.h"
#include "ui/workbench.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QPushButton>
#include <QStackedWidget>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>

namespace {

// Notes the moment each new picture's caption is set on the preview, which
// is the moment it is shown.
class SlideClock : public QObject {
public:
    QList<qint64> shown_ms;
    QList<double> cpu_s;
    QElapsedTimer clock;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::WindowTitleChange && qobject_cast<PreviewWindow*>(watched)) {
            shown_ms << clock.elapsed();
            cpu_s << cpu_seconds();
        }
        return QObject::eventFilter(watched, event);
    }
    static double cpu_seconds() {
        rusage u{};
        getrusage(RUSAGE_SELF, &u);
        return static_cast<double>(u.ru_utime.tv_sec + u.ru_stime.tv_sec) +
               static_cast<double>(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
    }
};

// Runs the tab's show over `images` with `delay`, and returns when the show
// ends by itself; the preview is closed then.
void run_show(bench::BenchWindow& wb, const QStringList& images, const QString& delay,
              const QString& music, SlideClock& watch) {
    auto* list = wb.window_widget()->findChild<QListWidget*>(QStringLiteral("o_slides_filelist"));
    auto* songs = wb.window_widget()->findChild<QListWidget*>(QStringLiteral("o_slides_music"));
    list->clear();
    list->addItems(images);
    songs->clear();
    if (!music.isEmpty()) {
        songs->addItem(music);
    }
    wb.window_widget()
        ->findChild<QLineEdit*>(QStringLiteral("o_slides_slide_show_delay"))
        ->setText(delay);
    wb.window_widget()
        ->findChild<QCheckBox*>(QStringLiteral("o_slides_slide_show_loop"))
        ->setChecked(false);
    watch.shown_ms.clear();
    watch.cpu_s.clear();
    watch.clock.start();
    wb.window_widget()->findChild<QPushButton*>(QStringLiteral("b_slides_start_show"))->click();
    for (auto* p : wb.window_widget()->findChildren<PreviewWindow*>()) {
        p->close();
    }
    QApplication::processEvents();
}

void ten_second_slide(bench::BenchWindow& wb, const QStringList& images, const QString& music,
                      SlideClock& watch) {
    run_show(wb, images.mid(0, 2), QStringLiteral("10"), music, watch);
    if (watch.shown_ms.size() < 2) {
        std::printf("ten-second slide: the show did not reach its second slide\n");
        return;
    }
    const double wall = (watch.shown_ms[1] - watch.shown_ms[0]) / 1000.0;
    const double cpu = watch.cpu_s[1] - watch.cpu_s[0];
    std::printf(
        "ten-second slide%s: %.2f s shown, %.3f s of processor time = %.2f %% of one core"
        " (target < 2 %%)\n",
        music.isEmpty() ? "" : " with music", wall, cpu, 100.0 * cpu / wall);
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    const QString music = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();

    QTemporaryDir work;
    ProgramState program;
    AppState& app = program.app;
    app.app_dir = work.path();
    app.ini_path = work.path() + QStringLiteral("/quilldex.ini");
    app.settings.set_path(app.ini_path);
    app.slide_shows_directory = work.path() + QStringLiteral("/slide_shows");
    QStringList images;
    for (int i = 0; i < 21; ++i) {
        QImage img(1024, 768, QImage::Format_RGB32);
        img.fill(QColor::fromHsv(i * 17 % 360, 160, 200));
        images << work.path() + QStringLiteral("/slide%1.jpg").arg(i, 2, 10, QLatin1Char('0'));
        img.save(images.last(), "JPEG", 85);
    }
    bench::BenchWindow wb(app);
    wb.add_page<SlidesTab>(QStringLiteral("Slides"));
    SlideClock watch;
    // The preview is made as each show starts: its captions are watched from
    // the application.
    application.installEventFilter(&watch);

    run_show(wb, images, QStringLiteral("1"), QString(), watch);
    if (watch.shown_ms.size() != images.size()) {
        std::printf("one-second slides: %lld of %lld slides shown\n",
                    static_cast<long long>(watch.shown_ms.size()),
                    static_cast<long long>(images.size()));
        return 1;
    }
    qint64 worst = 0;
    qint64 total = 0;
    for (int i = 1; i < watch.shown_ms.size(); ++i) {
        const qint64 late = watch.shown_ms[i] - watch.shown_ms[i - 1] - 1000;
        worst = std::max(worst, late);
        total += late;
    }
    const int slides = static_cast<int>(watch.shown_ms.size()) - 1;
    std::printf(
        "one-second slides: worst lateness %lld ms, mean %.1f ms over %d slides"
        " (target < 100 ms)\n",
        static_cast<long long>(worst), static_cast<double>(total) / slides, slides);

    ten_second_slide(wb, images, QString(), watch);
    if (!music.isEmpty()) {
        ten_second_slide(wb, images, music, watch);
    }
    return 0;
}
