#include <tessera/LuSVNLogMessageProvider.h>

#include "LuSVNObjectDescription.h"

using namespace tessera_private;

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

std::shared_ptr<LuSVNLogMessageProvider> LuSVNLogMessageProvider::copy() const
{
    // A plain provider in place of a subclass would answer "no message", and
    // Subversion would abandon the commit without a word.
    LuSVNRequireOwnCopy(*this);
    return std::make_shared<LuSVNLogMessageProvider>(nextProvider());
}
