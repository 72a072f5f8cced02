// A repository and a context for the tests that drive the context's callbacks
// through real Subversion operations. The operations of the library do not
// exist here; the tests call the backend's entry points with the context's
// client context, in a frame of the context's backend, as an operation does.
#pragma once

#include <tessera/LuSVNAuthenticationProvider.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNLogMessageProvider.h>
#include <tessera/LuSVNNotificationHandler.h>
#include <tessera/LuSVNUsernameCredentials.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

namespace context_test {

/// The user every commit of the tests is made by.
inline const std::string author = "alice";

/// Answers every username request with the author: Subversion needs a
/// username even to commit to a local repository.
class AuthorProvider : public LuSVNAuthenticationProvider {
public:
    AuthorProvider() = default;
    AuthorProvider(const AuthorProvider& other) : LuSVNAuthenticationProvider(other) {}

    const LuSVNCredentialsClass& credentialsClass() const override { return LuSVNUsernameCredentials::classObject(); }
    std::shared_ptr<LuSVNCredentials> credentialsForRealm(const std::optional<std::string>&, const LuSVNAuthParameters&,
                                                          std::shared_ptr<void>&) override
    {
        return LuSVNUsernameCredentials::credentialsWithUsername(author);
    }
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override
    {
        return std::make_shared<AuthorProvider>(*this);
    }
};

// Asked for log messages: keeps the items and answers as told (or raises).
class RecordingProvider : public LuSVNLogMessageProvider {
public:
    explicit RecordingProvider(std::optional<std::string> answer) : answer(std::move(answer)) {}

    bool contextPromptForLogMessage(LuSVNContext&, std::optional<std::string>& message,
                                    const std::vector<LuSVNCommitItem>& items) override
    {
        asked.push_back(items);
        if (failure)
            throw *failure;
        message = answer;
        return answer.has_value();
    }

    std::optional<std::string> answer;
    std::optional<std::runtime_error> failure;
    std::vector<std::vector<LuSVNCommitItem>> asked;
};

// Keeps every notification it receives and passes it on, so that it can
// stand anywhere in a chain; raises std::out_of_range at the failAt-th.
class Recorder : public LuSVNNotificationHandler {
public:
    using LuSVNNotificationHandler::LuSVNNotificationHandler;

    void contextNotify(LuSVNContext& context, const LuSVNNotification& notification) override
    {
        notifications.push_back(notification);
        if (failAt && notifications.size() == *failAt)
            throw std::out_of_range("handler failed");
        if (auto next = nextHandler())
            next->contextNotify(context, notification);
    }

    std::size_t count(std::int32_t action) const
    {
        return static_cast<std::size_t>(std::count_if(notifications.begin(), notifications.end(),
                                                      [&](const auto& n) { return n.action() == action; }));
    }

    std::vector<LuSVNNotification> notifications;
    std::optional<std::size_t> failAt;
};

class ContextTest : public testing::Test {
public:
    /// A Subversion array of the texts, in the pool, through the current backend.
    static apr_array_header_t* textArray(const std::vector<std::string>& texts, apr_pool_t* pool)
    {
        apr_array_header_t* array = LuSVNEntry<11>()(pool, static_cast<int>(texts.size()), sizeof(const char*));
        for (const std::string& text : texts)
            *static_cast<const char**>(LuSVNEntry<12>()(array)) = LuSVNEntry<4>()(pool, text.c_str());
        return array;
    }

    /// Makes the directories of the URLs, their parents included, in one
    /// commit (entry point 60).
    static svn_error_t* makeDirectories(const std::vector<std::string>& urls, svn_client_ctx_t* ctx, apr_pool_t* pool)
    {
        svn_commit_info_t* info = nullptr;
        return LuSVNEntry<60>()(&info, textArray(urls, pool), true, nullptr, ctx, pool);
    }

protected:
    static std::string makeDirectory(const std::string& path)
    {
        std::filesystem::create_directory(path);
        return path;
    }

    /// A context for the backend reading the test's own (empty) configuration
    /// directory, with the author provider installed.
    std::shared_ptr<LuSVNContext> makeContext(std::shared_ptr<LuSVNBundleProxy> bundle) const
    {
        auto context = LuSVNContext::contextWithBundle(std::move(bundle), {}, configurationDirectory);
        context->authenticationStack()->addProvider(std::make_shared<AuthorProvider>());
        return context;
    }

    /// Calls the backend with the context's client context and a scratch pool,
    /// ending as an operation ends (LuSVNContext::throwIfError).
    static void run(LuSVNContext& context, const std::function<svn_error_t*(svn_client_ctx_t*, apr_pool_t*)>& call)
    {
        LuSVNBackendFrame frame(context.bundle());
        context.throwIfError(call(context.ctx(), frame.pool()));
    }

    /// The youngest revision of the test repository, as the svn client sees it.
    std::string youngestRevision() const
    {
        const auto result = tessera_test::svn({"info", "--show-item", "revision", repositoryURL});
        EXPECT_EQ(result.status, 0) << result.output;
        return result.output.substr(0, result.output.find('\n'));
    }

    tessera_test::TemporaryDirectory directory;
    const std::string repositoryURL = tessera_test::makeRepository(directory / "repository");
    const std::string configurationDirectory = makeDirectory(directory / "config");
    const std::shared_ptr<LuSVNContext> context = makeContext(LuSVNBundleLoader::sharedInstance()->newestBundle());
};

}  // namespace context_test
