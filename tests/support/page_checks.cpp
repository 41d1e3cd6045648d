#include "support/page_checks.h"

#include <QApplication>
#include <QDir>
#include <QGroupBox>
#include <QLayout>
#include <QRegularExpression>

namespace {

QRect place_of(QWidget* w, QWidget& page) {
    return QRect(w->mapTo(&page, QPoint(0, 0)), w->size());
}

}  // namespace

::testing::AssertionResult fits_page_area(QWidget& page, QSize area) {
    page.resize(area);
    page.show();
    if (page.layout()) {
        page.layout()->activate();
    }
    QApplication::processEvents();

    QStringList faults;
    const QSize minimum = page.minimumSizeHint();
    if (page.layout() && minimum.boundedTo(area) != minimum) {
        faults << QStringLiteral("page needs at least %1 x %2")
                      .arg(minimum.width())
                      .arg(minimum.height());
    }
    static const QRegularExpression named("^[oblf]_");
    QList<QWidget*> leaves;
    for (QWidget* w : page.findChildren<QWidget*>()) {
        if (!named.match(w->objectName()).hasMatch() || w->isHidden()) {
            continue;
        }
        const QRect r = place_of(w, page);
        if (!QRect(QPoint(0, 0), area).contains(r)) {
            faults << w->objectName() + " lies outside the page";
        }
        const QSize least = w->minimumSizeHint();
        if (w->width() < least.width() || w->height() < least.height() || r.isEmpty()) {
            faults << w->objectName() + " is squeezed";
        }
        if (!qobject_cast<QGroupBox*>(w)) {
            leaves << w;
        }
    }
    for (int i = 0; i < leaves.size(); ++i) {
        for (int j = i + 1; j < leaves.size(); ++j) {
            if (place_of(leaves[i], page).intersects(place_of(leaves[j], page))) {
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
