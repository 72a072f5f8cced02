// Choosing a backend for a working copy made by the svn client (format 31),
// with different sets of loaded backends. The loader is one per process, so
// each set is loaded in a child process of its own.
#include <gtest/gtest.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <unistd.h>

#include <filesystem>

#include "TesseraTestSupport.h"

namespace {

using tessera_test::TemporaryDirectory;

#define IN_FRESH_PROCESS(body)                                                              \
    EXPECT_EXIT(                                                                            \
        {                                                                                   \
            dup2(STDERR_FILENO, STDOUT_FILENO);                                             \
            body;                                                                           \
            std::exit(::testing::Test::HasFailure() ? 1 : 0);                               \
        },                                                                                  \
        ::testing::ExitedWithCode(0), "")

class WorkingCopyChoice : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        directory = new TemporaryDirectory();
        tessera_test::checkout(tessera_test::makeRepository(*directory / "repository"), *directory / "wc");
    }
    static void TearDownTestSuite() { delete directory; }

    static std::string workingCopy() { return *directory / "wc"; }
    static void load(const std::string& path) { LuSVNBundleLoader::sharedInstance()->loadBundleAtPath(path); }

    static TemporaryDirectory* directory;
};
TemporaryDirectory* WorkingCopyChoice::directory = nullptr;

TEST_F(WorkingCopyChoice, OldestBackendReadingTheFormatWinsReducedToMajorMinor)
{
    IN_FRESH_PROCESS({
        load(TESSERA_TEST_BUNDLE_1_7_2);          // reads up to 29
        load(TESSERA_TEST_BUNDLE_1_6_9_READS_31);  // reads up to 31
        EXPECT_EQ(LuSVNNode::formatVersionForWorkingCopyAtPath(workingCopy()), 31);
        const LuSVNVersion chosen = LuSVNNode::versionForWorkingCopyAtPath(workingCopy());
        EXPECT_EQ(chosen.versionString(), "1.6");
        EXPECT_EQ(chosen.patch(), 0);
    });
}

TEST_F(WorkingCopyChoice, NewestBackendWhenNoneReadsTheFormat)
{
    IN_FRESH_PROCESS({
        load(TESSERA_TEST_BUNDLE_1_6_9);  // 10
        load(TESSERA_TEST_BUNDLE_1_7_2);  // 29
        EXPECT_EQ(LuSVNNode::versionForWorkingCopyAtPath(workingCopy()).versionString(), "1.7.2");
    });
}

TEST_F(WorkingCopyChoice, FallsBackToTheNextOlderBackendWhenTheNewestRaises)
{
    IN_FRESH_PROCESS({
        load(TESSERA_TEST_BUNDLE_1_6_9);
        load(TESSERA_TEST_BUNDLE_1_8_0_MISSING);
        auto missing = LuSVNBundleLoader::sharedInstance()->newestBundle();
        EXPECT_THROW(LuSVNNode::formatVersionForWorkingCopyAtPath(workingCopy(), missing), LuSVNException);
        EXPECT_EQ(LuSVNNode::formatVersionForWorkingCopyAtPath(workingCopy()), 31);
        // The outcome of the older backend is final: its exceptions pass.
        EXPECT_THROW(LuSVNNode::formatVersionForWorkingCopyAtPath(*directory / "absent"), LuSVNNoSuchEntryException);
    });
}

TEST_F(WorkingCopyChoice, BackendWithoutFormatIsAnInconsistency)
{
    IN_FRESH_PROCESS({
        load(TESSERA_TEST_BUNDLE_1_6_9_NO_FORMAT);
        try {
            LuSVNNode::versionForWorkingCopyAtPath(workingCopy());
            ADD_FAILURE();
        } catch (const LuSVNInternalInconsistencyException& e) {
            EXPECT_STREQ(e.what(),
                         "Bundle (version 1.6.9) does not provide working copy format version in infoDictionary");
        }
    });
}

TEST_F(WorkingCopyChoice, OlderInterfaceConvertsPathsWithTheGenericForm)
{
    // 1.4 lacks the dirent form of local paths (slot 28); the check goes
    // through slot 26 and reads the same format.
    IN_FRESH_PROCESS({
        auto svn14 = LuSVNBundleLoader::sharedInstance()->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_4_6);
        ASSERT_EQ(svn14->entryPoints()->slots[28], nullptr);
        EXPECT_EQ(LuSVNNode::formatVersionForWorkingCopyAtPath(workingCopy(), svn14), 31);
    });
}

TEST_F(WorkingCopyChoice, PathsThatAreNoWorkingCopy)
{
    IN_FRESH_PROCESS({
        load(TESSERA_TEST_BUNDLE_1_7_2);
        try {
            LuSVNNode::versionForWorkingCopyAtPath(directory->path());
            ADD_FAILURE();
        } catch (const LuSVNNotWorkingCopyException& e) {
            const std::string name = std::filesystem::path(directory->path()).filename().string();
            EXPECT_EQ(e.reason(), "\"" + name + "\" is not a working copy");
        }
        try {
            LuSVNNode::formatVersionForWorkingCopyAtPath(*directory / "absent");
            ADD_FAILURE();
        } catch (const LuSVNNoSuchEntryException& e) {
            EXPECT_EQ(e.status(), 2);
            EXPECT_NE(e.reason().find("does not exist"), std::string::npos) << e.reason();
        }
        EXPECT_EQ(LuSVNNode::adminAreaInDirectoryAtPath(workingCopy()), workingCopy() + "/.svn");
    });
}

}  // namespace
