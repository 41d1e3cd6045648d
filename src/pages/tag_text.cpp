#include "pages/tag_text.h"

#include "core/file_helpers.h"

#include <QDateTime>
#include <QFile>

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

// The lines of a text file joined with nothing between them: every line
// end is lost.
QString joined_lines(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        return QString();
    }
    QString text = QString::fromUtf8(f.readAll());
    text.remove(u'\r');
    text.remove(u'\n');
    return text;
}

}  // namespace

void expand_includes(QString& text) {
    static const QString open = QStringLiteral("[include=");
    int inserted = 0;
    for (;;) {
        const qsizetype at = find_tag(text, open);
        if (at < 0) {
            return;
        }
        const qsizetype from = at + open.size();
        const qsizetype close = text.indexOf(u']', from);
        if (close < 0) {
            text.remove(at, open.size());
            continue;
        }
        QString path = text.mid(from, close - from);
        if (!file_exists(path)) {
            text.remove(at, close + 1 - at);
            continue;
        }
        if (inserted == kMaxIncludes) {
            return;
        }
        ++inserted;
        text = text.left(at) + joined_lines(path) + text.mid(close + 1);
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
