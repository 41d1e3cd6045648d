#include "shell/workbench_pages.h"

#include "shell/main_window.h"
#include "shell/tab_page.h"
#include "shell/tab_strip.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {

// A tab whose page has not been built into this window yet.
class PendingPage : public TabPage {
public:
    PendingPage(Workbench& wb, QWidget* parent) : TabPage(wb, parent) {
        auto* layout = new QVBoxLayout(this);
        auto* label = new QLabel(QStringLiteral("This tab's commands are not available yet."), this);
        label->setAlignment(Qt::AlignCenter);
        layout->addWidget(label);
    }
};

template <class Page>
void add(MainWindow& window, TabStrip& tabs, const char* caption) {
    tabs.add_tab(new Page(window, &tabs), QString::fromLatin1(caption));
}

}  // namespace

void add_workbench_pages(MainWindow& window, TabStrip& tabs) {
    add<PendingPage>(window, tabs, "Main");
    add<PendingPage>(window, tabs, "Templates");
    add<PendingPage>(window, tabs, "Resize");
    add<PendingPage>(window, tabs, "Load");
    add<PendingPage>(window, tabs, "Search");
    add<PendingPage>(window, tabs, "Catalogs");
    add<PendingPage>(window, tabs, "Web Pages");
    add<PendingPage>(window, tabs, "Scan");
    add<PendingPage>(window, tabs, "Monitor");
    add<PendingPage>(window, tabs, "Index");
    add<PendingPage>(window, tabs, "Audit");
    add<PendingPage>(window, tabs, "11");
    add<PendingPage>(window, tabs, "Slides");
    add<PendingPage>(window, tabs, "Printing");
}
