#include "imaging/resize_batch.h"
#include "core/run_error.h"
#include "image_samples.h"
#include "imaging/image_decoder.h"
#include "imaging/image_engine.h"
#include "imaging/memory_budget.h"
#include "imaging/render_prefetch.h"
#include "support/cli_run.h"
#include "support/test_home.h"

#include <QDir>
#include <QImageReader>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace {

// Records status texts and runs a step at each turn of the message loop.
// Sources in one directory: JPEGs of several shapes, a small PNG, a missing
// file, and a JPEG whose header is whole but whose data is cut short.
struct BatchHome : TestHome {
    RecordingUi stepping;
    Context run_ctx{app, dialogs, stepping, shell};
    QStringList sources;

    BatchHome() {
        app.thumbnail_dither = "1";
        app.thumbnail_optimize = "No";
        app.thumbnail_quality = "75";
        app.thumbnail_smoothing = "0";
        app.thumbnail_size = "100";
        for (int i = 0; i < 6; ++i) {
            QImage img = halves_picture(300 + 70 * i, 200 + 45 * (5 - i));
            img.setPixel(i, i, qRgb(0, 255, 0));
            sources << write_bytes(path(QString("src/p%1.jpg").arg(i)), encoded(img, "JPEG", 92));
        }
        sources.insert(2, write_image("src/small.png", 60, 40));
        sources.insert(4, path("src/gone.jpg"));
        const QByteArray whole = encoded(halves_picture(640, 480), "JPEG", 92);
        sources.insert(5, write_bytes(path("src/cut.jpg"), whole.left(whole.size() * 2 / 3)));
    }

    struct Result {
        ResizeOutcome outcome;
        QStringList statuses;
        QStringList messages;
        QMap<QString, QByteArray> files;
        QString worker_file;
    };
    Result run(const QString& out, bool resize, int threads, FailureSink failed = {}) {
        stepping.statuses.clear();
        dialogs.clear();
        ResizeRun r;
        r.paths = sources;
        r.target_directory = path(out);
        r.resize = resize;
        r.size = resize ? "150" : "100";
        r.threads = threads;
        r.failed = std::move(failed);
        QDir().mkpath(r.target_directory);
        Result res;
        res.outcome = run_resize_batch(run_ctx, r);
        res.statuses = stepping.statuses;
        res.messages = dialogs.messages();
        for (const QString& f : QDir(r.target_directory).entryList(QDir::Files, QDir::Name)) {
            res.files[f] = read_bytes(r.target_directory + "/" + f);
        }
        res.worker_file = app.worker->file_name();
        return res;
    }
};

}  // namespace

TEST(ResizeBatch, WorkingAheadChangesNothingThatCanBeSeen) {
    for (bool resize : {false, true}) {
        SCOPED_TRACE(resize ? "resize" : "thumbnail");
        BatchHome h;
        const auto alone = h.run(resize ? "r1" : "t1", resize, 1);
        const auto ahead = h.run(resize ? "r2" : "t2", resize, 3);
        EXPECT_EQ(ahead.files, alone.files);
        EXPECT_EQ(ahead.outcome.failed, 1);  // the damaged one; the missing one says nothing
        EXPECT_EQ(ahead.messages.size(), 1);
        EXPECT_TRUE(ahead.messages.value(0).startsWith("Cannot read " + h.path("src/cut.jpg")));
        EXPECT_EQ(ahead.messages, alone.messages);
        QStringList expected_statuses = alone.statuses;
        for (QString& s : expected_statuses) {
            s.replace(resize ? "/r1/" : "/t1/", resize ? "/r2/" : "/t2/");
        }
        EXPECT_EQ(ahead.statuses, expected_statuses);
        EXPECT_EQ(ahead.worker_file, h.sources.last());
        EXPECT_EQ(ahead.outcome.written.size(), 7);
        // The small PNG is copied as it is for a thumbnail, resized otherwise.
        EXPECT_EQ(ahead.files.contains("small.png"), !resize);
        for (const QString& w : ahead.outcome.written) {
            const QSize s = QImageReader(w).size();
            EXPECT_LE(std::max(s.width(), s.height()), resize ? 150 : 100) << w.toStdString();
        }
    }
}

TEST(ResizeBatch, EachFileIsDecodedOnceAndSettingsChangedMidwayAreHonoured) {
    BatchHome h;
    h.sources = h.sources.filter("/p");
    const quint64 before = decoded_picture_count();
    const auto first = h.run("a", false, 2);
    EXPECT_EQ(decoded_picture_count() - before, quint64(h.sources.size()));
    EXPECT_EQ(first.outcome.written.size(), h.sources.size());

    // Quality changes while the third file is on its way: the outputs after
    // it are those of the new quality, as in a plain loop.
    auto with_change = [&](const QString& out, int threads) {
        h.app.thumbnail_quality = "75";
        h.stepping.yields = 0;
        h.stepping.on_turn = [&](int n) {
            if (n == 3) {
                h.app.thumbnail_quality = "10";
            }
        };
        const auto r = h.run(out, false, threads);
        h.stepping.on_turn = nullptr;
        return r;
    };
    const auto plain = with_change("b", 1);
    const auto ahead = with_change("c", 2);
    EXPECT_EQ(ahead.files, plain.files);
    EXPECT_EQ(ahead.files.value("p0_tn.jpg"), first.files.value("p0_tn.jpg"));
    EXPECT_NE(ahead.files.value("p4_tn.jpg"), first.files.value("p4_tn.jpg"));
}

TEST(ResizeBatch, AFileTheWorkerCannotLoadStopsTheTabsRunButNotOneThatGoesOn) {
    BatchHome h;
    h.sources = h.sources.filter("/p");
    const QString words = write_bytes(h.path("src/words.jpg"), "no picture at all");
    h.sources.insert(2, words);
    EXPECT_THROW(h.run("out", false, 2), RunError);
    EXPECT_EQ(QDir(h.path("out")).entryList(QDir::Files).size(), 2);
    // The worker is free of the run: a plain save still works.
    QString p = h.sources[3];
    h.app.worker->set_file_name(p);
    make_image_file(h.run_ctx, p, h.path("out"), "thumbnail", "", "");
    EXPECT_EQ(p, h.path("out/p2_tn.jpg"));

    // Told where failures go, the run passes every one and names it there,
    // in the place of the error box.
    const QByteArray whole = read_bytes(h.sources[0]);
    const QString cut = write_bytes(h.path("src/cut.jpg"), whole.left(whole.size() * 2 / 3));
    h.sources << cut << h.path("src/gone.jpg") << h.sources[0];
    QStringList told;
    const auto r = h.run("kept", false, 2, [&](const QString& path, const QString& reason) {
        told << path + " | " + reason;
    });
    EXPECT_EQ(told, QStringList(
                        {words + " | Cannot read " + words +
                             ": the file is not a picture of a known type.",
                         cut + " | Cannot read " + cut + ": the file is damaged or incomplete.",
                         h.path("src/gone.jpg") + " | File not found: " + h.path("src/gone.jpg")}));
    EXPECT_TRUE(r.messages.isEmpty());
    EXPECT_EQ(r.outcome.failed, 3);
    EXPECT_EQ(r.outcome.written.size(), 7);  // the six pictures, the first twice
    EXPECT_EQ(r.files.size(), 6);
}

// A prepared output goes to the worker once; asked again, the worker encodes its own.
TEST(RenderPrefetch, APreparedOutputIsHandedOverOnce) {
    BatchHome h;
    const ThumbnailValues values = ThumbnailValues::of(h.app);
    ImageControl own(ImageControl::kWorkerTwips);
    own.set_file_name(h.sources[0]);
    configure_for_save(own, values, true, h.sources[0]);
    const std::optional<RenderKey> key = own.render_key();
    ASSERT_TRUE(key);
    std::optional<EncodedJpeg> first, second;
    // A job its thread has not picked up yet is left to the worker: wait longer each time.
    for (int ms = 20; ms < 6000 && !first; ms *= 4) {
        RenderPrefetcher ahead({{h.sources[0], true, "", "", values, ""}}, 1, 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
        first = ahead.take(*key);
        second = ahead.take(*key);
    }
    ASSERT_TRUE(first) << "the prefetch thread never started its job";
    EXPECT_EQ(first->bytes, own.encoded_jpeg());
    EXPECT_FALSE(second);
}

TEST(MemoryBudget, ARequestThatDoesNotFitWaitsForTheHoldersInTurn) {
    MemoryBudget budget(100);
    std::atomic<int> served{0};
    auto ask = [&](qint64 bytes, MemoryBudget::Hold& into) {
        return std::thread([&, bytes] {
            into = budget.acquire(bytes);
            ++served;
        });
    };
    auto settle = [] { std::this_thread::sleep_for(std::chrono::milliseconds(60)); };

    MemoryBudget::Hold first = budget.acquire(80);
    MemoryBudget::Hold second, third, fourth;
    std::thread t2 = ask(50, second);
    settle();
    EXPECT_EQ(served, 0);  // 80 + 50 is over the budget
    first = MemoryBudget::Hold();
    t2.join();
    EXPECT_EQ(budget.held(), 50);

    // Larger than the whole budget: it waits until nothing is held, and a
    // small request behind it waits its turn rather than passing it.
    std::thread t3 = ask(250, third);
    settle();
    std::thread t4 = ask(10, fourth);
    settle();
    EXPECT_EQ(served, 1);
    second = MemoryBudget::Hold();
    t3.join();
    EXPECT_EQ(budget.held(), 250);
    settle();
    EXPECT_EQ(served, 2);
    third = MemoryBudget::Hold();
    t4.join();
    EXPECT_EQ(budget.held(), 10);
}

TEST(Cli, ThumbnailsUseTheSettingsFileAndPrintEachFileWritten) {
    TestHome home;
    const QString a = home.write_image("src/a.png", 400, 300);
    const QString b = home.write_image("src/b.jpg", 200, 500);
    const QString small = home.write_image("src/small.png", 50, 40);
    QDir().mkpath(home.path("out"));
    home.app.settings.write("Current", "Resize Thumbnail Type", "Flat");
    home.app.settings.write("Current", "Thumbnail Background Color", "255");
    home.app.settings.write("Current", "Thumbnail Size", "80");

    CliRun r = run_cli(home.dir(), {"thumbnails", "--target", home.path("out"), a, b, small});
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_EQ(r.lines, QStringList({home.path("out/a_tn.jpg"), home.path("out/b_tn.jpg"),
                                    home.path("out/small.png")}));
    EXPECT_EQ(QImageReader(home.path("out/a_tn.jpg")).size(), QSize(80, 80));
    // Flat on the red back colour of the settings: the frame above a wide picture is red.
    const QImage t = QImage(home.path("out/a_tn.jpg"));
    EXPECT_TRUE(near_colour(t.pixel(40, 2), qRgb(255, 0, 0), 40)) << std::hex << t.pixel(40, 2);

    r = run_cli(home.dir(),
                {"thumbnails", "--target", home.path("out"), "--size", "60", "--prefix", a});
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_EQ(r.lines, QStringList{home.path("out/tn_a.jpg")});
    EXPECT_EQ(QImageReader(home.path("out/tn_a.jpg")).size(), QSize(60, 60));

    // A thumbnail frame is held to the pixel limit of a decoded picture:
    // refused at once, where it would have taken 1.6 GB.
    const QString wide =
        write_bytes(home.path("src/wide.png"), encoded(halves_picture(20001, 10), "PNG"));
    r = run_cli(home.dir(), {"thumbnails", "--target", home.path("out"), "--size", "20000", wide});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.lines.isEmpty());
    EXPECT_TRUE(r.err.contains("Cannot make a thumbnail of 20000 x 20000 pixels of " + wide +
                               ": no picture may have more than 100000000 pixels.\n1 file failed"))
        << r.err.toStdString();
}

// A batch goes on past the files it cannot read, names each and counts them.
TEST(Cli, ResizeAndItsFailures) {
    TestHome home;
    const QString a = home.write_image("src/a.png", 640, 480);
    const QString b = home.write_image("src/b.png", 200, 300);
    const QByteArray whole = read_bytes(home.write_image("src/whole.jpg", 300, 300));
    const QString cut = write_bytes(home.path("src/cut.jpg"), whole.left(whole.size() / 2));
    const QString garbage = home.write_file("src/garbage.jpg", "no picture");
    const QString missing = home.path("src/missing.png");
    QDir().mkpath(home.path("out"));
    CliRun r = run_cli(home.dir(), {"resize", "--target", home.path("out"), "--max", "320", a,
                                    missing, cut, b, garbage});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.lines, QStringList({home.path("out/a.jpg"), home.path("out/b.jpg")}));
    EXPECT_EQ(QImageReader(home.path("out/a.jpg")).size(), QSize(320, 240));
    EXPECT_EQ(QImageReader(home.path("out/b.jpg")).size(), QSize(200, 300));
    const QStringList err =
        r.err.split('\n', Qt::SkipEmptyParts).filter(QRegularExpression("failed|Cannot|not found"));
    EXPECT_EQ(
        err, QStringList({"File not found: " + missing,
                          "Cannot read " + cut + ": the file is damaged or incomplete.",
                          "Cannot read " + garbage + ": the file is not a picture of a known type.",
                          "3 files failed"}))
        << r.err.toStdString();
    EXPECT_TRUE(r.err.endsWith("\n3 files failed\n")) << r.err.toStdString();

    r = run_cli(home.dir(), {"resize", "--target", home.path("nowhere"), "--max", "320", a});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.err.contains("does not exist"));
    r = run_cli(home.dir(), {"resize", "--target", home.path("out"), a});
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(r.err.contains("usage: quilldex-cli [--home DIR] resize --target DIR --max N"));
}
