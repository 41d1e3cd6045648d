#include "shell/directory_chooser.h"

#include "ui_directory_chooser.h"

#include "core/run_error.h"
#include "core/options_commands.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QSignalBlocker>

namespace {

// The chooser keeps one size: 5850 x 6435 twips at 15 twips a pixel.
constexpr int kWidth = 390;
constexpr int kHeight = 429;

// The nearest directory that exists, from `path` upwards; "/" at worst.
QString nearest_directory(const QString& path) {
    QString p =
        QDir::cleanPath(QFileInfo(path.isEmpty() ? QDir::homePath() : path).absoluteFilePath());
    while (!QFileInfo(p).isDir() && p != QLatin1String("/")) {
        p = QFileInfo(p).path();
    }
    return p;
}

}  // namespace

DirectoryChooser::DirectoryChooser(Dialogs& dialogs, const QString& start, QWidget* parent)
    : QDialog(parent), ui_(new Ui::DirectoryChooser), dialogs_(dialogs) {
    ui_->setupUi(this);
    setFixedSize(kWidth, kHeight);

    menu_bar_ = new QMenuBar(this);
    menu_bar_->setObjectName(QStringLiteral("menuFile_bar"));
    QMenu* file = menu_bar_->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("menuFile"));
    QAction* ok_row = file->addAction(QStringLiteral("&OK"));
    ok_row->setObjectName(QStringLiteral("menuFileItem_99"));
    QAction* cancel_row = file->addAction(QStringLiteral("&Cancel"));
    cancel_row->setObjectName(QStringLiteral("menuFileItem_98"));
    layout()->setMenuBar(menu_bar_);

    connect(ui_->Command1, &QPushButton::clicked, this, &DirectoryChooser::ok);
    connect(ok_row, &QAction::triggered, this, &DirectoryChooser::ok);
    connect(ui_->Command2, &QPushButton::clicked, this, &DirectoryChooser::reject);
    connect(cancel_row, &QAction::triggered, this, &DirectoryChooser::reject);
    connect(ui_->b_make_directory, &QPushButton::clicked, this,
            &DirectoryChooser::make_new_directory_here);
    connect(ui_->o_dir, &DirectoryBox::path_changed, ui_->o_directory, &QLabel::setText);
    connect(ui_->o_drive, &DriveBox::drive_changed, this, &DirectoryChooser::drive_changed);

    open_at(start);
}

DirectoryChooser::~DirectoryChooser() = default;

QString DirectoryChooser::chosen_path() const {
    return ui_->o_directory->text();
}

void DirectoryChooser::open_at(const QString& start) {
    // A start directory that has gone opens at its nearest parent instead.
    const QString dir = nearest_directory(start);
    {
        // The drive follows the directory here; it must not move it.
        const QSignalBlocker block(ui_->o_drive);
        ui_->o_drive->set_drive(dir);
    }
    ui_->o_dir->set_path(dir);
    ui_->o_directory->setText(ui_->o_dir->path());
}

void DirectoryChooser::drive_changed(const QString& drive) {
    try {
        ui_->o_dir->set_path(drive);
    } catch (const RunError& e) {
        // A root that went away: say so and stay where the list is.
        dialogs_.plain(e.text());
        const QSignalBlocker block(ui_->o_drive);
        ui_->o_drive->refresh();
        ui_->o_drive->set_drive(ui_->o_dir->path());
    }
}

void DirectoryChooser::make_new_directory_here() {
    const QString made = make_new_directory(dialogs_, ui_->o_dir->path());
    if (made.isEmpty()) {
        return;
    }
    ui_->o_directory->setText(made);
    try {
        ui_->o_dir->set_path(made);
    } catch (const RunError&) {
        // A name the file system refused: the label keeps the name asked
        // for and the list stays where it was.
    }
}

void DirectoryChooser::ok() {
    cancelled_ = false;
    accept();
}

void DirectoryChooser::reject() {
    cancelled_ = true;
    QDialog::reject();
}

void DirectoryChooser::closeEvent(QCloseEvent* event) {
    // Closing by the window's box is menu row 99.
    ok();
    event->accept();
}
