#include "shell/tab_strip.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

TabStrip::TabStrip(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* captions = new QWidget(this);
    captions->setObjectName(QStringLiteral("SSTab_captions"));
    captions_ = new QGridLayout(captions);
    captions_->setContentsMargins(2, 2, 2, 0);
    captions_->setHorizontalSpacing(1);
    captions_->setVerticalSpacing(1);
    stack_ = new QStackedWidget(this);
    stack_->setObjectName(QStringLiteral("SSTab_pages"));
    stack_->setFrameShape(QFrame::StyledPanel);
    layout->addWidget(captions);
    layout->addWidget(stack_, 1);
    group_ = new QButtonGroup(this);
    group_->setExclusive(true);
    connect(group_, &QButtonGroup::idClicked, this, [this](int id) { set_current_index(id); });
    setStyleSheet(
        QStringLiteral("QToolButton { border: 1px solid palette(mid); border-bottom: none;"
                       " border-top-left-radius: 4px; border-top-right-radius: 4px;"
                       " padding: 2px 6px; background: palette(button); }"
                       "QToolButton:checked { background: palette(base); font-weight: bold; }"
                       "QToolButton:disabled { color: palette(mid); }"));
}

int TabStrip::add_tab(QWidget* page, const QString& caption) {
    const int index = static_cast<int>(buttons_.size());
    auto* b = new QToolButton(this);
    b->setText(caption);
    b->setCheckable(true);
    b->setAutoRaise(false);
    b->setToolButtonStyle(Qt::ToolButtonTextOnly);
    b->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    b->setFocusPolicy(Qt::TabFocus);
    group_->addButton(b, index);
    buttons_.append(b);
    stack_->addWidget(page);
    relayout();
    if (current_ < 0) {
        current_ = index;
        b->setChecked(true);
        stack_->setCurrentWidget(page);
    }
    return index;
}

void TabStrip::relayout() {
    for (QToolButton* b : buttons_) {
        captions_->removeWidget(b);
    }
    int slot = 0;
    for (QToolButton* b : buttons_) {
        if (b->isHidden() && b->property("tab_hidden").toBool()) {
            continue;
        }
        captions_->addWidget(b, slot / per_row_, slot % per_row_);
        ++slot;
    }
}

int TabStrip::count() const {
    return static_cast<int>(buttons_.size());
}

QString TabStrip::caption(int index) const {
    return index >= 0 && index < count() ? buttons_.at(index)->text() : QString();
}

QWidget* TabStrip::page(int index) const {
    return stack_->widget(index);
}

int TabStrip::index_of(const QString& caption) const {
    for (int i = 0; i < count(); ++i) {
        if (buttons_.at(i)->text() == caption) {
            return i;
        }
    }
    return -1;
}

void TabStrip::set_current_index(int index) {
    if (index < 0 || index >= count()) {
        return;
    }
    buttons_.at(index)->setChecked(true);
    const bool changed = index != current_;
    current_ = index;
    stack_->setCurrentIndex(index);
    if (changed) {
        Q_EMIT tab_clicked(index);
    }
}

void TabStrip::set_tab_visible(int index, bool visible) {
    if (index < 0 || index >= count()) {
        return;
    }
    buttons_.at(index)->setProperty("tab_hidden", !visible);
    buttons_.at(index)->setVisible(visible);
    relayout();
}

bool TabStrip::is_tab_visible(int index) const {
    return index >= 0 && index < count() && !buttons_.at(index)->property("tab_hidden").toBool();
}

QToolButton* TabStrip::tab_button(int index) const {
    return index >= 0 && index < count() ? buttons_.at(index) : nullptr;
}
