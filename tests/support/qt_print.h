#pragma once

#include <QString>
#include <QStringList>

#include <ostream>

// Lets test failures print Qt strings as text.
inline void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}
inline void PrintTo(const QStringList& l, std::ostream* os) {
    *os << '{';
    for (int i = 0; i < l.size(); ++i) {
        *os << (i ? ", " : "") << '"' << l.at(i).toStdString() << '"';
    }
    *os << '}';
}
