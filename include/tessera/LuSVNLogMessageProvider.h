// The providers of commit log messages, linked in a chain.
//
//   class Dialog : public LuSVNLogMessageProvider {
//   public:
//       bool contextPromptForLogMessage(LuSVNContext&, std::optional<std::string>& message,
//                                       const std::vector<LuSVNCommitItem>& items) override
//       {
//           message = askTheUser(items);        // nullopt: cancelled
//           return message.has_value();
//       }
//   };
//   context->setLogMessageProvider(std::make_shared<Dialog>());
//
// When Subversion needs the message of a commit, the context asks its
// provider. The first provider of a chain that has an answer wins; a provider
// without one defers to its next provider; the end of the chain answers
// false, and Subversion then abandons the commit without an error. An
// exception of a provider abandons the commit too, and the operation raises
// it once Subversion has returned.
//
// Each provider guards its own fields with its own lock.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <tessera/LuSVNCommitItem.h>
#include <tessera/LuSVNExport.h>

class LuSVNContext;

class TESSERA_EXPORT LuSVNLogMessageProvider : public std::enable_shared_from_this<LuSVNLogMessageProvider> {
public:
    LuSVNLogMessageProvider() = default;
    explicit LuSVNLogMessageProvider(std::shared_ptr<LuSVNLogMessageProvider> nextProvider);
    virtual ~LuSVNLogMessageProvider();

    LuSVNLogMessageProvider(const LuSVNLogMessageProvider&) = delete;
    LuSVNLogMessageProvider& operator=(const LuSVNLogMessageProvider&) = delete;

    /// The next link, owned; null at the end of the chain.
    std::shared_ptr<LuSVNLogMessageProvider> nextProvider() const;
    void setNextProvider(std::shared_ptr<LuSVNLogMessageProvider> nextProvider);

    /// The first link of the chain from this provider on, this one included,
    /// that is a T (or derives from it); null when none is.
    template <class T>
    std::shared_ptr<T> providerOfClass()
    {
        std::lock_guard<std::recursive_mutex> guard(lock_);
        if (auto provider = std::dynamic_pointer_cast<T>(shared_from_this()))
            return provider;
        return nextProvider_ ? nextProvider_->template providerOfClass<T>() : nullptr;
    }

    /// The log message for a commit of the items (in Subversion's order):
    /// true with the message stored in `message`, or false for no message.
    /// The base class answers false and does not ask the chain.
    virtual bool contextPromptForLogMessage(LuSVNContext& context, std::optional<std::string>& message,
                                            const std::vector<LuSVNCommitItem>& items);

    /// A new provider of the same class and settings linking to the same
    /// next provider: the links behind it are shared, not copied, and this
    /// provider is left as it was. A subclass overrides it to copy itself;
    /// one that does not cannot be copied and raises
    /// LuSVNInvalidArgumentException "<class> does not override copy()", so
    /// that no copy ever answers in its place with another kind's answer.
    virtual std::shared_ptr<LuSVNLogMessageProvider> copy() const;

protected:
    mutable std::recursive_mutex lock_;

private:
    std::shared_ptr<LuSVNLogMessageProvider> nextProvider_;
};
