#pragma once

#include "core/context.h"

#include <QString>
#include <QWidget>

// What the pages and dialogs of the window need of the main window, frm_main.
// Controls of other tabs are reached by their names, as commands name them:
// wb.find<QComboBox>("o_load_catalog").
class Workbench {
public:
    virtual ~Workbench() = default;

    virtual Context& context() = 0;
    // frm_main itself; every named control of the workbench is below it.
    virtual QWidget* window_widget() = 0;
    // Caption of the current tab of SSTab ("Main", "Load", ...).
    virtual QString current_tab_caption() const = 0;
    // Enables or disables SSTab (the slide show disables it while it runs).
    virtual void set_tabs_enabled(bool enabled) = 0;
    // Pops up the shared file list menu, rightmousemenu, at the pointer.
    virtual void popup_item_menu() = 0;

    template <class T>
    T* find(const QString& object_name) {
        return window_widget()->findChild<T*>(object_name);
    }
};
