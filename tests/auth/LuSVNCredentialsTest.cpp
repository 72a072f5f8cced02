// Credentials: conversions through Subversion's structures, equality,
// descriptions that keep secrets out of logs, and the SSL failure set.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNSSLClientCertificateCredentials.h>
#include <tessera/LuSVNSSLClientCertificatePasswordCredentials.h>
#include <tessera/LuSVNSSLServerTrustCredentials.h>
#include <tessera/LuSVNSimpleCredentials.h>
#include <tessera/LuSVNUsernameCredentials.h>

#include <gtest/gtest.h>

#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

namespace {

using Creds = std::shared_ptr<LuSVNCredentials>;

class CredentialsTest : public testing::Test {
protected:
    LuSVNBackendFrame frame{LuSVNBundleLoader::sharedInstance()->newestBundle()};
};

// One credentials object of every kind with every field set, the kind text,
// and how to read the structure's may_save.
struct KindCase {
    Creds credentials;
    const char* kind;
    int (*maySaveOf)(const void*);
};

std::vector<KindCase> everyKind()
{
    return {
        {LuSVNSimpleCredentials::credentialsWithUsername("alice", "s3cret!"), "svn.simple",
         [](const void* s) { return static_cast<const svn_auth_cred_simple_t*>(s)->may_save; }},
        {LuSVNUsernameCredentials::credentialsWithUsername("bob"), "svn.username",
         [](const void* s) { return static_cast<const svn_auth_cred_username_t*>(s)->may_save; }},
        {LuSVNSSLClientCertificateCredentials::credentialsWithCertificateAtPath("/certs/client.p12"),
         "svn.ssl.client-cert",
         [](const void* s) { return static_cast<const svn_auth_cred_ssl_client_cert_t*>(s)->may_save; }},
        {LuSVNSSLClientCertificatePasswordCredentials::credentialsWithPassword("pass phrase"),
         "svn.ssl.client-passphrase",
         [](const void* s) { return static_cast<const svn_auth_cred_ssl_client_cert_pw_t*>(s)->may_save; }},
        {LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(0x4000000C), "svn.ssl.server",
         [](const void* s) { return static_cast<const svn_auth_cred_ssl_server_trust_t*>(s)->may_save; }},
    };
}

TEST_F(CredentialsTest, EveryKindRoundTripsThroughItsStructure)
{
    for (bool maySave : {false, true}) {
        for (const KindCase& c : everyKind()) {
            SCOPED_TRACE(std::string(c.kind) + (maySave ? " may save" : ""));
            c.credentials->setMaySave(maySave);
            EXPECT_EQ(c.credentials->kind(), c.kind);
            EXPECT_EQ(std::string(c.credentials->credentialsClass().kind), c.kind);
            const void* svnStruct = c.credentials->convertToStructFromPool(frame.pool());
            EXPECT_EQ(c.maySaveOf(svnStruct), maySave ? 1 : 0);
            const Creds back = c.credentials->credentialsClass().credentialsFromStruct(svnStruct);
            EXPECT_TRUE(back->isEqual(c.credentials));
            EXPECT_EQ(back->maySave(), maySave);
            EXPECT_EQ(back->state(), maySave ? LuSVNCredentials::maySaveFlag : 0u);
            const Creds copy = c.credentials->copy();
            EXPECT_NE(copy, c.credentials);
            EXPECT_TRUE(copy->isEqual(c.credentials));
            EXPECT_EQ(copy->maySave(), maySave);
        }
    }
}

TEST_F(CredentialsTest, StructuresHoldPoolCopiesAndReadBackExactly)
{
    auto simple = LuSVNSimpleCredentials::credentialsWithUsername("alice", std::nullopt);
    auto* svnSimple = static_cast<svn_auth_cred_simple_t*>(simple->convertToStructFromPool(frame.pool()));
    EXPECT_STREQ(svnSimple->username, "alice");
    EXPECT_EQ(svnSimple->password, nullptr);  // absent stays null, not ""
    simple->setUsername("changed");
    EXPECT_STREQ(svnSimple->username, "alice");  // a copy, not the object's text

    // Only a may_save of exactly 1 means "may save"; null members stay absent.
    svn_auth_cred_simple_t raw{nullptr, "pw", 2};
    auto read = LuSVNSimpleCredentials::credentialsFromStruct(&raw);
    EXPECT_FALSE(read->maySave());
    EXPECT_EQ(read->username(), std::nullopt);
    EXPECT_EQ(read->password(), "pw");

    svn_auth_cred_ssl_server_trust_t trust{1, 0xFFFFFFFF};
    auto trusted = LuSVNSSLServerTrustCredentials::credentialsFromStruct(&trust);
    EXPECT_TRUE(trusted->maySave());
    EXPECT_EQ(trusted->acceptedFailures(), 0xFFFFFFFFu);
}

TEST_F(CredentialsTest, NullStructuresAndPoolsAreRefused)
{
    using tessera_test::expectParameterAssertion;
    for (const KindCase& c : everyKind()) {
        expectParameterAssertion([&] { c.credentials->credentialsClass().credentialsFromStruct(nullptr); },
                                 "creds != nil");
        expectParameterAssertion([&] { c.credentials->convertToStructFromPool(nullptr); }, "pool != NULL");
    }
}

TEST(CredentialsEqualityTest, ContentDecidesNeverMaySave)
{
    using Simple = LuSVNSimpleCredentials;
    auto a = Simple::credentialsWithUsername("alice", "pw");
    auto b = Simple::credentialsWithUsername("alice", "pw");
    b->setMaySave(true);
    EXPECT_TRUE(a->isEqual(b));

    struct Case {
        std::optional<std::string> username, password, otherUsername, otherPassword;
        bool equal;
    };
    const Case cases[] = {
        {std::nullopt, std::nullopt, std::nullopt, std::nullopt, true},
        {"alice", std::nullopt, "alice", std::nullopt, true},
        {"alice", std::nullopt, "alice", "", false},  // absent is not empty
        {std::nullopt, "pw", "", "pw", false},
        {"alice", "pw", "alice", "PW", false},
        {"alice", "pw", "bob", "pw", false},
    };
    for (const Case& c : cases) {
        auto left = Simple::credentialsWithUsername(c.username, c.password);
        auto right = Simple::credentialsWithUsername(c.otherUsername, c.otherPassword);
        EXPECT_EQ(left->isEqual(right), c.equal);
        EXPECT_EQ(right->isEqual(left), c.equal);
    }

    EXPECT_FALSE(a->isEqual(nullptr));
    EXPECT_FALSE(a->isEqualToCredentials(nullptr));
    // Same text, other kind.
    EXPECT_FALSE(LuSVNUsernameCredentials::credentialsWithUsername("x")->isEqual(
        LuSVNSSLClientCertificatePasswordCredentials::credentialsWithPassword("x")));
    EXPECT_FALSE(LuSVNSSLClientCertificatePasswordCredentials::credentialsWithPassword("x")->isEqual(
        LuSVNSSLClientCertificateCredentials::credentialsWithCertificateAtPath("x")));
    EXPECT_TRUE(LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(8)->isEqual(
        LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(8)));
    EXPECT_FALSE(LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(8)->isEqual(
        LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(9)));
}

TEST(CredentialsEqualityTest, SubclassesAreInstancesOfTheirBase)
{
    class Marked : public LuSVNUsernameCredentials {};
    auto base = LuSVNUsernameCredentials::credentialsWithUsername("u");
    auto derived = std::make_shared<Marked>();
    derived->setUsername("u");
    EXPECT_TRUE(LuSVNUsernameCredentials::classObject().isInstance(*derived));
    EXPECT_FALSE(LuSVNSimpleCredentials::classObject().isInstance(*derived));
    EXPECT_TRUE(base->isEqual(derived));
}

TEST(CredentialsDescriptionTest, SecretsNeverAppear)
{
    struct Case {
        Creds credentials;
        std::string description;
    };
    const Case cases[] = {
        {LuSVNSimpleCredentials::credentialsWithUsername("alice", "hunter2"), "svn.simple (alice, *******)"},
        // One "*" per character, not per byte.
        {LuSVNSimpleCredentials::credentialsWithUsername("alice", "h\xC3\xA9"), "svn.simple (alice, **)"},
        {LuSVNSimpleCredentials::credentialsWithUsername("alice", ""), "svn.simple (alice)"},
        {LuSVNSimpleCredentials::credentialsWithUsername("", "hunter2"), "svn.simple"},
        {LuSVNSimpleCredentials::credentials(), "svn.simple"},
        {LuSVNUsernameCredentials::credentialsWithUsername("bob"), "svn.username (bob)"},
        {LuSVNUsernameCredentials::credentialsWithUsername(""), "svn.username"},
        {LuSVNSSLClientCertificateCredentials::credentialsWithCertificateAtPath("/c.p12"),
         "svn.ssl.client-cert (/c.p12)"},
        {LuSVNSSLClientCertificateCredentials::credentials(), "svn.ssl.client-cert"},
        {LuSVNSSLClientCertificatePasswordCredentials::credentialsWithPassword("hunter2"),
         "svn.ssl.client-passphrase (*******)"},
        {LuSVNSSLClientCertificatePasswordCredentials::credentialsWithPassword(std::nullopt),
         "svn.ssl.client-passphrase"},
        {LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(0x0A),
         "svn.ssl.server (Expired, UnknownAuthority)"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.credentials->description(), c.description);
        EXPECT_EQ(c.credentials->description().find("hunter2"), std::string::npos);
    }
}

TEST(SSLFailuresTest, NamesAndReduction)
{
    struct Case {
        std::uint32_t failures;
        const char* text;
        std::uint32_t reduced;
    };
    const Case cases[] = {
        {0, "None", 0},
        {0xFFFFFFFF, "All", 0x4000000F},
        {0x40000009, "NotYetValid, UnknownAuthority, Other", 0x40000009},
        {0x10, "", 0},
        {0x7, "NotYetValid, Expired, HostMismatch", 0x7},
        {0x80000004, "HostMismatch", 0x4},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(LuSVNStringFromSSLError(c.failures), c.text) << std::hex << c.failures;
        EXPECT_EQ(LuSVNSSLErrorsFromFailures(c.failures), c.reduced) << std::hex << c.failures;
    }
}

TEST(SSLFailuresTest, ServerTrustValidatesAgainstTheServersFailures)
{
    auto trust = LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(0x0C);
    const std::string failuresKey(LuSVNAuthParamSSLServerFailures);
    EXPECT_TRUE(trust->validateWithParameters({{failuresKey, std::uint32_t{0x08}}}));
    EXPECT_TRUE(trust->validateWithParameters({{failuresKey, std::uint32_t{0x0C}}}));
    EXPECT_FALSE(trust->validateWithParameters({{failuresKey, std::uint32_t{0x09}}}));
    EXPECT_TRUE(trust->validateWithParameters({}));  // no failures reported
    EXPECT_FALSE(LuSVNSSLServerTrustCredentials::credentials()->validateWithParameters(
        {{failuresKey, std::uint32_t{0x01}}}));
    // Other kinds have nothing to check.
    EXPECT_TRUE(LuSVNSimpleCredentials::credentials()->validateWithParameters({{failuresKey, std::uint32_t{1}}}));
}

}  // namespace
