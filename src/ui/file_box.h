#pragma once

#include <QListWidget>
#include <QString>
#include <QStringList>

// The file box of this platform: the plain files of one directory that match
// a pattern list ("*.gif;*.jpg": ";" separates patterns, matching ignores
// case), sorted without regard to case. Setting the path or the pattern
// lists the directory again; a directory that cannot be read lists nothing.
class FileBox : public QListWidget {
    Q_OBJECT
public:
    explicit FileBox(QWidget* parent = nullptr);

    QString path() const { return path_; }
    void set_path(const QString& path);
    QString pattern() const { return pattern_; }
    void set_pattern(const QString& pattern);
    // Names only, in list order.
    QStringList file_names() const { return names_; }
    void refresh();

private:
    QString path_;
    QString pattern_ = QStringLiteral("*.*");
    QStringList names_;
};
