#pragma once

#include "core/shell_services.h"

// The platform's "open" (the default application of a file or URL) and a
// read-only text window of our own.
class DesktopShell : public ShellServices {
public:
    void open_document(const QString& path_or_url) override;
    void show_text(const QString& title, const QString& text) override;
};
