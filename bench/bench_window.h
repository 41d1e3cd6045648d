#pragma once

#include "bench_support.h"
#include "core/context.h"
#include "shell/main_window.h"
#include "ui/tab_page.h"
#include "ui/workbench.h"

#include <QList>
#include <QMainWindow>
#include <QPair>
#include <QStackedWidget>

namespace bench {

// Tab pages in a window of the real size, with the window's message-loop
// hooks, so that a long command gives the loop its turns as it would there.
// Messages go to standard error.
class BenchWindow : public Workbench {
public:
    explicit BenchWindow(AppState& app) : ctx_{app, dialogs_, hooks_, shell_} {
        window_.setObjectName(QStringLiteral("frm_main"));
        window_.resize(633, 474);
        pages_ = new QStackedWidget(&window_);
        window_.setCentralWidget(pages_);
        window_.show();
    }

    // Adds a page under its tab caption and returns it.
    template <class Page>
    Page* add_page(const QString& caption) {
        auto* page = new Page(*this, pages_);
        pages_->addWidget(page);
        captions_.append({page, caption});
        return page;
    }
    // Makes the page current and enters it.
    void show(TabPage* page) {
        pages_->setCurrentWidget(page);
        page->enter();
    }

    Context& context() override { return ctx_; }
    QWidget* window_widget() override { return &window_; }
    QString current_tab_caption() const override {
        for (const auto& [page, caption] : captions_) {
            if (page == pages_->currentWidget()) {
                return caption;
            }
        }
        return QString();
    }
    void set_tabs_enabled(bool) override {}
    void popup_item_menu() override {}

private:
    PrintingDialogs dialogs_;
    WindowHooks hooks_;
    NoShellServices shell_;
    Context ctx_;
    QMainWindow window_;
    QStackedWidget* pages_ = nullptr;
    QList<QPair<QWidget*, QString>> captions_;
};

}  // namespace bench
