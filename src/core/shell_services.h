#pragma once

#include <QString>

// The platform's "open" and a window that really shows a text to the user.
class ShellServices {
public:
    virtual ~ShellServices() = default;
    // Opens a path or URL with the default application; no result is checked.
    virtual void open_document(const QString& path_or_url) = 0;
    // Shows a text read-only, without waiting for the user to close it.
    virtual void show_text(const QString& title, const QString& text) = 0;
};

// Does nothing: for the command-line program, which opens no browser.
class NoShellServices : public ShellServices {
public:
    void open_document(const QString&) override {}
    void show_text(const QString&, const QString&) override {}
};
