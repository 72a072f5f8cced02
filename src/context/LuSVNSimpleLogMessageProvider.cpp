#include <tessera/LuSVNSimpleLogMessageProvider.h>

#include "LuSVNObjectDescription.h"

using namespace tessera_private;

std::shared_ptr<LuSVNSimpleLogMessageProvider> LuSVNSimpleLogMessageProvider::provider()
{
    return std::make_shared<LuSVNSimpleLogMessageProvider>();
}

std::shared_ptr<LuSVNSimpleLogMessageProvider> LuSVNSimpleLogMessageProvider::providerWithMessage(
    std::optional<std::string> message)
{
    return providerWithMessage(std::move(message), nullptr);
}

std::shared_ptr<LuSVNSimpleLogMessageProvider> LuSVNSimpleLogMessageProvider::providerWithMessage(
    std::optional<std::string> message, std::shared_ptr<LuSVNLogMessageProvider> nextProvider)
{
    auto provider = std::make_shared<LuSVNSimpleLogMessageProvider>(std::move(nextProvider));
    provider->setMessage(std::move(message));
    return provider;
}

std::optional<std::string> LuSVNSimpleLogMessageProvider::message() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return message_;
}

void LuSVNSimpleLogMessageProvider::setMessage(std::optional<std::string> message)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    message_.swap(message);
}

bool LuSVNSimpleLogMessageProvider::contextPromptForLogMessage(LuSVNContext& context,
                                                               std::optional<std::string>& message,
                                                               const std::vector<LuSVNCommitItem>& items)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    if (message_) {
        message = message_;
        return true;
    }
    if (auto next = nextProvider())
        return next->contextPromptForLogMessage(context, message, items);
    return false;
}

std::shared_ptr<LuSVNLogMessageProvider> LuSVNSimpleLogMessageProvider::copy() const
{
    LuSVNRequireOwnCopy(*this);
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return providerWithMessage(message_, nextProvider());
}
