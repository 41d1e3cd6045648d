#include "ui/drive_box.h"

#include "core/mount_roots.h"

#include <QSignalBlocker>

DriveBox::DriveBox(QWidget* parent) : QComboBox(parent) {
    setEditable(false);
    connect(this, &QComboBox::currentIndexChanged, this, &DriveBox::on_index_changed);
    fill(mounted_roots());
}

QString DriveBox::drive() const {
    return current_;
}

void DriveBox::set_drive(const QString& path) {
    const QString root = root_of(path, roots());
    const int index = findText(root, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (index >= 0) {
        setCurrentIndex(index);
    }
}

void DriveBox::refresh() {
    fill(mounted_roots());
}

void DriveBox::set_roots(const QStringList& roots) {
    fill(roots);
}

QStringList DriveBox::roots() const {
    QStringList out;
    for (int i = 0; i < count(); ++i) {
        out << itemText(i);
    }
    return out;
}

void DriveBox::fill(const QStringList& roots) {
    const QString keep = current_;
    {
        const QSignalBlocker block(this);
        clear();
        addItems(roots);
        int index = findText(keep, Qt::MatchExactly | Qt::MatchCaseSensitive);
        if (index < 0 && count() > 0) {
            index = 0;
        }
        setCurrentIndex(index);
    }
    on_index_changed(currentIndex());
}

void DriveBox::on_index_changed(int index) {
    const QString now = index >= 0 ? itemText(index) : QString();
    if (now == current_) {
        return;
    }
    current_ = now;
    Q_EMIT drive_changed(current_);
}
