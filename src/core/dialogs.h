#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// Every message, input and file dialog of the application goes through this
// interface. The window uses Qt dialogs; tests script the answers and record
// what was asked; the command-line program prints messages and cancels the rest.
// Every message box is captioned with the application title, so callers do not
// pass one.
class Dialogs {
public:
    enum class Buttons { Ok, YesNo, YesNoCancel };
    enum class Icon { None, Information, Question };
    enum class Answer { Ok, Yes, No, Cancel };

    struct FileRequest {
        QString title;
        QString filter;  // "Name (*.ext)|*.ext|All Files (*.*)|*.*"
        QString initial_directory;
        QString file_name;
        // False lets the user name a file that is not there yet.
        bool must_exist = true;
        // The file name box also takes the URL of a catalog on a server.
        bool takes_server_url = false;
    };

    // Result of the directory chooser: the path its label shows when it closes,
    // whether it was closed by OK or by Cancel.
    struct DirectoryChoice {
        QString path;
        bool cancelled = false;
    };

    virtual ~Dialogs() = default;

    virtual Answer message(const QString& text, Buttons buttons = Buttons::Ok,
                           Icon icon = Icon::Information) = 0;
    // An input box: "" when cancelled, like an empty answer.
    virtual QString input(const QString& prompt, const QString& title,
                          const QString& default_text = QString()) = 0;
    // The open-file dialog: the chosen path, "" when cancelled.
    virtual QString open_file(const FileRequest& request) = 0;
    // The colour dialog: a colour number (red in the low byte), nothing when cancelled.
    virtual std::optional<int> choose_color(int initial) = 0;
    // The directory chooser, opened at `start`.
    virtual DirectoryChoice choose_directory(const QString& start) = 0;
    // A chooser of one row of `items`, opened on row `current`: the chosen
    // row's text, nothing when cancelled. Without a chooser, nothing is chosen.
    virtual std::optional<QString> choose_item(const QString& prompt, const QStringList& items,
                                               int current) {
        (void)prompt, (void)items, (void)current;
        return std::nullopt;
    }

    // An information box with OK.
    void info(const QString& text) { message(text, Buttons::Ok, Icon::Information); }
    // A plain box with OK and no icon.
    void plain(const QString& text) { message(text, Buttons::Ok, Icon::None); }
    // A Yes/No question; true for Yes.
    bool ask_yes_no(const QString& text) {
        return message(text, Buttons::YesNo, Icon::Question) == Answer::Yes;
    }
};
