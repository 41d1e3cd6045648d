#pragma once

#include "core/dialogs.h"

#include <QPointer>
#include <QString>
#include <QWidget>

// The window's dialogs: Qt message, input, file and colour dialogs, every one
// captioned with the application title, and the directory chooser frm_tempdir.
// All are modal over the parent window.
class QtDialogs : public Dialogs {
public:
    explicit QtDialogs(QString application_title, QWidget* parent = nullptr);

    void set_parent(QWidget* parent) { parent_ = parent; }
    QWidget* parent() const { return parent_; }
    const QString& title() const { return title_; }

    Answer message(const QString& text, Buttons buttons, Icon icon) override;
    QString input(const QString& prompt, const QString& title,
                  const QString& default_text) override;
    QString open_file(const FileRequest& request) override;
    std::optional<int> choose_color(int initial) override;
    DirectoryChoice choose_directory(const QString& start) override;
    std::optional<QString> choose_item(const QString& prompt, const QStringList& items,
                                       int current) override;

private:
    QString title_;
    QPointer<QWidget> parent_;
};
