// The global options of authentication and configuration as svn takes them:
// repeated --config-option in their order, the words of
// --trust-server-cert-failures, and svn's errors for malformed ones.
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNSSLFailures.h>

#include <CLI/CLI.hpp>
#include <functional>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Authentication.h"
#include "Options.h"

namespace {

// Parses "tessera test ARGUMENTS" with the global options into settings.
std::vector<std::string> parse(TesseraGlobalSettings& settings, std::vector<std::string> arguments)
{
    CLI::App program("tessera");
    CLI::App* command = program.add_subcommand("test");
    command->allow_extras();
    addGlobalOptions(*command, settings);
    std::vector<std::string> targets;
    addArguments(*command, targets);
    arguments.insert(arguments.begin(), {"tessera", "test"});
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    program.parse(parserArguments(program, static_cast<int>(argv.size()), argv.data()));
    return targets;
}

// The status and reason of the LuSVNException that work raises.
std::pair<int, std::string> failure(const std::function<void()>& work)
{
    try {
        work();
    } catch (const LuSVNException& e) {
        return {static_cast<int>(e.status()), e.reason()};
    }
    return {0, ""};
}

}  // namespace

TEST(TesseraAuthenticationOptions, ConfigOptionsInTheirOrder)
{
    TesseraGlobalSettings settings;
    const auto targets = parse(settings, {"--config-option", "servers:global:http-timeout=5", "wc",
                                          "--config-option=config:auth:password-stores=", "--config-option",
                                          "servers:group:opt=a:b=c", "other"});
    EXPECT_EQ(targets, (std::vector<std::string>{"wc", "other"}));
    ASSERT_EQ(settings.configOptions.size(), 3u);
    const std::vector<std::vector<std::string>> expected = {{"servers", "global", "http-timeout", "5"},
                                                            {"config", "auth", "password-stores", ""},
                                                            {"servers", "group", "opt", "a:b=c"}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const TesseraConfigOption& option = settings.configOptions[i];
        EXPECT_EQ((std::vector<std::string>{option.file, option.section, option.option, option.value}), expected[i]);
    }
}

TEST(TesseraAuthenticationOptions, MalformedConfigOptions)
{
    for (const std::string argument :
         {"servers:global:opt", ":global:opt=1", "servers::opt=1", "servers:global:=1", "servers:global:o:p=1",
          "servers-global-opt=1"})
        EXPECT_EQ(failure([&] { parseConfigOption(argument); }),
                  (std::pair<int, std::string>{205000, "Invalid syntax of argument of --config-option"}))
            << argument;
}

TEST(TesseraAuthenticationOptions, TrustFailureWords)
{
    const std::vector<std::pair<std::string, std::uint32_t>> cases = {
        {"unknown-ca", LuSVNSSLFailureUnknownAuthority},
        {"cn-mismatch,expired", LuSVNSSLFailureHostMismatch | LuSVNSSLFailureExpired},
        {"not-yet-valid,other,unknown-ca",
         LuSVNSSLFailureNotYetValid | LuSVNSSLFailureOther | LuSVNSSLFailureUnknownAuthority},
    };
    for (const auto& [words, failures] : cases) {
        TesseraGlobalSettings settings;
        parse(settings, {"--non-interactive", "--trust-server-cert-failures", words});
        EXPECT_EQ(settings.trustFailures, failures) << words;
    }
    EXPECT_EQ(failure([] { parseTrustFailures("unknown-ca,expird"); }),
              (std::pair<int, std::string>{205000, "Unknown value 'expird' for --trust-server-cert-failures.\n"
                                                    "Supported values: unknown-ca, cn-mismatch, expired, "
                                                    "not-yet-valid, other"}));
}

TEST(TesseraAuthenticationOptions, OptionsSvnAllowsOnlyTogether)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"--trust-server-cert-failures=expired"}, "--trust-server-cert-failures requires --non-interactive"},
        {{"--password-from-stdin"}, "--password-from-stdin requires --non-interactive"},
        {{"--non-interactive", "--password", "x", "--password-from-stdin"},
         "--password and --password-from-stdin are mutually exclusive"},
    };
    for (const auto& [arguments, reason] : cases) {
        TesseraGlobalSettings settings;
        parse(settings, arguments);
        EXPECT_EQ(failure([&] { completeAuthenticationSettings(settings); }),
                  (std::pair<int, std::string>{205000, reason}));
    }
}
