#include "pages/page_options_ui.h"

#include "ui/workbench.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>

namespace {

QString line_text(Workbench& wb, const char* name) {
    auto* box = wb.find<QLineEdit>(QLatin1String(name));
    return box ? box->text() : QString();
}

QString label_text(Workbench& wb, const char* name) {
    auto* label = wb.find<QLabel>(QLatin1String(name));
    return label ? label->text() : QString();
}

}  // namespace

PageOptions read_page_options(Workbench& wb) {
    PageOptions page;
    page.target_directory = line_text(wb, "o_html_target_directory");
    if (auto* box = wb.find<QCheckBox>(QStringLiteral("o_html_make_slide_show"))) {
        page.make_slide_show = box->isChecked();
    }
    page.slide_show_delay = line_text(wb, "o_html_slide_show_delay");
    page.background_image = line_text(wb, "o_html_background_image");
    page.background_color = label_text(wb, "o_html_background_color");
    page.text_color = label_text(wb, "o_html_text_color");
    if (auto* list = wb.find<QListWidget>(QStringLiteral("o_template_list"))) {
        const QList<QListWidgetItem*> selected = list->selectedItems();
        if (!selected.isEmpty()) {
            page.listed_template = selected.first()->text();
        }
    }
    QPointer<QPushButton> create = wb.find<QPushButton>(QStringLiteral("b_html_create_html"));
    page.create_button_visible = [create] { return create && !create->isHidden(); };
    return page;
}
