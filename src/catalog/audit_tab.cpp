#include "catalog/audit_tab.h"

#include "ui_audit_tab.h"

#include "catalog/audit.h"

AuditTab::AuditTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::AuditTab) {
    ui_->setupUi(this);
    connect(ui_->b_audit_do_it_now, &QPushButton::clicked, this, &AuditTab::do_it_now);
}

AuditTab::~AuditTab() = default;

void AuditTab::enter() {
    audit_database(QStringLiteral("load"));
    refresh_counts();
}

void AuditTab::do_it_now() {
    const QListWidgetItem* item = ui_->o_audit_command->currentItem();
    const QString command = item && item->isSelected() ? item->text() : QString();
    if (command.isEmpty()) {
        return;
    }
    audit_database(QStringLiteral("process"), command);
    refresh_counts();
}

void AuditTab::audit_database(const QString& mode, const QString& command) {
    if (mode == QLatin1String("load")) {
        ui_->o_audit_command->clear();
        ui_->o_audit_command->addItems(audit_commands());
    } else if (mode == QLatin1String("process")) {
        run_audit_command(ctx(), command);
    }
}

void AuditTab::refresh_counts() {
    QLineEdit* boxes[] = {ui_->o_audit_db_file_count, ui_->o_audit_files_wo_titles,
                          ui_->o_audit_files_wo_descriptions, ui_->o_audit_files_wo_category,
                          ui_->o_audit_files_wo_keywords};
    const auto counts = audit_counts(ctx());
    for (int i = 0; i < counts.size() && i < 5; ++i) {
        boxes[i]->setText(counts.at(i).second);
    }
}
