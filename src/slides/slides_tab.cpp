#include "slides/slides_tab.h"

#include "ui_slides_tab.h"

#include "imaging/image_view.h"
#include "imaging/preview_window.h"
#include "lists/image_panels.h"
#include "lists/panel_table.h"
#include "ui/centre_form.h"
#include "core/pick_helpers.h"
#include "slides/qt_music_device.h"
#include "slides/slide_show_player.h"
#include "slides/slide_show_store.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QScreen>

namespace {

const QString kSlides = QStringLiteral("Slides");

QStringList rows_of(const QListWidget* list) {
    QStringList rows;
    for (int i = 0; i < list->count(); ++i) {
        rows << list->item(i)->text();
    }
    return rows;
}

// The selected row of a single-choice list, -1 for none.
int selected_row(const QListWidget* list) {
    const int row = list->currentRow();
    return row >= 0 && list->item(row)->isSelected() ? row : -1;
}

// The preview window as the slide show's screen: opened without waiting, and
// every key in it or its close wakes the show's wait to look again.
class PreviewScreen : public QObject, public SlideScreen {
public:
    explicit PreviewScreen(Workbench& wb) : wb_(wb) {}
    void watch(SlideShowPlayer* player) { player_ = player; }

    void open() override {
        window_ = new PreviewWindow(wb_, wb_.window_widget());
        window_->setAttribute(Qt::WA_DeleteOnClose);
        if (const QScreen* screen = QGuiApplication::primaryScreen()) {
            const QRect area = screen->availableGeometry();
            window_->resize(area.width() * 3 / 4, area.height() * 3 / 4);
        }
        window_->lay_out();
        wb_.set_tabs_enabled(false);
        centre_form(window_);
        window_->installEventFilter(this);
        window_->image()->installEventFilter(this);
        connect(window_, &QDialog::finished, this, [this] { wake(); });
        connect(window_, &QObject::destroyed, this, [this] { wake(); });
        window_->show();
    }
    void load() override {
        if (window_) {
            window_->load();
        }
    }
    bool is_open() const override { return window_ && window_->isVisible(); }
    void finish() override { wb_.set_tabs_enabled(true); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            // The window handles the key first; the wait looks afterwards.
            QMetaObject::invokeMethod(
                this, [this] { wake(); }, Qt::QueuedConnection);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void wake() {
        if (player_) {
            player_->wake();
        }
    }

    Workbench& wb_;
    QPointer<PreviewWindow> window_;
    SlideShowPlayer* player_ = nullptr;
};

}  // namespace

SlidesTab::SlidesTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent), ui_(new Ui::SlidesTab), app_state_(wb.context().app) {
    ui_->setupUi(this);
    // A typed title joins the box only when a show is saved under it.
    ui_->o_slides_show_name->setInsertPolicy(QComboBox::NoInsert);
    device_ = std::make_unique<QtMusicDevice>(
        [this](const QString& path, const QString& why) { music_->report_failure(path, why); });
    music_ = std::make_unique<MusicPlayer>(ctx(), *this);
    if (!app_state_.music_device) {
        app_state_.music_device = device_.get();
    }
    if (!app_state_.music_player) {
        app_state_.music_player = music_.get();
    }

    // A picture that cannot be read is not caught here.
    connect(ui_->o_slides_filelist, &QAbstractItemView::clicked, this, [this] {
        show_panel_file(wb_, QStringLiteral("slides"), current_row_text(ui_->o_slides_filelist),
                        false);
    });
    connect(ui_->o_slides_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });
    connect(ui_->b_slides_save_show, &QPushButton::clicked, this, [this] { save_show(); });
    connect(ui_->b_slides_delete_show, &QPushButton::clicked, this, [this] { delete_show(); });
    connect(ui_->o_slides_show_name, &QComboBox::activated, this, [this] { select_show(); });
    connect(ui_->b_slides_add_music, &QPushButton::clicked, this, [this] { add_music(); });
    connect(ui_->b_slides_del_music, &QPushButton::clicked, this, [this] { delete_music(); });
    connect(ui_->o_slides_music, &QAbstractItemView::clicked, this,
            [this] { ctx().ui.set_status(current_row_text(ui_->o_slides_music)); });
    connect(ui_->b_slides_play, &QPushButton::clicked, this, [this] { play_clicked(); });
    connect(ui_->b_slides_start_show, &QPushButton::clicked, this, [this] { start_show(); });
    // The delay is stored as typed, unchecked, at every change.
    connect(ui_->o_slides_slide_show_delay, &QLineEdit::textChanged, this,
            [this](const QString& text) {
                app().settings.write(kSlides, QStringLiteral("Slide Show Delay"),
                                     text.isNull() ? QStringLiteral("") : text);
            });
    connect(ui_->o_slides_slide_show_loop, &QCheckBox::toggled, this, [this](bool on) {
        app().settings.write(kSlides, QStringLiteral("Loop"),
                             on ? QStringLiteral("Yes") : QStringLiteral("No"));
    });
}

SlidesTab::~SlidesTab() {
    // The window's context may be gone by now; the state is reached directly.
    if (app_state_.music_player == music_.get()) {
        app_state_.music_player = nullptr;
    }
    if (app_state_.music_device == device_.get()) {
        app_state_.music_device = nullptr;
    }
}

void SlidesTab::enter() {
    QStringList images;
    for (const QString& path : app().main_list.items()) {
        if (is_image_file(path)) {
            images << path;
        }
    }
    ui_->o_slides_filelist->clear();
    ui_->o_slides_filelist->addItems(images);
    ui_->f_slides->setTitle(QStringLiteral("File Count: ") + QString::number(images.size()));

    const ProfileFile& settings = app().settings;
    const QString delay = settings.read(kSlides, QStringLiteral("Slide Show Delay"));
    ui_->o_slides_slide_show_delay->setText(delay.isEmpty() ? QStringLiteral("5") : delay);
    ui_->o_slides_slide_show_loop->setChecked(
        settings.read(kSlides, QStringLiteral("Loop")).toLower().contains(u'y'));
    ui_->o_slides_show_name->clear();
    ui_->o_slides_show_name->addItems(slide_show_titles(settings));
}

QStringList SlidesTab::music_rows() const {
    return rows_of(ui_->o_slides_music);
}

int SlidesTab::selected_music_row() const {
    return selected_row(ui_->o_slides_music);
}

void SlidesTab::select_music_row(int row) {
    if (row < 0) {
        ui_->o_slides_music->clearSelection();
        ui_->o_slides_music->setCurrentRow(-1);
    } else {
        ui_->o_slides_music->setCurrentRow(row);
    }
}

void SlidesTab::set_play_caption(const QString& caption) {
    ui_->b_slides_play->setText(caption);
}

void SlidesTab::save_show() {
    QComboBox* box = ui_->o_slides_show_name;
    const QString title = box->currentText().trimmed();
    if (box->findText(title, Qt::MatchExactly | Qt::MatchCaseSensitive) < 0) {
        const QString typed = box->currentText();
        box->addItem(title);
        box->setEditText(typed);
    }
    SlideShow show;
    show.delay = ui_->o_slides_slide_show_delay->text();
    show.loop = ui_->o_slides_slide_show_loop->isChecked();
    show.images = rows_of(ui_->o_slides_filelist);
    show.music = rows_of(ui_->o_slides_music);
    save_slide_show(app(), title, show);
}

void SlidesTab::delete_show() {
    QComboBox* box = ui_->o_slides_show_name;
    const QString title = box->currentText();
    if (!delete_slide_show(app(), title)) {
        return;
    }
    const int row = box->findText(title, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (row >= 0) {
        box->removeItem(row);
    }
    ui_->o_slides_filelist->clear();
    box->setEditText(QString());
    ui_->o_slides_music->clear();
    ui_->o_slides_image_view->control().set_file_name(QString());
}

void SlidesTab::select_show() {
    ui_->o_slides_filelist->clear();
    ui_->o_slides_image_view->control().set_file_name(QString());
    ui_->o_slides_music->clear();
    const SelectedShow shown = select_slide_show(app(), ui_->o_slides_show_name->currentText());
    if (shown.delay) {
        ui_->o_slides_slide_show_delay->setText(*shown.delay);
    }
    if (shown.loop) {
        ui_->o_slides_slide_show_loop->setChecked(*shown.loop);
    }
    ui_->o_slides_filelist->addItems(shown.images);
    ui_->o_slides_music->addItems(shown.music);
}

void SlidesTab::add_music() {
    const QString path = select_music(ctx());
    if (!path.isEmpty()) {
        ui_->o_slides_music->addItem(path);
    }
}

void SlidesTab::delete_music() {
    const int row = selected_row(ui_->o_slides_music);
    if (row >= 0) {
        delete ui_->o_slides_music->takeItem(row);
    }
}

void SlidesTab::play_clicked() {
    QPushButton* button = ui_->b_slides_play;
    if (button->text() != QLatin1String("Play Music")) {
        button->setText(QStringLiteral("Play Music"));
        music_->operation(3);
    } else {
        const int row = selected_row(ui_->o_slides_music);
        if (row >= 0) {
            button->setText(QStringLiteral("Stop Music"));
            music_->operation(3);
            music_->forget_failures();
            music_->play_track(ui_->o_slides_music->item(row)->text());
        }
    }
    button->update();
}

void SlidesTab::start_show() {
    QListWidget* list = ui_->o_slides_filelist;
    SlideShowInput in;
    in.images = rows_of(list);
    const int selected = selected_row(list);
    in.first = selected < 0 ? 0 : selected;
    in.selected_text = selected < 0 ? QString() : list->item(selected)->text();
    in.delay = ui_->o_slides_slide_show_delay->text();
    in.loop = ui_->o_slides_slide_show_loop->isChecked();

    PreviewScreen screen(wb_);
    SlideShowPlayer player(ctx(), screen, this);
    screen.watch(&player);
    show_ = &player;
    struct Clear {
        SlideShowPlayer*& show;
        ~Clear() { show = nullptr; }
    } clear{show_};
    player.run(in);
}
