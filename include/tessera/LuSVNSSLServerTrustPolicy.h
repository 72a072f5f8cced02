// Which failures of a server's SSL certificate (LuSVNSSLFailures.h) an
// application accepts, for every realm and per realm, and the provider that
// answers Subversion's server-trust question from it without asking anybody.
//
//   // the test server's self-signed certificate, nothing else
//   auto policy = LuSVNSSLServerTrustPolicy::policyAcceptingErrors(LuSVNSSLFailureUnknownAuthority,
//                                                                  "https://127.0.0.1:8443:443");
//   stack->addProvider(LuSVNSSLServerTrustPolicyAuthenticationProvider::providerWithServerTrustPolicy(policy,
//                                                                                                    false));
//
// The realm of a server's certificate is Subversion's "https://host:port",
// compared as exact text.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include <tessera/LuSVNAuthenticationProvider.h>

/// The certificate failures accepted, everywhere and per realm.
class TESSERA_EXPORT LuSVNSSLServerTrustPolicy {
public:
    /// Accepts the failures for the realm only.
    static std::shared_ptr<LuSVNSSLServerTrustPolicy> policyAcceptingErrors(std::uint32_t failures,
                                                                            const std::string& realm);
    /// Accepts the failures for every realm.
    static std::shared_ptr<LuSVNSSLServerTrustPolicy> policyAcceptingErrors(std::uint32_t failures);
    /// Accepts any failure for the realm.
    static std::shared_ptr<LuSVNSSLServerTrustPolicy> policyAcceptingAllErrorsForRealm(const std::string& realm);
    /// Accepts any failure anywhere.
    static std::shared_ptr<LuSVNSSLServerTrustPolicy> policyAcceptingAllErrors();
    /// Accepts nothing.
    static std::shared_ptr<LuSVNSSLServerTrustPolicy> policyAcceptingNoErrors();

    /// A policy accepting nothing.
    LuSVNSSLServerTrustPolicy() = default;
    /// The same sets.
    LuSVNSSLServerTrustPolicy(const LuSVNSSLServerTrustPolicy& other);
    LuSVNSSLServerTrustPolicy& operator=(const LuSVNSSLServerTrustPolicy&) = delete;

    /// The failures accepted everywhere; none at first.
    std::uint32_t errorsAcceptedForAllRealms() const { return errorsAcceptedForAllRealms_; }
    /// Replaces the failures accepted everywhere.
    void setErrorsAcceptedForAllRealms(std::uint32_t failures) { errorsAcceptedForAllRealms_ = failures; }

    /// The failures accepted for the realm alone; 0 for a realm never named.
    std::uint32_t errorsAcceptedForRealm(const std::string& realm) const;
    /// Replaces the realm's failures; 0 forgets the realm.
    void setErrorsAcceptedForRealm(std::uint32_t failures, const std::string& realm);
    /// Adds failures to the realm's.
    void acceptErrors(std::uint32_t failures, const std::string& realm);

    /// Whether every one of the failures is accepted for the realm (here or
    /// everywhere). No failures are always accepted.
    bool shouldAcceptErrors(std::uint32_t failures, const std::string& realm) const;

    /// A policy with the same sets, changed independently.
    std::shared_ptr<LuSVNSSLServerTrustPolicy> copy() const;

private:
    std::atomic<std::uint32_t> errorsAcceptedForAllRealms_{0};
    mutable std::recursive_mutex mutex_;
    std::map<std::string, std::uint32_t> errorsAccepted_;
};

/// "svn.ssl.server" answered from a LuSVNSSLServerTrustPolicy.
class TESSERA_EXPORT LuSVNSSLServerTrustPolicyAuthenticationProvider : public LuSVNAuthenticationProvider {
public:
    /// A provider answering from the policy; acceptPermanently lets
    /// Subversion store the acceptance in its own configuration directory.
    static std::shared_ptr<LuSVNSSLServerTrustPolicyAuthenticationProvider> providerWithServerTrustPolicy(
        std::shared_ptr<LuSVNSSLServerTrustPolicy> policy, bool acceptPermanently);

    /// A provider of a new policy accepting nothing.
    LuSVNSSLServerTrustPolicyAuthenticationProvider();
    /// Raises "Invalid parameter not satisfying: policy != nil" for none.
    LuSVNSSLServerTrustPolicyAuthenticationProvider(std::shared_ptr<LuSVNSSLServerTrustPolicy> policy,
                                                    bool acceptPermanently);

    /// The policy (shared, not copied).
    std::shared_ptr<LuSVNSSLServerTrustPolicy> serverTrustPolicy() const;
    /// Answers from another policy (required: "policy != nil").
    void setServerTrustPolicy(std::shared_ptr<LuSVNSSLServerTrustPolicy> policy);
    /// Whether accepted credentials may be stored by Subversion.
    bool acceptPermanently() const { return acceptPermanently_; }
    /// Sets whether accepted credentials may be stored.
    void setAcceptPermanently(bool acceptPermanently) { acceptPermanently_ = acceptPermanently; }

    /// LuSVNSSLServerTrustCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// When the policy accepts the server's failures (the parameter
    /// LuSVNAuthParamSSLServerFailures): credentials accepting everything the
    /// policy accepts for the realm. Else null, and the next provider (a
    /// prompt, say) is asked.
    std::shared_ptr<LuSVNCredentials> credentialsForRealm(const std::optional<std::string>& realm,
                                                          const LuSVNAuthParameters& parameters,
                                                          std::shared_ptr<void>& contextInfo) override;
    /// The same policy and flag.
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;

private:
    LuSVNSSLServerTrustPolicyAuthenticationProvider(const LuSVNSSLServerTrustPolicyAuthenticationProvider& other);

    mutable std::mutex mutex_;
    std::shared_ptr<LuSVNSSLServerTrustPolicy> policy_;
    std::atomic<bool> acceptPermanently_{false};
};
