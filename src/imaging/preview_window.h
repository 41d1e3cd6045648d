#pragma once

class Workbench;

// A click on a tab's viewer: when the preview file is set, the large
// preview opens centred and modal, and is unloaded when it closes.
void open_preview(Workbench& wb);
