#include "pages/colour_form.h"

#include "core/file_helpers.h"
#include "core/profile_file.h"
#include "core/run_error.h"
#include "pages/colour_palette.h"
#include "ui_colour_form.h"

#include <QEvent>
#include <QMenuBar>

#include <algorithm>

namespace {

const QString kCurrent = QStringLiteral("Current");
constexpr int kRoles = 6;

void paint(QWidget* w, QPalette::ColorRole role, int value) {
    QPalette p = w->palette();
    p.setColor(role, colour_of_value(value));
    w->setPalette(p);
}

// Which side of a sample shows its colour: the text for the text and link
// samples, the back for the page and the image border.
bool shows_back_colour(int role) {
    return role == static_cast<int>(ColourRole::Background) ||
           role == static_cast<int>(ColourRole::ImageBorder);
}

}  // namespace

ColourForm::ColourForm(Context& ctx, QLineEdit* html_background_image,
                       QLabel* html_background_color, QLabel* html_text_color,
                       QString& dialog_directory, QWidget* parent)
    : QDialog(parent),
      ctx_(ctx),
      html_background_image_(html_background_image),
      html_background_color_(html_background_color),
      html_text_color_(html_text_color),
      dialog_directory_(dialog_directory),
      ui_(std::make_unique<Ui::ColourForm>()) {
    ui_->setupUi(this);
    setModal(true);

    menu_ = new QMenuBar(this);
    menu_->setObjectName(QStringLiteral("menuFile_bar"));
    QMenu* file = menu_->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("menuFile"));
    QAction* cancel = file->addAction(QStringLiteral("Cancel"));
    cancel->setObjectName(QStringLiteral("menuFileItem_0"));
    QAction* save = file->addAction(QStringLiteral("Save / Exit"));
    save->setObjectName(QStringLiteral("menuFileItem_1"));
    layout()->setMenuBar(menu_);
    connect(cancel, &QAction::triggered, this, &QDialog::reject);
    connect(save, &QAction::triggered, this, &ColourForm::save_and_exit);

    const std::array<QPushButton*, kSwatches> swatches = {
        ui_->o_color_0,  ui_->o_color_1,  ui_->o_color_2,  ui_->o_color_3,
        ui_->o_color_4,  ui_->o_color_5,  ui_->o_color_6,  ui_->o_color_7,
        ui_->o_color_8,  ui_->o_color_9,  ui_->o_color_10, ui_->o_color_11,
        ui_->o_color_12, ui_->o_color_13, ui_->o_color_14, ui_->o_color_15};
    for (int i = 0; i < kSwatches; ++i) {
        QPushButton* b = swatches[i];
        b->setStyleSheet(QStringLiteral("background-color: %1; border: 1px solid #404040;")
                             .arg(colour_of_value(colour_palette()[i].value).name()));
        connect(b, &QPushButton::clicked, this, [this, i] { swatch_clicked(i); });
    }
    for (QWidget* sample :
         {static_cast<QWidget*>(ui_->o_text_color), static_cast<QWidget*>(ui_->o_link_color),
          static_cast<QWidget*>(ui_->o_vlink_color), static_cast<QWidget*>(ui_->o_alink_color),
          static_cast<QWidget*>(ui_->o_bgcolor), static_cast<QWidget*>(ui_->o_img_border_color),
          static_cast<QWidget*>(ui_->Label27)}) {
        sample->installEventFilter(this);
    }
    connect(ui_->o_background_image, &QLineEdit::textChanged, this,
            &ColourForm::show_background_image);
    connect(ui_->Command3, &QPushButton::clicked, this, &ColourForm::select_background_image);
    connect(ui_->Command1, &QPushButton::clicked, this, &ColourForm::save_and_exit);
    connect(ui_->Command2, &QPushButton::clicked, this, &QDialog::reject);
    load();
}

ColourForm::~ColourForm() = default;

void ColourForm::load() {
    background_path_ = html_background_image_ ? html_background_image_->text() : QString();
    ui_->o_background_image->setText(file_name_of(background_path_));

    const AppState& app = ctx_.app;
    const std::array<const QString*, kRoles> working = {
        &app.color_vlink,      &app.color_link,         &app.color_alink,
        &app.color_background, &app.color_image_border, &app.color_text};
    for (int role = 0; role < kRoles; ++role) {
        // A text that no swatch reads leaves the sample in its design colour.
        if (const std::optional<int> v = swatch_value_for_text(*working[role])) {
            set_role_colour(role, *v);
        }
    }
}

void ColourForm::set_role_colour(int role, int value) {
    static const std::array<const char*, kRoles> samples = {"o_vlink_color",      "o_link_color",
                                                            "o_alink_color",      "o_bgcolor",
                                                            "o_img_border_color", "o_text_color"};
    auto* sample = findChild<QWidget*>(QLatin1String(samples[role]));
    samples_[role] = value;
    if (!shows_back_colour(role)) {
        paint(sample, QPalette::WindowText, value);
        return;
    }
    paint(sample, QPalette::Window, value);
    if (role == static_cast<int>(ColourRole::Background)) {
        // The text samples stand on the page's colour.
        for (QWidget* w :
             {static_cast<QWidget*>(ui_->o_text_color), static_cast<QWidget*>(ui_->o_vlink_color),
              static_cast<QWidget*>(ui_->o_link_color),
              static_cast<QWidget*>(ui_->o_alink_color)}) {
            paint(w, QPalette::Window, value);
        }
    }
}

void ColourForm::swatch_clicked(int index) {
    const std::array<QRadioButton*, kRoles> options = {ui_->o_selection_0, ui_->o_selection_1,
                                                       ui_->o_selection_2, ui_->o_selection_3,
                                                       ui_->o_selection_4, ui_->o_selection_5};
    for (int role = 0; role < kRoles; ++role) {
        if (options[role]->isChecked()) {
            set_role_colour(role, colour_palette()[index].value);
        }
    }
}

bool ColourForm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) {
        QRadioButton* option = nullptr;
        if (watched == ui_->o_vlink_color) {
            option = ui_->o_selection_0;
        } else if (watched == ui_->o_link_color) {
            option = ui_->o_selection_1;
        } else if (watched == ui_->o_alink_color) {
            option = ui_->o_selection_2;
        } else if (watched == ui_->o_bgcolor) {
            option = ui_->o_selection_3;
        } else if (watched == ui_->o_img_border_color || watched == ui_->Label27) {
            option = ui_->o_selection_4;
        } else if (watched == ui_->o_text_color) {
            option = ui_->o_selection_5;
        }
        if (option) {
            option->setChecked(true);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void ColourForm::select_background_image() {
    Dialogs::FileRequest request;
    request.title = QStringLiteral("Select HTML Background");
    request.filter = QStringLiteral("All Files (*.*)|*.*|GIF Files|*.gif|JPG Files|*.jpg");
    request.initial_directory = dialog_directory_;
    const QString chosen = ctx_.dialogs.open_file(request);
    if (!is_background_image_name(chosen)) {
        ctx_.dialogs.info(
            QStringLiteral("GIF and JPG are the only valid file formats for HTML background."));
        return;
    }
    dialog_directory_ = directory_of(chosen);
    background_path_ = chosen;
    if (!background_path_.isEmpty()) {
        ui_->o_background_image->setText(file_name_of(background_path_));
    }
}

// The picture goes into the sample frame, scaled down with its proportions
// kept to the frame less 280 twips across and 320 down.
void ColourForm::show_background_image() {
    ImageControl& image = ui_->o_image->control();
    image.set_view_mode(1);
    if (!passed_over([&] { image.set_file_name(background_path_); }) || !image.has_picture()) {
        return;
    }
    const double twips = ImageControl::kScreenTwips;
    const double room_w = ui_->f_background_sample->width() * twips - 280;
    const double room_h = ui_->f_background_sample->height() * twips - 320;
    const double w = image.width();
    const double h = image.height();
    const double ratio = std::min({1.0, room_w / w, room_h / h});
    if (ratio < 1.0) {
        image.set_width(static_cast<float>(w * ratio));
        image.set_height(static_cast<float>(h * ratio));
        image.set_view_mode(2);
    }
}

void ColourForm::save_and_exit() {
    AppState& app = ctx_.app;
    struct Saved {
        ColourRole role;
        QString* working;
        QLabel* label;  // the Web Pages tab's label that takes the swatch
    };
    const Saved order[] = {{ColourRole::Text, &app.color_text, html_text_color_},
                           {ColourRole::VisitedLink, &app.color_vlink, nullptr},
                           {ColourRole::Link, &app.color_link, nullptr},
                           {ColourRole::ActiveLink, &app.color_alink, nullptr},
                           {ColourRole::ImageBorder, &app.color_image_border, nullptr},
                           {ColourRole::Background, &app.color_background, html_background_color_}};
    for (const Saved& s : order) {
        const std::optional<int> value = samples_[static_cast<int>(s.role)];
        const std::optional<QString> text = value ? saved_text_for_value(*value) : std::nullopt;
        // A colour that no swatch has leaves the working string as it was.
        if (!text) {
            continue;
        }
        *s.working = *text;
        if (s.label) {
            paint(s.label, QPalette::Window, *value);
        }
    }

    ProfileFile& ini = app.settings;
    if (html_background_image_) {
        html_background_image_->setText(background_path_);
    }
    ini.write(kCurrent, QStringLiteral("HTML Background Image"),
              background_path_.isNull() ? QStringLiteral("") : background_path_);
    const auto store = [&](QLabel* label, const QString& text, const char* key) {
        if (!label) {
            return;
        }
        label->setText(text);
        ini.write(kCurrent, QLatin1String(key),
                  label->text().isNull() ? QStringLiteral("") : label->text());
        ini.write(kCurrent, QLatin1String(key) + QStringLiteral("-bg"),
                  QString::number(value_of_colour(label->palette().color(QPalette::Window))));
    };
    store(html_background_color_, app.color_background, "HTML Background Color");
    store(html_text_color_, app.color_text, "HTML Text Color");
    accept();
}
