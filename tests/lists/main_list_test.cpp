#include "lists/main_list.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {

// Runs a step at a given turn of the message loop, as another event would.
class StepAtTurn : public UiHooks {
public:
    StepAtTurn(int turn, std::function<void()> step) : turn_(turn), step_(std::move(step)) {}
    void yield() override {
        if (++turns_ == turn_) {
            step_();
        }
    }

private:
    int turn_;
    int turns_ = 0;
    std::function<void()> step_;
};

}  // namespace

TEST(MainListSort, AFileDeletedWhileTheKeysAreMadeDropsOut) {
    TestHome home;
    const QString a = home.write_file("a.txt");
    const QString b = home.write_file("b.txt");
    const QString c = home.write_file("c.txt");
    StepAtTurn hooks(2, [&] { QFile::remove(a); });
    Context ctx{home.app, home.dialogs, hooks, home.shell};
    ItemList list;
    list.add_many({c, a, b});
    const QStringList scratch = sort_by_date(ctx, list);
    // The deleted file had its key made before it went.
    EXPECT_EQ(scratch.size(), 3);
    // Made in one second: path order, without the deleted one.
    EXPECT_EQ(list.items(), QStringList({b, c}));
}
