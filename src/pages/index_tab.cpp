#include "pages/index_tab.h"

#include "imaging/resize_tab.h"
#include "pages/index_run.h"
#include "pages/template_lists.h"
#include "ui_index_tab.h"

#include <array>

namespace {

const QString kIndex = QStringLiteral("Index");

// The option button of a group that is on, or kNotSet.
int checked_row(std::initializer_list<const QAbstractButton*> rows) {
    int i = 0;
    for (const QAbstractButton* b : rows) {
        if (b->isChecked()) {
            return i;
        }
        ++i;
    }
    return index_choice::kNotSet;
}

}  // namespace

IndexTab::IndexTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::IndexTab) {
    ui_->setupUi(this);
    connect_settings();
    connect(ui_->b_index_create, &QPushButton::clicked, this, &IndexTab::create);
    connect(ui_->b_index_select_target_directory, &QPushButton::clicked, this, [this] {
        const Dialogs::DirectoryChoice choice =
            ctx().dialogs.choose_directory(app().last_directory);
        ui_->o_index_target_directory->setText(choice.path);
    });
}

IndexTab::~IndexTab() = default;

void IndexTab::connect_settings() {
    ProfileFile& settings = app().settings;
    const auto store = [&settings](const char* key) {
        return [&settings, key](const QString& text) {
            settings.write(kIndex, QLatin1String(key), text);
        };
    };
    // A template box stores the row chosen in it; emptying or refilling the
    // box chooses none and stores nothing.
    struct Box {
        QComboBox* box;
        const char* key;
    };
    for (const Box& b :
         {Box{ui_->o_index_no_frame, "No Frame"}, Box{ui_->o_index_top_frame, "Top Frame"},
          Box{ui_->o_index_left_frame, "Left Frame"},
          Box{ui_->o_index_right_frame, "Right Frame"}}) {
        connect(b.box, &QComboBox::currentIndexChanged, this,
                [box = b.box, write = store(b.key)](int row) {
                    if (row >= 0) {
                        write(box->currentText());
                    }
                });
    }
    connect(ui_->o_index_file_name, &QLineEdit::textChanged, this, store("Index File Name"));
    connect(ui_->o_index_top_frame_file_name, &QLineEdit::textChanged, this,
            store("Top Frame File Name"));
    connect(ui_->o_index_left_frame_file_name, &QLineEdit::textChanged, this,
            store("Left Frame File Name"));
    connect(ui_->o_index_right_frame_file_name, &QLineEdit::textChanged, this,
            store("Right Frame File Name"));
    connect(ui_->o_index_target_directory, &QLineEdit::textChanged, this,
            store("Target Directory"));

    const std::array<QRadioButton*, 3> frames = {
        ui_->o_index_frame_type_0, ui_->o_index_frame_type_1, ui_->o_index_frame_type_2};
    for (int i = 0; i < 3; ++i) {
        connect(frames[i], &QRadioButton::toggled, this, [&settings, i](bool on) {
            if (on) {
                settings.write(kIndex, QStringLiteral("Frame Type"), frame_type_setting(i));
            }
        });
    }
    const std::array<QRadioButton*, 2> types = {ui_->o_index_type_0, ui_->o_index_type_1};
    for (int i = 0; i < 2; ++i) {
        connect(types[i], &QRadioButton::toggled, this, [&settings, i](bool on) {
            if (on) {
                settings.write(kIndex, QStringLiteral("Index Type"), index_type_setting(i));
            }
        });
    }
    connect(ui_->o_index_new_browser, &QCheckBox::toggled, this, [&settings](bool on) {
        settings.write(kIndex, QStringLiteral("New Browser"),
                       on ? QStringLiteral("Yes") : QStringLiteral("No"));
    });
}

void IndexTab::enter() {
    fill_template_lists(wb_);
    restore();
}

void IndexTab::restore() {
    const ProfileFile& s = app().settings;
    const auto read = [&s](const char* key) { return s.read(kIndex, QLatin1String(key)); };

    struct Box {
        QComboBox* box;
        const char* key;
    };
    for (const Box& b :
         {Box{ui_->o_index_top_frame, "Top Frame"}, Box{ui_->o_index_left_frame, "Left Frame"},
          Box{ui_->o_index_right_frame, "Right Frame"}, Box{ui_->o_index_no_frame, "No Frame"}}) {
        const QString name = read(b.key);
        if (name.isEmpty()) {
            b.box->setCurrentIndex(-1);
            continue;
        }
        const int row = b.box->findText(name, Qt::MatchExactly | Qt::MatchCaseSensitive);
        if (row >= 0) {
            b.box->setCurrentIndex(row);
        }
    }

    struct Name {
        QLineEdit* box;
        const char* key;
        const char* fallback;
    };
    for (const Name& n :
         {Name{ui_->o_index_top_frame_file_name, "Top Frame File Name", "top.htm"},
          Name{ui_->o_index_left_frame_file_name, "Left Frame File Name", "toc.htm"},
          Name{ui_->o_index_right_frame_file_name, "Right Frame File Name", "main.htm"},
          Name{ui_->o_index_file_name, "Index File Name", "index.htm"}}) {
        const QString text = read(n.key);
        n.box->setText(text.isEmpty() ? QLatin1String(n.fallback) : text);
    }

    const QString target = read("Target Directory");
    if (!target.isEmpty()) {
        ui_->o_index_target_directory->setText(target);
    }
    const QString type = read("Index Type").toLower();
    if (type == QLatin1String("thumbnail")) {
        ui_->o_index_type_0->setChecked(true);
    } else if (type == QLatin1String("file name")) {
        ui_->o_index_type_1->setChecked(true);
    }
    const QString frames = read("Frame Type").toLower();
    if (frames == QLatin1String("none")) {
        ui_->o_index_frame_type_0->setChecked(true);
    } else if (frames == QLatin1String("top/left/right")) {
        ui_->o_index_frame_type_1->setChecked(true);
    } else if (frames == QLatin1String("left/right")) {
        ui_->o_index_frame_type_2->setChecked(true);
    }
    const QString browser = read("New Browser").toLower();
    if (browser == QLatin1String("yes")) {
        ui_->o_index_new_browser->setChecked(true);
    } else if (!browser.isEmpty()) {
        ui_->o_index_new_browser->setChecked(false);
    }
}

IndexRequest IndexTab::read_request() {
    IndexRequest r;
    r.target_directory = ui_->o_index_target_directory->text();
    r.frame_type = checked_row(
        {ui_->o_index_frame_type_0, ui_->o_index_frame_type_1, ui_->o_index_frame_type_2});
    r.index_type = checked_row({ui_->o_index_type_0, ui_->o_index_type_1});
    r.new_browser = ui_->o_index_new_browser->isChecked();
    r.no_frame = ui_->o_index_no_frame->currentText();
    r.top_frame = ui_->o_index_top_frame->currentText();
    r.left_frame = ui_->o_index_left_frame->currentText();
    r.right_frame = ui_->o_index_right_frame->currentText();
    r.index_file_name = ui_->o_index_file_name->text();
    r.top_frame_file_name = ui_->o_index_top_frame_file_name->text();
    r.left_frame_file_name = ui_->o_index_left_frame_file_name->text();
    r.right_frame_file_name = ui_->o_index_right_frame_file_name->text();
    if (auto* size = wb_.find<QLineEdit>(QStringLiteral("o_thumbnail_size"))) {
        r.thumbnail_size = size->text();
    }
    return r;
}

// The Resize tab is set up as for a thumbnail run of its own, so that the
// index's thumbnails follow the options that tab shows.
void IndexTab::prepare_thumbnails(const QString& target) {
    fill_resize_tab(wb_);
    if (auto* type = wb_.find<QComboBox>(QStringLiteral("o_resize_thumbnail_type"))) {
        if (type->currentText().isEmpty() && type->count() > 0) {
            type->setCurrentIndex(0);
        }
    }
    if (auto* kind = wb_.find<QComboBox>(QStringLiteral("o_resize_file_type"))) {
        if (kind->count() > 1) {
            kind->setCurrentIndex(1);
        }
    }
    set_thumbnail_target_directory(wb_, target);
}

void IndexTab::create() {
    IndexRequest r = read_request();
    const QString target = r.target_directory;
    r.prepare_thumbnails = [this, target] { prepare_thumbnails(target); };
    create_index(ctx(), r, app().main_list);
}
