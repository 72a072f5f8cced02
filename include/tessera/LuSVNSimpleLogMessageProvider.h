// A log-message provider with a fixed message.
//
//   context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("Fix the build"));
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNLogMessageProvider.h>

class TESSERA_EXPORT LuSVNSimpleLogMessageProvider : public LuSVNLogMessageProvider {
public:
    using LuSVNLogMessageProvider::LuSVNLogMessageProvider;

    /// Without message and next provider: it answers false.
    static std::shared_ptr<LuSVNSimpleLogMessageProvider> provider();
    static std::shared_ptr<LuSVNSimpleLogMessageProvider> providerWithMessage(std::optional<std::string> message);
    static std::shared_ptr<LuSVNSimpleLogMessageProvider> providerWithMessage(
        std::optional<std::string> message, std::shared_ptr<LuSVNLogMessageProvider> nextProvider);

    /// nullopt: no answer here.
    std::optional<std::string> message() const;
    void setMessage(std::optional<std::string> message);

    /// With a message: stores it and answers true, without asking the next
    /// provider. Without: the next provider's answer, or false at the end of
    /// the chain. The lock is held while the next provider answers.
    bool contextPromptForLogMessage(LuSVNContext& context, std::optional<std::string>& message,
                                    const std::vector<LuSVNCommitItem>& items) override;

    /// A new simple provider with the same message and the same next
    /// provider (see LuSVNLogMessageProvider::copy).
    std::shared_ptr<LuSVNLogMessageProvider> copy() const override;

private:
    std::optional<std::string> message_;
};
