#include "slides/music_device.h"
#include "slides/music_operation.h"
#include "slides/slides_tab.h"
#include "support/test_workbench.h"

#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// The Slides tab with its real music device and a list of copies of the tone
// made at build time (1.5 seconds). Where no sound output can play it, the
// tests are skipped and say why.
struct MusicFixture : ::testing::Test {
    TestHome home;
    TestWorkbench wb{home};
    SlidesTab* tab = nullptr;
    QListWidget* list = nullptr;
    QPushButton* play = nullptr;

    void SetUp() override {
        tab = wb.add_page<SlidesTab>("Slides");
        list = wb.find<QListWidget>("o_slides_music");
        play = wb.find<QPushButton>("b_slides_play");
    }
    // Adds `count` copies of the tone; false when there is no tone to copy.
    bool add_tones(int count) {
        for (int i = 0; i < count; ++i) {
            const QString copy = home.path(QString("tone %1.mp3").arg(i));
            if (!QFile::copy(QStringLiteral(QD_TEST_MP3), copy)) {
                return false;
            }
            list->addItem(copy);
        }
        return true;
    }
    MusicDevice& device() { return *home.app.music_device; }
    // Starts row `row` with the button; the reason when it does not play.
    QString start(int row) {
        list->setCurrentRow(row);
        play->click();
        if (device().length() <= 0) {
            return "the tone does not play here: " + home.ui.status();
        }
        if (!QTest::qWaitFor([&] { return device().position() > 0; }, 3000)) {
            return "the player does not move on this machine: " + home.ui.status();
        }
        return {};
    }
};

#define START_OR_SKIP(row)                                                \
    do {                                                                  \
        if (!add_tones(2)) {                                              \
            GTEST_SKIP() << "no tone was made at build time (sox, lame)"; \
        }                                                                 \
        const QString why = start(row);                                   \
        if (!why.isEmpty()) {                                             \
            GTEST_SKIP() << why.toStdString();                            \
        }                                                                 \
    } while (0)

}  // namespace

TEST_F(MusicFixture, TheEndOfTheLastTrackWrapsToTheTopAndStopEndsIt) {
    START_OR_SKIP(1);
    EXPECT_EQ(play->text(), "Stop Music");
    const qint64 length = device().length();
    EXPECT_NEAR(length, 1500, 100);
    EXPECT_EQ(tab->music().length_label(), QString::number(length));
    EXPECT_TRUE(tab->music().mci_timer().isActive());

    // The timer finds the end and starts row 0 again from its beginning.
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->currentRow() == 0; }, 4000));
    EXPECT_EQ(play->text(), "Stop Music");
    EXPECT_TRUE(QTest::qWaitFor([&] { return device().position() > 0; }, 2000));
    EXPECT_LT(device().position(), length);

    play->click();
    EXPECT_EQ(play->text(), "Play Music");
    EXPECT_FALSE(tab->music().mci_timer().isActive());
    EXPECT_EQ(tab->music().length_label(), "0");
    EXPECT_EQ(device().length(), -1);
    // With nothing selected the button plays nothing.
    list->clearSelection();
    play->click();
    EXPECT_EQ(play->text(), "Play Music");
}

TEST_F(MusicFixture, AResumedTrackPlaysToItsEndAndNoFurther) {
    START_OR_SKIP(0);
    music_operation(home.app, 2);
    EXPECT_FALSE(tab->music().mci_timer().isActive());
    QTest::qWait(300);
    const qint64 held = device().position();
    QTest::qWait(300);
    EXPECT_NEAR(device().position(), held, 50);

    music_operation(home.app, 21);
    ASSERT_TRUE(QTest::qWaitFor([&] { return device().position() >= device().length(); }, 4000));
    QTest::qWait(1500);
    EXPECT_EQ(list->currentRow(), 0);
    EXPECT_EQ(play->text(), "Stop Music");
    EXPECT_FALSE(tab->music().mci_timer().isActive());
}

TEST_F(MusicFixture, AShowPlaysItsMusicFromTheTopAndStopsItAtItsEnd) {
    START_OR_SKIP(1);
    auto* images = wb.find<QListWidget>("o_slides_filelist");
    images->addItem(home.write_image("a.png", 40, 30));
    wb.find<QLineEdit>("o_slides_slide_show_delay")->setText("1");
    QString caption;
    int row = -1;
    QTimer::singleShot(500, [&] {
        caption = play->text();
        row = list->currentRow();
    });
    wb.find<QPushButton>("b_slides_start_show")->click();
    EXPECT_EQ(caption, "Stop Music");
    EXPECT_EQ(row, 0);
    EXPECT_EQ(play->text(), "Play Music");
    EXPECT_EQ(device().length(), -1);
    for (auto* preview : wb.window_widget()->findChildren<QDialog*>()) {
        preview->close();
    }
}

TEST_F(MusicFixture, AFileThatCannotPlayIsToldOnceAndPassedOver) {
    if (!add_tones(1)) {
        GTEST_SKIP() << "no tone was made at build time (sox, lame)";
    }
    const QString bad = home.write_file("not music.mp3", "plain text, not a sound");
    list->insertItem(0, bad);
    list->setCurrentRow(0);
    play->click();
    EXPECT_EQ(home.ui.statuses.filter("Cannot play " + bad + ": ").size(), 1);
    EXPECT_EQ(device().length(), -1);
    // The next beat finds no track and moves to the next row, which plays.
    EXPECT_TRUE(QTest::qWaitFor([&] { return list->currentRow() == 1; }, 3000));
    // Back at the bad file after the tone: no second message.
    EXPECT_TRUE(QTest::qWaitFor([&] { return list->currentRow() == 0; }, 4000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return list->currentRow() == 1; }, 3000));
    EXPECT_EQ(home.ui.statuses.filter("Cannot play ").size(), 1)
        << home.ui.statuses.join("\n").toStdString();
    play->click();
    EXPECT_EQ(play->text(), "Play Music");
}
