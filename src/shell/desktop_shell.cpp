#include "shell/desktop_shell.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QUrl>

void DesktopShell::open_document(const QString& path_or_url) {
    const QUrl url = path_or_url.contains(QStringLiteral("://")) ? QUrl(path_or_url)
                                                                 : QUrl::fromLocalFile(path_or_url);
    QDesktopServices::openUrl(url);
}

void DesktopShell::show_text(const QString& title, const QString& text) {
    // A window of its own that lives until the user closes it; the caller
    // does not wait for it.
    auto* view = new QPlainTextEdit;
    view->setObjectName(QStringLiteral("text_viewer"));
    view->setAttribute(Qt::WA_DeleteOnClose);
    view->setReadOnly(true);
    view->setWindowTitle(title);
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view->setPlainText(text);
    view->resize(760, 560);
    view->show();
}
