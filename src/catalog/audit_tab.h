#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class AuditTab;
}

// The Audit tab: how complete the catalog is, and the maintenance commands
// that remove rows or fill in titles.
class AuditTab : public TabPage {
    Q_OBJECT
public:
    explicit AuditTab(Workbench& wb, QWidget* parent = nullptr);
    ~AuditTab() override;

    // The commands afresh, none selected, then the counts.
    void enter() override;

    // b_audit_do_it_now: the selected command, then the counts. Nothing
    // happens with none selected.
    void do_it_now();

    // Mode "load" fills the command list; mode "process" runs `command`; any
    // other mode does nothing.
    void audit_database(const QString& mode, const QString& command = QString());
    // Writes the five counts to their boxes.
    void refresh_counts();

private:
    std::unique_ptr<Ui::AuditTab> ui_;
};
