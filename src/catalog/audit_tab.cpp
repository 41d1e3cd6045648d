#include "catalog/audit_tab.h"

#include "ui_audit_tab.h"

AuditTab::AuditTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::AuditTab) {
    ui_->setupUi(this);
}

AuditTab::~AuditTab() = default;
