#include "imaging/image_view.h"
#include "imaging/preview_window.h"
#include "slides/music_device.h"
#include "slides/qt_music_device.h"
#include "slides/slides_tab.h"
#include "support/test_workbench.h"
#include "ui/widget_rows.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

QByteArray bytes_of(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

// The Slides tab entered with three images (and a non-image left out) on the
// main list, and its real music device.
struct SlidesFixture : ::testing::Test {
    TestHome home;
    TestWorkbench wb{home};
    SlidesTab* tab = nullptr;
    QStringList images;
    QPushButton* play = nullptr;

    void SetUp() override {
        QDir().mkpath(home.app.slide_shows_directory);
        tab = wb.add_page<SlidesTab>("Slides");
        play = w<QPushButton>("b_slides_play");
        for (const char* name : {"a.png", "b.png", "c.png"}) {
            images << home.write_image(name, 40, 30);
            home.app.main_list.add(images.last());
            home.app.main_list.add(home.path("notes.txt"));
        }
        wb.enter("Slides");
    }
    template <class T>
    T* w(const char* name) {
        return wb.find<T>(QLatin1String(name));
    }
    QListWidget* files() { return w<QListWidget>("o_slides_filelist"); }
    QListWidget* music() { return w<QListWidget>("o_slides_music"); }
    QLineEdit* delay() { return w<QLineEdit>("o_slides_slide_show_delay"); }
    QComboBox* box() { return w<QComboBox>("o_slides_show_name"); }
    void click(const char* button) { w<QPushButton>(button)->click(); }
    void save_as(const QString& title) {
        box()->setEditText(title);
        click("b_slides_save_show");
    }
    void choose(const QString& title) {
        box()->setCurrentIndex(box()->findText(title));
        box()->activated(box()->currentIndex());
    }
    QString stem_of(const QString& key) { return home.app.settings.read("Slide Shows", key); }
    QString show_file(const QString& stem, const char* ext) {
        return home.app.slide_shows_directory + '/' + stem + ext;
    }

    // Music: copies of the tone made at build time (1.5 seconds).
    MusicDevice& device() { return *home.app.music_device; }
    bool add_tones(int count) {
        for (int i = 0; i < count; ++i) {
            const QString copy = home.path(QString("tone %1.mp3").arg(i));
            if (!QFile::copy(QStringLiteral(QD_TEST_MP3), copy)) {
                return false;
            }
            music()->addItem(copy);
        }
        return true;
    }
};

// Notes each caption the preview takes, and when: the moment a slide is shown.
struct Captions : QObject {
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (auto* preview = qobject_cast<PreviewWindow*>(watched);
            preview && event->type() == QEvent::WindowTitleChange) {
            shown << preview->windowTitle();
            at << clock.elapsed();
            tabs_enabled_seen = tabs_enabled_seen || *tabs_enabled;
        }
        return false;
    }
    QElapsedTimer clock;
    QStringList shown;
    QList<qint64> at;
    const bool* tabs_enabled = nullptr;
    bool tabs_enabled_seen = false;
};

}  // namespace

TEST_F(SlidesFixture, ShowsSaveDeleteAndReuseTheirSlotsAndLoadBackWhatStillExists) {
    EXPECT_EQ(rows_of(files()), images);

    // A show with its music, the title trimmed, the delay kept as typed.
    const QString song = home.write_file("song one.mp3");
    home.dialogs.answer_file(song);
    click("b_slides_add_music");
    delay()->setText("3 sec");
    w<QCheckBox>("o_slides_slide_show_loop")->setChecked(true);
    EXPECT_EQ(home.app.settings.read("Slides", "Loop"), "Yes");
    save_as("  Beach ");
    const QString beach = stem_of("show_0001");
    ASSERT_GE(beach.toLongLong(), 1);
    EXPECT_EQ(home.app.settings.read("Slide Show Titles", beach), "Beach");
    EXPECT_EQ(bytes_of(show_file(beach, ".img")),
              "3 sec\r\nYes\r\n" + images.join("\r\n").toUtf8() + "\r\n");
    EXPECT_EQ(bytes_of(show_file(beach, ".mus")), song.toUtf8() + "\r\n");

    // The same title again keeps the stem and rewrites both files.
    delete files()->takeItem(0);
    music()->clear();
    save_as("Beach");
    EXPECT_EQ(stem_of("show_0001"), beach);
    EXPECT_EQ(stem_of("show_0002"), "");
    EXPECT_EQ(bytes_of(show_file(beach, ".img")),
              "3 sec\r\nYes\r\n" + images.mid(1).join("\r\n").toUtf8() + "\r\n");
    EXPECT_EQ(bytes_of(show_file(beach, ".mus")), "");

    // Deleting the second of three shows frees its slot for the next new one.
    save_as("Cliffs");
    save_as("Dunes");
    const QString cliffs = stem_of("show_0002");
    choose("Cliffs");
    click("b_slides_delete_show");
    EXPECT_EQ(stem_of("show_0002"), "{deleted}");
    EXPECT_FALSE(home.app.settings.contains("Slide Show Titles", cliffs));
    EXPECT_FALSE(QFile::exists(show_file(cliffs, ".img")) ||
                 QFile::exists(show_file(cliffs, ".mus")));
    EXPECT_EQ(box()->findText("Cliffs"), -1);
    EXPECT_EQ(box()->currentText(), "");
    save_as("Estuary");
    EXPECT_EQ(home.app.settings.read("Slide Show Titles", stem_of("show_0002")), "Estuary");
    EXPECT_EQ(stem_of("show_0004"), "");

    // Entering lists the titles in slot order; selecting loads the delay as a
    // number and only the images that still exist.
    wb.enter("Slides");
    EXPECT_EQ(rows_of(box()), QStringList({"Beach", "Estuary", "Dunes"}));
    QFile::remove(images[2]);
    choose("Beach");
    EXPECT_EQ(delay()->text(), "3");
    EXPECT_TRUE(w<QCheckBox>("o_slides_slide_show_loop")->isChecked());
    EXPECT_EQ(rows_of(files()), QStringList{images[1]});
    EXPECT_EQ(rows_of(music()), QStringList{});
}

TEST_F(SlidesFixture, ShowWaitsWholeSecondsHoldsOnSpaceAndLoopsBackToTheTop) {
    files()->clear();
    click("b_slides_start_show");
    EXPECT_EQ(home.dialogs.messages(),
              QStringList{"There are no images to display.  Use the 'Load' tab to add images to "
                          "the main file list."});
    EXPECT_FALSE(home.ui.busy());

    wb.enter("Slides");
    files()->setCurrentRow(1);
    delay()->setText("1.9");  // one whole second
    w<QCheckBox>("o_slides_slide_show_loop")->setChecked(true);

    // Space is pressed at 0.3 s and again at 1.6 s; the window is closed at
    // 4.1 s, half a second from a slide either way. The timers end with
    // `seen`, should the show end before them.
    Captions seen;
    seen.tabs_enabled = &wb.tabs_enabled;
    qApp->installEventFilter(&seen);
    auto preview = [&] { return wb.window_widget()->findChild<PreviewWindow*>(); };
    qint64 released = -1, closed = -1;
    for (const int ms : {300, 1600}) {
        QTimer::singleShot(ms, Qt::PreciseTimer, &seen, [&] {
            released = seen.clock.elapsed();
            QTest::keyClick(preview()->image(), Qt::Key_Space);
        });
    }
    QTimer::singleShot(4100, Qt::PreciseTimer, &seen, [&] {
        closed = seen.clock.elapsed();
        preview()->close();
    });
    seen.clock.start();
    click("b_slides_start_show");
    const qint64 ended = seen.clock.elapsed();
    qApp->removeEventFilter(&seen);

    // b is held by the pause past its second and goes as the pause ends;
    // then a second each, back to the top, until the window is closed.
    ASSERT_EQ(seen.shown, QStringList({images[1], images[2], images[0], images[1]}))
        << seen.shown.join(", ").toStdString();
    // Never before the mark, and well inside a second after it (the bounds
    // leave room for a loaded machine that wakes late).
    EXPECT_GE(seen.at[1], released);
    EXPECT_LT(seen.at[1], released + 500);
    for (int i = 2; i < 4; ++i) {
        EXPECT_GE(seen.at[i] - seen.at[i - 1], 1000) << "slide " << i;
        EXPECT_LT(seen.at[i] - seen.at[i - 1], 1500) << "slide " << i;
    }
    // The show ends as its window closes, not at its next slide.
    EXPECT_LT(ended - closed, 300);
    EXPECT_FALSE(seen.tabs_enabled_seen);
    EXPECT_TRUE(wb.tabs_enabled);
    EXPECT_FALSE(home.app.slide_show_paused);
}

TEST_F(SlidesFixture, TheLastTrackWrapsToTheTopAndStopOrTheEndOfAShowEndsIt) {
    if (!add_tones(2)) {
        GTEST_SKIP() << "no tone was made at build time (sox, lame)";
    }
    music()->setCurrentRow(1);
    play->click();
    if (device().length() <= 0 || !QTest::qWaitFor([&] { return device().position() > 0; }, 3000)) {
        GTEST_SKIP() << "the tone does not play here: " << home.ui.status().toStdString();
    }
    EXPECT_EQ(play->text(), "Stop Music");
    const qint64 length = device().length();
    EXPECT_NEAR(length, 1500, 100);
    EXPECT_EQ(tab->music().length_label(), QString::number(length));
    EXPECT_TRUE(tab->music().mci_timer().isActive());
    // The timer finds the end and starts row 0 again from its beginning, seen
    // inside the track, not at its end: a loaded machine may look late.
    ASSERT_TRUE(QTest::qWaitFor([&] { return music()->currentRow() == 0; }, 4000));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return device().position() > 0 && device().position() < length; }, 2000));

    play->click();
    EXPECT_EQ(play->text(), "Play Music");
    EXPECT_EQ(tab->music().length_label(), "0");
    EXPECT_EQ(device().length(), -1);
    music()->clearSelection();
    play->click();
    EXPECT_EQ(play->text(), "Play Music");

    // A show plays its music from the top and stops it at its end.
    files()->clear();
    files()->addItem(images[0]);
    delay()->setText("1");
    QString caption;
    int row = -1;
    QTimer::singleShot(500, [&] {
        caption = play->text();
        row = music()->currentRow();
    });
    click("b_slides_start_show");
    EXPECT_EQ(caption, "Stop Music");
    EXPECT_EQ(row, 0);
    EXPECT_EQ(play->text(), "Play Music");
    EXPECT_EQ(device().length(), -1);
}

TEST_F(SlidesFixture, AFileThatCannotPlayIsToldOnceAndPassedOver) {
    if (!add_tones(1)) {
        GTEST_SKIP() << "no tone was made at build time (sox, lame)";
    }
    const QString bad = home.write_file("not music.mp3", "plain text, not a sound");
    music()->insertItem(0, bad);
    music()->setCurrentRow(0);
    play->click();
    EXPECT_EQ(home.ui.statuses.filter("Cannot play " + bad + ": ").size(), 1);
    EXPECT_EQ(device().length(), -1);
    // The next beat finds no track and moves to the next row, which plays;
    // back at the bad file after the tone there is no second message.
    EXPECT_TRUE(QTest::qWaitFor([&] { return music()->currentRow() == 1; }, 3000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return music()->currentRow() == 0; }, 4000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return music()->currentRow() == 1; }, 3000));
    EXPECT_EQ(home.ui.statuses.filter("Cannot play ").size(), 1)
        << home.ui.statuses.join("\n").toStdString();

    // The device tells its caller as well: a file that will not play, or is gone, opens as false.
    QStringList told;
    QtMusicDevice own([&](const QString& path, const QString&) { told << path; });
    EXPECT_FALSE(own.open(bad, "x"));
    EXPECT_FALSE(own.open(home.path("gone.mp3"), "x"));
    EXPECT_EQ(told, QStringList({bad, home.path("gone.mp3")}));
}
