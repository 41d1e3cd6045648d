#include "pages/tag_text.h"

#include "core/file_helpers.h"

#include <QDateTime>
#include <QFile>

#include <algorithm>
#include <vector>

qsizetype find_tag(const QString& text, const QString& tag) {
    return text.indexOf(tag, 0, Qt::CaseInsensitive);
}

bool replace_once(QString& text, const QString& tag, const std::function<QString()>& value) {
    const qsizetype at = find_tag(text, tag);
    if (at < 0) {
        return false;
    }
    const QString v = value();
    text = text.left(at) + v + text.mid(at + tag.size());
    return true;
}

bool replace_once(QString& text, const QString& tag, const QString& value) {
    const qsizetype at = find_tag(text, tag);
    if (at < 0) {
        return false;
    }
    text = text.left(at) + value + text.mid(at + tag.size());
    return true;
}

namespace {

// A byte that is not part of a UTF-8 character stands in the text as a lone
// low surrogate, U+DC80 to U+DCFF, which no valid UTF-8 can give.
constexpr char16_t kByteStandIn = 0xDC00;

bool is_byte_stand_in(const QString& text, qsizetype i) {
    const char16_t c = text.at(i).unicode();
    return c >= 0xDC80 && c <= 0xDCFF && (i == 0 || !text.at(i - 1).isHighSurrogate());
}

// Length of the valid UTF-8 character starting at `p`, or 0.
int utf8_length(const uchar* p, qsizetype left) {
    const uchar b = p[0];
    int n = 0;
    char32_t min = 0;
    char32_t cp = 0;
    if (b < 0x80) {
        return 1;
    } else if ((b & 0xE0) == 0xC0) {
        n = 2, min = 0x80, cp = b & 0x1F;
    } else if ((b & 0xF0) == 0xE0) {
        n = 3, min = 0x800, cp = b & 0x0F;
    } else if ((b & 0xF8) == 0xF0) {
        n = 4, min = 0x10000, cp = b & 0x07;
    } else {
        return 0;
    }
    if (left < n) {
        return 0;
    }
    for (int k = 1; k < n; ++k) {
        if ((p[k] & 0xC0) != 0x80) {
            return 0;
        }
        cp = (cp << 6) | (p[k] & 0x3F);
    }
    const bool surrogate = cp >= 0xD800 && cp <= 0xDFFF;
    return cp < min || cp > 0x10FFFF || surrogate ? 0 : n;
}

// The lines of a text file joined with nothing between them: every line
// end is lost.
QString joined_lines(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        return QString();
    }
    QByteArray bytes = f.readAll();
    bytes.replace('\r', QByteArray());
    bytes.replace('\n', QByteArray());
    return page_text(bytes);
}

// Where a file the loop put in stands in the text, and how deep it is. The
// search only moves on through the text, so the files around the place it has
// reached are nested: a stack, innermost last.
struct Inserted {
    qsizetype begin;
    qsizetype end;
    int depth;
};

// The depth at `at`: that of the innermost inserted file around it. Files that
// end before it are behind the search for good and are let go.
int depth_at(std::vector<Inserted>& spans, qsizetype at) {
    while (!spans.empty() && spans.back().end <= at) {
        spans.pop_back();
    }
    return spans.empty() ? 0 : spans.back().depth;
}

// Replaces `length` characters at `at` by `with`, keeping the spans in step.
void splice(QString& text, std::vector<Inserted>& spans, qsizetype at, qsizetype length,
            const QString& with) {
    text.replace(at, length, with);
    const qsizetype delta = with.size() - length;
    for (Inserted& s : spans) {
        if (s.begin >= at + length) {
            s.begin += delta;
            s.end += delta;
        } else if (s.end > at) {
            s.end = std::max(s.begin, s.end + delta);
        }
    }
}

}  // namespace

QString page_text(const QByteArray& bytes) {
    const QString fast = QString::fromUtf8(bytes);
    if (!fast.contains(QChar::ReplacementCharacter)) {
        return fast;
    }
    QString out;
    out.reserve(bytes.size());
    const auto* p = reinterpret_cast<const uchar*>(bytes.constData());
    const qsizetype n = bytes.size();
    qsizetype i = 0;
    while (i < n) {
        const int len = utf8_length(p + i, n - i);
        if (len == 0) {
            out += QChar(char16_t(kByteStandIn + p[i]));
            ++i;
        } else {
            out += QString::fromUtf8(reinterpret_cast<const char*>(p + i), len);
            i += len;
        }
    }
    return out;
}

QByteArray page_bytes(const QString& text) {
    QByteArray out;
    qsizetype run = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (is_byte_stand_in(text, i)) {
            out += QStringView(text).mid(run, i - run).toUtf8();
            out += char(text.at(i).unicode() - kByteStandIn);
            run = i + 1;
        }
    }
    if (run == 0) {
        return text.toUtf8();
    }
    out += QStringView(text).mid(run).toUtf8();
    return out;
}

void expand_includes(QString& text) {
    static const QString open = QStringLiteral("[include=");
    std::vector<Inserted> spans;
    qsizetype from_here = 0;
    for (;;) {
        // Nothing before the last tag found holds "[include=" any more, but a
        // removal may have joined one across the cut: look a tag's length back.
        const qsizetype at = text.indexOf(open, std::max<qsizetype>(0, from_here - open.size()),
                                          Qt::CaseInsensitive);
        if (at < 0) {
            return;
        }
        from_here = at;
        const qsizetype from = at + open.size();
        const qsizetype close = text.indexOf(u']', from);
        if (close < 0) {
            splice(text, spans, at, open.size(), QString());
            continue;
        }
        QString path = text.mid(from, close - from);
        const int depth = depth_at(spans, at) + 1;
        if (!file_exists(path) || depth > kMaxIncludeDepth) {
            splice(text, spans, at, close + 1 - at, QString());
            continue;
        }
        const QString lines = joined_lines(path);
        if (text.size() - (close + 1 - at) + lines.size() > kMaxIncludedText) {
            splice(text, spans, at, close + 1 - at, QString());
            continue;
        }
        splice(text, spans, at, close + 1 - at, lines);
        spans.push_back({at, at + lines.size(), depth});
    }
}

bool is_web_image(const QString& path) {
    const QString lower = path.toLower();
    return lower.contains(QLatin1String(".gif")) || lower.contains(QLatin1String(".jpg"));
}

int count_image_tags(const QString& text) {
    return static_cast<int>(text.count(QLatin1String("[imgsrc]"), Qt::CaseInsensitive) +
                            text.count(QLatin1String("[timgsrc]"), Qt::CaseInsensitive));
}

QString size_text(int value) {
    return value < 0 ? QString::number(value) : u' ' + QString::number(value);
}

QString page_date() {
    return QDate::currentDate().toString(QStringLiteral("MM-dd-yyyy"));
}

QString page_time() {
    return QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
}

QString slide_page_name(const QString& path) {
    QString name = file_name_of(path);
    const qsizetype dot = name.indexOf(u'.');
    if (dot >= 0) {
        name.truncate(dot);
    }
    return name + QStringLiteral(".htm");
}
