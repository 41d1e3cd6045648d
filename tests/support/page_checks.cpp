#include "support/page_checks.h"

#include "ui/workbench.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>

namespace {

QString caption_of(QWidget* w) {
    if (auto* b = qobject_cast<QAbstractButton*>(w)) {
        return b->text();
    }
    if (auto* l = qobject_cast<QLabel*>(w)) {
        return l->text();
    }
    if (auto* g = qobject_cast<QGroupBox*>(w)) {
        return g->title();
    }
    return QString();
}

bool is_named_control(const QWidget* w) {
    const QString n = w->objectName();
    return n.startsWith(QLatin1String("o_")) || n.startsWith(QLatin1String("b_")) ||
           n.startsWith(QLatin1String("l_")) || n.startsWith(QLatin1String("f_"));
}

}  // namespace

::testing::AssertionResult has_controls(Workbench& wb,
                                        const std::vector<ExpectedControl>& controls) {
    QStringList faults;
    for (const ExpectedControl& c : controls) {
        const QString name = QString::fromLatin1(c.name);
        const QList<QWidget*> found = wb.window_widget()->findChildren<QWidget*>(name);
        if (found.size() != 1) {
            faults << QStringLiteral("%1: found %2 times").arg(name).arg(found.size());
            continue;
        }
        QWidget* w = found.first();
        if (!w->inherits(c.kind)) {
            faults << QStringLiteral("%1: is a %2, not a %3")
                          .arg(name, QString::fromLatin1(w->metaObject()->className()),
                               QString::fromLatin1(c.kind));
        }
        const QString caption = QString::fromUtf8(c.caption);
        if (!caption.isEmpty() && caption_of(w) != caption) {
            faults << QStringLiteral("%1: caption \"%2\", not \"%3\"")
                          .arg(name, caption_of(w), caption);
        }
    }
    if (faults.isEmpty()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << faults.join(u'\n').toStdString();
}

::testing::AssertionResult fits_page_area(QWidget& page, QSize area) {
    page.resize(area);
    page.show();
    if (page.layout()) {
        page.layout()->activate();
    }
    QApplication::processEvents();

    QStringList faults;
    const QSize minimum = page.minimumSizeHint();
    if (page.layout() && (minimum.width() > area.width() || minimum.height() > area.height())) {
        faults << QStringLiteral("page needs at least %1 x %2")
                      .arg(minimum.width())
                      .arg(minimum.height());
    }
    QList<QWidget*> leaves;
    for (QWidget* w : page.findChildren<QWidget*>()) {
        if (!is_named_control(w) || w->isHidden()) {
            continue;
        }
        const QRect r(w->mapTo(&page, QPoint(0, 0)), w->size());
        if (!QRect(QPoint(0, 0), area).contains(r)) {
            faults << QStringLiteral("%1 lies outside the page at %2,%3 %4x%5")
                          .arg(w->objectName())
                          .arg(r.x())
                          .arg(r.y())
                          .arg(r.width())
                          .arg(r.height());
        }
        const QSize least = w->minimumSizeHint();
        if (w->width() < least.width() || w->height() < least.height() || r.isEmpty()) {
            faults << QStringLiteral("%1 is squeezed to %2x%3")
                          .arg(w->objectName())
                          .arg(w->width())
                          .arg(w->height());
        }
        if (!qobject_cast<QGroupBox*>(w)) {
            leaves << w;
        }
    }
    for (int i = 0; i < leaves.size(); ++i) {
        const QRect a(leaves[i]->mapTo(&page, QPoint(0, 0)), leaves[i]->size());
        for (int j = i + 1; j < leaves.size(); ++j) {
            const QRect b(leaves[j]->mapTo(&page, QPoint(0, 0)), leaves[j]->size());
            if (a.intersects(b)) {
                faults << QStringLiteral("%1 overlaps %2")
                              .arg(leaves[i]->objectName(), leaves[j]->objectName());
            }
        }
    }
    if (faults.isEmpty()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << faults.join(u'\n').toStdString();
}

void grab_if_asked(QWidget& page, const QString& name) {
    const QString dir = qEnvironmentVariable("QD_GRAB_DIR");
    if (dir.isEmpty()) {
        return;
    }
    QDir().mkpath(dir);
    page.grab().save(dir + u'/' + name + QStringLiteral(".png"));
}

WindowFont::WindowFont() : saved_(QApplication::font()) {
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 8));
}

WindowFont::~WindowFont() {
    QApplication::setFont(saved_);
}
