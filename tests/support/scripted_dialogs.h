#pragma once

#include "core/dialogs.h"
#include "core/shell_services.h"
#include "core/window_hooks.h"

#include <deque>
#include <functional>
#include <optional>
#include <vector>

// Dialogs for tests: answers come from a script, and every dialog asked is
// recorded with its texts so that a test asserts what the user would read.
// A dialog with no scripted answer gets the harmless default: OK for a
// message, No for a question, Cancel (and "") for the rest.
class ScriptedDialogs : public Dialogs {
public:
    struct Asked {
        QString kind;  // "message", "input", "open_file", "color", "directory", "choose"
        QString text;  // message text or input prompt
        QString title;
        QString default_text;  // input default, file dialog filter
        Buttons buttons = Buttons::Ok;
        Icon icon = Icon::None;
        QString initial_directory;
        QString file_name;  // the file dialog's proposed name; the chooser's rows
    };

    // Scripted answers, consumed in order by the kind of dialog they fit.
    void answer(Answer a) { answers_.push_back(a); }
    void answer_input(const QString& text) { inputs_.push_back(text); }
    void answer_file(const QString& path) { files_.push_back(path); }
    void answer_color(std::optional<int> c) { colors_.push_back(c); }
    void answer_directory(const QString& path, bool cancelled = false) {
        directories_.push_back({path, cancelled});
    }

    Answer message(const QString& text, Buttons buttons, Icon icon) override;
    QString input(const QString& prompt, const QString& title,
                  const QString& default_text) override;
    QString open_file(const FileRequest& request) override;
    std::optional<int> choose_color(int initial) override;
    DirectoryChoice choose_directory(const QString& start) override;
    // Answered from the scripted inputs: the row whose text was scripted.
    std::optional<QString> choose_item(const QString& prompt, const QStringList& items,
                                       int current) override;

    const std::vector<Asked>& asked() const { return asked_; }
    // The texts of the message boxes shown, in order.
    QStringList messages() const;
    void clear() { asked_.clear(); }

private:
    std::vector<Asked> asked_;
    std::deque<Answer> answers_;
    std::deque<QString> inputs_;
    std::deque<QString> files_;
    std::deque<std::optional<int>> colors_;
    std::deque<DirectoryChoice> directories_;
};

// Records every status text set and every turn of the message loop.
class RecordingUi : public UiHooks {
public:
    void set_status(const QString& text) override {
        UiHooks::set_status(text);
        statuses << text;
    }
    // A running command's turn of the message loop; `on_turn` stands for
    // what another event would do then (a click on Cancel, a file deleted).
    void yield() override {
        ++yields;
        if (on_turn) {
            on_turn(yields);
        }
    }
    // Each progress shown, as "DONE/TOTAL", and "end" when it is hidden.
    void show_progress(int done, int total) override {
        progress << QStringLiteral("%1/%2").arg(done).arg(total);
    }
    void end_progress() override { progress << QStringLiteral("end"); }
    QStringList statuses;
    QStringList progress;
    int yields = 0;
    std::function<void(int turn)> on_turn;
};

// Records what would have been opened or shown.
class RecordingShell : public ShellServices {
public:
    void open_document(const QString& path) override { opened << path; }
    void show_text(const QString& title, const QString& text) override {
        shown_titles << title;
        shown_texts << text;
    }
    QStringList opened;
    QStringList shown_titles;
    QStringList shown_texts;
};
