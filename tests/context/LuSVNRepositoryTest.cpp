// Creating, opening and deleting real repositories, checked with svnadmin and
// the svn client.
#include <tessera/LuSVNAddOptions.h>
#include <tessera/LuSVNBerkeleyDBOptions.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNFileSystemOptions.h>
#include <tessera/LuSVNPlatformBundle.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRepository.h>
#include <tessera/LuSVNRepositoryInfo.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "TesseraTestSupport.h"

namespace fs = std::filesystem;

namespace {

std::shared_ptr<const LuSVNLocalPath> localPath(const std::string& text)
{
    return LuSVNLocalPath::pathWithString(text);
}

void expectVerified(const std::string& path)
{
    const auto result = tessera_test::run({TESSERA_SVNADMIN_PROGRAM, "verify", "-q", path});
    EXPECT_EQ(result.status, 0) << result.output;
}

std::string contentsOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

TEST(LuSVNRepository, CreatedRepositoryTakesCommitsOfTheClient)
{
    tessera_test::TemporaryDirectory directory;
    const auto repository =
        LuSVNRepository::createRepositoryAtPath(localPath(directory / "repository"), LuSVNFileSystemOptions());
    EXPECT_EQ(repository->path()->string(), directory / "repository");
    expectVerified(directory / "repository");

    tessera_test::writeFile(directory / "file.txt", "contents\n");
    const std::string url = repository->path()->URL()->string();
    auto result = tessera_test::svn({"import", "-m", "first import", directory / "file.txt", url + "/file.txt"});
    ASSERT_EQ(result.status, 0) << result.output;
    result = tessera_test::svn({"log", url});
    ASSERT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("first import"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("r1 |"), std::string::npos) << result.output;
    expectVerified(directory / "repository");
}

TEST(LuSVNRepository, CompatibilityGivesWhatSvnadminGives)
{
    // Every release line up to the running one, and releases svnadmin refuses.
    std::vector<std::string> versions = {"0.1", "1.15", "2.0", "1.14.99"};
    for (int minor = 0; minor <= 14; ++minor)
        versions.push_back("1." + std::to_string(minor));
    for (const auto& version : versions) {
        SCOPED_TRACE(version);
        tessera_test::TemporaryDirectory directory;
        const auto oracle = tessera_test::run({TESSERA_SVNADMIN_PROGRAM, "create", "--fs-type", "fsfs",
                                               "--compatible-version", version, directory / "oracle"});
        LuSVNFileSystemOptions options;
        options.setCompatibility(LuSVNVersion::versionWithString(version));
        std::optional<std::pair<std::string, int>> refusal;
        try {
            LuSVNRepository::createRepositoryAtPath(localPath(directory / "made"), options);
        } catch (const LuSVNException& e) {
            refusal.emplace(e.reason(), e.status());
        }

        if (oracle.status == 0) {
            if (refusal) {
                ADD_FAILURE() << refusal->first;
                continue;
            }
            for (const char* file : {"format", "db/format", "db/fs-type"}) {
                const std::string made = contentsOf(directory / "made/" + file);
                EXPECT_FALSE(made.empty()) << file;
                EXPECT_EQ(made, contentsOf(directory / "oracle/" + file)) << file;
            }
            expectVerified(directory / "made");
            continue;
        }
        if (!refusal) {
            ADD_FAILURE() << "made what svnadmin refuses: " << oracle.output;
            continue;
        }
        EXPECT_FALSE(fs::exists(directory / "made"));
        // svnadmin's last line: "svnadmin: E<status>: <message>". It refuses an
        // FSFS repository for 1.0 as a misuse of its options; the library
        // leaves that to the file system, which refuses it in its own words.
        std::smatch last;
        ASSERT_TRUE(std::regex_search(oracle.output, last, std::regex("svnadmin: E([0-9]+): (.*)\n$")))
            << oracle.output;
        if (version == "1.0") {
            EXPECT_EQ(refusal->first, "FSFS is not compatible with Subversion prior to 1.1");
            continue;
        }
        EXPECT_EQ(refusal->first, last[2].str());
        EXPECT_EQ(refusal->second, std::stoi(last[1].str()));
    }
}

TEST(LuSVNRepository, BerkeleyDBOptionsReachTheDatabaseConfiguration)
{
    struct Row {
        bool syncAtTransactionCommit;
        bool automaticLogFileRemoval;
        std::vector<std::string> svnadminFlags;
    };
    const std::vector<Row> rows = {
        {true, true, {}},
        {false, false, {"--bdb-txn-nosync", "--bdb-log-keep"}},
    };
    for (const auto& row : rows) {
        tessera_test::TemporaryDirectory directory;
        std::vector<std::string> svnadmin = {TESSERA_SVNADMIN_PROGRAM, "create", "--fs-type", "bdb"};
        svnadmin.insert(svnadmin.end(), row.svnadminFlags.begin(), row.svnadminFlags.end());
        svnadmin.push_back(directory / "oracle");
        const bool haveBerkeleyDB = tessera_test::run(svnadmin).status == 0;

        LuSVNBerkeleyDBOptions options;
        options.setSyncAtTransactionCommit(row.syncAtTransactionCommit);
        options.setAutomaticLogFileRemoval(row.automaticLogFileRemoval);
        if (!haveBerkeleyDB) {
            // A Subversion built without the back end: its error, and nothing on disk.
            EXPECT_THROW(LuSVNRepository::createRepositoryAtPath(localPath(directory / "made"), options),
                         LuSVNException);
            EXPECT_FALSE(fs::exists(directory / "made"));
            continue;
        }
        LuSVNRepository::createRepositoryAtPath(localPath(directory / "made"), options);
        EXPECT_EQ(contentsOf(directory / "made/db/fs-type"), "bdb\n");
        const std::string made = contentsOf(directory / "made/db/DB_CONFIG");
        EXPECT_FALSE(made.empty());
        EXPECT_EQ(made, contentsOf(directory / "oracle/db/DB_CONFIG")) << options.description();
        expectVerified(directory / "made");
    }
}

TEST(LuSVNRepository, SubversionsRefusalLeavesNothingBehind)
{
    tessera_test::TemporaryDirectory directory;
    const std::string path = directory / "repository";
    try {
        LuSVNRepository::createRepositoryOfType("nosuchfs", localPath(path), LuSVNFileSystemOptions());
        ADD_FAILURE() << "a repository of an unknown type was made";
    } catch (const LuSVNException& e) {
        EXPECT_NE(e.reason().find("nosuchfs"), std::string::npos) << e.reason();
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(LuSVNRepository, OtherOptionsAreRefusedBeforeAnythingIsMade)
{
    tessera_test::TemporaryDirectory directory;
    const std::string path = directory / "repository";
    const LuSVNRepositoryOptions plainRepository;
    const LuSVNAddOptions add;
    for (const LuSVNOptions* options : {static_cast<const LuSVNOptions*>(&plainRepository),
                                        static_cast<const LuSVNOptions*>(&add)}) {
        try {
            LuSVNRepository::createRepositoryAtPath(localPath(path), *options);
            ADD_FAILURE() << options->description() << " accepted";
        } catch (const LuSVNInvalidArgumentException& e) {
            EXPECT_EQ(e.reason(), std::string("Unrecognized repository options type"));
        }
        EXPECT_FALSE(fs::exists(path));
    }
}

TEST(LuSVNRepository, ANonEmptyDirectoryIsLeftAlone)
{
    tessera_test::TemporaryDirectory directory;
    tessera_test::writeFile(directory / "keep.txt", "mine");
    EXPECT_THROW(LuSVNRepository::createRepositoryAtPath(localPath(directory.path()), LuSVNFileSystemOptions()),
                 LuSVNException);
    EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), fs::directory_iterator()), 1);
    EXPECT_TRUE(fs::exists(directory / "keep.txt"));
}

TEST(LuSVNRepository, OpensAndDeletes)
{
    tessera_test::TemporaryDirectory directory;
    const std::string path = directory / "repository";
    tessera_test::makeRepository(path);

    const auto opened = LuSVNRepository::repositoryAtPath(localPath(path));
    EXPECT_EQ(opened->path()->string(), path);
    opened->deleteRepository();
    EXPECT_FALSE(fs::exists(path));
    EXPECT_THROW(LuSVNRepository::repositoryAtPath(localPath(path)), LuSVNException);
    EXPECT_THROW(LuSVNRepository::repositoryAtPath(localPath(directory.path())), LuSVNException);

    // Deleting needs no opened repository.
    LuSVNRepository::createRepositoryAtPath(localPath(path), LuSVNFileSystemOptions());
    LuSVNRepository::repositoryWithLocalPath(localPath(path))->deleteRepository();
    EXPECT_FALSE(fs::exists(path));
}

TEST(LuSVNRepository, RunsOnTheDefaultBackendWhateverIsCurrent)
{
    // A backend whose code cannot be loaded: any call through it raises.
    const auto unusable = LuSVNBundleProxy::proxyForBundle(
        LuSVNPlatformBundle::bundleWithPath(TESSERA_TEST_BUNDLE_MISSING_EXECUTABLE));
    tessera_test::TemporaryDirectory directory;
    const std::string path = directory / "repository";
    LuSVNBundlePush(unusable);
    try {
        LuSVNRepository::createRepositoryAtPath(localPath(path), LuSVNFileSystemOptions());
        auto opened = LuSVNRepository::repositoryAtPath(localPath(path));
        opened->deleteRepository();
        opened.reset();  // releases its pool
        EXPECT_EQ(LuSVNBundleCurrent(), unusable);
    } catch (const std::exception& e) {
        ADD_FAILURE() << e.what();
    }
    LuSVNBundlePop();
    EXPECT_FALSE(fs::exists(path));
}

TEST(LuSVNRepository, NullPathsAreRefused)
{
    const LuSVNFileSystemOptions options;
    const std::vector<std::pair<std::function<void()>, const char*>> calls = {
        {[] { LuSVNRepository::repositoryWithLocalPath(nullptr); }, "thePath != nil"},
        {[] { LuSVNRepository::repositoryAtPath(nullptr); }, "path != nil"},
        {[&] { LuSVNRepository::createRepositoryOfType("fsfs", nullptr, options); }, "path != nil"},
        {[&] { LuSVNRepository::createFileSystemRepositoryAtPath(nullptr, options); }, "localPath != nil"},
        {[&] { LuSVNRepository::createBerkeleyDBRepositoryAtPath(nullptr, options); }, "localPath != nil"},
        {[&] { LuSVNRepository::createRepositoryAtPath(nullptr, options); }, "path != nil"},
    };
    for (const auto& [call, condition] : calls)
        tessera_test::expectParameterAssertion(call, condition);
}

TEST(LuSVNRepositoryInfo, DescribesItsFields)
{
    const auto url = LuSVNURL::URLWithString("file:///srv/svn/project");
    const auto info = LuSVNRepositoryInfo::infoForRepositoryWithUUID("2d3e-44", url, 12);
    EXPECT_EQ(info->rootURL(), url);
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<const void*>(info.get()));
    EXPECT_EQ(info->description(), std::string("{ <LuSVNRepositoryInfo: ") + address +
                                       "> UUID: 2d3e-44, rootURL: file:///srv/svn/project, revision: 12 }");

    const auto unknown = LuSVNRepositoryInfo::infoForRepositoryWithUUID(std::nullopt, url, -1);
    EXPECT_NE(unknown->description().find(" UUID: (null), "), std::string::npos);
    tessera_test::expectParameterAssertion(
        [] { LuSVNRepositoryInfo::infoForRepositoryWithUUID("x", nullptr, 0); }, "rootURL != nil");
}

}  // namespace
