#include "ui/file_box.h"

#include "core/directory_reader.h"

#include <QDir>
#include <QFileInfo>

FileBox::FileBox(QWidget* parent) : QListWidget(parent) {
    setUniformItemSizes(true);
    path_ = QDir::cleanPath(QDir::currentPath());
    refresh();
}

void FileBox::set_path(const QString& path) {
    path_ = path.isEmpty() ? path : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    refresh();
}

void FileBox::set_pattern(const QString& pattern) {
    pattern_ = pattern;
    refresh();
}

void FileBox::refresh() {
    names_ = matching_file_names(path_, pattern_);
    setUpdatesEnabled(false);
    clear();
    addItems(names_);
    setUpdatesEnabled(true);
}
