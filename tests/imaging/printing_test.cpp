#include "imaging/image_samples.h"
#include "imaging/image_view.h"
#include "imaging/print_device.h"
#include "imaging/print_layout.h"
#include "imaging/printing_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGroupBox>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace {

// Well apart from each other and from the white page.
const QColor kColours[] = {Qt::red,     Qt::green,           Qt::blue,
                           Qt::black,   QColor(255, 200, 0), Qt::cyan,
                           Qt::magenta, QColor(120, 60, 0),  QColor(140, 140, 140)};

// The PDF printer at Draft quality draws at this many pixels to the inch.
constexpr int kDraftDpi = 150;

struct Box {
    int left = 1 << 30, top = 1 << 30, right = -1, bottom = -1;
    bool found() const { return right >= 0; }
    int width() const { return right - left + 1; }
    int height() const { return bottom - top + 1; }
};

// Each picture's bounding box on a rendered page, found by its colour.
std::vector<Box> boxes_of(const QImage& page, int colours) {
    std::vector<Box> out(colours);
    for (int y = 0; y < page.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(page.constScanLine(y));
        for (int x = 0; x < page.width(); ++x) {
            for (int c = 0; c < colours; ++c) {
                if (near_colour(line[x], kColours[c].rgb(), 30)) {
                    Box& b = out[c];
                    b.left = std::min(b.left, x);
                    b.top = std::min(b.top, y);
                    b.right = std::max(b.right, x);
                    b.bottom = std::max(b.bottom, y);
                    break;
                }
            }
        }
    }
    return out;
}

// The first page of a PDF as pdftoppm renders it at the printer's resolution,
// so that one rendered pixel is one printer pixel.
QImage render_pdf(const QString& pdf) {
    const QString prefix = pdf + QStringLiteral(".render");
    QProcess p;
    p.start(QStringLiteral("pdftoppm"),
            {"-r", QString::number(kDraftDpi), "-png", "-singlefile", pdf, prefix});
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
        T* p = wb.find<T>(QLatin1String(name));
        EXPECT_NE(p, nullptr) << name;
        return p;
    }
    // Solid pictures of the sample colours, `w` x `h`, on the main list.
    QStringList add_pictures(int n, int width, int height) {
        QStringList paths;
        for (int i = 0; i < n; ++i) {
            QImage img(width, height, QImage::Format_RGB32);
            img.fill(kColours[i]);
            const QString p = home.path(QString("pics/p%1.png").arg(i));
            QDir().mkpath(QFileInfo(p).absolutePath());
            img.save(p);
            home.app.main_list.add(p);
            paths << p;
        }
        return paths;
    }
    void choose(const QString& layout, bool landscape, bool max_size = true) {
        auto& s = home.app.settings;
        s.write("Printing", "Printer", kPdfPrinterName);
        s.write("Printing", "Page Layout", layout);
        s.write("Printing", "Print Orientation", landscape ? "Landscape" : "Portrait");
        s.write("Printing", "Print Quality", "Draft");
        s.write("Printing", "Maximum Size", max_size ? "Yes" : "No");
        s.write("Printing", "Selected Files", "No");
        wb.enter("Printing");
    }
    void print() {
        home.dialogs.clear();
        w<QPushButton>("b_printing_print_now")->click();
    }
    QStringList pdfs() const { return QDir(home.path("out")).entryList(QDir::Files, QDir::Name); }
    TestHome home;
    TestWorkbench wb{home};
    PrintingTab* tab = nullptr;
};

bool have_pdftoppm() {
    return !QStandardPaths::findExecutable(QStringLiteral("pdftoppm")).isEmpty();
}

}  // namespace

// Each layout prints one picture more than a page holds: the first document
// has a full page with every picture in its own cell, as large as the cell
// allows and turned to its shape; the second holds the one left, in the first cell.
TEST_F(PrintingFixture, EachLayoutPlacesItsPicturesInTheGridAndEndsEveryPageAsADocument) {
    if (!have_pdftoppm()) {
        GTEST_SKIP() << "pdftoppm (poppler-utils) is not installed";
    }
    // Cells stand in `cols` columns from x0 and `rows` rows from y0, each
    // (sw/cols - cw_less) by (sh/rows - ch_less) printer pixels.
    struct Row {
        const char* layout;
        bool landscape;
        bool tall;  // the cell's style is "vertical": pictures stand upright
        double x0, y0;
        int cols, rows;
        double cw_less, ch_less;
    };
    const Row rows[] = {
        {"1 image/page", false, true, 10, 80, 1, 1, 0, 0},
        {"1 image/page", true, false, 10, 80, 1, 1, 0, 0},
        {"2 images/page", false, false, 10, 50, 1, 2, 0, 30},
        {"2 images/page", true, true, 10, 50, 2, 1, 20, 0},
        {"4 images/page", false, true, 10, 50, 2, 2, 20, 30},
        {"4 images/page", true, false, 5, 50, 2, 2, 20, 30},
        {"8 images/page", false, false, 5, 35, 2, 4, 20, 30},
        {"8 images/page", true, true, 5, 50, 4, 2, 20, 30},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.layout) + (row.landscape ? " landscape" : " portrait"));
        home.app.main_list.clear();
        for (const QString& f : pdfs()) {
            QFile::remove(home.path("out/" + f));
        }
        // Wide pictures: in an upright cell each one turns a quarter.
        const int n = row.cols * row.rows;
        add_pictures(n + 1, 90, 60);
        choose(row.layout, row.landscape);
        const QString name = home.path("out/sheet.pdf");
        home.dialogs.answer_file(name);
        print();
        ASSERT_EQ(pdfs(), QStringList({"sheet-2.pdf", "sheet.pdf"}));
        EXPECT_FALSE(w<ImageView>("o_printing_image_view")->isHidden());  // shown again after

        const QImage first = render_pdf(name);
        const QImage second = render_pdf(home.path("out/sheet-2.pdf"));
        ASSERT_FALSE(first.isNull());
        ASSERT_FALSE(second.isNull());
        EXPECT_EQ(row.landscape, first.width() > first.height());
        const double sw = first.width();
        const double sh = first.height();
        const double cw = sw / row.cols - row.cw_less;
        const double ch = sh / row.rows - row.ch_less;
        std::vector<QPointF> cells;
        for (int r = 0; r < row.rows; ++r) {
            for (int c = 0; c < row.cols; ++c) {
                cells.push_back({row.x0 + c * sw / row.cols, row.y0 + r * sh / row.rows});
            }
        }
        const std::vector<Box> on_first = boxes_of(first, n + 1);
        const std::vector<Box> on_second = boxes_of(second, n + 1);
        for (int i = 0; i <= n; ++i) {
            SCOPED_TRACE(i);
            const bool on_page_one = i < n;
            const Box& b = on_page_one ? on_first[i] : on_second[i];
            EXPECT_FALSE((on_page_one ? on_second[i] : on_first[i]).found());
            ASSERT_TRUE(b.found());
            const QPointF cell = cells[on_page_one ? i : 0];
            // Drawn from the cell's top left corner, and within the cell.
            EXPECT_NEAR(b.left, cell.x(), 3);
            EXPECT_NEAR(b.top, cell.y(), 3);
            EXPECT_LE(b.width(), cw + 3);
            EXPECT_LE(b.height(), ch + 3);
            EXPECT_EQ(row.tall, b.height() > b.width());
            // As large as the zoom's twentieths allow: one more step overflows.
            // Cells that reach past the sheet (a full-height cell started 80
            // down) are cut by its edge.
            const bool cut = b.bottom >= sh - 3 || b.right >= sw - 3;
            const int long_side = std::max(b.width(), b.height());
            const int short_side = std::min(b.width(), b.height());
            const double step = 90 * 0.05;
            const double room_long = row.tall ? ch : cw;
            const double room_short = row.tall ? cw : ch;
            EXPECT_TRUE(cut || long_side + step + 3 >= room_long ||
                        short_side + step * 2 / 3 + 3 >= room_short)
                << b.width() << " x " << b.height() << " in " << cw << " x " << ch;
        }
    }
}

TEST_F(PrintingFixture, EnteringFillsTheTabAndEachControlStoresItsSettingAtOnce) {
    add_pictures(2, 40, 30);
    home.app.main_list.add(home.write_file("pics/notes.txt"));
    auto& s = home.app.settings;
    s.write("Printing", "Page Layout", "4 images/page");
    s.write("Printing", "Print Orientation", "Landscape");
    s.write("Printing", "Print Quality", "High");
    s.write("Printing", "Selected Files", "yes");
    wb.enter("Printing");
    EXPECT_EQ(tab->files().count(), 2);
    EXPECT_EQ(w<QGroupBox>("f_printing")->title(), "File Count: 2");
    EXPECT_EQ(w<QComboBox>("o_printing_layout")->currentText(), "4 images/page");
    EXPECT_EQ(w<QComboBox>("o_printing_layout")->count(), 4);
    EXPECT_EQ(w<QComboBox>("o_printer_print_quality")->currentText(), "High");
    EXPECT_TRUE(w<QRadioButton>("o_printing_orientation_1")->isChecked());
    EXPECT_TRUE(w<QCheckBox>("o_printing_print_selected_files")->isChecked());
    // An empty Maximum Size means yes.
    EXPECT_TRUE(w<QCheckBox>("o_printing_use_max_size")->isChecked());
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
    tab->resize(627, 370);
    grab_if_asked(*tab, "printing_entered");

    w<QRadioButton>("o_printing_orientation_0")->click();
    w<QCheckBox>("o_printing_use_max_size")->click();
    w<QComboBox>("o_printing_layout")->setCurrentIndex(1);
    // A typed name that no printer has is stored and changes no printer.
    const QString before = tab->current_printer();
    printer->setEditText("no such printer");
    EXPECT_EQ(s.read("Printing", "Printer"), "no such printer");
    EXPECT_EQ(tab->current_printer(), before);
    printer->setCurrentIndex(printer->count() - 1);
    printer->setEditText(printer->itemText(printer->count() - 1));
    EXPECT_EQ(s.read("Printing", "Print Orientation"), "Portrait");
    EXPECT_EQ(s.read("Printing", "Maximum Size"), "No");
    EXPECT_EQ(s.read("Printing", "Page Layout"), "2 images/page");
    EXPECT_EQ(s.read("Printing", "Printer"), "Print to PDF");
    EXPECT_EQ(tab->current_printer(), "Print to PDF");
}

// Every check runs; the last one that fails is the one shown, and nothing is
// asked of the printer.
TEST_F(PrintingFixture, ValidationShowsOnlyTheLastFailingCheck) {
    struct Case {
        bool pictures;
        const char* layout;
        const char* orientation;
        const char* quality;
        bool selected_only;
        const char* message;
    };
    const Case cases[] = {
        {false, "1 image/page", "Portrait", "Draft", false,
         "There are no images to print.  Use the 'Load' tab to add images to the main file list."},
        {false, "", "Portrait", "Draft", false, "You must select a page layout."},
        {false, "", "", "Draft", false, "You must select portrait or landscape."},
        {false, "", "", "", false, "You must select the print quality."},
        {true, "1 image/page", "", "Draft", false, "You must select portrait or landscape."},
        {true, "1 image/page", "Landscape", "Draft", true,
         "There are no images selected to print."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        home.app.main_list.clear();
        if (c.pictures) {
            add_pictures(2, 40, 30);
        }
        auto& s = home.app.settings;
        s.write("Printing", "Page Layout", c.layout);
        s.write("Printing", "Print Quality", c.quality);
        s.write("Printing", "Selected Files", c.selected_only ? "Yes" : "No");
        s.write("Printing", "Printer", kPdfPrinterName);
        w<QRadioButton>("o_printing_orientation_0")->setAutoExclusive(false);
        w<QRadioButton>("o_printing_orientation_0")->setChecked(false);
        w<QRadioButton>("o_printing_orientation_1")->setChecked(false);
        w<QRadioButton>("o_printing_orientation_0")->setAutoExclusive(true);
        s.write("Printing", "Print Orientation", c.orientation);
        wb.enter("Printing");
        print();
        EXPECT_EQ(home.dialogs.messages(), QStringList({c.message}));
        EXPECT_EQ(home.dialogs.asked().size(), 1u);
        EXPECT_TRUE(w<QPushButton>("b_printing_print_now")->isEnabled());
        EXPECT_FALSE(w<QPushButton>("b_printing_cancel_print")->isEnabled());
    }
}

// One name is asked a job; without one nothing is drawn. Cancel is looked at
// after a picture is shown and after it is drawn: the pages already ended
// stay, the open one is killed and leaves no file.
TEST_F(PrintingFixture, TheFileNameIsAskedOnceAndCancelKillsOnlyTheOpenDocument) {
    const QStringList paths = add_pictures(5, 40, 30);
    choose("2 images/page", false);
    print();
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    const auto& asked = home.dialogs.asked().front();
    EXPECT_EQ(asked.kind, "open_file");
    EXPECT_EQ(asked.title, "Print to PDF");
    EXPECT_EQ(asked.file_name, "quilldex.pdf");
    EXPECT_EQ(asked.initial_directory, home.dir());
    EXPECT_TRUE(pdfs().isEmpty());
    EXPECT_TRUE(home.ui.progress.isEmpty());
    EXPECT_TRUE(w<QPushButton>("b_printing_print_now")->isEnabled());
    EXPECT_EQ(home.ui.status(), "");
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
        for (const QString& f : pdfs()) {
            QFile::remove(home.path("out/" + f));
        }
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
    // Progress picture by picture; the list and the viewer are left as they were.
    EXPECT_EQ(home.ui.progress, QStringList({"0/5", "1/5", "2/5", "3/5", "4/5", "5/5", "end"}));
    EXPECT_TRUE(tab->files().selected_rows().isEmpty());
    EXPECT_TRUE(wb.find<ImageView>("o_printing_image_view")->control().file_name().isEmpty());
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
        {100, 100, 20.5, 1000, false, 0.2},  // the walk reaches 0.2 exactly
        {100, 100, 50, 50, false, 0.45},     // "shorter than" is strict
        {1000, 1000, 10, 10, false, 200.0},  // nothing fits: 1000 x 0.2
    };
    for (const Case& c : cases) {
        EXPECT_DOUBLE_EQ(print_zoom(c.width, c.height, c.cw, c.ch, c.max_size), c.zoom)
            << c.width << "x" << c.height << " in " << c.cw << "x" << c.ch;
    }
}
