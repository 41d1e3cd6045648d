#include "pages/kept_text_box.h"

#include "pages/kept_text.h"

#include <QPlainTextEdit>
#include <QTextDocument>
#include <QVariant>

namespace {

constexpr const char* kKept = "quilldex_kept_text";
constexpr const char* kShown = "quilldex_kept_shown";

}  // namespace

void set_box_text(QPlainTextEdit* box, const QString& text) {
    box->setProperty(kKept, text);
    box->setProperty(kShown, QString());
    box->setPlainText(text);
    // What the box made of it, which is what the user starts from.
    box->setProperty(kShown, box->document()->toRawText());
}

QString box_text(const QPlainTextEdit* box) {
    return merge_kept_text(box->property(kKept).toString(), box->property(kShown).toString(),
                           box->document()->toRawText());
}
