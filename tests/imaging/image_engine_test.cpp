#include "imaging/image_engine.h"
#include "core/run_error.h"
#include "image_samples.h"
#include "imaging/image_control.h"
#include "imaging/numeric_text.h"
#include "imaging/render_prefetch.h"
#include "imaging/resize_batch.h"
#include "support/cli_run.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

QSize size_of(const QString& path) {
    return QImageReader(path).size();
}

bool is_jpeg(const QString& path) {
    return read_bytes(path).startsWith("\xFF\xD8\xFF");
}

// A home with an output directory and the thumbnail values at their defaults.
struct EngineHome : TestHome {
    EngineHome() {
        QDir().mkpath(out());
        app.thumbnail_dither = "1";
        app.thumbnail_optimize = "No";
        app.thumbnail_quality = "75";
        app.thumbnail_smoothing = "0";
        app.thumbnail_size = "100";
    }
    QString out() const { return path("out"); }
    // Loads the source into the worker, as every caller does.
    QString make(QString source, const QString& kind, const QString& max = "300") {
        app.worker->set_file_name(source);
        make_image_file(ctx, source, out(), kind, max, max);
        return source;
    }
};

}  // namespace

TEST(NumericText, ReadsTheLeadingNumber) {
    const std::pair<const char*, double> texts[] = {
        {" 1 2 0px", 120}, {"-7.5e1x", -75}, {"&H1F", 31}, {"px100", 0}, {"", 0}, {"12e", 12}};
    for (const auto& [text, value] : texts) {
        EXPECT_EQ(val_of_text(text), value) << text;
    }
    EXPECT_EQ(to_int16(2.5), 2);
    EXPECT_EQ(to_int16(-32768), -32768);
    EXPECT_THROW(to_int16(32767.6), RunError);
}

// Thumbnails without prefix get "_tn.jpg" unless the path has it; with the
// prefix "tn_" unless anywhere in the path, then ".jpg"; resize puts ".jpg"
// in place of the last extension of the whole path; no "." adds nothing.
TEST(ImageEngine, NamingRulesSearchTheWholePathCaseSensitively) {
    struct Case {
        const char *source, *dir;
        bool thumbnail, prefix;
        const char* target;
    };
    const Case cases[] = {
        {"/s/a.b.png", "/o/", true, false, "/o/a.b_tn.jpg"},
        {"/s/a.png", "/o/old_tn.jpg.d", true, false, "/o/old_tn.jpg.d/a.png"},
        {"/s/a.JPG", "/o", true, true, "/o/tn_a.jpg"},
        {"/s/Tn_a.png", "/o", true, true, "/o/tn_Tn_a.jpg"},
        {"/s/a.b.png", "/o", false, false, "/o/a.b.jpg"},
        {"/s/noext", "/o", true, false, "/o/noext"},
        {"/s/noext", "/o.d", false, false, "/o.jpg"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(image_target_path(c.source, c.dir, c.thumbnail, c.prefix), c.target)
            << c.source << " in " << c.dir;
    }
}

TEST(ImageEngine, ThumbnailCopiesAtTheSizeShrinksOneAboveAndLeavesTheWorkerAsItWas) {
    EngineHome h;
    // Exactly the size on both sides: a plain copy under its own name and
    // type, the directory joined with an extra "/", `path` stays the source.
    const QString square = h.write_image("src/square.png", 100, 100);
    EXPECT_EQ(h.make(square, "thumbnail"), square);
    EXPECT_EQ(read_bytes(h.out() + "/square.png"), read_bytes(square));
    EXPECT_TRUE(h.ui.statuses.isEmpty());

    const QString t = h.make(h.write_image("src/tall.png", 100, 101), "thumbnail");
    EXPECT_EQ(t, h.out() + "/tall_tn.jpg");
    EXPECT_EQ(size_of(t).height(), 100);
    EXPECT_EQ(h.ui.statuses, QStringList{"Creating " + t});

    // The loaded file and ThumbSize are left as they were; resize goes
    // through ThumbSize 0 and still restores what was there.
    const QString src = h.write_image("src/a.png", 400, 200);
    h.app.worker->set_thumb_size(7);
    EXPECT_EQ(h.make(src, "thumbnail"), h.out() + "/a_tn.jpg");
    EXPECT_EQ(h.app.worker->thumb_size(), 7);
    EXPECT_EQ(h.app.worker->file_name(), src);
    h.make(src, "jpg");
    EXPECT_EQ(h.app.worker->thumb_size(), 7);
    EXPECT_EQ(size_of(h.out() + "/a.jpg"), QSize(300, 150));
    EXPECT_TRUE(h.dialogs.messages().isEmpty());
}

TEST(ImageEngine, ResizeBringsTheLargerSideToTheLimitAndNeverEnlarges) {
    EngineHome h;
    struct Case {
        int w, h;
        const char* max;
        QSize expected;
        int mode;
    };
    const Case cases[] = {
        {600, 400, "300", {300, 200}, 2}, {200, 100, "300", {200, 100}, 1},
        {300, 300, "300", {300, 300}, 3}, {1000, 7, "300", {300, 2}, 2},
        {123, 457, "100", {27, 100}, 3},
    };
    for (const Case& c : cases) {
        const QString src = h.write_image(QString("src/r%1x%2.png").arg(c.w).arg(c.h), c.w, c.h);
        EXPECT_EQ(size_of(h.make(src, "resize", c.max)), c.expected) << c.w << "x" << c.h;
        EXPECT_EQ(h.app.worker->view_mode(), c.mode);
    }
}

TEST(ImageEngine, FailuresBeforeAndAfterTheSmallImageTest) {
    EngineHome h;
    // A failed save into a directory that is not there: plain box, pointer
    // back, ThumbSize left at the thumbnail size, `path` still the source.
    const QString src = h.write_image("src/a.png", 400, 300);
    h.app.worker->set_file_name(src);
    h.app.worker->set_thumb_size(3);
    h.ui.set_busy(true);
    QString p = src;
    make_image_file(h.ctx, p, h.path("missing"), "thumbnail", "", "");
    EXPECT_EQ(p, src);
    ASSERT_EQ(h.dialogs.asked().size(), 1u);
    EXPECT_EQ(h.dialogs.asked()[0].icon, Dialogs::Icon::None);
    EXPECT_FALSE(h.ui.busy());
    EXPECT_EQ(h.app.worker->thumb_size(), 100);
}

TEST(ImageEngine, SettingsAreAppliedInOrderBeforeTheOldTargetIsDeleted) {
    EngineHome h;
    const QString src = h.write_image("src/a.png", 400, 300);
    const QString old = h.write_file("out/a_tn.jpg", "old thumbnail");
    h.app.thumbnail_quality = "42";
    h.app.thumbnail_smoothing = "9";
    h.app.thumbnail_dither = "2";
    h.app.thumbnail_optimize = "Yes";
    h.app.thumbnail_3d = false;
    h.app.thumbnail_background_color = "255";
    h.app.thumbnail_size = "-40000";  // no copy, but fails as the thumbnail size is set
    h.app.worker->set_thumb_size(5);
    h.make(src, "thumbnail");
    // The settings before the thumbnail size took effect; the old file was
    // not reached, and the size is unchanged.
    EXPECT_EQ(h.app.worker->quality(), 42);
    EXPECT_EQ(h.app.worker->smoothing(), 9);
    EXPECT_EQ(h.app.worker->dither(), 2);
    EXPECT_TRUE(h.app.worker->optimize());
    EXPECT_EQ(h.app.worker->appearance(), 1);
    EXPECT_EQ(h.app.worker->back_color(), "255");
    EXPECT_EQ(h.app.worker->thumb_size(), 5);
    EXPECT_EQ(read_bytes(old), "old thumbnail");
    EXPECT_EQ(h.dialogs.messages(), QStringList{"Overflow"});

    // Optimize is on for exactly "Yes"; the 3D flag gives Appearance 0; an
    // empty background colour leaves the one in force.
    h.app.thumbnail_size = "100";
    h.app.thumbnail_optimize = "True";
    h.app.thumbnail_3d = true;
    h.app.thumbnail_background_color = "";
    EXPECT_EQ(h.make(src, "thumbnail"), h.out() + "/a_tn.jpg");
    EXPECT_FALSE(h.app.worker->optimize());
    EXPECT_EQ(h.app.worker->appearance(), 0);
    EXPECT_EQ(h.app.worker->back_color(), "255");
    EXPECT_TRUE(is_jpeg(old));
}

// Working ahead on other threads gives what a plain loop gives. The sources:
// JPEGs of several shapes, a small PNG, a missing file, and a JPEG whose
// header is whole but whose data is cut short.
TEST(ResizeBatch, WorkingAheadChangesNothingThatCanBeSeen) {
    EngineHome h;
    RecordingUi stepping;
    Context run_ctx{h.app, h.dialogs, stepping, h.shell};
    QStringList sources;
    for (int i = 0; i < 6; ++i) {
        QImage img = halves_picture(300 + 70 * i, 200 + 45 * (5 - i));
        img.setPixel(i, i, qRgb(0, 255, 0));
        sources << write_bytes(h.path(QString("src/p%1.jpg").arg(i)), encoded(img, "JPEG", 92));
    }
    const QByteArray whole = encoded(halves_picture(640, 480), "JPEG", 92);
    sources.insert(2, h.write_image("src/small.png", 60, 40));
    sources.insert(4, h.path("src/gone.jpg"));
    sources.insert(5, write_bytes(h.path("src/cut.jpg"), whole.left(whole.size() * 2 / 3)));
    for (bool resize : {false, true}) {
        SCOPED_TRACE(resize ? "resize" : "thumbnail");
        auto run = [&](int threads) {
            stepping.statuses.clear();
            h.dialogs.clear();
            ResizeRun r;
            r.paths = sources;
            r.target_directory = h.path(QString("out/%1%2").arg(resize).arg(threads));
            r.resize = resize;
            r.size = resize ? "150" : "100";
            r.threads = threads;
            QDir().mkpath(r.target_directory);
            const ResizeOutcome outcome = run_resize_batch(run_ctx, r);
            EXPECT_EQ(outcome.failed, 1);  // the damaged one; the missing one says nothing
            EXPECT_EQ(outcome.written.size(), 7);
            QStringList seen = stepping.statuses.replaceInStrings(r.target_directory, "out");
            seen << h.dialogs.messages();
            for (const QString& f : QDir(r.target_directory).entryList(QDir::Files, QDir::Name)) {
                seen << f + " " + QString::number(qHash(read_bytes(r.target_directory + "/" + f)));
            }
            return seen;
        };
        const QStringList alone = run(1);
        EXPECT_EQ(run(3), alone);
        EXPECT_EQ(alone.filter("Cannot read " + h.path("src/cut.jpg")).size(), 1);
        // The small PNG is copied as it is for a thumbnail, resized otherwise.
        EXPECT_EQ(alone.filter(QRegularExpression("^small.png ")).size(), resize ? 0 : 1);
    }
}

// A prepared output goes to the worker once; asked again, the worker encodes its own.
TEST(RenderPrefetch, APreparedOutputIsHandedOverOnce) {
    EngineHome h;
    const QString src =
        write_bytes(h.path("src/p.jpg"), encoded(halves_picture(300, 200), "JPEG", 92));
    const ThumbnailValues values = ThumbnailValues::of(h.app);
    ImageControl own(ImageControl::kWorkerTwips);
    own.set_file_name(src);
    configure_for_save(own, values, true, src);
    const std::optional<RenderKey> key = own.render_key();
    ASSERT_TRUE(key);
    std::optional<EncodedJpeg> first, second;
    // A job its thread has not picked up yet is left to the worker: wait longer each time.
    for (int ms = 20; ms < 6000 && !first; ms *= 4) {
        RenderPrefetcher ahead({{src, true, "", "", values, ""}}, 1, 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
        first = ahead.take(*key);
        second = ahead.take(*key);
    }
    ASSERT_TRUE(first) << "the prefetch thread never started its job";
    EXPECT_EQ(first->bytes, own.encoded_jpeg());
    EXPECT_FALSE(second);
}

TEST(Cli, ThumbnailsUseTheSettingsFileAndPrintEachFileWritten) {
    TestHome home;
    const QString a = home.write_image("src/a.png", 400, 300);
    const QString small = home.write_image("src/small.png", 50, 40);
    QDir().mkpath(home.path("out"));
    home.app.settings.write("Current", "Resize Thumbnail Type", "Flat");
    home.app.settings.write("Current", "Thumbnail Background Color", "255");
    home.app.settings.write("Current", "Thumbnail Size", "80");

    CliRun r = run_cli(home.dir(), {"thumbnails", "--target", home.path("out"), a, small});
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_EQ(r.lines, QStringList({home.path("out/a_tn.jpg"), home.path("out/small.png")}));
    // Flat on the red back colour of the settings: the frame above a wide picture is red.
    const QImage t = QImage(home.path("out/a_tn.jpg"));
    ASSERT_EQ(t.size(), QSize(80, 80));
    EXPECT_TRUE(near_colour(t.pixel(40, 2), qRgb(255, 0, 0), 40)) << std::hex << t.pixel(40, 2);

    // A thumbnail frame is held to the pixel limit of a decoded picture:
    // refused at once, where it would have taken 1.6 GB.
    const QString wide =
        write_bytes(home.path("src/wide.png"), encoded(halves_picture(20001, 10), "PNG"));
    r = run_cli(home.dir(), {"thumbnails", "--target", home.path("out"), "--size", "20000", wide});
    EXPECT_EQ(r.code, 1);
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

    r = run_cli(home.dir(), {"resize", "--target", home.path("out"), a});
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(r.err.contains("usage: quilldex-cli [--home DIR] resize --target DIR --max N"));
}
