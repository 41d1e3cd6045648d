#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class WebPagesTab;
}  // namespace Ui

// The Web Pages tab: the main list through one template into one page, or a
// chain of slide pages. Each choice is written to the settings file as it
// changes; "Create Web Page(s)" reads the controls into a request, runs it,
// and shows what the run filled in. While a run goes on, "Stop Creating Web
// Page(s)" stands in the place of the create button, and pressing it is the
// stop signal that the run looks at between pages and images.
// The frame "Profiles" saves and recalls named sets of the tab's choices.
class WebPagesTab : public TabPage {
    Q_OBJECT
public:
    explicit WebPagesTab(Workbench& workbench, QWidget* parent = nullptr);
    ~WebPagesTab() override;

    void enter() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connect_settings();
    void create_pages();
    void stop_creating();
    void select_target_directory();
    void profile(const QString& operation);
    void restore_colour(const char* label, const QString& text_key, const QString& back_key);

    std::unique_ptr<Ui::WebPagesTab> ui_;
    QString colour_dialog_directory_;  // where the colour form's image dialog opens
};
