#include "Authentication.h"

#include <iostream>
#include <sstream>

#include <tessera/LuSVNPromptProviders.h>
#include <tessera/LuSVNSSLServerTrustPolicy.h>
#include <tessera/LuSVNStorageProviders.h>
#include <tessera/Tessera.h>

#include "Messages.h"
#include "Options.h"
#include "TerminalPrompt.h"

namespace {

void refuse(const std::string& reason)
{
    LuSVNException::exceptionWithReason(reason, TesseraArgumentParsingError)->raise();
}

// svn asks again twice after the server refused what was given.
constexpr std::int32_t promptRetries = 2;

// The provider, asking on the terminal when the run may.
template <typename Provider>
std::shared_ptr<Provider> prompting(std::shared_ptr<Provider> provider, const TesseraGlobalSettings& settings)
{
    if (settings.interactive())
        provider->setDelegate(TesseraTerminalPrompt::shared());
    return provider;
}

}  // namespace

std::uint32_t parseTrustFailures(const std::string& list)
{
    std::uint32_t failures = 0;
    std::istringstream words(list);
    for (std::string word; std::getline(words, word, ',');) {
        if (word == "unknown-ca")
            failures |= LuSVNSSLFailureUnknownAuthority;
        else if (word == "cn-mismatch")
            failures |= LuSVNSSLFailureHostMismatch;
        else if (word == "expired")
            failures |= LuSVNSSLFailureExpired;
        else if (word == "not-yet-valid")
            failures |= LuSVNSSLFailureNotYetValid;
        else if (word == "other")
            failures |= LuSVNSSLFailureOther;
        else
            refuse("Unknown value '" + word +
                   "' for --trust-server-cert-failures.\n"
                   "Supported values: unknown-ca, cn-mismatch, expired, not-yet-valid, other");
    }
    return failures;
}

void completeAuthenticationSettings(TesseraGlobalSettings& settings)
{
    if (settings.trustFailures && !settings.nonInteractive)
        refuse("--trust-server-cert-failures requires --non-interactive");
    if (!settings.passwordFromStdin)
        return;
    if (settings.password)
        refuse("--password and --password-from-stdin are mutually exclusive");
    if (!settings.nonInteractive)
        refuse("--password-from-stdin requires --non-interactive");
    std::string line;
    std::getline(std::cin, line);
    settings.password = line;
    settings.passwordFromStdin = false;
}

void setUpContext(LuSVNContext& context, const TesseraGlobalSettings& settings)
{
    for (const TesseraConfigOption& option : settings.configOptions)
        context.setOption(option.value, option.option, option.file, option.section);

    auto stack = context.authenticationStack();
    // The keyring, then the files of the configuration directory, as svn
    // looks; with --no-auth-cache they are read but not written.
    // The file stores ask whether a password may be stored unencrypted.
    stack->addProvider(LuSVNAuthenticationProvider::keychainSimpleProvider());
    stack->addProvider(LuSVNAuthenticationProvider::keychainCertificatePasswordProvider());
    stack->addProvider(prompting(LuSVNAuthenticationProvider::simpleProvider(), settings));
    stack->addProvider(LuSVNAuthenticationProvider::usernameProvider());
    stack->addProvider(LuSVNAuthenticationProvider::SSLServerTrustProvider());
    stack->addProvider(LuSVNAuthenticationProvider::SSLClientCertificateProvider());
    stack->addProvider(prompting(LuSVNAuthenticationProvider::SSLClientCertificatePasswordProvider(), settings));
    if (settings.interactive()) {
        stack->addProvider(prompting(LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(promptRetries), settings));
        stack->addProvider(
            prompting(LuSVNAuthenticationProvider::usernamePromptProviderWithRetryLimit(promptRetries), settings));
        stack->addProvider(prompting(LuSVNAuthenticationProvider::SSLServerTrustPromptProvider(), settings));
        stack->addProvider(prompting(
            LuSVNAuthenticationProvider::SSLClientCertificatePromptProviderWithRetryLimit(promptRetries), settings));
        stack->addProvider(prompting(
            LuSVNAuthenticationProvider::SSLClientCertificatePasswordPromptProviderWithRetryLimit(promptRetries), settings));
    } else if (settings.trustFailures) {
        stack->addProvider(LuSVNSSLServerTrustPolicyAuthenticationProvider::providerWithServerTrustPolicy(
            LuSVNSSLServerTrustPolicy::policyAcceptingErrors(settings.trustFailures), false));
    }
    if (settings.username)
        stack->setValue(*settings.username, LuSVNAuthParamDefaultUsername);
    if (settings.password)
        stack->setValue(*settings.password, LuSVNAuthParamDefaultPassword);
    if (!settings.interactive())
        stack->setValue(true, LuSVNAuthParamNonInteractive);
    if (settings.noAuthCache)
        stack->setValue(true, LuSVNAuthParamNoCache);
    // Else the stores read and write the user's own directory.
    if (settings.configDir)
        stack->setValue(*settings.configDir, LuSVNAuthParamConfigDirectory);
}
