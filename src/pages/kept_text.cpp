#include "pages/kept_text.h"

#include "pages/tag_text.h"

#include <algorithm>

namespace {

constexpr char16_t kParagraph = 0x2029;

}  // namespace

QString shown_form(const QString& text, std::vector<qsizetype>* map) {
    QString out;
    out.reserve(text.size());
    if (map) {
        map->clear();
        map->reserve(static_cast<size_t>(text.size()) + 1);
    }
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (map) {
            map->push_back(i);
        }
        const QChar c = text.at(i);
        if (c == u'\r' || c == u'\n') {
            out += QChar(kParagraph);
            if (c == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n') {
                ++i;
            }
        } else {
            out += c;
        }
    }
    if (map) {
        map->push_back(text.size());
    }
    return out;
}

QString merge_kept_text(const QString& kept, const QString& shown_before,
                        const QString& shown_now) {
    if (shown_now == shown_before) {
        return kept;
    }
    std::vector<qsizetype> map;
    if (shown_form(kept, &map) != shown_before) {
        // The box was not given this text: all it shows is the user's.
        QString fresh = shown_now;
        return fresh.replace(QChar(kParagraph), kCrLf);
    }
    // One stretch differs between before and now; around it both agree.
    const qsizetype before_n = shown_before.size();
    const qsizetype now_n = shown_now.size();
    qsizetype prefix = 0;
    while (prefix < before_n && prefix < now_n && shown_before[prefix] == shown_now[prefix]) {
        ++prefix;
    }
    qsizetype suffix = 0;
    while (suffix < before_n - prefix && suffix < now_n - prefix &&
           shown_before[before_n - 1 - suffix] == shown_now[now_n - 1 - suffix]) {
        ++suffix;
    }
    QString typed = shown_now.mid(prefix, now_n - prefix - suffix);
    typed.replace(QChar(kParagraph), kCrLf);
    const qsizetype cut_from = map[static_cast<size_t>(prefix)];
    const qsizetype cut_to = map[static_cast<size_t>(before_n - suffix)];
    return kept.left(cut_from) + typed + kept.mid(cut_to);
}
