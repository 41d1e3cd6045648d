#pragma once

#include <QWidget>

class QButtonGroup;
class QGridLayout;
class QStackedWidget;
class QToolButton;

// The window's tab control: captions in two rows above a stack of pages.
// A tab is told apart by its caption. Clicking a tab makes it current and
// emits `tab_clicked`; so does a program's change of the current tab.
class TabStrip : public QWidget {
    Q_OBJECT
public:
    explicit TabStrip(QWidget* parent = nullptr);

    // Tabs per row of captions.
    void set_tabs_per_row(int n) { per_row_ = n; }
    int add_tab(QWidget* page, const QString& caption);
    int count() const;
    QString caption(int index) const;
    QWidget* page(int index) const;
    int index_of(const QString& caption) const;

    int current_index() const { return current_; }
    void set_current_index(int index);

    void set_tab_visible(int index, bool visible);
    bool is_tab_visible(int index) const;
    // The caption button of a tab, for tests and screenshots.
    QToolButton* tab_button(int index) const;

Q_SIGNALS:
    void tab_clicked(int index);

private:
    void relayout();
    QGridLayout* captions_ = nullptr;
    QStackedWidget* stack_ = nullptr;
    QButtonGroup* group_ = nullptr;
    QList<QToolButton*> buttons_;
    int per_row_ = 7;
    int current_ = -1;
};
