#include "shell/dialog_filter.h"

#include <QRegularExpression>

QStringList qt_name_filters(const QString& filter) {
    QStringList out;
    if (filter.trimmed().isEmpty()) {
        return out;
    }
    const QStringList parts = filter.split(u'|');
    for (qsizetype i = 0; i < parts.size(); i += 2) {
        QString description = parts.at(i).trimmed();
        QStringList patterns;
        if (i + 1 < parts.size()) {
            for (const QString& p : parts.at(i + 1).split(u';', Qt::SkipEmptyParts)) {
                const QString t = p.trimmed();
                if (!t.isEmpty()) {
                    patterns << (t == QLatin1String("*.*") ? QStringLiteral("*") : t);
                }
            }
        }
        if (patterns.isEmpty()) {
            patterns << QStringLiteral("*");
        }
        patterns.removeDuplicates();
        // Qt reads the patterns from the closing parentheses, so the ones
        // written in the description give way to the real list.
        static const QRegularExpression kClosingGroup(QStringLiteral("\\s*\\([^()]*\\)$"));
        description.remove(kClosingGroup);
        if (description.isEmpty()) {
            description = patterns.join(u' ');
        }
        out << description + QStringLiteral(" (") + patterns.join(u' ') + u')';
    }
    return out;
}

QColor color_from_number(int number) {
    return QColor(number & 0xFF, (number >> 8) & 0xFF, (number >> 16) & 0xFF);
}

int color_number(const QColor& color) {
    return color.red() | (color.green() << 8) | (color.blue() << 16);
}
