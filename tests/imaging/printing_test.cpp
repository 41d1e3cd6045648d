#include "core/item_list.h"
#include "core/run_error.h"
#include "imaging/image_samples.h"
#include "imaging/image_view.h"
#include "imaging/print_device.h"
#include "imaging/print_job.h"
#include "imaging/print_layout.h"
#include "imaging/printing_tab.h"
#include "support/test_workbench.h"

#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <thread>

namespace {

// Well apart from each other and from the white page.
const QColor kColours[] = {Qt::red,     Qt::green,           Qt::blue,
                           Qt::black,   QColor(255, 200, 0), Qt::cyan,
                           Qt::magenta, QColor(120, 60, 0),  QColor(140, 140, 140)};

// Each picture's bounding box on a rendered page, found by its colour.
std::vector<QRect> boxes_of(const QImage& page, int colours) {
    std::vector<QRect> out(colours);
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x) {
            for (int c = 0; c < colours; ++c) {
                if (near_colour(page.pixel(x, y), kColours[c].rgb(), 30)) {
                    out[c] |= QRect(x, y, 1, 1);
                    break;
                }
            }
        }
    }
    return out;
}

// The first page of a PDF as pdftoppm renders it at the resolution the PDF
// printer draws at in Draft quality: one rendered pixel is one printer pixel.
QImage render_pdf(const QString& pdf) {
    const QString prefix = pdf + QStringLiteral(".render");
    QProcess p;
    p.start(QStringLiteral("pdftoppm"), {"-r", "150", "-png", "-singlefile", pdf, prefix});
    if (!p.waitForFinished(60000) || p.exitCode() != 0) {
        return {};
    }
    return QImage(prefix + QStringLiteral(".png")).convertToFormat(QImage::Format_RGB32);
}

struct PrintingFixture : ::testing::Test {
    PrintingFixture() {
        tab = wb.add_page<PrintingTab>("Printing");
        home.app.last_directory = home.dir();
        QDir().mkpath(home.path("out"));
    }
    template <class T>
    T* w(const char* name) {
        return wb.find<T>(QLatin1String(name));
    }
    QStringList add_pictures(int n, int width, int height) {
        QStringList paths;
        for (int i = 0; i < n; ++i) {
            QImage img(width, height, QImage::Format_RGB32);
            img.fill(kColours[i]);
            paths << write_bytes(home.path(QString("pics/p%1.png").arg(i)), encoded(img, "PNG"));
            home.app.main_list.add(paths.last());
        }
        return paths;
    }
    // Enters the tab with these settings, no orientation checked before.
    void choose(const QString& layout, const QString& orientation, const QString& quality = "Draft",
                const QString& selected = "No") {
        const std::pair<const char*, QString> values[] = {{"Printer", kPdfPrinterName},
                                                          {"Page Layout", layout},
                                                          {"Print Orientation", orientation},
                                                          {"Print Quality", quality},
                                                          {"Selected Files", selected}};
        for (const auto& [key, value] : values) {
            home.app.settings.write("Printing", key, value);
        }
        auto* portrait = w<QRadioButton>("o_printing_orientation_0");
        portrait->setAutoExclusive(false);
        portrait->setChecked(false);
        w<QRadioButton>("o_printing_orientation_1")->setChecked(false);
        portrait->setAutoExclusive(true);
        wb.enter("Printing");
    }
    void print() {
        home.dialogs.clear();
        w<QPushButton>("b_printing_print_now")->click();
    }
    QStringList pdfs() const { return QDir(home.path("out")).entryList(QDir::Files, QDir::Name); }
    void remove_pdfs() {
        for (const QString& f : pdfs()) {
            QFile::remove(home.path("out/" + f));
        }
    }
    TestHome home;
    TestWorkbench wb{home};
    PrintingTab* tab = nullptr;
};

// The server's tools live in sbin, which a plain user's PATH may lack.
QString path_of(const char* program) {
    return QStandardPaths::findExecutable(QLatin1String(program), {"/usr/sbin", "/usr/bin"});
}

// A print server of its own for one test: cupsd on a socket in a temporary
// directory that holds all its files, with one cups-pdf queue.
class PrivateCups {
public:
    // Why the server cannot run here (cupsd, the CUPS client tools or
    // printer-driver-cups-pdf missing); "" once it runs with its queue.
    QString start(const QString& queue) {
        const QString d = dir_.path();
        for (const char* sub : {"conf", "spool", "tmp", "cache", "state", "log"}) {
            QDir().mkpath(d + u'/' + QLatin1String(sub));
        }
        // The filters run as the server's own user, which must write here.
        QFile::setPermissions(d + "/tmp", QFileDevice::Permissions(0x7777));
        write_bytes(d + "/conf/cups-files.conf",
                    QStringLiteral("ServerRoot %1/conf\nRequestRoot %1/spool\nTempDir %1/tmp\n"
                                   "CacheDir %1/cache\nStateDir %1/state\n"
                                   "AccessLog %1/log/access_log\nErrorLog %1/log/error_log\n"
                                   "PageLog %1/log/page_log\nPrintcap %1/printcap\n"
                                   "ServerBin /usr/lib/cups\nDataDir /usr/share/cups\n")
                        .arg(d)
                        .toUtf8());
        write_bytes(d + "/conf/cupsd.conf",
                    QStringLiteral("Listen %1\nLogLevel info\nFatalErrors none\n"
                                   "Browsing Off\nWebInterface No\nDefaultAuthType None\n"
                                   "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
                                   "<Policy default>\n  <Limit All>\n    Order deny,allow\n"
                                   "  </Limit>\n</Policy>\n")
                        .arg(server())
                        .toUtf8());
        // The client tools here and the print system's library find it by this.
        qputenv("CUPS_SERVER", server().toLocal8Bit());
        server_.setProcessChannelMode(QProcess::MergedChannels);
        server_.start(path_of("cupsd"),
                      {"-f", "-c", d + "/conf/cupsd.conf", "-s", d + "/conf/cups-files.conf"});
        bool running = false;
        for (int i = 0; i < 50 && !running && server_.waitForStarted(5000); ++i) {
            QThread::msleep(100);
            running = tool("lpstat", {"-r"}).contains(QLatin1String("is running"));
        }
        if (!running) {
            return QStringLiteral("cupsd did not answer: ") + server_.errorString() +
                   QString::fromLocal8Bit(server_.readAll());
        }
        // The queue takes jobs and holds them: what reaches it is counted
        // there, and nothing is written outside this directory.
        const QString added = tool("lpadmin", {"-p", queue, "-E", "-v", "cups-pdf:/", "-P",
                                               "/usr/share/ppd/cups-pdf/CUPS-PDF_opt.ppd"});
        tool("cupsdisable", {queue});
        if (!tool("lpstat", {"-p", queue}).contains(QLatin1String("disabled"))) {
            return QStringLiteral("the queue could not be added: ") + added;
        }
        return {};
    }

    QString server() const { return dir_.path() + QStringLiteral("/cups.sock"); }

    QString tool(const char* program, const QStringList& args) {
        QProcess p;
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(path_of(program), args);
        p.waitForFinished(20000);
        return QString::fromLocal8Bit(p.readAll());
    }

    ~PrivateCups() {
        qunsetenv("CUPS_SERVER");
        server_.kill();
        server_.waitForFinished(5000);
    }

private:
    QTemporaryDir dir_;
    QProcess server_;
};

// The Printing tab's list and viewer without a window: a job run on a thread
// of its own, where the print system's connection starts afresh.
class ListPanel : public PrintPanel {
public:
    explicit ListPanel(const QStringList& paths) { list_.set_items(paths); }
    ItemList& list() override { return list_; }
    ImageControl& viewer() override { return viewer_; }
    void show_row(int row) override {
        passed_over([&] { viewer_.set_file_name(list_.item(row)); });
    }
    void fit_viewer() override {}
    void set_viewer_visible(bool) override {}
    void set_printing(bool) override {}

private:
    ItemList list_;
    ImageControl viewer_;
};

}  // namespace

// Each layout prints one picture more than a page holds: the first document
// has a full page with every picture in its own cell, turned to its shape;
// the second holds the one left, in the first cell.
TEST_F(PrintingFixture, EachLayoutPlacesItsPicturesInTheGridAndEndsEveryPageAsADocument) {
    if (QStandardPaths::findExecutable("pdftoppm").isEmpty()) {
        GTEST_SKIP() << "pdftoppm (poppler-utils) is not installed";
    }
    // Cells stand in `cols` columns from x0 and `rows` rows from y0, each
    // (sw/cols - cw_less) by (sh/rows - ch_less) printer pixels.
    // `tall`: the cell's style is "vertical", pictures stand upright.
    struct Row {
        const char* layout;
        bool landscape, tall;
        int cols, rows;
        double x0, y0, cw_less, ch_less;
    };
    const Row rows[] = {
        {"1 image/page", false, true, 1, 1, 10, 80, 0, 0},
        {"2 images/page", true, true, 2, 1, 10, 50, 20, 0},
        {"4 images/page", false, true, 2, 2, 10, 50, 20, 30},
        {"8 images/page", false, false, 2, 4, 5, 35, 20, 30},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.layout) + (row.landscape ? " landscape" : " portrait"));
        home.app.main_list.clear();
        remove_pdfs();
        // Wide pictures: in an upright cell each one turns a quarter.
        const int n = row.cols * row.rows;
        add_pictures(n + 1, 90, 60);
        choose(row.layout, row.landscape ? "Landscape" : "Portrait");
        const QString name = home.path("out/sheet.pdf");
        home.dialogs.answer_file(name);
        print();
        ASSERT_EQ(pdfs(), QStringList({"sheet-2.pdf", "sheet.pdf"}));
        EXPECT_FALSE(w<ImageView>("o_printing_image_view")->isHidden());  // shown again after

        const QImage first = render_pdf(name);
        const QImage second = render_pdf(home.path("out/sheet-2.pdf"));
        ASSERT_FALSE(first.isNull() || second.isNull());
        EXPECT_EQ(row.landscape, first.width() > first.height());
        const double sw = first.width();
        const double sh = first.height();
        const std::vector<QRect> on_first = boxes_of(first, n + 1);
        const std::vector<QRect> on_second = boxes_of(second, n + 1);
        for (int i = 0; i <= n; ++i) {
            SCOPED_TRACE(i);
            const bool on_page_one = i < n;
            const QRect& b = on_page_one ? on_first[i] : on_second[i];
            EXPECT_TRUE((on_page_one ? on_second[i] : on_first[i]).isNull());
            ASSERT_FALSE(b.isNull());
            // Drawn from the cell's top left corner, and within the cell.
            const int cell = on_page_one ? i : 0;
            EXPECT_NEAR(b.left(), row.x0 + cell % row.cols * sw / row.cols, 3);
            EXPECT_NEAR(b.top(), row.y0 + cell / row.cols * sh / row.rows, 3);
            EXPECT_LE(b.width(), sw / row.cols - row.cw_less + 3);
            EXPECT_LE(b.height(), sh / row.rows - row.ch_less + 3);
            EXPECT_EQ(row.tall, b.height() > b.width());
        }
    }
}

TEST_F(PrintingFixture, EnteringFillsTheTabAndEachControlStoresItsSettingAtOnce) {
    add_pictures(2, 40, 30);
    home.app.main_list.add(home.write_file("pics/notes.txt"));
    auto& s = home.app.settings;
    s.write("Printing", "Page Layout", "4 images/page");
    s.write("Printing", "Print Orientation", "Landscape");
    wb.enter("Printing");
    EXPECT_EQ(w<QGroupBox>("f_printing")->title(), "File Count: 2");
    // The PDF printer is always the last row; with no Printer setting the
    // first row is shown.
    auto* printer = w<QComboBox>("o_printing_printer");
    EXPECT_EQ(printer->itemText(printer->count() - 1), "Print to PDF");
    EXPECT_EQ(printer->currentText(), printer->itemText(0));
    // The narrow boxes show their texts from the start.
    for (const char* narrow :
         {"o_printing_printer", "o_printing_layout", "o_printer_print_quality"}) {
        EXPECT_EQ(w<QComboBox>(narrow)->lineEdit()->cursorPosition(), 0) << narrow;
    }

    w<QRadioButton>("o_printing_orientation_0")->click();
    w<QComboBox>("o_printing_layout")->setCurrentIndex(1);
    printer->setCurrentIndex(printer->count() - 1);
    printer->setEditText(printer->itemText(printer->count() - 1));
    EXPECT_EQ(s.read("Printing", "Print Orientation"), "Portrait");
    EXPECT_EQ(s.read("Printing", "Page Layout"), "2 images/page");
    EXPECT_EQ(tab->current_printer(), "Print to PDF");
}

// Every check runs; the last one that fails is the one shown, and nothing is
// asked of the printer.
TEST_F(PrintingFixture, ValidationShowsOnlyTheLastFailingCheck) {
    struct Case {
        bool pictures;
        const char *layout, *orientation, *quality;
        bool selected_only;
        const char* message;
    };
    const Case cases[] = {
        {false, "1 image/page", "Portrait", "Draft", false,
         "There are no images to print.  Use the 'Load' tab to add images to the main file list."},
        {false, "", "Portrait", "Draft", false, "You must select a page layout."},
        {false, "", "", "Draft", false, "You must select portrait or landscape."},
        {false, "", "", "", false, "You must select the print quality."},
        {true, "1 image/page", "Landscape", "Draft", true,
         "There are no images selected to print."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        home.app.main_list.clear();
        if (c.pictures) {
            add_pictures(2, 40, 30);
        }
        choose(c.layout, c.orientation, c.quality, c.selected_only ? "Yes" : "No");
        print();
        EXPECT_EQ(home.dialogs.messages(), QStringList({c.message}));
        EXPECT_EQ(home.dialogs.asked().size(), 1u);
    }
}

// One name is asked a job; without one nothing is drawn. Cancel is looked at
// after a picture is shown and after it is drawn: the pages already ended
// stay, the open one is killed and leaves no file.
TEST_F(PrintingFixture, TheFileNameIsAskedOnceAndCancelKillsOnlyTheOpenDocument) {
    const QStringList paths = add_pictures(5, 40, 30);
    choose("2 images/page", "Portrait");
    print();
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    const auto& asked = home.dialogs.asked().front();
    EXPECT_EQ(asked.title, "Print to PDF");
    EXPECT_EQ(asked.file_name, "quilldex.pdf");
    EXPECT_EQ(asked.initial_directory, home.dir());
    EXPECT_TRUE(pdfs().isEmpty());
    struct Case {
        int cancel_at_picture;     // 0-based picture shown when Cancel is clicked
        const char* cancel_drawn;  // or the progress once a picture is drawn
        QStringList files;
        const char* last_status;
    };
    const Case cases[] = {
        {4, "", {"job-2.pdf", "job.pdf"}, "Cancelling print job..."},
        {0, "", {}, "Cancelling print job..."},
        {99, "3/5", {"job.pdf"}, "Cancelling print job..."},
        {99, "", {"job-2.pdf", "job-3.pdf", "job.pdf"}, "Printing..."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.cancel_at_picture);
        remove_pdfs();
        home.ui.statuses.clear();
        home.ui.progress.clear();
        home.ui.on_turn = [&](int) {
            if ((c.cancel_at_picture < paths.size() &&
                 home.ui.status() == paths[c.cancel_at_picture]) ||
                home.ui.progress.endsWith(c.cancel_drawn)) {
                w<QPushButton>("b_printing_cancel_print")->click();
            }
        };
        home.dialogs.answer_file(home.path("out/job.pdf"));
        print();
        home.ui.on_turn = nullptr;
        EXPECT_EQ(home.dialogs.asked().size(), 1u);
        EXPECT_EQ(pdfs(), c.files);
        EXPECT_TRUE(home.ui.statuses.contains(c.last_status));
    }
    // Progress picture by picture; the status line is left empty.
    EXPECT_EQ(home.ui.progress, QStringList({"0/5", "1/5", "2/5", "3/5", "4/5", "5/5", "end"}));
    EXPECT_EQ(home.ui.status(), "");
}

// The zoom walks down in steps of 0.05 to 0.2 itself; when nothing fits, the
// last product tried is kept, so such a picture comes out far too large.
TEST(PrintZoom, FindsTheFirstStepThatFitsOrKeepsTheLastProduct) {
    struct Case {
        int width, height;
        double cw, ch;
        bool max_size;
        double zoom;
    };
    const Case cases[] = {
        {200, 100, 150, 150, false, 0.70},   // the wider side decides
        {40, 40, 1000, 1000, false, 1.0},    // never enlarged without the box
        {10, 10, 1000, 1000, true, 99.95},   // grown to one step under the cell
        {100, 100, 50, 50, false, 0.45},     // "shorter than" is strict
        {1000, 1000, 10, 10, false, 200.0},  // nothing fits: 1000 x 0.2
    };
    for (const Case& c : cases) {
        EXPECT_DOUBLE_EQ(print_zoom(c.width, c.height, c.cw, c.ch, c.max_size), c.zoom)
            << c.width << "x" << c.height << " in " << c.cw << "x" << c.ch;
    }
}

// Five pictures at four a page reach a real print queue as two jobs, each
// waiting there as one document.
TEST(CupsPrinting, AFourUpJobOfFivePicturesReachesTheQueueAsTwoDocuments) {
    PrivateCups cups;
    if (const QString why = cups.start(QStringLiteral("quilldex_pdf")); !why.isEmpty()) {
        GTEST_SKIP() << "no print server: " << why.toStdString();
    }
    TestHome home;
    QStringList paths;
    for (int i = 0; i < 5; ++i) {
        paths << home.write_image(QString("pics/p%1.png").arg(i), 60, 40);
    }
    QStringList names;
    PrintOutcome outcome;
    QString error;
    std::thread job([&] {
        try {
            names = printer_names();
            ListPanel panel(paths);
            PrintChoices c{.layout = "4 images/page", .portrait = true, .quality = "Draft"};
            QtPrintDevice device(QStringLiteral("quilldex_pdf"), home.dialogs,
                                 home.app.last_directory);
            outcome = print_images(home.ctx, c, panel, device);
        } catch (const RunError& e) {
            error = e.text();
        }
    });
    job.join();
    EXPECT_EQ(error, "");
    EXPECT_EQ(names, QStringList({"quilldex_pdf", "Print to PDF"}));
    EXPECT_EQ(outcome.printed, 5);
    EXPECT_TRUE(home.dialogs.asked().empty());
    QStringList jobs;
    for (int i = 0; i < 50 && jobs.size() < 2; ++i) {
        jobs = cups.tool("lpstat", {"-o", "quilldex_pdf"}).split(u'\n', Qt::SkipEmptyParts);
        QThread::msleep(100);
    }
    EXPECT_EQ(jobs.size(), 2) << jobs.join(u'\n').toStdString();
}
