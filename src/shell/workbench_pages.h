#pragma once

class MainWindow;
class TabStrip;

// Builds the fourteen pages of the window, in tab order.
void add_workbench_pages(MainWindow& window, TabStrip& tabs);
