// The loader is one per process, so every scenario runs in a child process of
// its own (a gtest exit test) starting from an empty loader.
#include <gtest/gtest.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

namespace {

using tessera_test::TemporaryDirectory;

std::shared_ptr<LuSVNBundleLoader> loader()
{
    return LuSVNBundleLoader::sharedInstance();
}

// Runs the body in a fresh process; failures inside are reported by the child
// (on its standard error, which the parent shows) and turn its exit code
// non-zero.
#define IN_FRESH_PROCESS(body)                                                              \
    EXPECT_EXIT(                                                                            \
        {                                                                                   \
            dup2(STDERR_FILENO, STDOUT_FILENO);                                             \
            body;                                                                           \
            std::exit(::testing::Test::HasFailure() ? 1 : 0);                               \
        },                                                                                  \
        ::testing::ExitedWithCode(0), "")

std::string versionsText(const std::vector<LuSVNVersion>& versions)
{
    std::string text;
    for (const auto& v : versions)
        text += (text.empty() ? "" : ", ") + v.versionString();
    return text;
}

TEST(LuSVNBundleLoader, ChoosesNewestMatchingVersion)
{
    IN_FRESH_PROCESS({
        loader()->loadBundlesInDirectoryAtPath(TESSERA_TEST_LOADER_BUNDLE_DIR);
        EXPECT_EQ(versionsText(loader()->loadedVersions()), "1.7.2, 1.6.9, 1.6.5");
        auto svn16 = loader()->bundleForVersion(LuSVNVersion::version(1, 6));
        ASSERT_TRUE(svn16);
        EXPECT_EQ(svn16->description(), "1.6.9");
        EXPECT_EQ(loader()->newestBundle()->description(), "1.7.2");
        EXPECT_EQ(loader()->defaultBundle(), loader()->newestBundle());
        EXPECT_EQ(loader()->oldestBundle()->description(), "1.6.5");
        EXPECT_EQ(loader()->defaultVersion()->versionString(), "1.7.2");
        EXPECT_EQ(loader()->bundleForVersion(LuSVNVersion::version(0, 0)), loader()->newestBundle());
        EXPECT_EQ(loader()->bundleForVersion(LuSVNVersion::version(1, 8)), nullptr);
        EXPECT_EQ(loader()->versionForBundle(svn16)->versionString(), "1.6.9");
        EXPECT_EQ(loader()->infoDictionaryForBundle(svn16).integerForKey("LuSVNWorkingCopyFormatVersion"), 10);
    });
}

TEST(LuSVNBundleLoader, KeepsFirstBundleOfAVersion)
{
    IN_FRESH_PROCESS({
        auto first = loader()->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_6_9);
        auto second = loader()->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_6_9_SECOND);
        EXPECT_EQ(first, second);
        EXPECT_EQ(first->bundle()->bundlePath(), TESSERA_TEST_BUNDLE_1_6_9);
        EXPECT_EQ(loader()->loadedVersions().size(), 1u);
    });
}

TEST(LuSVNBundleLoader, NothingLoaded)
{
    IN_FRESH_PROCESS({
        EXPECT_FALSE(loader()->newestVersion());
        EXPECT_FALSE(loader()->oldestVersion());
        EXPECT_FALSE(loader()->defaultVersion());
        EXPECT_EQ(loader()->newestBundle(), nullptr);
        EXPECT_TRUE(loader()->loadedVersions().empty());
        EXPECT_THROW(LuSVNNode::formatVersionForWorkingCopyAtPath("/"), LuSVNException);
        // A directory that cannot be listed is passed over.
        loader()->loadBundlesInDirectoryAtPath("/nonexistent/tessera");
        EXPECT_TRUE(loader()->loadedVersions().empty());
    });
}

TEST(LuSVNBundleLoader, ExtensionIsMatchedIgnoringCase)
{
    IN_FRESH_PROCESS({
        TemporaryDirectory directory;
        std::filesystem::create_directory_symlink(TESSERA_TEST_BUNDLE_1_6_5, directory / "Upper.BUNDLE");
        std::filesystem::create_directory_symlink(TESSERA_TEST_BUNDLE_1_7_2, directory / "ignored.bundles");
        loader()->loadBundlesInDirectoryAtPath(directory.path());
        EXPECT_EQ(versionsText(loader()->loadedVersions()), "1.6.5");
    });
}

void expectLoadFailure(const std::string& path, const std::string& cause)
{
    try {
        loader()->loadBundleAtPath(path)->bundleObject();
        ADD_FAILURE() << "loaded " << path;
    } catch (const LuSVNException& e) {
        EXPECT_EQ(e.reason(), "Failed to load svn bundle at " + path);
        ASSERT_TRUE(e.userInfo() && e.userInfo()->cause && e.userInfo()->cause->message);
        EXPECT_NE(e.userInfo()->cause->message->find(cause), std::string::npos) << *e.userInfo()->cause->message;
    }
}

TEST(LuSVNBundleLoader, RefusesBrokenBundlesAndKeepsTheOthers)
{
    IN_FRESH_PROCESS({
        auto good = loader()->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_6_5);
        expectLoadFailure(TESSERA_TEST_BUNDLE_NO_INFO, "Info.json");
        expectLoadFailure(TESSERA_TEST_BUNDLE_INVALID_JSON, "Malformed Info.json");
        expectLoadFailure(TESSERA_TEST_BUNDLE_INTERFACE_2, "expected 1, found 2");
        expectLoadFailure(TESSERA_TEST_BUNDLE_MISSING_EXECUTABLE, "missing-executable");
        expectLoadFailure("/nonexistent/x.bundle", "Not a directory");

        // The bundle loaded before still works end to end.
        EXPECT_EQ(loader()->bundleForVersion(LuSVNVersion::version(1, 6, 5)), good);
        LuSVNBackendFrame frame(good);
        EXPECT_NE(frame.pool(), nullptr);
    });
}

// Standard error of the call, which the library's log writes to.
std::string standardErrorOf(const std::function<void()>& call)
{
    TemporaryDirectory directory;
    const std::string file = directory / "stderr";
    std::fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    const int redirected = open(file.c_str(), O_WRONLY | O_CREAT, 0600);
    dup2(redirected, STDERR_FILENO);
    close(redirected);
    call();
    std::fflush(stderr);
    dup2(saved, STDERR_FILENO);
    close(saved);
    std::ifstream stream(file);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

void scanSkipsBrokenBundlesBesideAGoodOne()
{
    TemporaryDirectory directory;
    struct Broken {
        const char* fixture;
        const char* name;
        const char* reason;
    };
    // Each broken one declares a newer release than the good one: loaded,
    // it would become the default backend.
    const Broken broken[] = {
        {TESSERA_TEST_BUNDLE_INVALID_JSON, "a-malformed-info.bundle", "Malformed Info.json"},
        {TESSERA_TEST_BUNDLE_NO_INFO, "b-no-info.bundle", "Cannot read Info.json"},
        {TESSERA_TEST_BUNDLE_INTERFACE_2, "c-interface-2.bundle", "expected 1, found 2"},
        {TESSERA_TEST_BUNDLE_MISSING_EXECUTABLE, "d-missing-object.bundle", "missing-executable"},
        {TESSERA_TEST_BUNDLE_1_8_0_MISSING, "e-newest-missing-object.bundle", "missing-executable"},
    };
    std::filesystem::create_directory_symlink(TESSERA_TEST_BUNDLE_1_6_5, directory / "good.bundle");
    for (const Broken& b : broken)
        std::filesystem::create_directory_symlink(b.fixture, directory / b.name);

    const std::string log = standardErrorOf([&] { loader()->loadBundlesInDirectoryAtPath(directory.path()); });

    EXPECT_EQ(versionsText(loader()->loadedVersions()), "1.6.5");
    const auto skipped = loader()->brokenBundles();
    ASSERT_EQ(skipped.size(), std::size(broken));
    for (const Broken& b : broken) {
        const std::string path = directory / b.name;
        const auto found = std::find_if(skipped.begin(), skipped.end(),
                                        [&](const auto& entry) { return entry.path == path; });
        ASSERT_NE(found, skipped.end()) << path;
        EXPECT_NE(found->reason.find(b.reason), std::string::npos) << found->reason;
        EXPECT_NE(log.find("Skipping svn bundle at " + path + ": "), std::string::npos) << log;
    }
    // The good backend answers as the default one.
    LuSVNBackendFrame frame(loader()->defaultBundle());
    EXPECT_NE(frame.pool(), nullptr);
}

TEST(LuSVNBundleLoader, ScanSkipsBrokenBundlesBesideAGoodOne)
{
    IN_FRESH_PROCESS(scanSkipsBrokenBundlesBesideAGoodOne());
}

TEST(LuSVNBundleLoader, NullArgumentsAreRefused)
{
    try {
        loader()->versionForBundle(nullptr);
        ADD_FAILURE();
    } catch (const LuSVNInternalInconsistencyException& e) {
        EXPECT_STREQ(e.what(), "Invalid parameter not satisfying: bundleObj != nil");
    }
    try {
        loader()->infoDictionaryForBundle(nullptr);
        ADD_FAILURE();
    } catch (const LuSVNInternalInconsistencyException& e) {
        EXPECT_STREQ(e.what(), "Invalid parameter not satisfying: bundle != nil");
    }
}

TEST(LuSVNBundleLoader, DefaultBundleDirectoryIsBesideTheLibrary)
{
    EXPECT_EQ(std::filesystem::canonical(LuSVNBundleLoader::defaultBundleDirectory()),
              std::filesystem::canonical(TESSERA_DEFAULT_BUNDLE_DIR));
}

}  // namespace
