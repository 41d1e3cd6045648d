#include "pages/web_pages_tab.h"

#include "core/pick_helpers.h"
#include "pages/colour_form.h"
#include "pages/page_options_ui.h"
#include "pages/web_page_run.h"
#include "pages/web_profiles.h"
#include "ui_web_pages_tab.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>

namespace {

const QString kOutput = QStringLiteral("Output");
const QString kCurrent = QStringLiteral("Current");

QString yes_no(bool on) {
    return on ? QStringLiteral("Yes") : QStringLiteral("No");
}

// Copies `text` into a box of another tab when it differs, so that the box's
// own change handler stores it.
void mirror_to(Workbench& wb, const char* name, const QString& text) {
    if (auto* box = wb.find<QLineEdit>(QLatin1String(name))) {
        if (box->text() != text) {
            box->setText(text);
        }
    }
}

QString text_of(Workbench& wb, const char* name) {
    auto* box = wb.find<QLineEdit>(QLatin1String(name));
    return box ? box->text() : QString();
}

// A colour number of the settings file (red in the low byte) as a colour.
QColor colour_of(const QString& decimal) {
    const qint64 v = decimal.trimmed().toLongLong();
    return QColor(static_cast<int>(v & 0xFF), static_cast<int>((v >> 8) & 0xFF),
                  static_cast<int>((v >> 16) & 0xFF));
}

}  // namespace

WebPagesTab::WebPagesTab(Workbench& workbench, QWidget* parent)
    : TabPage(workbench, parent), ui_(std::make_unique<Ui::WebPagesTab>()) {
    ui_->setupUi(this);
    connect_settings();
    connect(ui_->b_html_create_html, &QPushButton::clicked, this, &WebPagesTab::create_pages);
    connect(ui_->b_webpages_stop_create, &QPushButton::clicked, this, &WebPagesTab::stop_creating);
    connect(ui_->b_html_select_target_dir, &QPushButton::clicked, this,
            &WebPagesTab::select_target_directory);
    connect(ui_->b_html_select_background, &QPushButton::clicked, this, [this] {
        const QString path = select_background_image(ctx());
        if (!path.isEmpty()) {
            ui_->o_html_background_image->setText(path);
        }
    });
    connect(ui_->b_html_select_background_color, &QPushButton::clicked, this, [this] {
        if (colour_dialog_directory_.isEmpty()) {
            colour_dialog_directory_ = app().last_directory;
        }
        ColourForm form(ctx(), ui_->o_html_background_image, ui_->o_html_background_color,
                        ui_->o_html_text_color, colour_dialog_directory_, this);
        form.exec();
    });
    // A choice from the list recalls the profile; typing a name does nothing,
    // and the typed name joins the list only when it is saved.
    ui_->o_html_profile_name->setInsertPolicy(QComboBox::NoInsert);
    ui_->o_html_profile_name->installEventFilter(this);
    ui_->o_html_profile_name->lineEdit()->installEventFilter(this);
    connect(ui_->o_html_profile_name, &QComboBox::activated, this,
            [this] { profile(QStringLiteral("refresh")); });
    connect(ui_->b_html_save_profile, &QPushButton::clicked, this,
            [this] { profile(QStringLiteral("save")); });
    connect(ui_->b_html_delete_profile, &QPushButton::clicked, this,
            [this] { profile(QStringLiteral("delete")); });
}

WebPagesTab::~WebPagesTab() = default;

bool WebPagesTab::eventFilter(QObject* watched, QEvent* event) {
    // Enter on a typed name that is listed would choose that entry; only a
    // choice from the list recalls a profile, so the key is kept from the box.
    if ((watched == ui_->o_html_profile_name || watched == ui_->o_html_profile_name->lineEdit()) &&
        event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            return true;
        }
    }
    return TabPage::eventFilter(watched, event);
}

void WebPagesTab::profile(const QString& operation) {
    QComboBox* box = ui_->o_html_profile_name;
    WebProfileControls c;
    c.name = box->currentText();
    for (int i = 0; i < box->count(); ++i) {
        c.entries << box->itemText(i);
    }
    c.target_directory = ui_->o_html_target_directory->text();
    c.image_page = ui_->o_html_image_page->text();
    c.image_template = ui_->o_html_image_template->currentText();
    c.delete_files = ui_->o_html_delete_files->isChecked();
    c.slide_show = ui_->o_html_make_slide_show->isChecked();
    c.slide_show_loop = ui_->o_html_slide_show_loop->isChecked();
    const QStringList entries_before = c.entries;

    web_profile(app().settings, operation, c);

    if (c.entries != entries_before) {
        // The typed text is no entry: it stands whatever the list becomes.
        const QSignalBlocker quiet(box);
        box->clear();
        box->addItems(c.entries);
        box->setCurrentIndex(-1);
        box->setEditText(c.name);
    }
    // Each control stores its own setting as it changes, so a recalled
    // profile becomes the current choice.
    if (ui_->o_html_target_directory->text() != c.target_directory) {
        ui_->o_html_target_directory->setText(c.target_directory);
    }
    if (ui_->o_html_image_page->text() != c.image_page) {
        ui_->o_html_image_page->setText(c.image_page);
    }
    if (ui_->o_html_image_template->currentText() != c.image_template) {
        ui_->o_html_image_template->setCurrentText(c.image_template);
    }
    ui_->o_html_delete_files->setChecked(c.delete_files);
    ui_->o_html_make_slide_show->setChecked(c.slide_show);
    ui_->o_html_slide_show_loop->setChecked(c.slide_show_loop);
}

void WebPagesTab::connect_settings() {
    ProfileFile& settings = app().settings;
    connect(ui_->o_html_target_directory, &QLineEdit::textChanged, this,
            [&settings](const QString& t) {
                settings.write(kOutput, QStringLiteral("Target Directory"), t);
            });
    connect(ui_->o_html_image_page, &QLineEdit::textChanged, this, [&settings](const QString& t) {
        settings.write(kOutput, QStringLiteral("Image Page"), t);
    });
    connect(ui_->o_html_image_template, &QComboBox::currentTextChanged, this,
            [&settings](const QString& t) {
                settings.write(kOutput, QStringLiteral("Image Template"), t);
            });
    connect(ui_->o_html_delete_files, &QCheckBox::toggled, this, [&settings](bool on) {
        settings.write(kOutput, QStringLiteral("Delete Files"), yes_no(on));
    });
    connect(ui_->o_html_background_image, &QLineEdit::textChanged, this,
            [&settings](const QString& t) {
                settings.write(kCurrent, QStringLiteral("HTML Background Image"), t);
            });
    connect(ui_->o_html_slide_show_delay, &QLineEdit::textChanged, this,
            [&settings](const QString& t) {
                settings.write(QStringLiteral("Slides"), QStringLiteral("Slide Show Delay"), t);
            });
    connect(ui_->o_html_image_max_size, &QLineEdit::textChanged, this,
            [this](const QString& t) { mirror_to(wb_, "o_resize_max_size", t); });
    connect(ui_->o_html_thumbnail_size, &QLineEdit::textChanged, this,
            [this](const QString& t) { mirror_to(wb_, "o_thumbnail_size", t); });
}

void WebPagesTab::enter() {
    profile(QStringLiteral("load"));
    AppState& a = app();
    ui_->o_html_total_file_count->setText(QString::number(a.main_list.count()));

    {
        // Refilling the box is no choice of the user's: the stored choice
        // must outlive it, and the box shows none until it is restored below.
        const QSignalBlocker quiet(ui_->o_html_image_template);
        ui_->o_html_image_template->clear();
        if (auto* list = wb_.find<QListWidget>(QStringLiteral("o_template_list"))) {
            for (int i = 0; i < list->count(); ++i) {
                ui_->o_html_image_template->addItem(list->item(i)->text());
            }
        }
        ui_->o_html_image_template->setCurrentIndex(-1);
    }

    ui_->o_html_image_max_size->setText(text_of(wb_, "o_resize_max_size"));
    ui_->o_html_thumbnail_size->setText(text_of(wb_, "o_thumbnail_size"));

    ui_->o_html_total_file_size->setText(total_file_size_text(a.main_list));

    const QString chosen = a.settings.read(kOutput, QStringLiteral("Image Template"));
    if (chosen.isEmpty()) {
        ui_->o_html_image_template->setEditText(QString());
    } else {
        const int row =
            ui_->o_html_image_template->findText(chosen, Qt::MatchExactly | Qt::MatchCaseSensitive);
        if (row >= 0) {
            ui_->o_html_image_template->setCurrentIndex(row);
        }
    }

    ui_->o_html_background_image->setText(
        a.settings.read(kCurrent, QStringLiteral("HTML Background Image")));
    restore_colour("o_html_background_color", QStringLiteral("HTML Background Color"),
                   QStringLiteral("HTML Background Color-bg"));
    restore_colour("o_html_text_color", QStringLiteral("HTML Text Color"),
                   QStringLiteral("HTML Text Color-bg"));
}

void WebPagesTab::restore_colour(const char* label, const QString& text_key,
                                 const QString& back_key) {
    auto* l = findChild<QLabel*>(QLatin1String(label));
    const QString text = app().settings.read(kCurrent, text_key);
    if (!text.isEmpty()) {
        l->setText(text);
    }
    const QString back = app().settings.read(kCurrent, back_key);
    if (!back.isEmpty()) {
        QPalette p = l->palette();
        p.setColor(QPalette::Window, colour_of(back));
        l->setPalette(p);
    }
}

void WebPagesTab::create_pages() {
    ui_->b_webpages_stop_create->show();
    ui_->b_html_create_html->hide();

    WebPageRequest request;
    request.page = read_page_options(wb_);
    request.image_page = ui_->o_html_image_page->text();
    request.image_template = ui_->o_html_image_template->currentText();
    request.max_size = text_of(wb_, "o_resize_max_size");
    request.thumbnail_size = text_of(wb_, "o_thumbnail_size");
    request.delete_files = ui_->o_html_delete_files->isChecked();
    request.slide_show_loop = ui_->o_html_slide_show_loop->isChecked();

    try {
        create_web_pages(ctx(), request, app().main_list);
    } catch (...) {
        stop_creating();
        throw;
    }

    // What the run filled in for empty boxes.
    mirror_to(wb_, "o_thumbnail_size", request.thumbnail_size);
    if (ui_->o_html_slide_show_delay->text() != request.page.slide_show_delay) {
        ui_->o_html_slide_show_delay->setText(request.page.slide_show_delay);
    }

    stop_creating();
}

void WebPagesTab::stop_creating() {
    ui_->b_webpages_stop_create->hide();
    ui_->b_html_create_html->show();
}

void WebPagesTab::select_target_directory() {
    const Dialogs::DirectoryChoice choice = ctx().dialogs.choose_directory(app().last_directory);
    ui_->o_html_target_directory->setText(choice.path);
    app().settings.write(kOutput, QStringLiteral("Target Directory"), choice.path);
}
