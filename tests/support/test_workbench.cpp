#include "support/test_workbench.h"

TestWorkbench::TestWorkbench(TestHome& home) : home_(home), window_(new QMainWindow) {
    window_->setObjectName(QStringLiteral("frm_main"));
    pages_ = new QStackedWidget(window_.get());
    window_->setCentralWidget(pages_);
    window_->resize(633, 474);
}

void TestWorkbench::add(TabPage* page, const QString& caption) {
    pages_->addWidget(page);
    list_.append({caption, page});
    if (caption_.isEmpty()) {
        caption_ = caption;
    }
}

void TestWorkbench::enter(const QString& caption) {
    for (const auto& [c, page] : list_) {
        if (c == caption) {
            caption_ = c;
            pages_->setCurrentWidget(page);
            page->enter();
            return;
        }
    }
}
