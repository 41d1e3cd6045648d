#include "shell/workbench_pages.h"

#include "catalog/audit_tab.h"
#include "catalog/catalogs_tab.h"
#include "catalog/search_tab.h"
#include "imaging/printing_tab.h"
#include "imaging/resize_tab.h"
#include "imaging/scan_tab.h"
#include "lists/load_tab.h"
#include "lists/main_tab.h"
#include "monitor/monitor_tab.h"
#include "pages/index_tab.h"
#include "pages/templates_tab.h"
#include "pages/web_pages_tab.h"
#include "shell/spare_tab.h"
#include "slides/slides_tab.h"

#include "shell/main_window.h"
#include "shell/tab_strip.h"
#include "ui/tab_page.h"

namespace {

template <class Page>
void add(MainWindow& window, TabStrip& tabs, const char* caption) {
    tabs.add_tab(new Page(window, &tabs), QString::fromLatin1(caption));
}

}  // namespace

void add_workbench_pages(MainWindow& window, TabStrip& tabs) {
    add<MainTab>(window, tabs, "Main");
    add<TemplatesTab>(window, tabs, "Templates");
    add<ResizeTab>(window, tabs, "Resize");
    add<LoadTab>(window, tabs, "Load");
    add<SearchTab>(window, tabs, "Search");
    add<CatalogsTab>(window, tabs, "Catalogs");
    add<WebPagesTab>(window, tabs, "Web Pages");
    add<ScanTab>(window, tabs, "Scan");
    add<MonitorTab>(window, tabs, "Monitor");
    add<IndexTab>(window, tabs, "Index");
    add<AuditTab>(window, tabs, "Audit");
    add<SpareTab>(window, tabs, "11");
    add<SlidesTab>(window, tabs, "Slides");
    add<PrintingTab>(window, tabs, "Printing");
}
