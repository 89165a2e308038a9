#include "HarbexClipCore/Support/Observable.hpp"

#include <gtest/gtest.h>

#include "HarbexClipCore/Testing/FixedClock.hpp"
#include "HarbexClipCore/Testing/ManualScheduler.hpp"

namespace harbex {
namespace {

TEST(ObservableTests, ObserversMayCancelThemselvesAndOthersWhileBeingTold) {
    Observable<int> value(0);
    std::vector<std::string> calls;
    Subscription second;
    Subscription first = value.subscribe([&](int v) {
        calls.push_back("first " + std::to_string(v));
        second.cancel();
        first.cancel();
    });
    second = value.subscribe([&](int v) { calls.push_back("second " + std::to_string(v)); });
    value.set(1);
    value.set(2);
    EXPECT_EQ(calls, std::vector<std::string>{"first 1"});
    EXPECT_EQ(value.observerCount(), 0u);
}

TEST(ObservableTests, ASubscriptionMayOutliveWhatItWatches) {
    Subscription subscription;
    {
        Observable<int> value(0);
        subscription = value.subscribe([](int) {});
    }
    subscription.cancel();  // must not touch the destroyed observable
    SUCCEED();
}

TEST(ObservableTests, SetIfChangedStaysQuietForEqualValues) {
    Observable<std::string> value("a");
    int calls = 0;
    auto subscription = value.subscribe([&](const std::string&) { ++calls; });
    value.setIfChanged("a");
    value.setIfChanged("b");
    value.set("b");
    EXPECT_EQ(calls, 2);
}

TEST(ManualSchedulerTests, RunsBlocksInDueOrderIncludingOnesScheduledOnTheWay) {
    FixedClock clock(Date{100});
    ManualScheduler scheduler(&clock);
    std::vector<std::string> order;
    scheduler.schedule(0.5, [&] {
        order.push_back("b@" + std::to_string(static_cast<int>(clock.now().seconds * 10)));
        scheduler.schedule(0.2, [&] { order.push_back("d"); });
        scheduler.schedule(5, [&] { order.push_back("late"); });
    });
    scheduler.schedule(0.1, [&] { order.push_back("a"); });
    scheduler.schedule(0.5, [&] { order.push_back("c"); });
    scheduler.advance(1);
    EXPECT_EQ(order, (std::vector<std::string>{"a", "b@1005", "c", "d"}));
    EXPECT_EQ(clock.now(), Date{101});
    EXPECT_EQ(scheduler.pendingDelays(), std::vector<double>{5});
    scheduler.runAll();
    EXPECT_EQ(order.back(), "late");
    EXPECT_EQ(scheduler.pendingCount(), 0u);
}

}  // namespace
}  // namespace harbex
