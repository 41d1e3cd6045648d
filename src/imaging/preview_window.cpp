#include "imaging/preview_window.h"

#include "imaging/image_view.h"
#include "lists/image_panels.h"
#include "shell/run_error.h"
#include "shell/workbench.h"

#include <QDialog>
#include <QGroupBox>
#include <QVBoxLayout>

void open_preview(Workbench& wb) {
    AppState& app = wb.context().app;
    if (app.preview_file.isEmpty()) {
        return;
    }
    QDialog dialog(wb.window_widget());
    dialog.setObjectName(QStringLiteral("frm_preview_image"));
    dialog.setWindowTitle(app.preview_file);
    dialog.resize(800, 600);
    auto* frame = new QGroupBox(&dialog);
    frame->setObjectName(QStringLiteral("f_image"));
    frame->setGeometry(5, 5, 790, 590);
    auto* view = new ImageView(frame);
    view->setObjectName(QStringLiteral("o_image"));
    view->move(10, 10);
    passed_over([&] {
        view->control().set_file_name(app.preview_file);
        const auto tw = static_cast<float>(ImageControl::kScreenTwips);
        fit_to_frame(view->control(), static_cast<float>(frame->width()) * tw,
                     static_cast<float>(frame->height()) * tw);
    });
    dialog.exec();
}
