#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNBundlePushed.h"
#include "LuSVNObjectDescription.h"
#include "LuSVNProviderException.h"
#include "LuSVNTrace.h"

using namespace tessera_private;

namespace {
constexpr const char* className = "LuSVNContext";
}  // namespace

LuSVNContextDelegate::~LuSVNContextDelegate() = default;

void LuSVNContextDelegate::contextQueryContinue(LuSVNContext&, bool&) {}

LuSVNContext::LuSVNContext(std::optional<std::string> configurationDirectory)
    : configurationDirectory_(std::move(configurationDirectory))
{
}

std::shared_ptr<LuSVNContext> LuSVNContext::contextWithBundle(std::shared_ptr<LuSVNBundleProxy> bundle,
                                                              std::weak_ptr<LuSVNContextDelegate> delegate,
                                                              std::optional<std::string> configurationDirectory)
{
    LUSVN_PARAMETER_ASSERT(bundle != nullptr, "bundle != nil");
    LUSVN_TRACE(className, "contextWithBundle:delegate", {"bundle", bundle->description()},
                {"configurationDirectory", configurationDirectory.value_or("(null)")});
    std::shared_ptr<LuSVNContext> context(new LuSVNContext(std::move(configurationDirectory)));
    // Bound only now: the authentication stack needs the context as a shared delegate.
    context->setBundle(std::move(bundle));
    context->setDelegate(std::move(delegate));
    return context;
}

std::shared_ptr<LuSVNContext> LuSVNContext::contextWithBundle(std::shared_ptr<LuSVNBundleProxy> bundle,
                                                              std::weak_ptr<LuSVNContextDelegate> delegate)
{
    return contextWithBundle(std::move(bundle), std::move(delegate), std::nullopt);
}

std::shared_ptr<LuSVNContext> LuSVNContext::contextWithBundle(std::shared_ptr<LuSVNBundleProxy> bundle)
{
    return contextWithBundle(std::move(bundle), {}, std::nullopt);
}

std::shared_ptr<LuSVNContext> LuSVNContext::context()
{
    return contextWithBundle(LuSVNBundleLoader::sharedInstance()->defaultBundle());
}

LuSVNContext::~LuSVNContext()
{
    try {
        setBundle(nullptr);
    } catch (...) {
        // Destroying the pool cannot fail once it was made; a destructor has
        // no one to report to anyway.
    }
}

std::shared_ptr<LuSVNBundleProxy> LuSVNContext::bundle() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return bundle_;
}

std::optional<LuSVNVersion> LuSVNContext::bundleVersion() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return bundleVersion_;
}

void LuSVNContext::setBundle(std::shared_ptr<LuSVNBundleProxy> bundle)
{
    LUSVN_TRACE(className, "setBundle", {"bundle", bundle ? bundle->description() : "(null)"});
    std::lock_guard<std::recursive_mutex> guard(lock_);
    // The stack's batons are the old backend's: its providers move to a
    // stack of the new one. The application may still hold the old stack;
    // it keeps working on its own but no longer reaches this context.
    std::vector<LuSVNAuthenticationStack::Provider> providers;
    if (authenticationStack_) {
        providers = authenticationStack_->providers();
        authenticationStack_->setDelegate({});
        authenticationStack_.reset();
    }
    destroyContext();
    bundle_ = std::move(bundle);
    bundleVersion_.reset();
    if (!bundle_)
        return;
    try {
        bundleVersion_ = LuSVNBundleLoader::sharedInstance()->versionForBundle(bundle_);
        createContext();
        setupContext();
        makeAuthenticationStack(std::move(providers));
    } catch (...) {
        authenticationStack_.reset();
        destroyContext();
        bundle_.reset();
        bundleVersion_.reset();
        throw;
    }
}

void LuSVNContext::createContext()
{
    LuSVNBundlePushed pushed(bundle_);
    pool_ = LuSVNEntry<19>()(nullptr, nullptr);
    LuSVNThrowIfError(LuSVNEntry<47>()(&ctx_, pool_));
}

void LuSVNContext::destroyContext()
{
    if (!pool_)
        return;
    LuSVNBundlePushed pushed(bundle_);
    LuSVNEntry<20>()(pool_);
    pool_ = nullptr;
    ctx_ = nullptr;
}

void LuSVNContext::setupContext()
{
    LuSVNBundlePushed pushed(bundle_);
    loadConfiguration();
    setupLogCallback();
    setupNotificationCallback();
    setupCancellationCallback();
    setupProgressCallback();
    setupConflictCallback();
}

void LuSVNContext::makeAuthenticationStack(std::vector<LuSVNAuthenticationStack::Provider> providers)
{
    authenticationStack_ = LuSVNAuthenticationStack::stackWithBundle(bundle_);
    authenticationStack_->setDelegate(weak_from_this());
    ctx_->auth_baton = authenticationStack_->baton();
    if (!providers.empty())
        authenticationStack_->setProviders(std::move(providers));
}

void LuSVNContext::throwIfError(svn_error_t* error)
{
    if (pendingException_)
        LuSVNRethrowPending(pendingException_, error);
    LuSVNThrowIfError(LuSVNRethrowProviderException(error));
}

std::shared_ptr<LuSVNContextDelegate> LuSVNContext::delegate() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return delegate_.lock();
}

void LuSVNContext::setDelegate(std::weak_ptr<LuSVNContextDelegate> delegate)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    delegate_ = std::move(delegate);
}

std::shared_ptr<LuSVNLogMessageProvider> LuSVNContext::logMessageProvider() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return logMessageProvider_;
}

void LuSVNContext::setLogMessageProvider(std::shared_ptr<LuSVNLogMessageProvider> provider)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    logMessageProvider_.swap(provider);
}

std::shared_ptr<LuSVNNotificationHandler> LuSVNContext::notificationHandler() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return notificationHandler_;
}

void LuSVNContext::setNotificationHandler(std::shared_ptr<LuSVNNotificationHandler> handler)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    notificationHandler_.swap(handler);
}

LuSVNContext::ProgressHandler LuSVNContext::progressHandler() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return progressHandler_;
}

void LuSVNContext::setProgressHandler(ProgressHandler handler)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    progressHandler_.swap(handler);
}

LuSVNConflictResolver LuSVNContext::conflictResolver() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return conflictResolver_;
}

void LuSVNContext::setConflictResolver(LuSVNConflictResolver resolver)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    conflictResolver_.swap(resolver);
    if (ctx_)
        setupConflictCallback();
}

void LuSVNContext::beginProgress()
{
    progress_ = LuSVNProgress();
}

void LuSVNContext::notify(const LuSVNNotification& notification)
{
    if (auto handler = notificationHandler())
        handler->contextNotify(*this, notification);
}

std::shared_ptr<LuSVNAuthenticationStack> LuSVNContext::authenticationStack() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return authenticationStack_;
}

void LuSVNContext::authenticationStackBatonChanged(LuSVNAuthenticationStack& stack, svn_auth_baton_t* baton)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    // Only the context's own stack: another one made this context its
    // delegate (or a stack of an earlier binding), and its batons may be of
    // another backend.
    if (ctx_ && &stack == authenticationStack_.get())
        ctx_->auth_baton = baton;
}

std::string LuSVNContext::description() const
{
    const auto version = bundleVersion();
    return LuSVNGenericDescription(className, this) + " (" + (version ? version->description() : "(null)") + ")";
}
