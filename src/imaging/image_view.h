#pragma once

#include "imaging/image_control.h"

#include <QWidget>

// Shows an ImageControl in the window: the widget takes the control's
// Width and Height (15 twips a pixel) and paints the picture as the
// control's ViewMode says. A click on the picture is `clicked()`, a key
// pressed while it has the focus `key_pressed(key)`.
class ImageView : public QWidget {
    Q_OBJECT
public:
    explicit ImageView(QWidget* parent = nullptr);

    ImageControl& control() { return control_; }
    const ImageControl& control() const { return control_; }

    QSize sizeHint() const override;

Q_SIGNALS:
    void clicked();
    void key_pressed(int key);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void follow_control();
    ImageControl control_;
    // The picture last painted from a file that decoded; a file whose pixels
    // turn out damaged leaves it standing, as a file that fails to load does.
    QImage last_painted_;
};
