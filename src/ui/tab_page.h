#pragma once

#include "ui/workbench.h"

#include <QWidget>

// One tab of the workbench. Its controls come from the page's .ui file and
// carry their described names; the page's class adds the handlers. Entering
// the tab calls enter(), which rebuilds what the tab shows.
class TabPage : public QWidget {
    Q_OBJECT
public:
    TabPage(Workbench& workbench, QWidget* parent = nullptr) : QWidget(parent), wb_(workbench) {}

    // Rebuilds the page on entry of its tab.
    virtual void enter() {}

protected:
    Context& ctx() { return wb_.context(); }
    AppState& app() { return wb_.context().app; }
    Workbench& wb_;
};
