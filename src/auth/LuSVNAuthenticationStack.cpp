#include <tessera/LuSVNAuthenticationStack.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNBundlePushed.h"
#include "LuSVNProviderException.h"
#include "LuSVNTrace.h"

using namespace tessera_private;

namespace {

constexpr const char* className = "LuSVNAuthenticationStack";

[[noreturn]] void raiseUnconvertibleParameter()
{
    throw LuSVNGenericException("Authentication parameter value could not be converted");
}

}  // namespace

LuSVNAuthenticationStackDelegate::~LuSVNAuthenticationStackDelegate() = default;

void LuSVNAuthenticationStackDelegate::authenticationStackBatonChanged(LuSVNAuthenticationStack&, svn_auth_baton_t*) {}

std::shared_ptr<LuSVNAuthenticationStack> LuSVNAuthenticationStack::stackWithBundle(
    std::shared_ptr<LuSVNBundleProxy> bundle)
{
    LUSVN_PARAMETER_ASSERT(bundle != nullptr, "theBundle != nil");
    LUSVN_TRACE(className, "initWithBundle", {"bundle", bundle->description()});
    return std::shared_ptr<LuSVNAuthenticationStack>(new LuSVNAuthenticationStack(std::move(bundle)));
}

// The pool is the stack's own, not its context's: an application may hold
// the stack longer than the context keeps its pool.
LuSVNAuthenticationStack::LuSVNAuthenticationStack(std::shared_ptr<LuSVNBundleProxy> bundle)
    : bundle_(std::move(bundle))
{
    LuSVNBundlePushed pushed(bundle_);
    pool_ = LuSVNEntry<19>()(nullptr, nullptr);
    try {
        baton_ = createBaton(providers_);
    } catch (...) {
        LuSVNEntry<20>()(pool_);
        throw;
    }
}

LuSVNAuthenticationStack::~LuSVNAuthenticationStack()
{
    LuSVNBundlePushed pushed(bundle_);
    LuSVNEntry<20>()(pool_);
}

void LuSVNAuthenticationStack::setProviders(std::vector<Provider> providers)
{
    for (const Provider& provider : providers)
        LUSVN_PARAMETER_ASSERT(provider != nullptr, "provider != nil");
    LUSVN_TRACE(className, "setProviders", {"count", std::to_string(providers.size())});
    providersChanged(std::move(providers));
}

void LuSVNAuthenticationStack::insertObject(Provider provider, std::size_t index)
{
    LUSVN_PARAMETER_ASSERT(provider != nullptr, "provider != nil");
    LUSVN_PARAMETER_ASSERT(index <= providers_.size(), "index >= 0 && index <= [providers count]");
    LUSVN_TRACE(className, "insertObject:inProvidersAtIndex", {"provider", provider->description()},
                {"index", std::to_string(index)});
    auto providers = providers_;
    providers.insert(providers.begin() + static_cast<std::ptrdiff_t>(index), std::move(provider));
    providersChanged(std::move(providers));
}

void LuSVNAuthenticationStack::replaceObjectInProvidersAtIndex(std::size_t index, Provider provider)
{
    LUSVN_PARAMETER_ASSERT(provider != nullptr, "provider != nil");
    if (index >= providers_.size())
        throw std::out_of_range("Index " + std::to_string(index) + " beyond the " + std::to_string(providers_.size()) +
                                " authentication providers");
    LUSVN_TRACE(className, "replaceObjectInProvidersAtIndex:withObject", {"index", std::to_string(index)},
                {"provider", provider->description()});
    auto providers = providers_;
    providers[index] = std::move(provider);
    providersChanged(std::move(providers));
}

void LuSVNAuthenticationStack::removeObjectFromProvidersAtIndex(std::size_t index)
{
    LUSVN_PARAMETER_ASSERT(index < providers_.size(), "index >= 0 && index < [providers count]");
    LUSVN_TRACE(className, "removeObjectFromProvidersAtIndex", {"index", std::to_string(index)});
    auto providers = providers_;
    providers.erase(providers.begin() + static_cast<std::ptrdiff_t>(index));
    providersChanged(std::move(providers));
}

void LuSVNAuthenticationStack::addProvider(Provider provider)
{
    LUSVN_PARAMETER_ASSERT(provider != nullptr, "provider != nil");
    insertObject(std::move(provider), providers_.size());
}

void LuSVNAuthenticationStack::replaceProvider(const Provider& provider, Provider otherProvider)
{
    LUSVN_PARAMETER_ASSERT(provider != nullptr, "provider != nil");
    LUSVN_PARAMETER_ASSERT(otherProvider != nullptr, "otherProvider != nil");
    // Not found gives the index past the end, which the replacement refuses.
    const auto index = static_cast<std::size_t>(std::find(providers_.begin(), providers_.end(), provider) -
                                                providers_.begin());
    replaceObjectInProvidersAtIndex(index, std::move(otherProvider));
}

void LuSVNAuthenticationStack::removeProvider(const Provider& provider)
{
    LUSVN_PARAMETER_ASSERT(provider != nullptr, "provider != nil");
    const auto index = static_cast<std::size_t>(std::find(providers_.begin(), providers_.end(), provider) -
                                                providers_.begin());
    removeObjectFromProvidersAtIndex(index);
}

void LuSVNAuthenticationStack::removeAllProviders()
{
    // One change per provider: each intermediate baton is a valid baton of
    // the providers left, and the delegate sees every one.
    while (!providers_.empty())
        removeObjectFromProvidersAtIndex(0);
}

void LuSVNAuthenticationStack::providersChanged(std::vector<Provider> providers)
{
    svn_auth_baton_t* baton = createBaton(providers);
    providers_ = std::move(providers);
    baton_ = baton;
    if (const auto delegate = delegate_.lock())
        delegate->authenticationStackBatonChanged(*this, baton_);
}

svn_auth_baton_t* LuSVNAuthenticationStack::createBaton(const std::vector<Provider>& providers) const
{
    LuSVNBundlePushed pushed(bundle_);
    apr_array_header_t* array =
        LuSVNEntry<11>()(pool_, static_cast<int>(providers.size()), static_cast<int>(sizeof(void*)));
    // Each provider makes its Subversion provider for this stack, bound to
    // the backend pushed here, in this stack's pool.
    for (const Provider& provider : providers)
        *static_cast<svn_auth_provider_object_t**>(LuSVNEntry<12>()(array)) = provider->providerObjectFromPool(pool_);
    svn_auth_baton_t* baton = nullptr;
    LuSVNEntry<89>()(&baton, array, pool_);
    return baton;
}

std::optional<LuSVNAuthParameterValue> LuSVNAuthenticationStack::valueForParameterWithName(std::string_view name) const
{
    LUSVN_TRACE(className, "valueForParameterWithName", {"name", std::string(name)});
    LuSVNBundlePushed pushed(bundle_);
    const std::string key(name);
    const void* raw = LuSVNEntry<91>()(baton_, key.c_str());
    if (!raw)
        return std::nullopt;
    auto value = LuSVNAuthParamObjectForValue(name, raw);
    if (!value)
        raiseUnconvertibleParameter();
    return value;
}

void LuSVNAuthenticationStack::setValue(const std::optional<LuSVNAuthParameterValue>& value, std::string_view name)
{
    // The name only: the value may be a password.
    LUSVN_TRACE(className, "setValue:forParameterWithName", {"name", std::string(name)});
    LuSVNBundlePushed pushed(bundle_);
    const void* raw = nullptr;
    if (value) {
        raw = LuSVNAuthParamValueForObject(name, *value, pool_);
        if (!raw)
            raiseUnconvertibleParameter();
    }
    // Subversion keeps the key pointer in its hash.
    const char* key = LuSVNEntry<4>()(pool_, std::string(name).c_str());
    LuSVNEntry<90>()(baton_, key, raw);
}

void LuSVNAuthenticationStack::setParametersFromDictionary(
    const std::map<std::string, std::optional<LuSVNAuthParameterValue>>& parameters)
{
    for (const auto& [name, value] : parameters)
        setValue(value, name);
}

std::shared_ptr<LuSVNCredentials> LuSVNAuthenticationStack::credentialsOfKind(const LuSVNCredentialsClass& credsKind,
                                                                              const std::string& realm,
                                                                              svn_auth_iterstate_t*& iterator)
{
    LUSVN_TRACE(className, "credentialsOfKind:forRealm:iterator", {"credsKind", credsKind.kind}, {"realm", realm});
    LuSVNBundlePushed pushed(bundle_);
    void* creds = nullptr;
    svn_auth_iterstate_t* state = nullptr;
    if (svn_error_t* error = LuSVNEntry<92>()(&creds, &state, credsKind.kind, realm.c_str(), baton_, pool_)) {
        // Unlike saving, failing to find credentials is not raised: no
        // credentials, whatever the reason (a provider's exception included).
        LuSVNTakeProviderException(error);
        LuSVNEntry<30>()(error);
        return nullptr;
    }
    if (!creds)
        return nullptr;
    if (state)
        iterator = state;
    return credsKind.credentialsFromStruct(creds);
}

std::shared_ptr<LuSVNCredentials> LuSVNAuthenticationStack::nextCredentialsOfKind(
    const LuSVNCredentialsClass& credsKind, const std::string& realm, svn_auth_iterstate_t* iterator)
{
    LUSVN_PARAMETER_ASSERT(iterator != nullptr, "iterator != nil");
    LUSVN_TRACE(className, "nextCredentialsOfKind:forRealm:iterator", {"credsKind", credsKind.kind}, {"realm", realm});
    LuSVNBundlePushed pushed(bundle_);
    void* creds = nullptr;
    if (svn_error_t* error = LuSVNEntry<93>()(&creds, iterator, pool_)) {
        LuSVNTakeProviderException(error);
        LuSVNEntry<30>()(error);
        return nullptr;
    }
    return creds ? credsKind.credentialsFromStruct(creds) : nullptr;
}

void LuSVNAuthenticationStack::saveCredentials(const std::shared_ptr<LuSVNCredentials>& credentials,
                                               const std::string& realm, svn_auth_iterstate_t* iterator)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != nil");
    LUSVN_PARAMETER_ASSERT(iterator != nullptr, "iterator != nil");
    LUSVN_TRACE(className, "saveCredentials:forRealm:iterator", {"credentials", credentials->description()},
                {"realm", realm});
    LuSVNBundlePushed pushed(bundle_);
    LuSVNThrowIfError(LuSVNRethrowProviderException(LuSVNEntry<94>()(iterator, pool_)));
}
