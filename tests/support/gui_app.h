#pragma once

// Makes the one QApplication that widget tests need (offscreen when no
// platform is set), with the application font of the window: DejaVu Sans 8 pt.
// Safe to call from every test; the application lives until the program ends.
void ensure_gui_app();
