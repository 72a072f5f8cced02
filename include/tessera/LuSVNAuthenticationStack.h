// The ordered list of authentication providers of a client context, and the
// Subversion authentication baton made from it.
//
// The context owns one stack and stores baton() in its Subversion client
// context; as the stack's delegate it is told of every new baton:
//
//   auto stack = LuSVNAuthenticationStack::stackWithBundle(bundle);
//   stack->setDelegate(context);            // authenticationStackBatonChanged
//   stack->addProvider(provider);           // a new baton, one notification
//   stack->setValue(std::string("alice"), LuSVNAuthParamDefaultUsername);
//
// The stack owns the pool its batons live in, so a stack stays usable as
// long as the application holds it, also after its context made another one
// (LuSVNContext::setBundle) or went: it then belongs to no context, and what
// is done with it reaches no client context.
//
// Every change of the provider list builds a new baton at once (in the
// stack's pool; older batons stay there until the stack goes) and tells the
// delegate once. Each baton has Subversion providers of its own for the
// provider objects, so one provider object may sit in any number of stacks,
// on any threads. Run-time parameters belong to a baton: after any change of
// the providers they are all unset, and owners set them again.
//
// The stack has no lock: it is used on the thread of its context.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tessera/LuSVNAuthParameters.h>
#include <tessera/LuSVNAuthenticationProvider.h>
#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNCredentials.h>
#include <tessera/LuSVNExport.h>

struct apr_pool_t;
struct svn_auth_baton_t;
struct svn_auth_iterstate_t;
class LuSVNAuthenticationStack;

/// The owner of a stack. Its one operation is optional: the default does
/// nothing.
class TESSERA_EXPORT LuSVNAuthenticationStackDelegate {
public:
    virtual ~LuSVNAuthenticationStackDelegate();

    /// Called once per change of the provider list, with the new baton.
    virtual void authenticationStackBatonChanged(LuSVNAuthenticationStack& stack, svn_auth_baton_t* baton);
};

class TESSERA_EXPORT LuSVNAuthenticationStack {
public:
    using Provider = std::shared_ptr<LuSVNAuthenticationProvider>;

    /// A stack of no providers with its first baton, built through the backend
    /// in a pool of the stack's own. Raises "Invalid parameter not satisfying:
    /// theBundle != nil".
    static std::shared_ptr<LuSVNAuthenticationStack> stackWithBundle(std::shared_ptr<LuSVNBundleProxy> bundle);

    /// Destroys the pool, and with it every baton of the stack.
    ~LuSVNAuthenticationStack();
    LuSVNAuthenticationStack(const LuSVNAuthenticationStack&) = delete;
    LuSVNAuthenticationStack& operator=(const LuSVNAuthenticationStack&) = delete;

    /// The owner; not retained.
    std::shared_ptr<LuSVNAuthenticationStackDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(std::weak_ptr<LuSVNAuthenticationStackDelegate> delegate) { delegate_ = std::move(delegate); }

    const std::shared_ptr<LuSVNBundleProxy>& bundle() const { return bundle_; }
    /// The stack's own pool, which holds its batons and parameters.
    apr_pool_t* pool() const { return pool_; }
    /// The baton built from the current list.
    svn_auth_baton_t* baton() const { return baton_; }

    // --- The provider list (each change: a new baton, one notification) -----

    /// In the order Subversion asks them within one credential kind.
    const std::vector<Provider>& providers() const { return providers_; }

    /// Replaces the list. Raises "Invalid parameter not satisfying: provider
    /// != nil" when it holds a null provider.
    void setProviders(std::vector<Provider> providers);
    /// Raises "Invalid parameter not satisfying: provider != nil" or "...
    /// index >= 0 && index <= [providers count]".
    void insertObject(Provider provider, std::size_t index);
    /// Raises "Invalid parameter not satisfying: provider != nil", and
    /// std::out_of_range for an index beyond the list.
    void replaceObjectInProvidersAtIndex(std::size_t index, Provider provider);
    /// Raises "Invalid parameter not satisfying: index >= 0 && index <
    /// [providers count]".
    void removeObjectFromProvidersAtIndex(std::size_t index);

    /// Appends. Raises "Invalid parameter not satisfying: provider != nil".
    void addProvider(Provider provider);
    /// Puts otherProvider in place of the first occurrence of provider. Raises
    /// "Invalid parameter not satisfying: provider != nil" or "... otherProvider
    /// != nil", and std::out_of_range when provider is not in the list.
    void replaceProvider(const Provider& provider, Provider otherProvider);
    /// Removes the first occurrence. Raises "Invalid parameter not satisfying:
    /// provider != nil", or "... index >= 0 && index < [providers count]"
    /// when it is not in the list.
    void removeProvider(const Provider& provider);
    /// Removes the first provider until none is left: n providers, n new
    /// batons and n notifications.
    void removeAllProviders();

    // --- Run-time parameters of the current baton -----------------------------

    /// The parameter's value, or nullopt when it is not set. Raises
    /// LuSVNGenericException "Authentication parameter value could not be
    /// converted" when the raw value has no conversion (a standard name of
    /// unknown type).
    std::optional<LuSVNAuthParameterValue> valueForParameterWithName(std::string_view name) const;
    /// Sets the parameter (nullopt: unsets it). Raises LuSVNGenericException
    /// "Authentication parameter value could not be converted" for a value
    /// without a raw form, false for a boolean parameter among them.
    void setValue(const std::optional<LuSVNAuthParameterValue>& value, std::string_view name);
    /// setValue for each entry, in the map's order; nullopt unsets.
    void setParametersFromDictionary(const std::map<std::string, std::optional<LuSVNAuthParameterValue>>& parameters);

    // --- Subversion's credential iteration, outside an operation -------------

    /// The first credentials of the kind that the providers give for the
    /// realm, with the iteration state in `iterator` (in the stack's pool:
    /// valid as long as the stack); null (iterator untouched) when none do or
    /// Subversion fails.
    std::shared_ptr<LuSVNCredentials> credentialsOfKind(const LuSVNCredentialsClass& credsKind,
                                                        const std::string& realm, svn_auth_iterstate_t*& iterator);
    /// The next credentials of the iteration; null when there are none or
    /// Subversion fails. Raises "Invalid parameter not satisfying: iterator !=
    /// nil" for a null iterator.
    std::shared_ptr<LuSVNCredentials> nextCredentialsOfKind(const LuSVNCredentialsClass& credsKind,
                                                            const std::string& realm, svn_auth_iterstate_t* iterator);
    /// Has Subversion save the credentials the iteration handed out last.
    /// Raises the providers' exception or the LuSVNException of Subversion's
    /// error; "Invalid parameter not satisfying: credentials != nil" or "...
    /// iterator != nil".
    void saveCredentials(const std::shared_ptr<LuSVNCredentials>& credentials, const std::string& realm,
                         svn_auth_iterstate_t* iterator);

private:
    explicit LuSVNAuthenticationStack(std::shared_ptr<LuSVNBundleProxy> bundle);

    // The one way the list changes: a baton for the new list first (so a
    // failure changes nothing), then the list, then the delegate.
    void providersChanged(std::vector<Provider> providers);
    svn_auth_baton_t* createBaton(const std::vector<Provider>& providers) const;

    std::weak_ptr<LuSVNAuthenticationStackDelegate> delegate_;
    std::shared_ptr<LuSVNBundleProxy> bundle_;
    apr_pool_t* pool_ = nullptr;
    svn_auth_baton_t* baton_ = nullptr;
    std::vector<Provider> providers_;
};
