// The chain of log-message providers, and the names of commit actions.
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNSimpleLogMessageProvider.h>

#include <gtest/gtest.h>

#include <typeinfo>

#include "LuSVNContextTestSupport.h"

namespace {

using context_test::ContextTest;
using context_test::RecordingProvider;

TEST_F(ContextTest, FirstProviderWithAMessageAnswers)
{
    const std::vector<LuSVNCommitItem> items(1);
    std::optional<std::string> message;

    auto next = std::make_shared<RecordingProvider>("from the next one");
    auto simple = LuSVNSimpleLogMessageProvider::providerWithMessage("fixed", next);
    EXPECT_TRUE(simple->contextPromptForLogMessage(*context, message, items));
    EXPECT_EQ(message, "fixed");
    EXPECT_EQ(next->asked.size(), 0u);

    // Without message the next provider answers, whatever it answers.
    simple->setMessage(std::nullopt);
    message.reset();
    EXPECT_TRUE(simple->contextPromptForLogMessage(*context, message, items));
    EXPECT_EQ(message, "from the next one");
    next->answer.reset();
    EXPECT_FALSE(simple->contextPromptForLogMessage(*context, message, items));
    EXPECT_EQ(next->asked.size(), 2u);

    // The end of a chain, and the base class, which never asks its chain.
    message.reset();
    EXPECT_FALSE(LuSVNSimpleLogMessageProvider::provider()->contextPromptForLogMessage(*context, message, items));
    EXPECT_FALSE(std::make_shared<LuSVNLogMessageProvider>(next)->contextPromptForLogMessage(*context, message, items));
    EXPECT_EQ(next->asked.size(), 2u);
    EXPECT_EQ(message, std::nullopt);
}

TEST(LuSVNLogMessageProvider, ProviderOfClassFindsTheFirstLinkOfTheClass)
{
    auto second = LuSVNSimpleLogMessageProvider::providerWithMessage("second");
    auto first = std::make_shared<RecordingProvider>(std::nullopt);
    first->setNextProvider(second);
    EXPECT_EQ(first->providerOfClass<LuSVNSimpleLogMessageProvider>(), second);
    EXPECT_EQ(first->providerOfClass<LuSVNLogMessageProvider>(), first);
    EXPECT_EQ(second->providerOfClass<RecordingProvider>(), nullptr);
}

// A copy shares the links behind it, the application's own among them, and
// leaves the chain it was made from as it was: both chains still commit.
TEST_F(ContextTest, CopiesShareTheApplicationsProvidersAndBothChainsCommit)
{
    auto dialog = std::make_shared<RecordingProvider>("from the dialog");  // does not override copy()
    auto simple = LuSVNSimpleLogMessageProvider::providerWithMessage(std::nullopt, dialog);
    const auto original = std::make_shared<LuSVNLogMessageProvider>(simple);

    const auto copy = simple->copy();
    ASSERT_NE(std::dynamic_pointer_cast<LuSVNSimpleLogMessageProvider>(copy), nullptr);
    EXPECT_EQ(copy->nextProvider(), dialog);
    EXPECT_EQ(simple->nextProvider(), dialog);
    const auto baseCopy = original->copy();
    EXPECT_EQ(typeid(*baseCopy), typeid(LuSVNLogMessageProvider));
    EXPECT_EQ(baseCopy->nextProvider(), simple);
    EXPECT_EQ(original->nextProvider(), simple);

    int revision = 0;
    for (const auto& chain : {copy, std::shared_ptr<LuSVNLogMessageProvider>(simple)}) {
        context->setLogMessageProvider(chain);
        run(*context, [&](svn_client_ctx_t* ctx, apr_pool_t* pool) {
            return makeDirectories({repositoryURL + "/d" + std::to_string(++revision)}, ctx, pool);
        });
        EXPECT_EQ(youngestRevision(), std::to_string(revision));
    }
    EXPECT_EQ(dialog->asked.size(), 2u);

    // What cannot be copied is refused, never stood in for.
    try {
        dialog->copy();
        ADD_FAILURE() << "copied";
    } catch (const LuSVNInvalidArgumentException& e) {
        EXPECT_STREQ(e.what(), "context_test::RecordingProvider does not override copy()");
    }
    auto withMessage = LuSVNSimpleLogMessageProvider::providerWithMessage("fixed");
    EXPECT_EQ(std::dynamic_pointer_cast<LuSVNSimpleLogMessageProvider>(withMessage->copy())->message(), "fixed");
}

TEST(LuSVNCommitItem, ActionsPrintTheirNamesInBitOrder)
{
    const std::vector<std::pair<std::int32_t, std::string>> rows = {
        {0, "LuSVNCommitActionNone"},
        {9, "LuSVNCommitActionAdd|LuSVNCommitActionModification"},
        {2, "LuSVNCommitActionDelete"},
        {31, "LuSVNCommitActionAdd|LuSVNCommitActionDelete|LuSVNCommitActionCopy|LuSVNCommitActionModification|"
             "LuSVNCommitActionPropertyModification"},
        {20, "LuSVNCommitActionCopy|LuSVNCommitActionPropertyModification"},
        {32, "LuSVNCommitActionNone"},
    };
    for (const auto& [actions, text] : rows)
        EXPECT_EQ(LuSVNStringForCommitActions(actions), text) << actions;

    LuSVNCommitItem item;
    item.setActions(5);
    item.setIsLocked(true);
    const std::string description = item.description();
    EXPECT_EQ(description.substr(description.find(" path:")),
              " path: (null), url: (null), revision: -1, actions: LuSVNCommitActionAdd|LuSVNCommitActionCopy, "
              "nodeKind: 3, locked: YES, copySource: (null) }");
}

}  // namespace
