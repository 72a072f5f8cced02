// The client context in which every operation runs.
//
//   auto context = LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle(),
//                                                  delegate, configurationDirectory);
//   context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("Import"));
//   context->setNotificationHandler(handler);
//   context->authenticationStack()->addProvider(provider);
//
// A context binds one backend to one Subversion client context made by that
// backend in a root pool of its own, with the configuration read from a
// configuration directory, and owns one authentication stack whose baton the
// client context uses. While an operation runs, Subversion's callbacks come
// back to the context on the operation's thread:
//  - notifications go to the notification handler (LuSVNNotificationHandler.h);
//  - the log message of a commit comes from the log-message provider
//    (LuSVNLogMessageProvider.h): without provider a commit gets an empty
//    message;
//  - the progress handler hears the bytes moved and the items done
//    (LuSVNProgress);
//  - each conflict of a merge, update or switch goes to the conflict
//    resolver (LuSVNConflictResolution.h): without resolver every conflict
//    is postponed, left marked in the working copy;
//  - between steps, the delegate is asked whether to go on
//    (LuSVNContextDelegate::contextQueryContinue); answering false cancels
//    the operation with LuSVNOperationCancelledException.
// An exception raised by a handler or a provider stops the operation; the
// operation raises it once Subversion has returned (see throwIfError). One
// raised by the delegate's contextQueryContinue is ignored: the operation
// goes on.
//
// Threads: the backend binding (bundle, bundleVersion, setBundle) and the
// listeners are guarded by the context's own lock. One context serves one
// operation at a time; operations do not hold the lock while they run.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tessera/LuSVNAuthenticationStack.h>
#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNConfiguration.h>
#include <tessera/LuSVNConflictResolution.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNLogMessageProvider.h>
#include <tessera/LuSVNNotification.h>
#include <tessera/LuSVNNotificationHandler.h>
#include <tessera/LuSVNVersion.h>

struct apr_pool_t;
struct svn_auth_baton_t;
struct svn_client_ctx_t;
struct svn_config_t;
struct svn_error_t;
class LuSVNContext;

/// What a running operation has transferred so far.
struct LuSVNProgress {
    /// Bytes Subversion reports moved over the network; stays 0 on file://.
    std::int64_t bytes = 0;
    /// The total bytes expected; -1 when unknown.
    std::int64_t totalBytes = -1;
    /// Item notifications received so far in this operation.
    std::int64_t items = 0;
};

/// The application's listener of a context. Its one operation is optional:
/// the default lets the operation go on.
class TESSERA_EXPORT LuSVNContextDelegate {
public:
    virtual ~LuSVNContextDelegate();

    /// Asked between the steps of a running operation, on its thread. Set
    /// `shouldContinue` to false to cancel the operation. An exception raised
    /// here is ignored and the operation goes on.
    virtual void contextQueryContinue(LuSVNContext& context, bool& shouldContinue);
};

/// The client context in which every operation runs.
///
/// **Start-up.** Call LuSVNInitialize() once, from one thread, before making
/// the first context: it loads the backends. Without it the loader has no
/// backend, and context() (or contextWithBundle with the loader's null
/// newestBundle()) raises LuSVNInternalInconsistencyException "Invalid
/// parameter not satisfying: bundle != nil". Value types (paths, URLs,
/// revisions, versions) need no initialisation.
///
/// **Threads.** No thread of the library's own exists; every callback
/// (notifications, log messages, credential prompts, contextQueryContinue)
/// runs on the thread of the operation that caused it. Operations push the
/// context's backend on the calling thread themselves.
/// - One context serves one operation at a time. Never run two operations on
///   one context at once; give each thread its own context, or borrow them
///   from a LuSVNContextPool, which hands each thread its own.
/// - The binding (bundle(), bundleVersion(), setBundle()) and the listener
///   setters take the context's own lock and may be called from any thread,
///   but rebinding a context while an operation runs on it is an error.
/// - The context's authenticationStack() has no lock: change it only on the
///   thread that runs the context's operations, between operations.
/// - Shared freely between threads: LuSVNBundleLoader::sharedInstance(), its
///   LuSVNBundleProxy objects, the notification-handler and log-message
///   provider chains (each guards itself), LuSVNContextPool, and the
///   immutable values (LuSVNPath and its subclasses, LuSVNRevision,
///   LuSVNRevisionSpec, LuSVNVersion).
/// - Nodes (LuSVNNode) and their LuSVNStatus have setters and no lock: hand
///   them to another thread once the operation that made them has returned,
///   and do not change one while another thread reads it.
///
/// **Lifetimes.** What an operation answers (nodes with their statuses,
/// paths, URLs, revisions) holds no reference to the context or its pools:
/// it may outlive the context. A context may outlive every object the
/// application handed it except the delegate, which is not retained (a
/// delegate that is gone is simply not asked). The pool() and ctx() of a
/// context belong to it: do not keep them past setBundle() or the
/// context's end.
///
/// **Errors.** Failures raise the exceptions of LuSVNException.h, which says
/// what to catch; an exception that the application's own handler or
/// provider raises during an operation reaches the caller unchanged once
/// Subversion has returned. One raised by contextQueryContinue is ignored.
class TESSERA_EXPORT LuSVNContext : public LuSVNAuthenticationStackDelegate,
                                    public std::enable_shared_from_this<LuSVNContext> {
public:
    /// Option names and values of a section; nullopt is an option without
    /// value.
    using Options = std::map<std::string, std::optional<std::string>>;

    // --- Construction --------------------------------------------------------

    /// A context for the backend, without delegate, reading the configuration
    /// of the configuration directory (nullopt: the user's default one,
    /// ~/.subversion). Raises "Invalid parameter not satisfying: bundle != nil"
    /// for a null backend, and the LuSVNException of Subversion's error when
    /// the client context cannot be made or the configuration cannot be read.
    static std::shared_ptr<LuSVNContext> contextWithBundle(std::shared_ptr<LuSVNBundleProxy> bundle,
                                                           std::weak_ptr<LuSVNContextDelegate> delegate,
                                                           std::optional<std::string> configurationDirectory);
    /// The same with the user's default configuration directory.
    static std::shared_ptr<LuSVNContext> contextWithBundle(std::shared_ptr<LuSVNBundleProxy> bundle,
                                                           std::weak_ptr<LuSVNContextDelegate> delegate);
    /// The same without delegate.
    static std::shared_ptr<LuSVNContext> contextWithBundle(std::shared_ptr<LuSVNBundleProxy> bundle);
    /// A context for the loader's default backend.
    static std::shared_ptr<LuSVNContext> context();

    ~LuSVNContext() override;
    LuSVNContext(const LuSVNContext&) = delete;
    LuSVNContext& operator=(const LuSVNContext&) = delete;

    // --- Backend binding -----------------------------------------------------

    /// The bound backend; null while unbound.
    std::shared_ptr<LuSVNBundleProxy> bundle() const;
    /// The loader's version of the backend; nullopt without backend (or for a
    /// backend the loader does not know).
    std::optional<LuSVNVersion> bundleVersion() const;

    /// Rebinds the context: the pool and client context of the old backend
    /// are destroyed, and the new backend makes fresh ones, reads the
    /// configuration directory again and gets the callbacks installed. The
    /// authentication stack is made anew for the new backend with the same
    /// providers; run-time authentication parameters are unset again. A stack
    /// taken from the context before stays usable but is no longer the
    /// context's: changes to it do not reach the context, so ask
    /// authenticationStack() again. Null unbinds: the context then has no
    /// pool, client context or authentication stack, and rebinding it later
    /// starts with no providers. When the new backend fails, the context is
    /// left unbound and the exception raised.
    void setBundle(std::shared_ptr<LuSVNBundleProxy> bundle);

    /// For operations: the root pool and the client context; null while
    /// unbound.
    apr_pool_t* pool() const { return pool_; }
    /// See pool().
    svn_client_ctx_t* ctx() const { return ctx_; }

    /// Null while unbound.
    std::shared_ptr<LuSVNAuthenticationStack> authenticationStack() const;

    /// For operations, after the backend call made with ctx(), while its
    /// frame still stands: raises the exception that a handler or provider of
    /// this context raised during the call (freeing the error), else the
    /// exception of an authentication provider that the error stands for,
    /// else the LuSVNException of the error. Does nothing for no error.
    void throwIfError(svn_error_t* error);

    // --- Configuration -------------------------------------------------------

    /// Reads the "config" and "servers" files of the directory (nullopt: the
    /// user's default one) into the client context, and remembers the
    /// directory for later rebinding. A directory that is missing or lacks
    /// some of Subversion's files gets them first, as the svn client does.
    /// Raises the LuSVNException of Subversion's error for files it cannot
    /// parse.
    void loadConfigurationInDirectory(std::optional<std::string> directory);
    /// Reads the remembered directory again.
    void loadConfiguration();
    /// The directory the configuration was read from; nullopt for the user's
    /// default one.
    std::optional<std::string> configurationDirectory() const;

    /// The option's value; the default when the category ("config",
    /// "servers") or the option is absent. An option present without value
    /// is nullopt.
    std::optional<std::string> optionForName(const std::string& name, const std::string& category,
                                             const std::string& section,
                                             const std::optional<std::string>& defaultValue) const;
    /// Sets the option in this context's configuration (the files are not
    /// written); nullopt sets it without value. Raises
    /// LuSVNInvalidArgumentException "No configuration category <category>"
    /// for a category the configuration does not have.
    void setOption(const std::optional<std::string>& value, const std::string& name, const std::string& category,
                   const std::string& section);
    /// The options of the section; nullopt when the category is absent, an
    /// empty map when the section is.
    std::optional<Options> optionsForCategory(const std::string& category, const std::string& section) const;
    /// setOption for every option of every section of every category of the
    /// configuration, in its order.
    void setOptionsFromConfiguration(const LuSVNConfiguration& configuration);

    // --- Global ignores (LuSVNContext+Options) ---------------------------------

    /// The "global-ignores" option of section "miscellany" of "config", with
    /// defaultGlobalIgnoreString() as default; nullopt when it is set without
    /// value.
    std::optional<std::string> globalIgnoreString() const;
    /// globalIgnoreString() split with globalIgnoreListFromString; empty for
    /// nullopt.
    std::vector<std::string> globalIgnoreList() const;
    /// LuSVNConfigDefaultGlobalIgnores.
    static std::string defaultGlobalIgnoreString();
    /// defaultGlobalIgnoreString() split with globalIgnoreListFromString.
    static std::vector<std::string> defaultGlobalIgnoreList();
    /// The text split at single blanks, each piece trimmed of white space
    /// (as LuSVNTrim), the empty pieces left out, in order.
    static std::vector<std::string> globalIgnoreListFromString(std::string_view ignoreList);

    // --- Listeners -------------------------------------------------------------

    /// Not retained.
    std::shared_ptr<LuSVNContextDelegate> delegate() const;
    /// Replaces the delegate; it is not retained.
    void setDelegate(std::weak_ptr<LuSVNContextDelegate> delegate);
    /// Owned.
    std::shared_ptr<LuSVNLogMessageProvider> logMessageProvider() const;
    /// Replaces the provider (null: commits get an empty message).
    void setLogMessageProvider(std::shared_ptr<LuSVNLogMessageProvider> provider);
    /// Owned: the first link of the handler chain.
    std::shared_ptr<LuSVNNotificationHandler> notificationHandler() const;
    /// Replaces the first link of the handler chain (null: no notifications).
    void setNotificationHandler(std::shared_ptr<LuSVNNotificationHandler> handler);

    /// Receives the progress of the running operation.
    using ProgressHandler = std::function<void(const LuSVNProgress& progress)>;
    /// Replaces the progress handler (empty: none). It is called on the
    /// operation's thread whenever Subversion reports bytes moved and after
    /// each item notification; an exception from it stops the operation and
    /// reaches the caller.
    void setProgressHandler(ProgressHandler handler);
    /// The progress handler; empty when none is set.
    ProgressHandler progressHandler() const;
    /// For operations: starts the progress of a new operation (bytes and
    /// items back to 0).
    void beginProgress();

    /// Replaces the conflict resolver (empty: none, and Subversion postpones
    /// every conflict, as an interactive host wants). Subversion asks it on
    /// backends 1.5 and later; 1.4 has no conflict callback and postpones.
    void setConflictResolver(LuSVNConflictResolver resolver);
    /// The conflict resolver; empty when none is set.
    LuSVNConflictResolver conflictResolver() const;

    /// Hands the notification to the notification handler, if any.
    void notify(const LuSVNNotification& notification);

    /// Stores the new baton of the context's own stack into the client
    /// context; the batons of any other stack are ignored.
    void authenticationStackBatonChanged(LuSVNAuthenticationStack& stack, svn_auth_baton_t* baton) override;

    /// "<LuSVNContext: 0x...> (<bundleVersion>)", "(null)" without version.
    std::string description() const;

private:
    explicit LuSVNContext(std::optional<std::string> configurationDirectory);

    // Each runs under the lock with the backend bound.
    void createContext();
    void destroyContext();
    void setupContext();
    void makeAuthenticationStack(std::vector<LuSVNAuthenticationStack::Provider> providers);
    void setupLogCallback();
    void setupNotificationCallback();
    void setupCancellationCallback();
    void setupProgressCallback();
    void setupConflictCallback();
    // The category's configuration, or null, with the backend pushed.
    svn_config_t* configurationOfCategory(const std::string& category) const;

    // The C functions handed to Subversion (LuSVNContext+Callbacks.cpp).
    struct Callbacks;
    friend struct Callbacks;

    mutable std::recursive_mutex lock_;
    std::weak_ptr<LuSVNContextDelegate> delegate_;
    std::shared_ptr<LuSVNBundleProxy> bundle_;
    std::optional<LuSVNVersion> bundleVersion_;
    apr_pool_t* pool_ = nullptr;
    svn_client_ctx_t* ctx_ = nullptr;
    std::shared_ptr<LuSVNAuthenticationStack> authenticationStack_;
    std::shared_ptr<LuSVNLogMessageProvider> logMessageProvider_;
    std::shared_ptr<LuSVNNotificationHandler> notificationHandler_;
    ProgressHandler progressHandler_;
    LuSVNConflictResolver conflictResolver_;
    // What the running operation has done so far; its thread alone uses it.
    LuSVNProgress progress_;
    std::optional<std::string> configurationDirectory_;
    // What a callback raised during the running operation, for throwIfError.
    std::exception_ptr pendingException_;
};
