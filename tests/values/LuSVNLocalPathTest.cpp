// Local paths: the construction rules, the primitives, symbolic links,
// Subversion's form and archiving.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <pwd.h>
#include <unistd.h>

#include <filesystem>

#include "LuSVNBackendFrame.h"
#include "LuSVNPathTestSupport.h"
#include "TesseraTestSupport.h"

using namespace path_test;

namespace {

TEST(LuSVNLocalPathTest, ConstructionExpandsTildeAndRemovesOneTrailingSlash)
{
    const passwd* root = getpwnam("root");
    ASSERT_NE(root, nullptr);
    const struct {
        std::string text;
        std::string path;
    } cases[] = {
        {"/tmp/x/", "/tmp/x"},
        {"/", "/"},
        {"/a//", "/a/"},
        {"//", "/"},
        {"a/b/", "a/b"},
        {"/a/./b/../c", "/a/./b/../c"},
        {"~", home()},
        {"~/", home()},
        {"~/x/", home() + "/x"},
        {"~root/x", std::string(root->pw_dir) + "/x"},
        {"~no-such-user-here/x", "~no-such-user-here/x"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(local(c.text)->string(), c.path) << c.text;
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([] { local(""); }),
              "Invalid parameter not satisfying: string != nil && [string length] > 0");
}

TEST(LuSVNLocalPathTest, ComponentsParentsAndLocations)
{
    const struct {
        std::string text;
        std::string lastComponent;
        std::optional<std::string> location;
    } cases[] = {
        {"/", "/", std::nullopt},
        {"/a", "a", "/"},
        {"/a/b", "b", "/a"},
        {"/a//b", "b", "/a"},
        {"a", "a", ""},
        {"a/b", "b", "a"},
    };
    for (const auto& c : cases) {
        const auto path = local(c.text);
        EXPECT_EQ(path->lastComponent(), c.lastComponent) << c.text;
        EXPECT_EQ(path->location(), c.location) << c.text;
        EXPECT_EQ(text(path->parent()), c.location) << c.text;
    }
    // Every chain of parents ends, the relative ones at the empty text.
    for (const char* start : {"/a/b/c", "a/b/c", "../..", "//x//y"}) {
        int steps = 0;
        for (auto path = local(start); path && steps < 20; path = path->parent())
            ++steps;
        EXPECT_LT(steps, 20) << start;
    }
    EXPECT_EQ(local("a/b")->commonAncestorFor(local("/x")), LuSVNLocalPath::fileSystemRoot());
}

TEST(LuSVNLocalPathTest, DisplayFormsAbbreviateTheHomeDirectory)
{
    const struct {
        std::string path;
        std::string denormalized;
        std::optional<std::string> denormalizedLocation;
    } cases[] = {
        {home(), "~", local(home())->location()},
        {home() + "/x", "~/x", "~"},
        {home() + "/x/y", "~/x/y", "~/x"},
        {home() + "x", home() + "x", local(home())->location()},
        {"/", "/", std::nullopt},
    };
    for (const auto& c : cases) {
        const auto path = local(c.path);
        EXPECT_EQ(path->denormalizedString(), c.denormalized);
        EXPECT_EQ(path->denormalizedLocation(), c.denormalizedLocation) << c.path;
        EXPECT_EQ(path->denormalizedLastComponent(), path->lastComponent());
    }
}

TEST(LuSVNLocalPathTest, AddingComponents)
{
    const struct {
        const char* path;
        const char* component;
        const char* result;
    } cases[] = {
        {"/", "a", "/a"}, {"/a", "/b", "/a/b"}, {"/a/", "/b/", "/a/b"}, {"a", "b c", "a/b c"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(local(c.path)->pathByAddingComponent(c.component)->string(), c.result);
        EXPECT_EQ(local(c.path)->pathByNormalizingAndAddingComponent(c.component)->string(), c.result);
    }
    const auto path = local("/a");
    EXPECT_EQ(path->pathByAddingComponent("/"), path);
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([&] { path->pathByAddingComponent(""); }),
              "Invalid parameter not satisfying: component != nil && [component length] > 0");
}

TEST(LuSVNLocalPathTest, URLsAreEscapedFileURLsAndComeBack)
{
    const struct {
        const char* path;
        const char* url;
    } cases[] = {
        {"/", "file:///"},
        {"/tmp/a b/\xC3\xBC", "file:///tmp/a%20b/%C3%BC"},
        {"/tmp/[x]%y#z", "file:///tmp/%5Bx%5D%25y%23z"},
        {"/srv/q?;a=b", "file:///srv/q%3F%3Ba=b"},
    };
    for (const auto& c : cases) {
        const auto path = local(c.path);
        EXPECT_EQ(path->URL()->string(), c.url);
        EXPECT_TRUE(path->URL()->localPath()->isEqualToPath(path)) << c.path;
    }
    const auto path = local("/a");
    EXPECT_EQ(path->localPath(), path);
}

TEST(LuSVNLocalPathTest, ResolvingSymbolicLinks)
{
    tessera_test::TemporaryDirectory directory;
    const std::string base = std::filesystem::canonical(directory.path());
    std::filesystem::create_directory(base + "/dir");
    tessera_test::writeFile(base + "/dir/file", "x");
    std::filesystem::create_symlink("dir/file", base + "/relative");
    std::filesystem::create_symlink(base + "/dir", base + "/absolute");
    std::filesystem::create_symlink("relative", base + "/chain");
    std::filesystem::create_symlink("missing", base + "/dangling");
    const struct {
        std::string path;
        bool wasLink;
        std::string resolved;
    } cases[] = {
        {base + "/relative", true, base + "/dir/file"},
        {base + "/absolute", true, base + "/dir"},
        {base + "/chain", true, base + "/dir/file"},
        {base + "/dangling", true, base + "/missing"},
        {base + "/dir/file", false, base + "/dir/file"},
        {base + "/nothing", false, base + "/nothing"},
    };
    for (const auto& c : cases) {
        bool wasLink = !c.wasLink;
        EXPECT_EQ(local(c.path)->resolve(wasLink)->string(), c.resolved) << c.path;
        EXPECT_EQ(wasLink, c.wasLink) << c.path;
    }
    EXPECT_EQ(url("file://" + base + "/relative")->resolve()->string(), "file://" + base + "/relative");
}

TEST(LuSVNLocalPathTest, SubversionFormThroughEitherEntryPoint)
{
    // 1.4.6 lacks entry point 28 and is served by 26.
    const auto loader = LuSVNBundleLoader::sharedInstance();
    for (const auto& backend : {loader->newestBundle(), loader->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_4_6)}) {
        LuSVNBackendFrame frame(backend);
        EXPECT_STREQ(local("/tmp//a/./b")->SVNRepresentationInPool(frame.pool()), "/tmp/a/b");
        EXPECT_STREQ(local("/")->SVNRepresentationInPool(frame.pool()), "/");
    }
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([] { local("/a")->SVNRepresentationInPool(nullptr); }),
              "Invalid parameter not satisfying: pool != nil");
}

class NonKeyedCoder : public LuSVNCoder {
public:
    bool allowsKeyedCoding() const override { return false; }
};

TEST(LuSVNLocalPathTest, ArchivingKeepsTheTextAsItIs)
{
    const auto path = local("/a/b c");
    const std::string archive = LuSVNKeyedArchiver::archivedDataWithRootObject(*path);
    EXPECT_EQ(archive, R"({"$class":"LuSVNLocalPath","path":"/a/b c"})");
    const auto decoded = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNLocalPath>(archive);
    EXPECT_TRUE(decoded->isEqualToPath(path));
    // Decoding does not apply the construction rules.
    EXPECT_EQ(LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNLocalPath>(R"({"$class":"LuSVNLocalPath","path":"~/x/"})")
                  ->string(),
              "~/x/");
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>(
                  [] { LuSVNKeyedUnarchiver::unarchiveObjectWithData(R"({"$class":"LuSVNLocalPath"})"); }),
              "LuSVNLocalPath archive without \"path\"");
    NonKeyedCoder coder;
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([&] { path->encodeWithCoder(coder); }),
              "Keyed archiver required");
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([&] { LuSVNLocalPath::initWithCoder(coder); }),
              "Keyed unarchiver required");
}

}  // namespace
