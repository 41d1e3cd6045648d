#pragma once

#include "support/test_home.h"
#include "ui/tab_page.h"
#include "ui/workbench.h"

#include <QMainWindow>
#include <QStackedWidget>

#include <memory>

// A window for page tests: holds the pages a test adds, answers the
// workbench's questions from a TestHome, and records menu pop-ups. Controls
// that a page reads from a tab the test does not add can be planted with
// `plant<T>(name)`.
class TestWorkbench : public Workbench {
public:
    explicit TestWorkbench(TestHome& home);

    template <class Page>
    Page* add_page(const QString& caption) {
        auto* page = new Page(*this, pages_);
        add(page, caption);
        return page;
    }
    void add(TabPage* page, const QString& caption);
    // Makes the page with this caption current and enters it.
    void enter(const QString& caption);

    // A stand-in control of another tab, parented to the window.
    template <class T>
    T* plant(const QString& name) {
        auto* w = new T(window_.get());
        w->setObjectName(name);
        w->hide();
        return w;
    }

    Context& context() override { return home_.ctx; }
    QWidget* window_widget() override { return window_.get(); }
    QString current_tab_caption() const override { return caption_; }
    void set_tabs_enabled(bool enabled) override { tabs_enabled = enabled; }
    void popup_item_menu() override { ++menu_popups; }

    QMainWindow& window() { return *window_; }
    bool tabs_enabled = true;
    int menu_popups = 0;

private:
    TestHome& home_;
    std::unique_ptr<QMainWindow> window_;
    QStackedWidget* pages_ = nullptr;
    QList<QPair<QString, TabPage*>> list_;
    QString caption_;
};
