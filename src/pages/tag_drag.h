#pragma once

#include <QObject>

#include <functional>

class QListWidget;
class QPlainTextEdit;

// Tags dragged from a list onto text boxes. A press of the left button on
// the list turns its dragging on, any other button turns it off; a drop on
// a box runs the box's handler, which inserts the tag and turns dragging off.
// Nothing else is accepted as a drop on the boxes.
class TagDrag : public QObject {
    Q_OBJECT
public:
    explicit TagDrag(QListWidget* tags, QObject* parent = nullptr);

    void add_target(QPlainTextEdit* box, std::function<void(QPlainTextEdit*)> on_drop);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QListWidget* tags_;
    QList<QPair<QObject*, QPlainTextEdit*>> viewports_;
    QList<std::function<void(QPlainTextEdit*)>> handlers_;
};

// Splits the box's text at its selection start and puts `insert` between
// the two parts; a selection is not replaced.
void insert_at_selection_start(QPlainTextEdit* box, const QString& insert);
