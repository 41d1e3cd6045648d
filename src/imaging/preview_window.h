#pragma once

#include <QDialog>

#include <memory>

class ImageView;
class QFrame;
class Workbench;

namespace Ui {
class PreviewWindow;
}

// frm_preview_image: the preview file as large as the window allows, on the
// frame f_image. Tab viewers open it modally; the slide show keeps one open
// and calls load() for each slide. The space key pauses and resumes the
// show's music and sets the pause flag; closing the window stops the music
// and enables the tabs again.
class PreviewWindow : public QDialog {
    Q_OBJECT
public:
    explicit PreviewWindow(Workbench& workbench, QWidget* parent = nullptr);
    ~PreviewWindow() override;

    // Shows the preview file fitted on the frame, the caption its path. A
    // file that cannot be read leaves the last picture, with no message.
    void load();
    // Sizes the frame on the window and the image on the frame; the picture
    // follows the image as its ViewMode stands, with no new fit.
    void lay_out();
    // A key, from the window or from the image: a beep for every key, and the
    // space key toggles the pause.
    void key_pressed(int key);

    ImageView* image() const;
    QFrame* frame() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void unload();

    Workbench& wb_;
    std::unique_ptr<Ui::PreviewWindow> ui_;
    QSize laid_out_for_;
    bool was_minimised_ = false;
};

// A click on a tab's viewer: when the preview file is set, the preview opens
// centred and modal, and is unloaded when it closes.
void open_preview(Workbench& wb);
