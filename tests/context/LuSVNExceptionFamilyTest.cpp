// One handler catches every failure of the library: each kind of failure,
// raised through the public interface, is caught as LuSVNException and keeps
// its own class; an application's exception passes through unchanged.
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNStatusOptions.h>
#include <tessera/LuSVNURL.h>

#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "LuSVNContextTestSupport.h"

namespace {

using context_test::ContextTest;

class CancellingDelegate : public LuSVNContextDelegate {
public:
    void contextQueryContinue(LuSVNContext&, bool& shouldContinue) override { shouldContinue = false; }
};

// The name of the LuSVNException the call raised, or what else happened.
std::string caughtAsLibraryException(const std::function<void()>& call)
{
    try {
        call();
    } catch (const LuSVNException& caught) {
        return caught.name();
    } catch (const std::exception& other) {
        return std::string("escaped: ") + other.what();
    }
    return "nothing raised";
}

TEST_F(ContextTest, EveryFailureIsCaughtAsLuSVNException)
{
    const std::string wc = directory / "wc";
    tessera_test::checkout(repositoryURL, wc);
    const auto statusOf = [this](const std::string& path) {
        LuSVNDirectory::statusForNodesInDirectoryAtPath(LuSVNLocalPath::pathWithString(path), LuSVNStatusOptions(),
                                                        context);
    };
    const auto cancelling = std::make_shared<CancellingDelegate>();

    struct Case {
        const char* failure;
        std::function<void()> call;
        const char* expectedClass;
    };
    const Case cases[] = {
        {"URL parse error", [] { LuSVNURL::URLWithString("svn://host/%zz"); }, "LuSVNInvalidArgumentException"},
        {"URL without a scheme", [] { LuSVNURL::URLWithString("no scheme"); }, "LuSVNInvalidArgumentException"},
        {"parameter assertion", [] { LuSVNURL::URLWithPath(nullptr); }, "LuSVNInternalInconsistencyException"},
        {"Subversion error", [&] { statusOf(directory / "config"); }, "LuSVNNotWorkingCopyException"},
        {"cancellation",
         [&] {
             context->setDelegate(cancelling);
             statusOf(wc);
         },
         "LuSVNOperationCancelledException"},
        {"call out of order",
         [] {
             // A thread of its own: its backend stack is empty.
             std::exception_ptr failure;
             std::thread([&] {
                 try {
                     LuSVNBundlePop();
                 } catch (...) {
                     failure = std::current_exception();
                 }
             }).join();
             if (failure)
                 std::rethrow_exception(failure);
         },
         "LuSVNGenericException"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(caughtAsLibraryException(c.call), c.expectedClass) << c.failure;
}

TEST_F(ContextTest, ApplicationExceptionFromADelegateIsNotWrapped)
{
    struct Refusal {};
    class Refusing : public LuSVNNotificationHandler {
    public:
        void contextNotify(LuSVNContext&, const LuSVNNotification&) override { throw Refusal{}; }
    };
    const std::string wc = directory / "wc";
    tessera_test::checkout(repositoryURL, wc);
    tessera_test::writeFile(wc + "/new", "x");
    ASSERT_EQ(tessera_test::svn({"add", wc + "/new"}).status, 0);
    context->setNotificationHandler(std::make_shared<Refusing>());
    LuSVNStatusOptions options;
    options.setCompareAgainstRepository(true);  // compared against the repository: "status completed" is notified
    EXPECT_THROW(LuSVNDirectory::statusForNodesInDirectoryAtPath(LuSVNLocalPath::pathWithString(wc), options, context),
                 Refusal);
}

}  // namespace
