// Providers and a stack owner for the authentication tests: a provider whose
// answers each test scripts, and a delegate that records the batons it is
// given, as a client context stores them.
#pragma once

#include <tessera/LuSVNAuthenticationStack.h>
#include <tessera/LuSVNSimpleCredentials.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "LuSVNSubversion.h"

namespace auth_test {

/// What the scripted provider was asked, in order: "first <realm>",
/// "next <realm> <retry count>", "save <description>".
using Requests = std::vector<std::string>;

class ScriptedProvider : public LuSVNAuthenticationProvider {
public:
    using First = std::function<std::shared_ptr<LuSVNCredentials>(const LuSVNAuthParameters&, std::shared_ptr<void>&)>;
    using Next = std::function<std::shared_ptr<LuSVNCredentials>(std::int32_t, const std::shared_ptr<void>&)>;

    First first;
    Next next;
    bool saves = false;
    const LuSVNCredentialsClass* declared = &LuSVNSimpleCredentials::classObject();
    Requests requests;

    const LuSVNCredentialsClass& credentialsClass() const override { return *declared; }

    std::shared_ptr<LuSVNCredentials> credentialsForRealm(const std::optional<std::string>& realm,
                                                          const LuSVNAuthParameters& parameters,
                                                          std::shared_ptr<void>& contextInfo) override
    {
        requests.push_back("first " + realm.value_or("(none)"));
        return first ? first(parameters, contextInfo) : nullptr;
    }

    std::shared_ptr<LuSVNCredentials> nextCredentialsForRealm(const std::optional<std::string>& realm,
                                                              const LuSVNAuthParameters&, std::int32_t retryCount,
                                                              const std::shared_ptr<void>& contextInfo) override
    {
        requests.push_back("next " + realm.value_or("(none)") + " " + std::to_string(retryCount));
        return next ? next(retryCount, contextInfo) : nullptr;
    }

    bool saveCredentials(const std::shared_ptr<LuSVNCredentials>& credentials, const std::optional<std::string>&,
                         const LuSVNAuthParameters&) override
    {
        requests.push_back("save " + credentials->description());
        return saves;
    }

    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override
    {
        return std::make_shared<ScriptedProvider>(*this);
    }
};

/// The exception a failing provider raises, told apart by its serial.
class ProviderFailure : public std::runtime_error {
public:
    explicit ProviderFailure(int serial) : std::runtime_error("provider failure"), serial(serial) {}
    int serial;
};

/// Keeps every baton it is told of and stores the last one where a client
/// context keeps it.
class BatonRecorder : public LuSVNAuthenticationStackDelegate {
public:
    std::vector<svn_auth_baton_t*> batons;
    svn_client_ctx_t* context = nullptr;

    void authenticationStackBatonChanged(LuSVNAuthenticationStack& stack, svn_auth_baton_t* baton) override
    {
        EXPECT_EQ(stack.baton(), baton);
        batons.push_back(baton);
        if (context)
            context->auth_baton = baton;
    }
};

}  // namespace auth_test
