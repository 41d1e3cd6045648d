#include "imaging/numeric_text.h"

#include "core/run_error.h"

#include <cmath>

namespace {

bool is_blank(QChar c) {
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

double radix_value(const QString& s, int start, int radix) {
    double v = 0;
    for (int i = start; i < s.size(); ++i) {
        const char16_t c = s.at(i).toLower().unicode();
        int d = -1;
        if (c >= u'0' && c <= u'9') {
            d = c - u'0';
        } else if (c >= u'a' && c <= u'f') {
            d = c - u'a' + 10;
        }
        if (d < 0 || d >= radix) {
            break;
        }
        v = v * radix + d;
    }
    return v;
}

}  // namespace

double val_of_text(const QString& text) {
    QString s;
    s.reserve(text.size());
    for (QChar c : text) {
        if (!is_blank(c)) {
            s.append(c);
        }
    }
    if (s.size() >= 2 && s.at(0) == u'&') {
        const QChar k = s.at(1).toUpper();
        if (k == u'H') {
            return radix_value(s, 2, 16);
        }
        if (k == u'O') {
            return radix_value(s, 2, 8);
        }
        return 0;
    }
    // Longest prefix of the form [+-]digits[.digits][(E|D)[+-]digits].
    int i = 0;
    QString num;
    if (i < s.size() && (s.at(i) == u'+' || s.at(i) == u'-')) {
        num.append(s.at(i++));
    }
    bool digits = false;
    while (i < s.size() && s.at(i).isDigit() && s.at(i).unicode() < 128) {
        num.append(s.at(i++));
        digits = true;
    }
    if (i < s.size() && s.at(i) == u'.') {
        num.append(s.at(i++));
        while (i < s.size() && s.at(i).isDigit() && s.at(i).unicode() < 128) {
            num.append(s.at(i++));
            digits = true;
        }
    }
    if (!digits) {
        return 0;
    }
    if (i < s.size() && (s.at(i).toUpper() == u'E' || s.at(i).toUpper() == u'D')) {
        int j = i + 1;
        QString exp = QStringLiteral("e");
        if (j < s.size() && (s.at(j) == u'+' || s.at(j) == u'-')) {
            exp.append(s.at(j++));
        }
        const int first = j;
        while (j < s.size() && s.at(j).isDigit() && s.at(j).unicode() < 128) {
            exp.append(s.at(j++));
        }
        if (j > first) {
            num.append(exp);
        }
    }
    bool ok = false;
    const double v = num.toDouble(&ok);
    return ok && std::isfinite(v) ? v : 0;
}

int to_int16(double value) {
    if (!std::isfinite(value)) {
        throw RunError(QStringLiteral("Overflow"));
    }
    const double r = std::nearbyint(value);  // the default rounding mode is half to even
    if (r < -32768 || r > 32767) {
        throw RunError(QStringLiteral("Overflow"));
    }
    return static_cast<int>(r);
}
