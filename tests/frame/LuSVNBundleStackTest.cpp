// The per-thread backend stack, the backend frame, typed entry points and
// the callback guard.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPlatformBundle.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

namespace {

// Runs the body on a new thread, whose backend stack starts empty whatever
// the test program's main thread holds.
void onFreshThread(const std::function<void()>& body)
{
    std::thread thread(body);
    thread.join();
}

std::string genericReason(const std::function<void()>& call)
{
    try {
        call();
    } catch (const LuSVNGenericException& caught) {
        return caught.reason();
    }
    return "(nothing thrown)";
}

// A proxy of its own for an already opened bundle; its code is never loaded
// by pushing and popping it.
std::shared_ptr<LuSVNBundleProxy> distinctProxy()
{
    static const auto bundle = LuSVNPlatformBundle::bundleWithPath(TESSERA_SVN_BUNDLE);
    return LuSVNBundleProxy::proxyForBundle(bundle);
}

std::shared_ptr<LuSVNBundleProxy> newest()
{
    return LuSVNBundleLoader::sharedInstance()->newestBundle();
}

TEST(BundleStack, EmptyStackRaisesOnPopAndCurrent)
{
    onFreshThread([] {
        EXPECT_EQ(genericReason([] { LuSVNBundlePop(); }), "Unbalanced bundle stack pop");
        EXPECT_EQ(genericReason([] { LuSVNBundleCurrent(); }), "Bundle stack is empty");

        const auto a = distinctProxy(), b = distinctProxy(), c = distinctProxy();
        LuSVNBundlePush(a);
        LuSVNBundlePush(b);
        LuSVNBundlePush(c);
        EXPECT_EQ(LuSVNBundleCurrent(), c);
        EXPECT_EQ(LuSVNBundlePop(), c);
        EXPECT_EQ(LuSVNBundleCurrent(), b);
        EXPECT_EQ(LuSVNBundlePop(), b);
        EXPECT_EQ(LuSVNBundlePop(), a);
        EXPECT_EQ(genericReason([] { LuSVNBundlePop(); }), "Unbalanced bundle stack pop");
        EXPECT_EQ(genericReason([] { LuSVNBundleCurrent(); }), "Bundle stack is empty");
    });
}

// What an application keeps of the current backend survives the pushes and
// pops that follow, which move and shrink the thread's stack.
TEST(BundleStack, TheCurrentBackendKeptOutlivesLaterPushesAndPops)
{
    onFreshThread([] {
        const auto first = distinctProxy();
        LuSVNBundlePush(first);
        const auto& kept = LuSVNBundleCurrent();
        std::vector<std::shared_ptr<LuSVNBundleProxy>> others(64);
        for (auto& other : others) {
            other = distinctProxy();
            LuSVNBundlePush(other);
        }
        for (std::size_t i = 0; i <= others.size(); ++i)
            LuSVNBundlePop();
        EXPECT_EQ(kept, first);
    });
}

TEST(BundleStack, StacksArePerThread)
{
    const auto mine = distinctProxy();
    onFreshThread([&] {
        LuSVNBundlePush(mine);
        onFreshThread([] { EXPECT_EQ(genericReason([] { LuSVNBundleCurrent(); }), "Bundle stack is empty"); });
        EXPECT_EQ(LuSVNBundleCurrent(), mine);
        EXPECT_EQ(LuSVNBundlePop(), mine);
    });

    constexpr int threadCount = 8;
    constexpr int rounds = 2000;
    std::vector<std::shared_ptr<LuSVNBundleProxy>> proxies;
    for (int i = 0; i < threadCount; ++i)
        proxies.push_back(distinctProxy());
    std::atomic<int> mismatches{0};
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            const auto& own = proxies[i];
            const auto& other = proxies[(i + 1) % threadCount];
            ++ready;
            while (ready < threadCount) {
                // start together so that the threads really interleave
            }
            for (int round = 0; round < rounds; ++round) {
                LuSVNBundlePush(own);
                LuSVNBundlePush(other);
                if (LuSVNBundleCurrent() != other)
                    ++mismatches;
                if (LuSVNBundlePop() != other || LuSVNBundleCurrent() != own)
                    ++mismatches;
                if (LuSVNBundlePop() != own)
                    ++mismatches;
            }
            if (genericReason([] { LuSVNBundlePop(); }) != "Unbalanced bundle stack pop")
                ++mismatches;
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(mismatches, 0);
}

TEST(BundleStack, NullBackendRaisesInsteadOfCrashing)
{
    onFreshThread([] {
        LuSVNBundlePush(nullptr);
        EXPECT_EQ(LuSVNBundleCurrent(), nullptr);
        EXPECT_THROW(LuSVNEntry<19>(), LuSVNException);
        EXPECT_EQ(LuSVNBundlePop(), nullptr);

        const auto sentinel = distinctProxy();
        LuSVNBundlePush(sentinel);
        EXPECT_THROW(LuSVNBackendFrame frame(nullptr), LuSVNException);
        // The frame popped its null backend on the way out.
        EXPECT_EQ(LuSVNBundleCurrent(), sentinel);
        EXPECT_EQ(LuSVNBundlePop(), sentinel);
        EXPECT_EQ(genericReason([] { LuSVNBundlePop(); }), "Unbalanced bundle stack pop");
    });
}

TEST(BundleStack, MissingSlotRaisesNamingIt)
{
    auto loader = LuSVNBundleLoader::sharedInstance();
    const auto newestBefore = loader->newestBundle();
    const auto old = loader->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_4_6);
    ASSERT_NE(old, nullptr);
    // The older backend must not become the default of the other tests.
    ASSERT_EQ(loader->newestBundle(), newestBefore);
    ASSERT_NE(old, newestBefore);

    onFreshThread([&] {
        LuSVNBackendFrame frame(old);
        EXPECT_NE(frame.pool(), nullptr);
        try {
            LuSVNEntry<70>();
            ADD_FAILURE() << "slot 70 of a 1.4 backend returned";
        } catch (const LuSVNInternalInconsistencyException& caught) {
            EXPECT_NE(caught.reason().find("70"), std::string::npos) << caught.reason();
            EXPECT_NE(caught.reason().find("svn_client_status5"), std::string::npos) << caught.reason();
            EXPECT_NE(caught.reason().find("1.4.6"), std::string::npos) << caught.reason();
        }
        EXPECT_FALSE(tessera_private::LuSVNCurrentHasEntryPoint(70));
        EXPECT_TRUE(tessera_private::LuSVNCurrentHasEntryPoint(68));
        // The extension table answers the same way.
        try {
            LuSVNExtensionEntry<1>();
            ADD_FAILURE() << "extension slot 1 of a 1.4 backend returned";
        } catch (const LuSVNInternalInconsistencyException& caught) {
            EXPECT_NE(caught.reason().find("extension entry point 1 (svn_client_blame5)"), std::string::npos)
                << caught.reason();
        }
        EXPECT_FALSE(tessera_private::LuSVNCurrentHasExtensionEntryPoint(0));
        // The same slots of the newest backend, pushed on top, are there.
        LuSVNBundlePush(newestBefore);
        EXPECT_NO_THROW(LuSVNEntry<70>());
        EXPECT_NO_THROW(LuSVNExtensionEntry<1>());
        EXPECT_TRUE(tessera_private::LuSVNCurrentHasExtensionEntryPoint(15));
        LuSVNBundlePop();
        EXPECT_EQ(LuSVNBundleCurrent(), old);
    });
}

TEST(BackendFrame, PushesForItsScopeAndPopsOnEveryExit)
{
    onFreshThread([] {
        const auto backend = newest();
        {
            LuSVNBackendFrame frame(backend);
            EXPECT_EQ(LuSVNBundleCurrent(), backend);
            ASSERT_NE(frame.pool(), nullptr);
            {
                LuSVNBackendFrame inner(backend);
                EXPECT_NE(inner.pool(), frame.pool());
            }
            EXPECT_EQ(LuSVNBundleCurrent(), backend);
        }
        EXPECT_EQ(genericReason([] { LuSVNBundleCurrent(); }), "Bundle stack is empty");

        EXPECT_THROW(
            {
                LuSVNBackendFrame frame(backend);
                throw std::runtime_error("inside the frame");
            },
            std::runtime_error);
        EXPECT_EQ(genericReason([] { LuSVNBundleCurrent(); }), "Bundle stack is empty");

        // A Subversion error converted inside the frame leaves it balanced too.
        EXPECT_THROW(
            {
                LuSVNBackendFrame frame(backend);
                LuSVNThrowIfError(LuSVNEntry<31>()(155007, nullptr, "not a working copy"));
            },
            LuSVNNotWorkingCopyException);
        EXPECT_EQ(genericReason([] { LuSVNBundlePop(); }), "Unbalanced bundle stack pop");
    });
}

// Close function of a Subversion stream that fails the application's way.
std::exception_ptr* pendingOfClose = nullptr;
int closeCalls = 0;

extern "C" svn_error_t* throwingClose(void*)
{
    ++closeCalls;
    return LuSVNGuardCallback(*pendingOfClose, []() -> svn_error_t* { throw std::out_of_range("from the callback"); });
}

extern "C" svn_error_t* succeedingClose(void*)
{
    ++closeCalls;
    return LuSVNGuardCallback(*pendingOfClose, []() -> svn_error_t* { return nullptr; });
}

TEST(CallbackGuard, KeepsTheExceptionAndStopsSubversion)
{
    LuSVNBackendFrame frame(newest());

    // Direct: the guard turns the exception into a cancellation error.
    std::exception_ptr pending;
    svn_error_t* error = LuSVNGuardCallback(pending, []() -> svn_error_t* { throw std::out_of_range("direct"); });
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->apr_err, 200015);
    ASSERT_TRUE(pending);
    EXPECT_THROW(LuSVNRethrowPending(pending, error), std::out_of_range);
    EXPECT_FALSE(pending);

    // Through Subversion: svn_stream_close calls the guarded close function,
    // and the kept exception, not the Subversion error, reaches the caller.
    pendingOfClose = &pending;
    closeCalls = 0;
    svn_stream_t* stream = LuSVNEntry<111>()(nullptr, frame.pool());
    LuSVNEntry<110>()(stream, throwingClose);
    svn_error_t* closeError = LuSVNEntry<112>()(stream);
    EXPECT_EQ(closeCalls, 1);
    ASSERT_NE(closeError, nullptr);
    ASSERT_TRUE(pending);
    try {
        LuSVNRethrowPending(pending, closeError);
        ADD_FAILURE() << "nothing rethrown";
    } catch (const std::out_of_range& caught) {
        EXPECT_STREQ(caught.what(), "from the callback");
    }
    EXPECT_FALSE(pending);

    // Without a kept exception a returned error is converted as usual, and
    // success stays silent.
    EXPECT_THROW(LuSVNRethrowPending(pending, LuSVNEntry<31>()(200015, nullptr, "cancelled")),
                 LuSVNOperationCancelledException);
    LuSVNEntry<110>()(stream, succeedingClose);
    EXPECT_NO_THROW(LuSVNRethrowPending(pending, LuSVNEntry<112>()(stream)));
    EXPECT_EQ(closeCalls, 2);
    pendingOfClose = nullptr;
}

TEST(CallbackGuard, WithoutBackendReturnsNullRatherThanUnwinding)
{
    onFreshThread([] {
        std::exception_ptr pending;
        svn_error_t* error = LuSVNGuardCallback(pending, []() -> svn_error_t* { throw std::out_of_range("x"); });
        EXPECT_EQ(error, nullptr);
        ASSERT_TRUE(pending);
        EXPECT_THROW(LuSVNRethrowPending(pending, nullptr), std::out_of_range);
    });
}

}  // namespace
