#include "support/scripted_dialogs.h"

namespace {

// The next scripted answer, or `none` when the script has run out.
template <class T>
T next(std::deque<T>& answers, T none) {
    if (answers.empty()) {
        return none;
    }
    T a = answers.front();
    answers.pop_front();
    return a;
}

}  // namespace

Dialogs::Answer ScriptedDialogs::message(const QString& text, Buttons buttons, Icon icon) {
    asked_.push_back({QStringLiteral("message"), text, {}, {}, buttons, icon});
    return buttons == Buttons::Ok ? Answer::Ok : next(answers_, Answer::No);
}

QString ScriptedDialogs::input(const QString& prompt, const QString& title,
                               const QString& default_text) {
    asked_.push_back({QStringLiteral("input"), prompt, title, default_text});
    return next(inputs_, QString());
}

QString ScriptedDialogs::open_file(const FileRequest& request) {
    asked_.push_back({QStringLiteral("open_file"),
                      {},
                      request.title,
                      request.filter,
                      Buttons::Ok,
                      Icon::None,
                      request.initial_directory,
                      request.file_name});
    return next(files_, QString());
}

std::optional<int> ScriptedDialogs::choose_color(int initial) {
    asked_.push_back({QStringLiteral("color"), QString::number(initial)});
    return next(colors_, std::optional<int>());
}

Dialogs::DirectoryChoice ScriptedDialogs::choose_directory(const QString& start) {
    asked_.push_back({QStringLiteral("directory"), {}, {}, {}, Buttons::Ok, Icon::None, start});
    return next(directories_, DirectoryChoice{start, true});
}

std::optional<QString> ScriptedDialogs::choose_item(const QString& prompt, const QStringList& items,
                                                    int current) {
    asked_.push_back({QStringLiteral("choose"),
                      prompt,
                      {},
                      QString::number(current),
                      Buttons::Ok,
                      Icon::None,
                      {},
                      items.join(u'\n')});
    const QString a = next(inputs_, QString());
    return !a.isNull() && items.contains(a) ? std::optional<QString>(a) : std::nullopt;
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
