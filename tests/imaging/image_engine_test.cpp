#include "imaging/image_engine.h"
#include "app/program_state.h"

#include "core/run_error.h"
#include "image_samples.h"
#include "imaging/image_control.h"
#include "imaging/numeric_text.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>

#include <gtest/gtest.h>

namespace {

QSize size_of(const QString& path) {
    return QImageReader(path).size();
}

int larger_side(const QString& path) {
    return std::max(size_of(path).width(), size_of(path).height());
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
    // Loads the source into the worker, as every caller does, then makes the file.
    QString make(QString source, const QString& kind, const QString& max = "300") {
        app.worker->set_file_name(source);
        make_image_file(ctx, source, out(), kind, max, max);
        return source;
    }
};

}  // namespace

TEST(NumericText, ReadsTheLeadingNumber) {
    const std::pair<const char*, double> texts[] = {
        {"100", 100}, {" 1 2 0px", 120}, {"-7.5e1x", -75}, {"&H1F", 31}, {"&o17", 15},
        {"px100", 0}, {"", 0},           {".", 0},         {"12e", 12}};
    for (const auto& [text, value] : texts) {
        EXPECT_EQ(val_of_text(text), value) << text;
    }
    EXPECT_EQ(to_int16(2.5), 2);
    EXPECT_EQ(to_int16(3.5), 4);
    EXPECT_EQ(to_int16(-32768), -32768);
    EXPECT_THROW(to_int16(32767.6), RunError);
    EXPECT_THROW(to_int16(-40000), RunError);
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
        {"/s/a.b.png", "/o", true, false, "/o/a.b_tn.jpg"},
        {"/s/a.png", "/o/", true, false, "/o/a_tn.jpg"},
        {"/s/x_tn.jpg", "/o", true, false, "/o/x_tn.jpg"},
        {"/s/P.JPG", "/o", true, false, "/o/P_tn.jpg"},
        {"/s/a.png", "/o/old_tn.jpg.d", true, false, "/o/old_tn.jpg.d/a.png"},
        {"/s/a.png", "/o", true, true, "/o/tn_a.jpg"},
        {"/s/a.png", "/o/tn_old", true, true, "/o/tn_old/a.jpg"},
        {"/s/a.jpg", "/o", true, true, "/o/tn_a.jpg"},
        {"/s/a.JPG", "/o", true, true, "/o/tn_a.jpg"},
        {"/s/a.png", "/o/x.jpg.d", true, true, "/o/x.jpg.d/tn_a.png"},
        {"/s/Tn_a.png", "/o", true, true, "/o/tn_Tn_a.jpg"},
        {"/s/a.b.png", "/o", false, false, "/o/a.b.jpg"},
        {"/s/a.jpg", "/o", false, true, "/o/a.jpg"},
        {"/s/noext", "/o", false, false, "/o/noext"},
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
    EXPECT_TRUE(is_jpeg(t));
    EXPECT_EQ(larger_side(t), 100);
    EXPECT_EQ(h.ui.statuses, QStringList{"Creating " + t});
    EXPECT_EQ(h.ui.yields, 1);

    // The size comes from the thumbnail value alone, whatever limits are passed.
    h.app.thumbnail_size = "50";
    EXPECT_EQ(larger_side(h.make(h.write_image("src/wide.png", 101, 40), "thumbnail", "7")), 50);
    h.app.thumbnail_size = "100";

    // The loaded file and ThumbSize are left as they were; resize goes
    // through ThumbSize 0 and still restores what was there.
    const QString src = h.write_image("src/a.png", 400, 200);
    const QByteArray before = read_bytes(src);
    h.app.worker->set_thumb_size(7);
    EXPECT_EQ(h.make(src, "thumbnail"), h.out() + "/a_tn.jpg");
    EXPECT_EQ(h.app.worker->thumb_size(), 7);
    EXPECT_EQ(h.app.worker->file_name(), src);
    EXPECT_EQ(read_bytes(src), before);
    h.make(src, "jpg");
    EXPECT_EQ(h.app.worker->thumb_size(), 7);
    EXPECT_EQ(size_of(h.out() + "/a.jpg"), QSize(300, 150));

    // x_tn.jpg keeps its name: made in its own directory it replaces itself,
    // and a second run overwrites the first output.
    const QString own = h.write_image("out/x_tn.jpg", 300, 240);
    EXPECT_EQ(h.make(own, "thumbnail"), own);
    EXPECT_EQ(size_of(own).width(), 100);
    EXPECT_EQ(h.make(own, "thumbnail"), own);
    EXPECT_EQ(larger_side(own), 100);
    EXPECT_TRUE(h.dialogs.messages().isEmpty());
}

TEST(ImageEngine, ResizeBringsTheLargerSideToTheLimitAndNeverEnlarges) {
    EngineHome h;
    struct Case {
        int w, h;
        QString max;
        QSize expected;
        int mode;
    };
    const Case cases[] = {
        {600, 400, "300", {300, 200}, 2}, {400, 600, "300", {200, 300}, 3},
        {200, 100, "300", {200, 100}, 1}, {300, 300, "300", {300, 300}, 3},
        {300, 100, "300", {300, 100}, 2}, {1000, 7, "300", {300, 2}, 2},
        {641, 479, "640", {640, 478}, 2}, {123, 457, "100", {27, 100}, 3},
    };
    int n = 0;
    for (const Case& c : cases) {
        const QString src = h.write_image(QString("src/r%1.png").arg(n++), c.w, c.h);
        const QString out = h.make(src, "resize", c.max);
        SCOPED_TRACE(out.toStdString());
        EXPECT_TRUE(is_jpeg(out));
        EXPECT_EQ(size_of(out), c.expected);
        EXPECT_EQ(h.app.worker->view_mode(), c.mode);
    }
    EXPECT_TRUE(h.dialogs.messages().isEmpty());

    // Through resize_to_directory: its own width and height limits, the
    // last extension of the whole path replaced.
    const QString src = h.write_image("src/photo.gif.png", 500, 1000);
    h.app.worker->set_file_name(src);
    QString p = src;
    resize_to_directory(h.ctx, p, h.out() + "/", "250", "400");
    EXPECT_EQ(p, h.out() + "/photo.gif.jpg");
    EXPECT_EQ(size_of(p), QSize(125, 250));
    EXPECT_EQ(h.app.worker->file_name(), src);
}

TEST(ImageEngine, FailuresBeforeAndAfterTheSmallImageTest) {
    EngineHome h;
    // A missing source is skipped without a word; `path` is trimmed by the
    // existence test, nothing more.
    QString missing = "  " + h.path("src/none.png") + " ";
    make_image_file(h.ctx, missing, h.out(), "thumbnail", "", "");
    EXPECT_EQ(missing, h.path("src/none.png"));
    EXPECT_TRUE(QDir(h.out()).entryList(QDir::Files).isEmpty());

    // A failed copy reaches the caller.
    QString small = h.write_image("src/small.png", 20, 20);
    h.app.worker->set_file_name(small);
    EXPECT_THROW(make_image_file(h.ctx, small, h.path("no/such/dir"), "thumbnail", "", ""),
                 RunError);
    EXPECT_TRUE(h.dialogs.asked().empty());

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
    EXPECT_FALSE(h.dialogs.asked()[0].text.isEmpty());
    EXPECT_FALSE(h.ui.busy());
    EXPECT_EQ(h.app.worker->thumb_size(), 100);

    // A limit with no number is 0: the picture has no size left to save,
    // and the earlier copy was deleted first.
    h.dialogs.clear();
    h.make(src, "resize", "300");
    ASSERT_TRUE(QFile::exists(h.out() + "/a.jpg"));
    EXPECT_EQ(h.make(src, "resize", "big"), src);
    EXPECT_EQ(h.dialogs.messages().size(), 1);
    EXPECT_FALSE(QFile::exists(h.out() + "/a.jpg"));
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

    // Resize leaves Appearance as it is, whatever the 3D flag.
    h.app.worker->set_appearance(1);
    h.make(src, "resize", "300");
    EXPECT_EQ(h.app.worker->appearance(), 1);
}

TEST(ImageEngine, MetafileSourcesTakeTheThumbnailSizeUntilTheResizeLimits) {
    ProgramState program;
    AppState& app = program.app;
    ThumbnailValues v = ThumbnailValues::of(app);
    v.size = "64";
    ImageControl worker(ImageControl::kWorkerTwips);
    EXPECT_EQ(configure_for_save(worker, v, false, "/s/Drawing.WMF"), 0);
    EXPECT_EQ(worker.thumb_size(), 64);
    worker.set_thumb_size(0);
    configure_for_save(worker, v, false, "/s/a.emf.png");
    EXPECT_EQ(worker.thumb_size(), 64);
    worker.set_thumb_size(0);
    configure_for_save(worker, v, false, "/s/a.png");
    EXPECT_EQ(worker.thumb_size(), 0);
    worker.set_thumb_size(64);
    fit_to_limits(worker, "1000", "1000");
    EXPECT_EQ(worker.thumb_size(), 0);
    EXPECT_EQ(worker.view_mode(), 1);
}
