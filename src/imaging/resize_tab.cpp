#include "imaging/resize_tab.h"

#include "imaging/numeric_text.h"
#include "imaging/preview_window.h"
#include "imaging/resize_batch.h"
#include "imaging/resize_settings.h"
#include "lists/file_list_view.h"
#include "lists/panel_table.h"
#include "ui_resize_tab.h"

#include <QEvent>
#include <QSignalBlocker>

namespace {

const QStringList kDitherRows = {QStringLiteral("Low Quality"), QStringLiteral("Default"),
                                 QStringLiteral("High Quality")};

QStringList numbers(int from, int to) {
    QStringList out;
    for (int i = from; i <= to; ++i) {
        out << QString::number(i);
    }
    return out;
}

void refill(QComboBox* box, const QStringList& rows) {
    box->clear();
    box->addItems(rows);
    box->setCurrentIndex(-1);
}

// Selects the row equal to `text`, compared in lower case; none matches, none.
void select_row(QComboBox* box, const QString& text) {
    for (int i = 0; i < box->count(); ++i) {
        if (box->itemText(i).toLower() == text.toLower()) {
            box->setCurrentIndex(i);
            return;
        }
    }
}

QString colour_style(int colour) {
    const QColor c(colour & 255, (colour >> 8) & 255, (colour >> 16) & 255);
    return QStringLiteral("background-color: %1;").arg(c.name());
}

}  // namespace

ResizeTab::ResizeTab(Workbench& workbench, QWidget* parent)
    : TabPage(workbench, parent), ui_(std::make_unique<Ui::ResizeTab>()) {
    ui_->setupUi(this);
    ui_->o_thumbnail_list->setModel(&list_);
    ui_->o_thumbnail_list->setSelectionModel(list_.selection_model());
    ui_->o_thumbnail_target_directory->installEventFilter(this);

    // A press or a keyboard move shows the row's file; the right button
    // opens the file list menu on the selection as it stands.
    connect(ui_->o_thumbnail_list, &FileListView::left_pressed, this, [this] { list_clicked(); });
    connect(ui_->o_thumbnail_list, &FileListView::current_moved_by_key, this,
            [this] { list_clicked(); });
    connect(ui_->o_thumbnail_list, &FileListView::right_pressed, this,
            [this] { wb_.popup_item_menu(); });
    connect(ui_->o_thumbnail_list, &QListView::doubleClicked, this,
            [this] { list_double_clicked(); });
    connect(ui_->o_thumbnail_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });
    connect(ui_->b_thumbnail_create, &QPushButton::clicked, this, [this] { create(); });
    connect(ui_->o_thumbnail_dither, &QComboBox::currentIndexChanged, this,
            [this] { dither_changed(); });
    connect(ui_->o_thumbnail_optimize, &QComboBox::currentIndexChanged, this,
            [this] { optimize_changed(); });
    connect(ui_->o_thumbnail_quality, &QComboBox::currentIndexChanged, this, [this] {
        app().thumbnail_quality = ui_->o_thumbnail_quality->currentText();
        store_resize_setting(app(), QStringLiteral("Thumbnail Quality"), app().thumbnail_quality);
    });
    connect(ui_->o_thumbnail_smoothing, &QComboBox::currentIndexChanged, this, [this] {
        app().thumbnail_smoothing = ui_->o_thumbnail_smoothing->currentText();
        store_resize_setting(app(), QStringLiteral("Thumbnail Smoothing"),
                             app().thumbnail_smoothing);
    });
    connect(ui_->o_thumbnail_size, &QLineEdit::textChanged, this, [this](const QString& text) {
        app().thumbnail_size = text;
        store_resize_setting(app(), QStringLiteral("Thumbnail Size"), text);
    });
    connect(ui_->o_resize_max_size, &QLineEdit::textChanged, this, [this](const QString& text) {
        store_resize_setting(app(), QStringLiteral("Max Image Size"), text);
    });
    connect(ui_->o_resize_file_type, &QComboBox::currentIndexChanged, this,
            [this] { file_type_changed(); });
    connect(ui_->o_resize_thumbnail_type, &QComboBox::currentIndexChanged, this,
            [this] { thumbnail_type_changed(); });
    connect(ui_->o_thumbnail_prefix, &QCheckBox::clicked, this,
            [this](bool on) { prefix_clicked(on); });
    connect(ui_->o_resize_selected_only, &QCheckBox::clicked, this,
            [this](bool on) { selected_only_clicked(on); });
    connect(ui_->b_thumbnail_background_color, &QPushButton::clicked, this,
            [this] { choose_background_color(); });
    connect(ui_->b_thumbnail_select_target_directory, &QPushButton::clicked, this,
            [this] { choose_target_directory(); });
}

ResizeTab::~ResizeTab() = default;

void ResizeTab::enter() {
    fill_resize_tab(wb_);
}

bool ResizeTab::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui_->o_thumbnail_target_directory &&
        event->type() == QEvent::MouseButtonDblClick) {
        ctx().dialogs.plain(QStringLiteral("X"));
        return true;
    }
    return TabPage::eventFilter(watched, event);
}

void ResizeTab::list_clicked() {
    show_panel_file(wb_, QStringLiteral("thumbnail"), list_.item(list_.list_index()), false);
}

void ResizeTab::list_double_clicked() {
    const int row = list_.list_index();
    if (row < 0) {
        return;
    }
    list_.remove(row);
    clear_viewer(ui_->o_thumbnail_image_view);
    const int next = row > 0 ? row - 1 : row;
    if (next < list_.count()) {
        list_.clear_selection();
        list_.set_list_index(next);
        list_.set_selected(next, true);
    }
}

void ResizeTab::dither_changed() {
    const int row = static_cast<int>(kDitherRows.indexOf(ui_->o_thumbnail_dither->currentText()));
    app().thumbnail_dither = QString::number(row);
    store_resize_setting(app(), QStringLiteral("Thumbnail Dither"), app().thumbnail_dither);
}

void ResizeTab::optimize_changed() {
    app().thumbnail_optimize = ui_->o_thumbnail_optimize->currentIndex() == 0
                                   ? QStringLiteral("Yes")
                                   : QStringLiteral("No");
    store_resize_setting(app(), QStringLiteral("Thumbnail Optimize"), app().thumbnail_optimize);
}

void ResizeTab::file_type_changed() {
    const QString type = ui_->o_resize_file_type->currentText();
    const bool thumbnails = type != QLatin1String("Resize");
    ui_->o_resize_thumbnail_type->setEnabled(thumbnails);
    ui_->l_resize_thumbnail_type->setEnabled(thumbnails);
    if (!type.isEmpty()) {
        store_resize_setting(app(), QStringLiteral("Resize File Type"), type);
    }
    // Read from section Output, which nothing writes: the box ends up cleared.
    const QString prefix =
        app().settings.read(QStringLiteral("Output"), QStringLiteral("Thumbnail Prefix"));
    ui_->o_thumbnail_prefix->setChecked(prefix.contains(u'y'));
}

void ResizeTab::thumbnail_type_changed() {
    app().thumbnail_3d = ui_->o_resize_thumbnail_type->currentIndex() != 0;
    store_resize_setting(app(), QStringLiteral("Resize Thumbnail Type"),
                         ui_->o_resize_thumbnail_type->currentText());
}

void ResizeTab::prefix_clicked(bool on) {
    store_resize_setting(app(), QStringLiteral("Thumbnail Prefix"),
                         on ? QStringLiteral("Yes") : QStringLiteral("No"));
    app().thumbnail_prefix = on;
}

void ResizeTab::selected_only_clicked(bool on) {
    store_resize_setting(app(), QStringLiteral("Resize Selected Images"),
                         on ? QStringLiteral("Yes") : QStringLiteral("No"));
}

void ResizeTab::choose_background_color() {
    const int initial = static_cast<int>(val_of_text(app().thumbnail_background_color));
    const std::optional<int> colour = ctx().dialogs.choose_color(initial);
    if (!colour) {
        return;
    }
    app().thumbnail_background_color = QString::number(*colour);
    store_resize_setting(app(), QStringLiteral("Thumbnail Background Color"),
                         app().thumbnail_background_color);
    ui_->b_thumbnail_background_color->setStyleSheet(colour_style(*colour));
}

void ResizeTab::choose_target_directory() {
    const Dialogs::DirectoryChoice choice = ctx().dialogs.choose_directory(app().last_directory);
    app().last_directory = choice.path;
    set_thumbnail_target_directory(wb_, choice.path);
}

void ResizeTab::fill_empty_boxes() {
    struct Default {
        QComboBox* box;
        int row;
    };
    const Default defaults[] = {{ui_->o_thumbnail_dither, 1},
                                {ui_->o_thumbnail_optimize, 0},
                                {ui_->o_thumbnail_quality, 74},
                                {ui_->o_thumbnail_smoothing, 0}};
    for (const Default& d : defaults) {
        if (d.box->currentText().isEmpty() && d.row < d.box->count()) {
            const QSignalBlocker quiet(d.box);
            d.box->setCurrentIndex(d.row);
        }
    }
}

void ResizeTab::create() {
    ResizeRequest request;
    request.main_list_empty = app().main_list.empty();
    request.target_directory = ui_->o_thumbnail_target_directory->text();
    request.file_type = ui_->o_resize_file_type->currentText();
    request.thumbnail_type = ui_->o_resize_thumbnail_type->currentText();
    const QString refusal = resize_refusal(request);
    fill_empty_boxes();
    if (!refusal.isEmpty()) {
        ctx().dialogs.info(refusal);
        return;
    }
    ResizeRun run;
    const bool selected_only = ui_->o_resize_selected_only->isChecked();
    for (int i = 0; i < list_.count(); ++i) {
        if (!selected_only || list_.selected(i)) {
            run.paths << list_.item(i);
        }
    }
    run.target_directory = request.target_directory;
    run.resize = request.file_type == QLatin1String("Resize");
    run.size = run.resize ? ui_->o_resize_max_size->text() : ui_->o_thumbnail_size->text();
    run.prefix = ui_->o_thumbnail_prefix->isChecked();
    // A file the worker cannot load is not caught here: it ends the command.
    run_resize_batch(ctx(), run);
    ctx().ui.set_status(QString());
}

void fill_resize_tab(Workbench& wb) {
    AppState& app = wb.context().app;
    auto* view = wb.find<QListView>(QStringLiteral("o_thumbnail_list"));
    if (!view) {
        return;
    }
    if (auto* list = qobject_cast<ItemList*>(view->model())) {
        list->set_items(app.main_list.items());
        if (auto* frame = wb.find<QGroupBox>(QStringLiteral("f_thumbnails"))) {
            frame->setTitle(QStringLiteral("File Count: ") + QString::number(list->count()));
        }
    }
    const ResizeSettings s = read_resize_settings(app.settings);
    auto box = [&wb](const char* name) { return wb.find<QComboBox>(QLatin1String(name)); };
    QComboBox* dither = box("o_thumbnail_dither");
    QComboBox* optimize = box("o_thumbnail_optimize");
    QComboBox* quality = box("o_thumbnail_quality");
    QComboBox* smoothing = box("o_thumbnail_smoothing");
    QComboBox* file_type = box("o_resize_file_type");
    QComboBox* thumbnail_type = box("o_resize_thumbnail_type");
    auto* size = wb.find<QLineEdit>(QStringLiteral("o_thumbnail_size"));
    auto* max_size = wb.find<QLineEdit>(QStringLiteral("o_resize_max_size"));
    auto* target = wb.find<QLabel>(QStringLiteral("o_thumbnail_target_directory"));
    auto* selected = wb.find<QCheckBox>(QStringLiteral("o_resize_selected_only"));
    auto* prefix = wb.find<QCheckBox>(QStringLiteral("o_thumbnail_prefix"));
    auto* colour = wb.find<QPushButton>(QStringLiteral("b_thumbnail_background_color"));
    if (!dither || !optimize || !quality || !smoothing || !file_type || !thumbnail_type || !size ||
        !max_size || !target || !selected || !prefix || !colour) {
        return;
    }
    const QSignalBlocker b1(dither), b2(optimize), b3(quality), b4(smoothing), b5(file_type),
        b6(thumbnail_type), b7(size), b8(max_size), b9(selected), b10(prefix);

    refill(dither, kDitherRows);
    const int dither_row = static_cast<int>(val_of_text(s.dither));
    if (dither_row >= 0 && dither_row < dither->count()) {
        dither->setCurrentIndex(dither_row);
    }
    refill(optimize, {QStringLiteral("Yes"), QStringLiteral("No")});
    optimize->setCurrentIndex(s.optimize.toLower() == QLatin1String("yes") ? 0 : 1);
    refill(quality, numbers(1, 100));
    select_row(quality, QString::number(val_of_text(s.quality)));
    refill(smoothing, numbers(0, 100));
    select_row(smoothing, QString::number(val_of_text(s.smoothing)));
    refill(file_type, {QStringLiteral("Resize"), QStringLiteral("Thumbnail")});
    refill(thumbnail_type, {QStringLiteral("Flat"), QStringLiteral("3D")});
    if (!s.file_type.isEmpty()) {
        select_row(file_type, s.file_type);
    }
    const bool thumbnails = file_type->currentText() != QLatin1String("Resize");
    thumbnail_type->setEnabled(thumbnails);
    if (auto* label = wb.find<QLabel>(QStringLiteral("l_resize_thumbnail_type"))) {
        label->setEnabled(thumbnails);
    }
    if (!s.thumbnail_type.isEmpty()) {
        select_row(thumbnail_type, s.thumbnail_type);
    }
    // An empty selection counts as 3D.
    app.thumbnail_3d = thumbnail_type->currentIndex() != 0;
    size->setText(s.size);
    max_size->setText(s.max_size);
    target->setText(s.target_directory);
    app.thumbnail_target_directory = s.target_directory;
    selected->setChecked(s.selected_only.contains(u'y', Qt::CaseInsensitive));
    prefix->setChecked(s.prefix.contains(u'y', Qt::CaseInsensitive));
    colour->setStyleSheet(s.background_color.isEmpty()
                              ? QString()
                              : colour_style(static_cast<int>(val_of_text(s.background_color))));
}

void set_thumbnail_target_directory(Workbench& wb, const QString& directory) {
    AppState& app = wb.context().app;
    if (auto* target = wb.find<QLabel>(QStringLiteral("o_thumbnail_target_directory"))) {
        target->setText(directory);
    }
    app.thumbnail_target_directory = directory;
    store_resize_setting(app, QStringLiteral("Thumbnail Target Directory"), directory);
}
