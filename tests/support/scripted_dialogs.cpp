#include "support/scripted_dialogs.h"

Dialogs::Answer ScriptedDialogs::message(const QString& text, Buttons buttons, Icon icon) {
    asked_.push_back(
        {QStringLiteral("message"), text, QString(), QString(), buttons, icon, QString()});
    if (buttons == Buttons::Ok) {
        return Answer::Ok;
    }
    if (answers_.empty()) {
        return Answer::No;
    }
    const Answer a = answers_.front();
    answers_.pop_front();
    return a;
}

QString ScriptedDialogs::input(const QString& prompt, const QString& title,
                               const QString& default_text) {
    asked_.push_back(
        {QStringLiteral("input"), prompt, title, default_text, Buttons::Ok, Icon::None, QString()});
    if (inputs_.empty()) {
        return QString();
    }
    const QString a = inputs_.front();
    inputs_.pop_front();
    return a;
}

QString ScriptedDialogs::open_file(const FileRequest& request) {
    asked_.push_back({QStringLiteral("open_file"), QString(), request.title, request.filter,
                      Buttons::Ok, Icon::None, request.initial_directory, request.file_name});
    if (files_.empty()) {
        return QString();
    }
    const QString a = files_.front();
    files_.pop_front();
    return a;
}

std::optional<int> ScriptedDialogs::choose_color(int initial) {
    asked_.push_back({QStringLiteral("color"), QString::number(initial), QString(), QString(),
                      Buttons::Ok, Icon::None, QString()});
    if (colors_.empty()) {
        return std::nullopt;
    }
    const std::optional<int> a = colors_.front();
    colors_.pop_front();
    return a;
}

Dialogs::DirectoryChoice ScriptedDialogs::choose_directory(const QString& start) {
    asked_.push_back({QStringLiteral("directory"), QString(), QString(), QString(), Buttons::Ok,
                      Icon::None, start});
    if (directories_.empty()) {
        return {start, true};
    }
    const DirectoryChoice a = directories_.front();
    directories_.pop_front();
    return a;
}

std::optional<QString> ScriptedDialogs::choose_item(const QString& prompt, const QStringList& items,
                                                    int current) {
    asked_.push_back({QStringLiteral("choose"), prompt, QString(), QString::number(current),
                      Buttons::Ok, Icon::None, QString(), items.join(u'\n')});
    if (inputs_.empty()) {
        return std::nullopt;
    }
    const QString a = inputs_.front();
    inputs_.pop_front();
    if (!items.contains(a)) {
        return std::nullopt;
    }
    return a;
}

QStringList ScriptedDialogs::messages() const {
    QStringList out;
    for (const Asked& a : asked_) {
        if (a.kind == QStringLiteral("message")) {
            out << a.text;
        }
    }
    return out;
}
