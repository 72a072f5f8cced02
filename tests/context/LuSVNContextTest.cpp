// The context's binding to backends, its authentication stack and its
// configuration, read from files written into a configuration directory of
// the test's own.
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <gtest/gtest.h>

#include <filesystem>

#include "LuSVNBundlePushed.h"
#include "LuSVNContextTestSupport.h"

namespace {

using context_test::ContextTest;
using Options = LuSVNContext::Options;

// Sets the flag when the pool is destroyed.
void watchPool(const std::shared_ptr<LuSVNBundleProxy>& bundle, apr_pool_t* pool, bool& destroyed)
{
    tessera_private::LuSVNBundlePushed pushed(bundle);
    LuSVNEntry<5>()(
        pool, &destroyed,
        [](void* flag) -> apr_status_t {
            *static_cast<bool*>(flag) = true;
            return 0;
        },
        LuSVNEntry<6>());
}

TEST_F(ContextTest, RebindingMakesAFreshClientContextForTheOtherBackend)
{
    tessera_test::writeFile(configurationDirectory + "/config", "[helpers]\neditor-cmd = vi\n");
    context->loadConfiguration();
    context->setOption("ed", "editor-cmd", "config", "helpers");
    const auto providers = context->authenticationStack()->providers();
    const auto provider = std::make_shared<context_test::RecordingProvider>("after rebinding");
    context->setLogMessageProvider(provider);
    bool oldPoolDestroyed = false;
    watchPool(context->bundle(), context->pool(), oldPoolDestroyed);

    const auto bundle = LuSVNBundleLoader::sharedInstance()->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_6_23);
    context->setBundle(bundle);
    EXPECT_TRUE(oldPoolDestroyed);
    EXPECT_EQ(context->bundle(), bundle);
    EXPECT_EQ(context->bundleVersion(), LuSVNVersion::versionWithString("1.6.23"));
    const std::string description = context->description();
    EXPECT_EQ(description.substr(description.find('>')), "> (1.6.23)");
    // The providers moved to a stack of the new backend, and the
    // configuration was read again: the file's value, not the one set before.
    EXPECT_EQ(context->authenticationStack()->bundle(), bundle);
    EXPECT_EQ(context->authenticationStack()->providers(), providers);
    EXPECT_EQ(context->optionForName("editor-cmd", "config", "helpers", std::nullopt), "vi");
    // The new client context commits: callbacks and authentication are in place.
    run(*context, [&](svn_client_ctx_t* ctx, apr_pool_t* pool) {
        return makeDirectories({repositoryURL + "/trunk"}, ctx, pool);
    });
    EXPECT_EQ(provider->asked.size(), 1u);
    EXPECT_EQ(youngestRevision(), "1");

    // Each change of the providers reaches the client context.
    context->authenticationStack()->addProvider(std::make_shared<context_test::AuthorProvider>());
    EXPECT_EQ(context->ctx()->auth_baton, context->authenticationStack()->baton());

    oldPoolDestroyed = false;
    watchPool(context->bundle(), context->pool(), oldPoolDestroyed);
    context->setBundle(nullptr);
    EXPECT_TRUE(oldPoolDestroyed);
    EXPECT_EQ(context->bundleVersion(), std::nullopt);
    EXPECT_EQ(context->ctx(), nullptr);
    EXPECT_EQ(context->authenticationStack(), nullptr);
    EXPECT_EQ(context->optionForName("editor-cmd", "config", "helpers", "default"), "default");
    EXPECT_EQ(context->optionsForCategory("config", "helpers"), std::nullopt);
    EXPECT_THROW(context->setOption("x", "editor-cmd", "config", "helpers"), LuSVNInvalidArgumentException);

    context->setBundle(LuSVNBundleLoader::sharedInstance()->newestBundle());
    EXPECT_EQ(context->ctx()->auth_baton, context->authenticationStack()->baton());
    EXPECT_EQ(context->optionForName("editor-cmd", "config", "helpers", std::nullopt), "vi");

    tessera_test::expectParameterAssertion([] { LuSVNContext::contextWithBundle(nullptr); }, "bundle != nil");
}

TEST_F(ContextTest, OptionsComeFromTheFilesOfTheConfigurationDirectory)
{
    tessera_test::writeFile(configurationDirectory + "/config",
                            "[helpers]\neditor-cmd = vi\n[miscellany]\nenable-auto-props = yes\nglobal-ignores = *.tmp\n");
    tessera_test::writeFile(configurationDirectory + "/servers", "[global]\nhttp-timeout = 42\n");
    context->loadConfiguration();

    EXPECT_EQ(context->optionForName("editor-cmd", "config", "helpers", "ed"), "vi");
    EXPECT_EQ(context->optionForName("diff-cmd", "config", "helpers", "diff"), "diff");
    EXPECT_EQ(context->optionForName("diff-cmd", "config", "helpers", std::nullopt), std::nullopt);
    EXPECT_EQ(context->optionForName("editor-cmd", "unknown", "helpers", "ed"), "ed");
    EXPECT_EQ(context->optionsForCategory("servers", "global"), (Options{{"http-timeout", "42"}}));
    EXPECT_EQ(context->optionsForCategory("config", "miscellany"),
              (Options{{"enable-auto-props", "yes"}, {"global-ignores", "*.tmp"}}));
    EXPECT_EQ(context->optionsForCategory("config", "no-such-section"), Options{});
    EXPECT_EQ(context->optionsForCategory("unknown", "global"), std::nullopt);

    // Set in the context only: a new section, a changed value, an option without value.
    context->setOption("emacs", "editor-cmd", "config", "helpers");
    context->setOption("yes", "store-passwords", "config", "auth");
    context->setOption(std::nullopt, "http-timeout", "servers", "global");
    EXPECT_EQ(context->optionForName("editor-cmd", "config", "helpers", "ed"), "emacs");
    EXPECT_EQ(context->optionsForCategory("config", "auth"), (Options{{"store-passwords", "yes"}}));
    EXPECT_EQ(context->optionForName("http-timeout", "servers", "global", "30"), std::nullopt);
    EXPECT_EQ(context->optionsForCategory("servers", "global"), (Options{{"http-timeout", std::nullopt}}));
    try {
        context->setOption("x", "y", "unknown", "z");
        ADD_FAILURE() << "an unknown category was accepted";
    } catch (const LuSVNInvalidArgumentException& e) {
        EXPECT_STREQ(e.what(), "No configuration category unknown");
    }

    auto configuration = LuSVNConfiguration::configuration();
    configuration->setValue("colordiff", "diff-cmd", "helpers", "config");
    configuration->setValue("localhost", "local", "groups", "servers");
    context->setOptionsFromConfiguration(*configuration);
    EXPECT_EQ(context->optionForName("diff-cmd", "config", "helpers", std::nullopt), "colordiff");
    EXPECT_EQ(context->optionForName("editor-cmd", "config", "helpers", std::nullopt), "emacs");
    EXPECT_EQ(context->optionsForCategory("servers", "groups"), (Options{{"local", "localhost"}}));

    // The files are read again only when asked.
    tessera_test::writeFile(configurationDirectory + "/config", "[helpers]\neditor-cmd = nano\n");
    EXPECT_EQ(context->optionForName("editor-cmd", "config", "helpers", std::nullopt), "emacs");
    context->loadConfiguration();
    EXPECT_EQ(context->optionForName("editor-cmd", "config", "helpers", std::nullopt), "nano");
    EXPECT_EQ(context->optionForName("diff-cmd", "config", "helpers", std::nullopt), std::nullopt);
}

// As svn: a directory named but missing is set up, so that the credential
// stores have somewhere to write.
TEST_F(ContextTest, AMissingConfigurationDirectoryIsSetUp)
{
    const std::string missing = configurationDirectory + "/new";
    context->loadConfigurationInDirectory(missing);
    for (const char* part : {"config", "servers", "auth/svn.simple", "auth/svn.ssl.server"})
        EXPECT_TRUE(std::filesystem::exists(missing + "/" + part)) << part;
    EXPECT_EQ(context->configurationDirectory(), missing);
}

TEST_F(ContextTest, UnreadableConfigurationRaisesAndLeavesTheBackendStackBalanced)
{
    tessera_test::writeFile(configurationDirectory + "/config", "[helpers\neditor-cmd = vi\n");
    EXPECT_THROW(context->loadConfiguration(), LuSVNException);
    EXPECT_THROW(makeContext(LuSVNBundleLoader::sharedInstance()->newestBundle()), LuSVNException);
    EXPECT_THROW(LuSVNBundleCurrent(), LuSVNGenericException);  // nothing left pushed
}

TEST_F(ContextTest, GlobalIgnoresComeFromTheConfigurationOrTheDefault)
{
    EXPECT_EQ(context->globalIgnoreString(), std::string(LuSVNConfigDefaultGlobalIgnores));
    EXPECT_EQ(context->globalIgnoreList(), LuSVNContext::defaultGlobalIgnoreList());
    EXPECT_EQ(LuSVNContext::defaultGlobalIgnoreList().front(), "*.o");

    tessera_test::writeFile(configurationDirectory + "/config", "[miscellany]\nglobal-ignores = *.tmp  build \n");
    context->loadConfiguration();
    EXPECT_EQ(context->globalIgnoreString(), "*.tmp  build");
    EXPECT_EQ(context->globalIgnoreList(), (std::vector<std::string>{"*.tmp", "build"}));

    context->setOption(std::nullopt, std::string(LuSVNConfigOptionGlobalIgnores), "config", "miscellany");
    EXPECT_EQ(context->globalIgnoreString(), std::nullopt);
    EXPECT_TRUE(context->globalIgnoreList().empty());
}

TEST(LuSVNContext, GlobalIgnoreListSplitsAtSingleBlanksAndDropsEmptyPieces)
{
    const std::vector<std::pair<std::string, std::vector<std::string>>> rows = {
        {"*.o *.a", {"*.o", "*.a"}},
        {"*.o  *.a ", {"*.o", "*.a"}},
        {" *.o", {"*.o"}},
        {"", {}},
        {"   ", {}},
        {"a\tb c", {"a\tb", "c"}},  // only blanks separate; a tab inside a piece stays
        {"a\n b\t", {"a", "b"}},    // white space around pieces goes
        {"\xC2\xA0x y", {"x", "y"}},
    };
    for (const auto& [text, patterns] : rows)
        EXPECT_EQ(LuSVNContext::globalIgnoreListFromString(text), patterns) << text;
}

}  // namespace
