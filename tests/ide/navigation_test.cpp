// The jump history behind Back and Forward (Alt+Left, Alt+Right); the keys across pages are a scenario.
#include "ide/nav_history.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

TEST(NavHistoryTest, BackAndForwardRetraceTheJumps) {
    // Each step: 'j' jumps from `at`, 'b' goes back from `at`, 'f' forward from `at`; `expected` is where
    // a step lands ("-" for nowhere).
    struct Step {
        char Op;
        int At;
        int Expected;
    };
    const Step steps[] = {
        {'b', 1, -1},  {'j', 1, 0},   {'j', 10, 0},  {'j', 20, 0}, // jumped 1 -> 10 -> 20 -> 30
        {'b', 30, 20}, {'b', 20, 10}, {'b', 10, 1},  {'b', 1, -1}, {'f', 1, 10}, {'f', 10, 20},
        {'f', 20, 30}, {'f', 30, -1}, {'b', 30, 20}, {'j', 25, 0}, // a new jump from 25 drops the way forward
        {'f', 40, -1}, {'b', 40, 25}, {'b', 25, 10},
    };
    TNavHistory history;
    for (const Step& step : steps) {
        const TNavPlace at{"a.pas", step.At, 0};
        if (step.Op == 'j') {
            history.Record(at);
            continue;
        }
        const auto to = step.Op == 'b' ? history.Back(at) : history.Forward(at);
        if (step.Expected < 0) {
            EXPECT_FALSE(to) << step.Op << " from " << step.At;
        } else {
            ASSERT_TRUE(to) << step.Op << " from " << step.At;
            EXPECT_EQ(to->Line, step.Expected) << step.Op << " from " << step.At;
        }
    }
}

TEST(NavHistoryTest, KeepsAtMostItsLimitAndForgetsGoneFiles) {
    TNavHistory history;
    for (int i = 0; i < static_cast<int>(TNavHistory::kLimit) + 20; ++i) history.Record({"a.pas", i, 0});
    int back = 0;
    TNavPlace at{"a.pas", 1000, 0};
    while (const auto to = history.Back(at)) {
        at = *to;
        ++back;
    }
    EXPECT_EQ(back, static_cast<int>(TNavHistory::kLimit));
    history.Record({"a.pas", 7, 0});
    history.Record({"gone.pas", 3, 0});
    history.Forget("gone.pas");
    const auto to = history.Back({"a.pas", 0, 0});
    ASSERT_TRUE(to);
    EXPECT_EQ(*to, (TNavPlace{"a.pas", 7, 0}));
    EXPECT_FALSE(history.CanGoBack());
}

} // namespace
} // namespace velkor::test
