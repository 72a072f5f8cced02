// The chain of log-message providers, and the names of commit actions.
#include <tessera/LuSVNSimpleLogMessageProvider.h>

#include <gtest/gtest.h>

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

TEST(LuSVNLogMessageProvider, CopyLeavesTheCopyAloneAndCopiesTheReceiversNextProvider)
{
    auto next = LuSVNSimpleLogMessageProvider::providerWithMessage("next");
    auto last = LuSVNSimpleLogMessageProvider::providerWithMessage("last");
    next->setNextProvider(last);
    auto receiver = LuSVNSimpleLogMessageProvider::providerWithMessage("receiver", next);

    auto copy = std::dynamic_pointer_cast<LuSVNSimpleLogMessageProvider>(receiver->copy());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->message(), "receiver");
    EXPECT_EQ(copy->nextProvider(), nullptr);

    // The receiver now points at a copy of its former next provider, which
    // in turn did the same to its own next provider.
    auto replaced = std::dynamic_pointer_cast<LuSVNSimpleLogMessageProvider>(receiver->nextProvider());
    ASSERT_NE(replaced, nullptr);
    EXPECT_NE(replaced, next);
    EXPECT_EQ(replaced->message(), "next");
    EXPECT_EQ(replaced->nextProvider(), nullptr);
    EXPECT_NE(next->nextProvider(), last);
    EXPECT_EQ(std::dynamic_pointer_cast<LuSVNSimpleLogMessageProvider>(next->nextProvider())->message(), "last");

    auto base = std::make_shared<LuSVNLogMessageProvider>(LuSVNSimpleLogMessageProvider::provider());
    EXPECT_EQ(base->copy()->nextProvider(), nullptr);
    EXPECT_NE(base->nextProvider(), nullptr);
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
