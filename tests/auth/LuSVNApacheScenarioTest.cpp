// Library operations against a real Apache with mod_dav_svn over HTTPS:
// trust policies that accept exactly the certificate failures they name, the
// server-trust prompt and Subversion's store of accepted certificates, Basic
// authentication with retries, client certificates from prompts and from the
// configuration, and cached server trust that validates against the server.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNCredentialsCacheAuthenticationProvider.h>
#include <tessera/LuSVNDefaultCredentialsAuthenticationProvider.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPromptProviders.h>
#include <tessera/LuSVNRevisionSpec.h>
#include <tessera/LuSVNSSLClientCertificateCredentials.h>
#include <tessera/LuSVNSSLClientCertificatePasswordCredentials.h>
#include <tessera/LuSVNSSLServerTrustCredentials.h>
#include <tessera/LuSVNSSLServerTrustPolicy.h>
#include <tessera/LuSVNSimpleCredentials.h>
#include <tessera/LuSVNStorageProviders.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "TesseraApache.h"

namespace {

using tessera_test::Apache;
using Providers = std::vector<LuSVNAuthenticationStack::Provider>;
constexpr std::uint32_t unknownCA = LuSVNSSLFailureUnknownAuthority;
constexpr std::uint32_t mismatch = LuSVNSSLFailureHostMismatch;

// Answers every question as set, and records what it was asked.
class Person : public LuSVNAuthenticationProviderDelegate {
public:
    std::vector<std::string> passwords;  // by retry count; the right one after them
    bool trust = true;
    bool permanently = false;
    std::optional<std::string> certificate;
    std::vector<std::string> asked;

    std::optional<bool> promptForSimpleCredentials(LuSVNAuthenticationProvider&, LuSVNSimpleCredentials& creds,
                                                   const std::optional<std::string>& realm, std::int32_t retry) override
    {
        asked.push_back("password " + realm.value_or("") + " " + std::to_string(retry));
        creds.setUsername(Apache::username);
        const auto index = static_cast<std::size_t>(retry);
        creds.setPassword(index < passwords.size() ? passwords[index] : Apache::password);
        return true;
    }
    std::optional<bool> promptForAuthenticationErrors(LuSVNAuthenticationProvider&, std::uint32_t failures,
                                                      const LuSVNCertificate& cert, const std::optional<std::string>&,
                                                      bool, bool& permanent) override
    {
        asked.push_back("trust " + LuSVNStringFromSSLError(failures) + " " + cert.hostname());
        permanent = permanently;
        return trust;
    }
    std::optional<bool> promptForSSLClientCertificateCredentials(LuSVNAuthenticationProvider&,
                                                                 LuSVNSSLClientCertificateCredentials& creds,
                                                                 const std::optional<std::string>&,
                                                                 std::int32_t) override
    {
        asked.push_back("certificate");
        creds.setCertificatePath(certificate);
        return certificate.has_value();
    }
    std::optional<bool> promptForSSLClientCertificatePasswordCredentials(
        LuSVNAuthenticationProvider&, LuSVNSSLClientCertificatePasswordCredentials& creds,
        const std::optional<std::string>&, std::int32_t) override
    {
        asked.push_back("passphrase");
        creds.setPassword(Apache::clientPassphrase);
        return true;
    }
};

class ApacheScenarioTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        if (const std::string reason = Apache::unavailableReason(); !reason.empty())
            return;
        server = new Apache();
    }
    static void TearDownTestSuite()
    {
        delete server;
        server = nullptr;
    }
    void SetUp() override
    {
        if (!server)
            GTEST_SKIP() << "Apache cannot run here: " << Apache::unavailableReason();
    }

    std::shared_ptr<LuSVNContext> contextWith(Providers providers)
    {
        auto context =
            LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle(), {}, config.path());
        for (auto& provider : providers)
            provider->setDelegate(person);
        context->authenticationStack()->setProviders(std::move(providers));
        context->authenticationStack()->setValue(config.path(), LuSVNAuthParamConfigDirectory);
        return context;
    }

    // Info and a property of trunk/file.txt at the URL; false when refused.
    static bool reads(const std::string& url, const std::shared_ptr<LuSVNContext>& context)
    {
        const auto file = LuSVNPath::pathWithString(url + "/trunk/file.txt");
        try {
            EXPECT_EQ(LuSVNNode::kindOfNodeAtPath(file, LuSVNRevisionSpec::HEAD(), context), LuSVNNodeKindFile);
            EXPECT_EQ(LuSVNNode::propertyWithName("color", file, LuSVNRevisionSpec::HEAD(), context),
                      std::optional<LuSVNPropertyValue>(std::string("blue")));
            return true;
        } catch (const LuSVNException&) {
            return false;
        }
    }

    static LuSVNAuthenticationStack::Provider trusting(std::shared_ptr<LuSVNSSLServerTrustPolicy> policy)
    {
        return LuSVNSSLServerTrustPolicyAuthenticationProvider::providerWithServerTrustPolicy(std::move(policy), false);
    }
    static LuSVNAuthenticationStack::Provider password()
    {
        return LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(2);
    }

    static Apache* server;
    tessera_test::TemporaryDirectory config;
    std::shared_ptr<Person> person = std::make_shared<Person>();
};

Apache* ApacheScenarioTest::server = nullptr;

TEST_F(ApacheScenarioTest, TrustPoliciesAcceptExactlyTheFailuresTheyName)
{
    using P = LuSVNSSLServerTrustPolicy;
    const std::string basic = server->basicURL(), other = server->mismatchURL();
    struct Case {
        const char* name;
        std::function<std::shared_ptr<P>()> policy;
        const std::string& url;
        bool reads;
    };
    const std::vector<Case> cases{
        {"nothing accepted", [] { return P::policyAcceptingNoErrors(); }, basic, false},
        {"unknown CA", [] { return P::policyAcceptingErrors(unknownCA); }, basic, true},
        {"unknown CA, CN mismatch still rejected", [] { return P::policyAcceptingErrors(unknownCA); }, other, false},
        {"both", [] { return P::policyAcceptingErrors(unknownCA | mismatch); }, other, true},
        {"unknown CA for this server",
         [&] { return P::policyAcceptingErrors(unknownCA, Apache::certificateRealm(basic)); }, basic, true},
        {"unknown CA for another server",
         [&] { return P::policyAcceptingErrors(unknownCA, Apache::certificateRealm(other)); }, basic, false},
        {"all for this server", [&] { return P::policyAcceptingAllErrorsForRealm(Apache::certificateRealm(other)); },
         other, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(reads(c.url, contextWith({trusting(c.policy()), password()})), c.reads);
    }
    // Only the two servers trusted on the Basic port asked for the password.
    EXPECT_EQ(person->asked, (std::vector<std::string>(2, "password " + server->basicRealm() + " 0")));
}

TEST_F(ApacheScenarioTest, TheServerTrustPromptDecidesAndSubversionKeepsPermanentAnswers)
{
    struct Case {
        bool trust;
        bool permanently;
        bool reads;
        bool laterReadsFromTheStore;
    };
    const std::vector<Case> cases{
        {false, false, false, false},
        {true, false, true, false},
        {true, true, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.trust) + std::to_string(c.permanently));
        tessera_test::TemporaryDirectory own;
        person->trust = c.trust;
        person->permanently = c.permanently;
        person->asked.clear();
        const auto withConfig = [&](Providers providers) {
            auto context = contextWith(std::move(providers));
            context->authenticationStack()->setValue(own.path(), LuSVNAuthParamConfigDirectory);
            return context;
        };
        // Subversion writes into the store's folder but does not make it.
        std::filesystem::create_directories(own / "auth/svn.ssl.server");
        EXPECT_EQ(
            reads(server->mismatchURL(), withConfig({LuSVNAuthenticationProvider::SSLServerTrustProvider(),
                                                     LuSVNAuthenticationProvider::SSLServerTrustPromptProvider()})),
            c.reads);
        EXPECT_EQ(person->asked, std::vector<std::string>{"trust HostMismatch, UnknownAuthority tessera.invalid"});
        EXPECT_EQ(reads(server->mismatchURL(), withConfig({LuSVNAuthenticationProvider::SSLServerTrustProvider()})),
                  c.laterReadsFromTheStore);
    }
}

TEST_F(ApacheScenarioTest, BasicAuthenticationRetriesUpToTheLimit)
{
    const auto policy = LuSVNSSLServerTrustPolicy::policyAcceptingErrors(unknownCA);
    const std::string realm = server->basicRealm();
    struct Case {
        std::vector<std::string> typed;
        bool reads;
        std::vector<std::string> asked;
    };
    const std::vector<Case> cases{
        {{}, true, {"password " + realm + " 0"}},
        {{"looking-glass", "queen"},
         true,
         {"password " + realm + " 0", "password " + realm + " 1", "password " + realm + " 2"}},
        {{"a", "b", "c"}, false, {"password " + realm + " 0", "password " + realm + " 1", "password " + realm + " 2"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed.size());
        person->passwords = c.typed;
        person->asked.clear();
        const auto context = contextWith({trusting(policy), password()});
        const auto file = LuSVNPath::pathWithString(server->basicURL() + "/trunk/file.txt");
        bool read = true;
        try {
            LuSVNNode::kindOfNodeAtPath(file, LuSVNRevisionSpec::HEAD(), context);
        } catch (const LuSVNException&) {
            read = false;
        }
        EXPECT_EQ(read, c.reads);
        EXPECT_EQ(person->asked, c.asked);
    }
}

TEST_F(ApacheScenarioTest, ClientCertificatesFromThePromptOrTheConfiguration)
{
    const auto policy = LuSVNSSLServerTrustPolicy::policyAcceptingErrors(unknownCA);
    using P = LuSVNAuthenticationProvider;
    struct Case {
        const char* name;
        std::function<Providers()> providers;
        bool configured;  // the servers file names the certificate and its passphrase
        std::optional<std::string> prompted;
        bool reads;
        std::vector<std::string> asked;
    };
    const std::vector<Case> cases{
        {"prompts",
         [&] {
             return Providers{trusting(policy), P::SSLClientCertificatePromptProviderWithRetryLimit(1),
                              P::SSLClientCertificatePasswordPromptProviderWithRetryLimit(1)};
         },
         false,
         server->clientCertificatePath(),
         true,
         {"certificate", "passphrase"}},
        {"no certificate given",
         [&] {
             return Providers{trusting(policy), P::SSLClientCertificatePromptProviderWithRetryLimit(1)};
         },
         false,
         std::nullopt,
         false,
         {"certificate"}},
        {"configuration",
         [&] {
             return Providers{trusting(policy), P::SSLClientCertificateProvider(),
                              P::SSLClientCertificatePasswordProvider()};
         },
         true,
         std::nullopt,
         true,
         {}},
        {"no provider", [&] { return Providers{trusting(policy)}; }, true, std::nullopt, false, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        person->certificate = c.prompted;
        person->asked.clear();
        const auto context = contextWith(c.providers());
        if (c.configured) {
            context->setOption(server->clientCertificatePath(), "ssl-client-cert-file", "servers", "global");
            context->setOption(std::string(Apache::clientPassphrase), "ssl-client-cert-password", "servers", "global");
        }
        EXPECT_EQ(reads(server->clientCertificateURL(), context), c.reads);
        EXPECT_EQ(person->asked, c.asked);
    }
}

TEST_F(ApacheScenarioTest, CachedServerTrustHoldsOnlyForTheFailuresItAccepts)
{
    const auto cache = LuSVNCredentialsCache::cache();
    for (const std::string& url : {server->basicURL(), server->mismatchURL()})
        cache->setCredentials(LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(unknownCA),
                              Apache::certificateRealm(url));
    const auto fromCache = [&] {
        return contextWith({LuSVNCredentialsCacheAuthenticationProvider::providerForCredentialsOfClass(
                                LuSVNSSLServerTrustCredentials::classObject(), cache),
                            LuSVNDefaultCredentialsAuthenticationProvider::defaultCredentialsProvider()});
    };
    auto context = fromCache();
    context->authenticationStack()->setValue(std::string(Apache::username), LuSVNAuthParamDefaultUsername);
    context->authenticationStack()->setValue(std::string(Apache::password), LuSVNAuthParamDefaultPassword);
    EXPECT_TRUE(reads(server->basicURL(), context));
    EXPECT_FALSE(reads(server->mismatchURL(), fromCache()));
}

}  // namespace
