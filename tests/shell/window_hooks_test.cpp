#include "shell/main_window.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// Counts the paints of a widget.
class PaintCounter : public QObject {
public:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++paints;
        }
        return false;
    }
    int paints = 0;
};

}  // namespace

TEST(WindowHooks, AStatusPerRowDoesNotRepaintThePanelPerRow) {
    QLabel panel;
    panel.resize(400, 20);
    panel.show();
    PaintCounter counter;
    panel.installEventFilter(&counter);
    WindowHooks hooks;
    hooks.set_panel(&panel);

    hooks.set_status("Processing /p/0.jpg");
    EXPECT_EQ(panel.text(), "Processing /p/0.jpg");
    QElapsedTimer t;
    t.start();
    for (int row = 1; row <= 2000; ++row) {
        hooks.yield();
        hooks.set_status(QStringLiteral("Processing /p/%1.jpg").arg(row));
        hooks.yield();
    }
    // Commands read back the latest text at once.
    EXPECT_EQ(hooks.status(), "Processing /p/2000.jpg");
    // A few dozen paints a second at most, not one per row.
    EXPECT_LT(counter.paints, 10 + t.elapsed() / 20) << counter.paints;
    // The last text reaches the panel soon after.
    auto shown_soon = [&](const QString& text) {
        QElapsedTimer wait;
        wait.start();
        while (panel.text() != text && wait.elapsed() < 1000) {
            QTest::qWait(5);
        }
        return panel.text() == text;
    };
    EXPECT_TRUE(shown_soon("Processing /p/2000.jpg"));
    hooks.set_status("");
    EXPECT_TRUE(shown_soon(""));
}

TEST(WindowHooks, TheProgressBarShowsOnlyWhileACommandRuns) {
    QProgressBar bar;
    bar.setVisible(false);
    WindowHooks hooks;
    hooks.set_progress_bar(&bar);
    {
        Progress progress(hooks, 4);
        EXPECT_FALSE(bar.isHidden());
        progress.step(3);
        EXPECT_EQ(bar.maximum(), 4);
        EXPECT_EQ(bar.value(), 3);
        {
            // A command inside another leaves the outer one's bar as it is.
            Progress inner(hooks, 0);
            inner.step(1);
            EXPECT_EQ(bar.maximum(), 4);
        }
        EXPECT_FALSE(bar.isHidden());
    }
    EXPECT_TRUE(bar.isHidden());
    Progress busy(hooks, 0);
    // No end known: a range of 0..0 runs the bar busy.
    EXPECT_EQ(bar.maximum(), 0);
    EXPECT_FALSE(bar.isHidden());
}
