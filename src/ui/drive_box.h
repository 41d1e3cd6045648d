#pragma once

#include <QComboBox>
#include <QString>
#include <QStringList>

// The drive box of this platform: the mounted roots a user can browse from
// ("/" first, then readable mount points such as /media/..., /mnt/..., /home)
// as a combo box. Choosing one, by the user or by the program, emits
// drive_changed once.
class DriveBox : public QComboBox {
    Q_OBJECT
public:
    explicit DriveBox(QWidget* parent = nullptr);

    // The chosen root.
    QString drive() const;
    // Chooses the root that holds `path` (the longest one that is a parent).
    void set_drive(const QString& path);
    // Reads the mounted roots again; the chosen one stays if it is still there.
    void refresh();
    // Offers exactly these roots instead of the mounted ones (tests, set-ups).
    void set_roots(const QStringList& roots);
    QStringList roots() const;

Q_SIGNALS:
    void drive_changed(const QString& drive);

private:
    void fill(const QStringList& roots);
    void on_index_changed(int index);
    QString current_;
};
