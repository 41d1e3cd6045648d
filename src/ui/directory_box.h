#pragma once

#include <QListWidget>
#include <QString>
#include <QStringList>

// The directory box of this platform: the current directory and, below it,
// its subdirectories, as a list. The rows are the path's parents from "/"
// down, the directory itself, then its children sorted without regard to
// case, each indented by its depth. A double click (or Enter) on a row opens
// that directory. Every change of the path, by the user or by the program,
// emits path_changed once.
class DirectoryBox : public QListWidget {
    Q_OBJECT
public:
    explicit DirectoryBox(QWidget* parent = nullptr);

    // Absolute, with no closing "/" except for the root "/".
    QString path() const { return path_; }
    // Opens `path`; throws RunError("Path not found") if it is not a directory.
    void set_path(const QString& path);
    // Full paths of the children, in list order.
    QStringList subdirectories() const { return children_; }
    // Reads the directory again.
    void refresh();
    // The full path a row stands for.
    static QString row_path(const QListWidgetItem* item);

Q_SIGNALS:
    void path_changed(const QString& path);

private:
    void open_row(QListWidgetItem* item);
    QString path_;
    QStringList children_;
};
