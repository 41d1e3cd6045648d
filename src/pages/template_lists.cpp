#include "pages/template_lists.h"

#include "pages/template_store.h"
#include "ui/workbench.h"

#include <QComboBox>
#include <QListWidget>
#include <QSignalBlocker>

#include <array>

namespace {

void fill_lists(Workbench& wb, bool index_boxes) {
    const QStringList names = template_names(wb.context().app);
    if (names.isEmpty()) {
        return;
    }
    static const std::array<const char*, 4> kIndexBoxes = {
        "o_index_right_frame", "o_index_top_frame", "o_index_left_frame", "o_index_no_frame"};
    std::array<QComboBox*, 4> boxes{};
    std::array<QString, 4> shown;
    for (size_t i = 0; index_boxes && i < kIndexBoxes.size(); ++i) {
        boxes[i] = wb.find<QComboBox>(QLatin1String(kIndexBoxes[i]));
        if (boxes[i]) {
            shown[i] = boxes[i]->currentText();
        }
    }
    if (auto* list = wb.find<QListWidget>(QStringLiteral("o_template_list"))) {
        list->clear();
        list->addItems(names);
    }
    for (size_t i = 0; i < boxes.size(); ++i) {
        QComboBox* box = boxes[i];
        if (!box) {
            continue;
        }
        {
            // Refilling chooses no row of the user's: the box's own handler
            // hears only of the row that is chosen again below.
            const QSignalBlocker quiet(box);
            box->clear();
            box->addItems(names);
            box->setCurrentIndex(-1);
        }
        box->setCurrentIndex(box->findText(shown[i], Qt::MatchExactly | Qt::MatchCaseSensitive));
    }
}

}  // namespace

void fill_template_lists(Workbench& wb) {
    fill_lists(wb, true);
}

void fill_template_list(Workbench& wb) {
    fill_lists(wb, false);
}
