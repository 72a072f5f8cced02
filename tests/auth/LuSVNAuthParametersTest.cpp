// Authentication parameters: the type of each standard name and the
// conversions between values and Subversion's raw forms.
#include <tessera/LuSVNAuthParameters.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNDefinitions.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

namespace {

using Value = LuSVNAuthParameterValue;

class AuthParametersTest : public testing::Test {
protected:
    LuSVNBackendFrame frame{LuSVNBundleLoader::sharedInstance()->newestBundle()};
};

const LuSVNCertificate certificate("svn.example.org", "ab:cd", "Jan 1 2024", "Jan 1 2034", "CN=Test CA",
                                   "MIIBszCCAR");

TEST(AuthParameterTypesTest, StandardNamesHaveTheirTypes)
{
    struct Case {
        std::string_view name;
        LuSVNAuthStandardParamType type;
    };
    const Case cases[] = {
        {LuSVNAuthParamConfigDirectory, LuSVNAuthStandardParamTypeString},
        {LuSVNAuthParamDefaultPassword, LuSVNAuthStandardParamTypeString},
        {LuSVNAuthParamDefaultUsername, LuSVNAuthStandardParamTypeString},
        {LuSVNAuthParamDontStorePasswords, LuSVNAuthStandardParamTypeBoolean},
        {LuSVNAuthParamDontStoreSSLClientCertificatePassphrases, LuSVNAuthStandardParamTypeBoolean},
        {LuSVNAuthParamNoCache, LuSVNAuthStandardParamTypeBoolean},
        {LuSVNAuthParamNonInteractive, LuSVNAuthStandardParamTypeBoolean},
        {LuSVNAuthParamServerGroup, LuSVNAuthStandardParamTypeString},
        {LuSVNAuthParamSSLServerCertificateInfo, LuSVNAuthStandardParamTypeCertificate},
        {LuSVNAuthParamSSLServerFailures, LuSVNAuthStandardParamTypeFailureSet},
        {LuSVNAuthParamStorePlaintextPasswords, LuSVNAuthStandardParamTypeString},
        {LuSVNAuthParamStorePlaintextSSLClientCertificatePassphrases, LuSVNAuthStandardParamTypeString},
        {"svn:auth:unheard-of", LuSVNAuthStandardParamTypeUnknown},
        {LuSVNAuthParamDefaultMayStorePassword, LuSVNAuthStandardParamTypeUnknown},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(LuSVNAuthTypeForStandardParam(c.name), c.type) << c.name;
        // Standard by prefix alone.
        EXPECT_EQ(LuSVNAuthIsStandardParam(c.name), c.name.starts_with("svn:auth:")) << c.name;
    }
    EXPECT_FALSE(LuSVNAuthIsStandardParam("SVN:AUTH:username"));
}

TEST_F(AuthParametersTest, ValuesRoundTripThroughTheirRawForms)
{
    struct Case {
        std::string_view name;
        Value value;
    };
    const Case cases[] = {
        {LuSVNAuthParamDefaultUsername, std::string("alice")},
        {LuSVNAuthParamConfigDirectory, std::string("")},
        {LuSVNAuthParamNonInteractive, true},
        {LuSVNAuthParamSSLServerFailures, std::uint32_t{0xC000000F}},
        {LuSVNAuthParamSSLServerCertificateInfo, certificate},
        // Custom parameters keep any value unchanged.
        {LuSVNAuthParamDefaultMayStorePassword, true},
        {LuSVNAuthParamDefaultMayStorePassword, false},
        {"my:parameter", certificate},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const void* raw = LuSVNAuthParamValueForObject(c.name, c.value, frame.pool());
        ASSERT_NE(raw, nullptr);
        EXPECT_EQ(LuSVNAuthParamObjectForValue(c.name, raw), c.value);
    }
}

TEST_F(AuthParametersTest, RawFormsAreWhatSubversionReads)
{
    const auto* text = static_cast<const char*>(
        LuSVNAuthParamValueForObject(LuSVNAuthParamDefaultUsername, std::string("alice"), frame.pool()));
    EXPECT_STREQ(text, "alice");
    const auto* failures = static_cast<const apr_uint32_t*>(
        LuSVNAuthParamValueForObject(LuSVNAuthParamSSLServerFailures, std::uint32_t{9}, frame.pool()));
    EXPECT_EQ(*failures, 9u);
    const auto* info = static_cast<const svn_auth_ssl_server_cert_info_t*>(
        LuSVNAuthParamValueForObject(LuSVNAuthParamSSLServerCertificateInfo, certificate, frame.pool()));
    EXPECT_STREQ(info->hostname, "svn.example.org");
    EXPECT_STREQ(info->fingerprint, "ab:cd");
    EXPECT_STREQ(info->valid_from, "Jan 1 2024");
    EXPECT_STREQ(info->valid_until, "Jan 1 2034");
    EXPECT_STREQ(info->issuer_dname, "CN=Test CA");
    EXPECT_STREQ(info->ascii_cert, "MIIBszCCAR");
    // Subversion marks booleans with any pointer, often "".
    EXPECT_EQ(LuSVNAuthParamObjectForValue(LuSVNAuthParamNoCache, ""), Value(true));
}

TEST_F(AuthParametersTest, ValuesWithoutARawForm)
{
    const std::pair<std::string_view, Value> cases[] = {
        {LuSVNAuthParamNonInteractive, false},  // booleans are cleared, never false
        {LuSVNAuthParamNonInteractive, std::string("yes")},
        {LuSVNAuthParamDefaultUsername, true},
        {LuSVNAuthParamSSLServerFailures, std::string("8")},
        {LuSVNAuthParamSSLServerCertificateInfo, std::uint32_t{1}},
        {"svn:auth:unheard-of", std::string("x")},
    };
    for (const auto& [name, value] : cases)
        EXPECT_EQ(LuSVNAuthParamValueForObject(name, value, frame.pool()), nullptr) << name;
    EXPECT_EQ(LuSVNAuthParamObjectForValue("svn:auth:unheard-of", "x"), std::nullopt);
}

TEST_F(AuthParametersTest, NullArgumentsAreRefused)
{
    using tessera_test::expectParameterAssertion;
    expectParameterAssertion([] { LuSVNAuthParamValueForObject("svn:auth:username", std::string("a"), nullptr); },
                             "pool != NULL");
    expectParameterAssertion([] { LuSVNAuthParamObjectForValue("svn:auth:username", nullptr); }, "value != NULL");
    expectParameterAssertion([] { LuSVNAuthDictionaryForParams(nullptr, nullptr, "svn.simple"); }, "parameters != nil");
    apr_hash_t* hash = LuSVNEntry<13>()(frame.pool());
    expectParameterAssertion([&] { LuSVNAuthDictionaryForParams(hash, nullptr, "svn.simple"); }, "pool != nil");
}

TEST_F(AuthParametersTest, DictionaryOfAParameterHashSkipsWhatItCannotRead)
{
    apr_hash_t* hash = LuSVNEntry<13>()(frame.pool());
    const auto set = [&](const char* name, const void* value) {
        LuSVNEntry<18>()(hash, name, static_cast<apr_ssize_t>(std::strlen(name)), value);
    };
    set("svn:auth:username", "alice");
    set("svn:auth:non-interactive", "");
    set("svn:auth:unheard-of", "skipped");
    set("auth:may-store-default-password",
        LuSVNAuthParamValueForObject(LuSVNAuthParamDefaultMayStorePassword, true, frame.pool()));
    const LuSVNAuthParameters expected{
        {"svn:auth:username", std::string("alice")},
        {"svn:auth:non-interactive", true},
        {"auth:may-store-default-password", true},
    };
    EXPECT_EQ(LuSVNAuthDictionaryForParams(hash, frame.pool(), "svn.simple"), expected);
}

TEST_F(AuthParametersTest, OnlyTrustRequestsReadTheServerCertificateAndItsFailures)
{
    // Subversion leaves the failures set to a pointer into a stack frame
    // that is gone by the time a password is asked for: a dangling pointer
    // here must never be read.
    apr_hash_t* hash = LuSVNEntry<13>()(frame.pool());
    const auto set = [&](std::string_view name, const void* value) {
        LuSVNEntry<18>()(hash, name.data(), static_cast<apr_ssize_t>(name.size()), value);
    };
    const apr_uint32_t failures = 8;
    set(LuSVNAuthParamSSLServerFailures, &failures);
    set(LuSVNAuthParamSSLServerCertificateInfo, reinterpret_cast<const void*>(std::uintptr_t{1}));
    set("svn:auth:username", "alice");
    const LuSVNAuthParameters simple{{"svn:auth:username", std::string("alice")}};
    EXPECT_EQ(LuSVNAuthDictionaryForParams(hash, frame.pool(), "svn.simple"), simple);
    set(LuSVNAuthParamSSLServerCertificateInfo, nullptr);
    const auto trust = LuSVNAuthDictionaryForParams(hash, frame.pool(), "svn.ssl.server");
    EXPECT_EQ(trust.at(std::string(LuSVNAuthParamSSLServerFailures)), LuSVNAuthParameterValue(std::uint32_t{8}));
}

}  // namespace
