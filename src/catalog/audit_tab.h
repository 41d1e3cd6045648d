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

private:
    std::unique_ptr<Ui::AuditTab> ui_;
};
