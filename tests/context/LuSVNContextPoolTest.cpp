// The context pool with contexts of the real backend: reuse order, one
// context per thread, draining, removeAllContexts, the delegate, and threads
// borrowing contexts at once.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContextPool.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <latch>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "TesseraTestSupport.h"

namespace {

// Makes contexts reading an empty configuration directory, each carrying its
// number as an option, so that a call through a handle shows which context
// it reached.
class NumberingFactory : public LuSVNContextFactory {
public:
    explicit NumberingFactory(std::string configurationDirectory)
        : configurationDirectory_(std::move(configurationDirectory))
    {
    }

    std::shared_ptr<LuSVNContext> createContext() override
    {
        if (answerNull)
            return nullptr;
        auto context = LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle(), {},
                                                       configurationDirectory_);
        const int number = created++;
        context->setOption(std::to_string(number), "pool-number", "config", "miscellany");
        numbers[context.get()] = number;  // under the pool's lock
        return context;
    }

    /// The number the context reports through the backend.
    static int numberOf(const LuSVNContext& context)
    {
        return std::stoi(context.optionForName("pool-number", "config", "miscellany", "-1").value());
    }

    std::atomic<int> created = 0;
    std::map<const LuSVNContext*, int> numbers;
    bool answerNull = false;

private:
    std::string configurationDirectory_;
};

struct Event {
    std::string what;
    int context;
    std::thread::id thread;
};

// Records every notification, with the context's number and the thread.
class RecordingDelegate : public LuSVNContextPoolDelegate {
public:
    void poolDidCreateContext(LuSVNContextPool&, LuSVNContext& context) override { record("create", context); }
    void poolDidReserveContext(LuSVNContextPool&, LuSVNContext& context) override { record("reserve", context); }
    void poolDidReturnContext(LuSVNContextPool&, LuSVNContext& context) override { record("return", context); }
    void poolDidDiscardContext(LuSVNContextPool&, LuSVNContext& context) override { record("discard", context); }

    std::vector<std::pair<std::string, int>> taken()
    {
        std::vector<std::pair<std::string, int>> result;
        for (const Event& event : events)
            result.emplace_back(event.what, event.context);
        events.clear();
        return result;
    }

    std::vector<Event> events;

private:
    // Notifications come under the pool's lock, so the list needs no other.
    void record(const char* what, LuSVNContext& context)
    {
        events.push_back({what, NumberingFactory::numberOf(context), std::this_thread::get_id()});
    }
};

using Events = std::vector<std::pair<std::string, int>>;

class LuSVNContextPoolTest : public testing::Test {
protected:
    LuSVNContextPoolTest()
    {
        std::filesystem::create_directory(configurationDirectory);
        pool->setDelegate(delegate);
    }

    /// Handles taken on n threads of their own, all held at once by the caller.
    std::vector<std::shared_ptr<LuSVNContext>> contextsOnThreads(int n)
    {
        std::vector<std::shared_ptr<LuSVNContext>> handles(static_cast<std::size_t>(n));
        for (auto& handle : handles)
            std::thread([&] { handle = pool->context(); }).join();
        return handles;
    }

    tessera_test::TemporaryDirectory directory;
    const std::string configurationDirectory = directory / "config";
    const std::shared_ptr<NumberingFactory> factory = std::make_shared<NumberingFactory>(configurationDirectory);
    const std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
    std::shared_ptr<LuSVNContextPool> pool = LuSVNContextPool::poolWithFactory(factory);
};

TEST_F(LuSVNContextPoolTest, OneThreadHoldingItsHandleGetsTheSameContextAgain)
{
    auto first = pool->context();
    auto second = pool->context();
    EXPECT_EQ(first, second);
    EXPECT_FALSE(first.owner_before(second) || second.owner_before(first)) << "one handle, not two";
    EXPECT_TRUE(LuSVNContextPool::isPooledContext(first));
    EXPECT_EQ(factory->created, 1);
    EXPECT_EQ(pool->reservedSize(), 1);
    EXPECT_EQ(pool->freeSize(), 0);
    EXPECT_EQ(delegate->taken(), (Events{{"create", 0}, {"reserve", 0}}));

    first.reset();
    EXPECT_EQ(pool->reservedSize(), 1) << "a copy is still held";
    second.reset();
    EXPECT_EQ(pool->reservedSize(), 0);
    EXPECT_EQ(pool->freeSize(), 1);
    EXPECT_EQ(delegate->taken(), (Events{{"return", 0}}));

    // A new handle for the same real context, which the factory made.
    auto again = pool->context();
    EXPECT_EQ(NumberingFactory::numberOf(*again), 0);
    EXPECT_EQ(factory->numbers.at(again.get()), 0);
    EXPECT_EQ(delegate->taken(), (Events{{"reserve", 0}}));
}

TEST_F(LuSVNContextPoolTest, ThreadsGetContextsOfTheirOwnAndIdleOnesAreReusedLastInFirstOut)
{
    auto handles = contextsOnThreads(2);
    EXPECT_NE(handles[0].get(), handles[1].get());
    EXPECT_EQ(factory->created, 2);
    EXPECT_EQ(pool->reservedSize(), 2);

    // The calling thread has none yet: the factory makes a third.
    auto own = pool->context();
    EXPECT_EQ(NumberingFactory::numberOf(*own), 2);
    own.reset();

    handles[1].reset();
    handles[0].reset();
    EXPECT_EQ(pool->freeSize(), 3);
    EXPECT_EQ(pool->reservedSize(), 0);
    delegate->taken();

    // Context 0 came back last, then 1, then 2 (the oldest idle one).
    const auto reused = contextsOnThreads(3);
    EXPECT_EQ(factory->created, 3);
    EXPECT_EQ(delegate->taken(), (Events{{"reserve", 0}, {"reserve", 1}, {"reserve", 2}}));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(NumberingFactory::numberOf(*reused[static_cast<std::size_t>(i)]), i);
}

TEST_F(LuSVNContextPoolTest, DrainsToTheMaximumOnlyWhenTheLastContextComesBack)
{
    pool->setMaximumFreeSize(1);
    auto handles = contextsOnThreads(3);
    delegate->taken();

    handles[2].reset();
    handles[0].reset();
    EXPECT_EQ(pool->freeSize(), 2) << "one context is still out";
    EXPECT_EQ(delegate->taken(), (Events{{"return", 2}, {"return", 0}}));

    // The last one back ends up the only idle one; the two oldest go.
    handles[1].reset();
    EXPECT_EQ(pool->freeSize(), 1);
    EXPECT_EQ(pool->reservedSize(), 0);
    EXPECT_EQ(delegate->taken(), (Events{{"return", 1}, {"discard", 2}, {"discard", 0}}));
    EXPECT_EQ(NumberingFactory::numberOf(*pool->context()), 1);
}

TEST_F(LuSVNContextPoolTest, RemoveAllContextsDiscardsIdleOnesAndThoseOfHandlesStillHeld)
{
    auto held = pool->context();           // context 0
    auto other = contextsOnThreads(1)[0];  // context 1, idle after this
    other.reset();
    ASSERT_EQ(pool->freeSize(), 1);
    delegate->taken();

    pool->removeAllContexts();
    EXPECT_EQ(pool->freeSize(), 0);
    EXPECT_EQ(pool->reservedSize(), 0);
    EXPECT_EQ(delegate->taken(), (Events{{"discard", 1}}));

    // The held handle still works, but no longer belongs to this thread.
    EXPECT_EQ(NumberingFactory::numberOf(*held), 0);
    auto fresh = pool->context();
    EXPECT_EQ(NumberingFactory::numberOf(*fresh), 2);
    delegate->taken();

    held.reset();
    EXPECT_EQ(delegate->taken(), (Events{{"discard", 0}}));
    EXPECT_EQ(pool->freeSize(), 0) << "discarded, not returned";
    EXPECT_EQ(pool->reservedSize(), 1);
    fresh.reset();
    EXPECT_EQ(delegate->taken(), (Events{{"return", 2}}));
    EXPECT_EQ(pool->freeSize(), 1);
}

TEST_F(LuSVNContextPoolTest, TheThreadThatDropsTheLastCopyReturnsTheContext)
{
    auto handle = pool->context();
    std::thread::id dropper;
    std::thread([&, copy = std::move(handle)]() mutable {
        dropper = std::this_thread::get_id();
        copy.reset();
    }).join();
    ASSERT_FALSE(delegate->events.empty());
    EXPECT_EQ(delegate->events.back().what, "return");
    EXPECT_EQ(delegate->events.back().thread, dropper);
    EXPECT_EQ(pool->freeSize(), 1);
}

TEST_F(LuSVNContextPoolTest, AHandleKeepsItsPoolAliveAndTheDelegateIsNotRetained)
{
    std::weak_ptr<LuSVNContextPool> weakPool = pool;
    auto handle = pool->context();
    pool.reset();
    EXPECT_FALSE(weakPool.expired());
    handle.reset();
    EXPECT_TRUE(weakPool.expired());

    auto other = LuSVNContextPool::poolWithFactory(factory);
    {
        auto transient = std::make_shared<RecordingDelegate>();
        other->setDelegate(transient);
        EXPECT_EQ(other->delegate(), transient);
    }
    EXPECT_EQ(other->delegate(), nullptr);
    EXPECT_NE(other->context(), nullptr) << "works without delegate";
}

TEST_F(LuSVNContextPoolTest, BadArgumentsRaiseParameterAssertions)
{
    EXPECT_EQ(pool->maximumFreeSize(), 10);
    tessera_test::expectParameterAssertion([&] { pool->setMaximumFreeSize(-1); }, "value >= 0");
    EXPECT_EQ(pool->maximumFreeSize(), 10);
    tessera_test::expectParameterAssertion([] { LuSVNContextPool::poolWithFactory(nullptr); }, "theFactory != nil");
    factory->answerNull = true;
    tessera_test::expectParameterAssertion([&] { pool->context(); }, "context != nil");
    EXPECT_EQ(pool->freeSize(), 0);
    EXPECT_EQ(pool->reservedSize(), 0);
    EXPECT_FALSE(LuSVNContextPool::isPooledContext(LuSVNContext::contextWithBundle(
        LuSVNBundleLoader::sharedInstance()->newestBundle(), {}, configurationDirectory)));
}

// Threads borrowing and returning at once: no context is ever in two
// threads' hands, each call reaches the context it was handed, and every
// context comes back.
TEST_F(LuSVNContextPoolTest, ThreadsBorrowingAtOnceNeverShareAContext)
{
    constexpr int threads = 8;
    constexpr int rounds = 200;
    std::array<std::atomic<int>, threads + 1> users{};
    std::atomic<int> failures = 0;
    std::latch start(threads);

    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&] {
            start.arrive_and_wait();
            for (int round = 0; round < rounds; ++round) {
                auto handle = pool->context();
                const int number = NumberingFactory::numberOf(*handle);
                if (number < 0 || number > threads) {
                    ++failures;
                    continue;
                }
                auto& user = users[static_cast<std::size_t>(number)];
                if (user++ != 0 || pool->context() != handle)
                    ++failures;
                --user;
            }
        });
    }
    for (auto& worker : workers)
        worker.join();

    EXPECT_EQ(failures, 0);
    EXPECT_LE(factory->created, threads);
    EXPECT_EQ(pool->reservedSize(), 0);
    EXPECT_EQ(pool->freeSize(), factory->created) << "all back, fewer than the maximum";
    std::map<std::string, int> notified;
    for (const Event& event : delegate->events)
        ++notified[event.what];
    EXPECT_EQ(notified, (std::map<std::string, int>{{"create", factory->created},
                                                    {"reserve", threads * rounds},
                                                    {"return", threads * rounds}}));
}

}  // namespace
