// Prompt providers asked the way Subversion asks them (first credentials,
// then next ones after each refusal), with a delegate that answers, refuses,
// raises or is not there; and the server-trust prompt's certificate and
// storing rules.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPromptProviders.h>
#include <tessera/LuSVNSSLClientCertificateCredentials.h>
#include <tessera/LuSVNSSLClientCertificatePasswordCredentials.h>
#include <tessera/LuSVNSSLServerTrustCredentials.h>
#include <tessera/LuSVNStorageProviders.h>
#include <tessera/LuSVNUsernameCredentials.h>

#include <gtest/gtest.h>

#include <functional>

#include "LuSVNAuthTestSupport.h"
#include "LuSVNBackendFrame.h"

using namespace auth_test;

namespace {

enum class Answer { Fill, Refuse, Raise };

// Answers every prompt the same way and records "<kind> <retry count>".
class PromptDelegate : public LuSVNAuthenticationProviderDelegate {
public:
    Answer answer = Answer::Fill;
    bool permanent = false;
    std::vector<std::string> asked;
    std::uint32_t failures = 0;
    std::optional<LuSVNCertificate> certificate;
    bool mayStore = false;

    std::optional<bool> promptForSimpleCredentials(LuSVNAuthenticationProvider&, LuSVNSimpleCredentials& creds,
                                                   const std::optional<std::string>&, std::int32_t retry) override
    {
        creds.setUsername(creds.username().value_or("bob"));
        creds.setPassword("pw" + std::to_string(retry));
        return respond("simple", retry);
    }
    std::optional<bool> promptForUsernameCredentials(LuSVNAuthenticationProvider&, LuSVNUsernameCredentials& creds,
                                                     const std::optional<std::string>&, std::int32_t retry) override
    {
        creds.setUsername("user" + std::to_string(retry));
        return respond("username", retry);
    }
    std::optional<bool> promptForSSLClientCertificateCredentials(LuSVNAuthenticationProvider&,
                                                                 LuSVNSSLClientCertificateCredentials& creds,
                                                                 const std::optional<std::string>&,
                                                                 std::int32_t retry) override
    {
        creds.setCertificatePath("/certs/" + std::to_string(retry) + ".p12");
        return respond("client-cert", retry);
    }
    std::optional<bool> promptForSSLClientCertificatePasswordCredentials(
        LuSVNAuthenticationProvider&, LuSVNSSLClientCertificatePasswordCredentials& creds,
        const std::optional<std::string>&, std::int32_t retry) override
    {
        creds.setPassword("phrase" + std::to_string(retry));
        return respond("client-passphrase", retry);
    }
    std::optional<bool> promptForAuthenticationErrors(LuSVNAuthenticationProvider&, std::uint32_t failureSet,
                                                      const LuSVNCertificate& cert,
                                                      const std::optional<std::string>&, bool store,
                                                      bool& permanently) override
    {
        failures = failureSet;
        certificate = cert;
        mayStore = store;
        permanently = permanent;
        return respond("server", 0);
    }

private:
    bool respond(const std::string& kind, std::int32_t retry)
    {
        asked.push_back(kind + " " + std::to_string(retry));
        if (answer == Answer::Raise)
            throw std::runtime_error("delegate failure");
        return answer == Answer::Fill;
    }
};

// A stack with one provider; requests go through Subversion's own iteration.
class PromptProvidersTest : public testing::Test {
protected:
    void use(std::shared_ptr<LuSVNAuthenticationProvider> provider, bool withDelegate = true)
    {
        if (withDelegate)
            provider->setDelegate(delegate);
        stack->setProviders({std::move(provider)});
    }

    // First credentials of the kind: the error (code and message) or the
    // credentials' description, or "none".
    std::string first(const LuSVNCredentialsClass& kind)
    {
        return first(kind, "<svn://h> realm", nullptr);
    }
    std::string first(const LuSVNCredentialsClass& kind, const char* realm, void** structure)
    {
        void* creds = nullptr;
        state = nullptr;
        svn_error_t* error = LuSVNEntry<92>()(&creds, &state, kind.kind, realm, stack->baton(), frame.pool());
        if (structure)
            *structure = creds;
        return outcome(error, creds, kind);
    }
    std::string next(const LuSVNCredentialsClass& kind)
    {
        void* creds = nullptr;
        svn_error_t* error = LuSVNEntry<93>()(&creds, state, frame.pool());
        return outcome(error, creds, kind);
    }

    std::string outcome(svn_error_t* error, void* creds, const LuSVNCredentialsClass& kind)
    {
        if (error) {
            std::string text = std::to_string(error->apr_err) + " " + (error->message ? error->message : "");
            LuSVNEntry<30>()(error);
            return text;
        }
        return creds ? kind.credentialsFromStruct(creds)->description() : "none";
    }

    const std::shared_ptr<LuSVNBundleProxy> backend = LuSVNBundleLoader::sharedInstance()->newestBundle();
    LuSVNBackendFrame frame{backend};
    std::shared_ptr<LuSVNAuthenticationStack> stack = LuSVNAuthenticationStack::stackWithBundle(backend);
    std::shared_ptr<PromptDelegate> delegate = std::make_shared<PromptDelegate>();
    svn_auth_iterstate_t* state = nullptr;
};

struct PromptCase {
    const char* name;
    std::function<std::shared_ptr<LuSVNAuthenticationProvider>()> provider;
    const LuSVNCredentialsClass& kind;
    std::string filled;      // first answer when the delegate fills in
    std::string noDelegate;  // first answer without a delegate
    const char* what;        // the kind the delegate records
};

std::vector<PromptCase> promptCases()
{
    using P = LuSVNAuthenticationProvider;
    return {
        {"simple", [] { return P::simplePromptProviderWithRetryLimit(1); }, LuSVNSimpleCredentials::classObject(),
         "svn.simple (carol, ***)", "200015 Delegate not installed", "simple"},
        {"username", [] { return P::usernamePromptProviderWithRetryLimit(1); },
         LuSVNUsernameCredentials::classObject(), "svn.username (user0)", "200015 Delegate not installed",
         "username"},
        {"client certificate", [] { return P::SSLClientCertificatePromptProviderWithRetryLimit(1); },
         LuSVNSSLClientCertificateCredentials::classObject(), "svn.ssl.client-cert (/certs/0.p12)", "none",
         "client-cert"},
        {"passphrase", [] { return P::SSLClientCertificatePasswordPromptProviderWithRetryLimit(1); },
         LuSVNSSLClientCertificatePasswordCredentials::classObject(), "svn.ssl.client-passphrase (*******)",
         "200015 Delegate not installed", "client-passphrase"},
    };
}

TEST_F(PromptProvidersTest, DelegatesAnswerRefuseRaiseOrAreMissing)
{
    for (const PromptCase& c : promptCases()) {
        SCOPED_TRACE(c.name);
        const std::string what = c.what;
        delegate->asked.clear();

        // Each on a new baton: a baton keeps the credentials it handed out.
        const auto ask = [&](Answer answer) {
            delegate->answer = answer;
            use(c.provider());
            if (what == "simple")  // Subversion proposes it to the delegate
                stack->setValue(std::string("carol"), LuSVNAuthParamDefaultUsername);
            return first(c.kind);
        };
        EXPECT_EQ(ask(Answer::Fill), c.filled);
        EXPECT_EQ(ask(Answer::Refuse), "200015 User cancelled authentication");
        EXPECT_EQ(ask(Answer::Raise), "20014 Delegate raised an exception");
        EXPECT_EQ(delegate->asked, (std::vector<std::string>{what + " 0", what + " 0", what + " 0"}));

        use(c.provider(), false);
        EXPECT_EQ(first(c.kind), c.noDelegate);
    }
}

TEST_F(PromptProvidersTest, AsksAgainUpToTheRetryLimitWithTheRetryCount)
{
    for (const PromptCase& c : promptCases()) {
        SCOPED_TRACE(c.name);
        const std::string what = c.what;
        delegate->asked.clear();
        delegate->answer = Answer::Fill;
        auto provider = std::dynamic_pointer_cast<LuSVNRetryLimitedPromptProvider>(c.provider());
        ASSERT_NE(provider, nullptr);
        provider->setRetryLimit(2);
        use(provider);
        EXPECT_NE(first(c.kind), "none");
        EXPECT_NE(next(c.kind), "none");
        EXPECT_NE(next(c.kind), "none");
        EXPECT_EQ(next(c.kind), "none");  // the limit is reached
        EXPECT_EQ(delegate->asked, (std::vector<std::string>{what + " 0", what + " 1", what + " 2"}));

        // A new limit counts from the next rebuild of the baton only.
        provider->setRetryLimit(0);
        EXPECT_NE(first(c.kind), "none");
        EXPECT_NE(next(c.kind), "none");
        stack->setProviders({provider});
        EXPECT_NE(first(c.kind), "none");
        EXPECT_EQ(next(c.kind), "none");
    }
}

TEST_F(PromptProvidersTest, ServerTrustPromptSeesTheCertificateAndStoresOnlyWhenAllowed)
{
    const LuSVNCertificate certificate("127.0.0.1", "AB:CD", "Mon", "Tue", "Test CA", "MIIB");
    struct Case {
        std::uint32_t failures;
        bool noCache;
        bool permanent;
        Answer answer;
        std::string expected;
        bool mayStore;  // what Subversion allows
        int maySave;
    };
    const std::vector<Case> cases{
        {0x8000000A, false, true, Answer::Fill, "svn.ssl.server (Expired, UnknownAuthority)", true, 1},
        {0x8000000A, false, false, Answer::Fill, "svn.ssl.server (Expired, UnknownAuthority)", true, 0},
        // Subversion never stores an acceptance of "other" failures.
        {0x4000000A, false, true, Answer::Fill, "svn.ssl.server (Expired, UnknownAuthority, Other)", false, 0},
        {0x8, true, true, Answer::Fill, "svn.ssl.server (UnknownAuthority)", false, 0},
        {0x8, false, true, Answer::Refuse, "none", true, 0},
        {0x8, false, true, Answer::Raise, "20014 Delegate raised an exception", true, 0},
    };
    const auto& kind = LuSVNSSLServerTrustCredentials::classObject();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expected);
        use(LuSVNAuthenticationProvider::SSLServerTrustPromptProvider());
        stack->setValue(c.failures, LuSVNAuthParamSSLServerFailures);
        stack->setValue(certificate, LuSVNAuthParamSSLServerCertificateInfo);
        if (c.noCache)
            stack->setValue(true, LuSVNAuthParamNoCache);
        delegate->answer = c.answer;
        delegate->permanent = c.permanent;
        void* creds = nullptr;
        EXPECT_EQ(first(kind, "https://127.0.0.1:443", &creds), c.expected);
        EXPECT_EQ(delegate->failures, c.failures & 0x4000000F);  // the five named bits only
        EXPECT_EQ(delegate->certificate, certificate);
        EXPECT_EQ(delegate->mayStore, c.mayStore);
        if (creds) {
            const auto* trust = static_cast<const svn_auth_cred_ssl_server_trust_t*>(creds);
            EXPECT_EQ(trust->accepted_failures, c.failures);  // every bit, as Subversion gave them
            EXPECT_EQ(trust->may_save, c.maySave);
        }
    }
    use(LuSVNAuthenticationProvider::SSLServerTrustPromptProvider(), false);
    stack->setValue(std::uint32_t{0x8}, LuSVNAuthParamSSLServerFailures);
    stack->setValue(certificate, LuSVNAuthParamSSLServerCertificateInfo);
    EXPECT_EQ(first(kind), "none");
}

}  // namespace
