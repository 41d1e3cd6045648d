#pragma once

#include <QListView>

// A list box of paths as the file lists of the tabs use it: a right button
// press is the list's own (it pops up the file list menu and leaves the
// selection as it is), and every left press or keyboard move of the current
// row is reported after the list has taken it, so that the tab can show the
// row's file.
class FileListView : public QListView {
    Q_OBJECT
public:
    explicit FileListView(QWidget* parent = nullptr);

Q_SIGNALS:
    // A left button press, after the selection has followed it.
    void left_pressed();
    // A right button press; the selection is untouched.
    void right_pressed();
    // The current row moved by a key.
    void current_moved_by_key();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
