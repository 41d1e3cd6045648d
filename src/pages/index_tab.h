#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class IndexTab;
}

class QAbstractButton;
struct IndexRequest;

// The Index tab: writes a linked index of the main list, with no frames or
// as a frameset, from the chosen templates into a target directory. Each
// choice is written to section Index of the settings as it changes, and
// entering the tab restores them; "Create Index" reads the controls into a
// request and runs it.
class IndexTab : public TabPage {
    Q_OBJECT
public:
    explicit IndexTab(Workbench& wb, QWidget* parent = nullptr);
    ~IndexTab() override;

    void enter() override;

private:
    void connect_settings();
    void restore();
    void create();
    void prepare_thumbnails(const QString& target);
    IndexRequest read_request();

    std::unique_ptr<Ui::IndexTab> ui_;
};
