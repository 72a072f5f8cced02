// The operations that local paths and URLs share through LuSVNPath.
#include <tessera/LuSVNPlatformExceptions.h>

#include <algorithm>
#include <typeinfo>
#include <unordered_set>

#include "LuSVNPathTestSupport.h"

using namespace path_test;

namespace {

using Maker = LuSVNPath::Path (*)(const std::string&);

TEST(LuSVNPathTest, EqualityIsByTextAndIncludesPlainStrings)
{
    const auto a = local("/tmp/x/");
    EXPECT_TRUE(a->isEqualToPath(local("/tmp/x")));
    EXPECT_TRUE(a->isEqualToString("/tmp/x"));
    EXPECT_TRUE(*a == "/tmp/x");
    EXPECT_TRUE("/tmp/x" == *a);
    EXPECT_EQ(a->hash(), std::hash<std::string>()("/tmp/x"));
    EXPECT_EQ(std::hash<LuSVNPath>()(*a), a->hash());
    EXPECT_FALSE(a->isEqualToPath(nullptr));
    EXPECT_FALSE(a->isEqualToPath(local("/tmp/X")));
    EXPECT_FALSE(a->isEqualToPath(a->URL()));
    EXPECT_FALSE(*local("/tmp/x") == *url("file:///tmp/x"));

    std::unordered_set<LuSVNPath::Path, LuSVNPathHash, LuSVNPathEqualTo> set{local("/a/"), local("/a"), url("svn://h/a")};
    EXPECT_EQ(set.size(), 2u);
    // Plain byte order, case-sensitive.
    EXPECT_EQ(local("/B")->compare(local("/a")), -1);
    EXPECT_EQ(local("/a/b")->compare(local("/a")), 1);
    EXPECT_EQ(local("/a")->compare(local("/a/")), 0);
    EXPECT_EQ(local("/a")->compare(nullptr), 1);
}

TEST(LuSVNPathTest, CompareUserSortsPathsWithoutUserFirst)
{
    const struct {
        const char* a;
        const char* b;
        int order;
    } cases[] = {
        {"svn://anna@h/r", "svn://bob@h/r", -1}, {"svn://bob@h/r", "svn://anna@h/x", 1},
        {"svn://h/r", "svn://anna@h/r", -1},     {"svn://anna@h/r", "svn://h/r", 1},
        {"svn://h/r", "/local", 0},              {"svn://anna@h/r", "svn://anna@k/x", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(url(c.a)->compareUser(LuSVNPath::pathWithString(c.b)), c.order) << c.a << " " << c.b;
    EXPECT_EQ(url("svn://h/r")->compareUser(nullptr), 1);
}

TEST(LuSVNPathTest, DescendantsNeedAWholeComponentMore)
{
    const struct {
        const char* path;
        const char* base;
        bool descendant;
    } cases[] = {
        {"/a/bc", "/a/b", false},          {"/a/b/c", "/a/b", true},       {"/a/b", "/a/b", false},
        {"/x", "/", true},                 {"/", "/", false},              {"svn://h/r/a", "svn://h/r", true},
        {"svn://h/ra", "svn://h/r", false}, {"file:///x", "file:///", true},
    };
    for (const auto& c : cases) {
        const auto path = LuSVNPath::pathWithString(c.path);
        const auto base = LuSVNPath::pathWithString(c.base);
        EXPECT_EQ(path->isDescendentOfPath(base), c.descendant) << c.path << " " << c.base;
        EXPECT_EQ(path->isEqualToPathOrDescendentOf(base), c.descendant || path->isEqualToPath(base));
    }
    EXPECT_FALSE(local("/a")->isDescendentOfPath(nullptr));
}

TEST(LuSVNPathTest, CommonAncestor)
{
    const struct {
        const char* a;
        const char* b;
        std::optional<std::string> ancestor;
    } cases[] = {
        {"/a/b/c", "/a/b/d", "/a/b"},
        {"/a/b", "/a/b/c", "/a/b"},
        {"/x", "/y", "/"},
        {"a/b", "a/c", "a"},
        {"svn://h/r/a", "svn://h/r/b/c", "svn://h/r"},
        {"svn://h1/r", "svn://h2/r", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(text(LuSVNPath::pathWithString(c.a)->commonAncestorFor(LuSVNPath::pathWithString(c.b))), c.ancestor)
            << c.a << " " << c.b;
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([] { local("/a")->commonAncestorFor(nullptr); }),
              "Invalid parameter not satisfying: path != nil");
}

TEST(LuSVNPathTest, CommonAncestorForPathsRestartsAfterABreak)
{
    const struct {
        std::vector<std::string> paths;
        std::optional<std::string> ancestor;
    } cases[] = {
        {{}, std::nullopt},
        {{"/a/b", "/a/c", "/x"}, "/"},
        {{"svn://h1/r/a", "svn://h1/r/b"}, "svn://h1/r"},
        {{"svn://h1/r/a", "svn://h2/x/y"}, std::nullopt},
        // The fold starts again after h1/h2: only the tail is described.
        {{"svn://h1/r/a", "svn://h2/x/y", "svn://h2/x/z"}, "svn://h2/x/z"},
        {{"svn://h1/r/a", "svn://h1/r/b", "svn://h2/x/y", "svn://h2/x/z", "svn://h2/x/z/w"}, "svn://h2/x/z"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(text(LuSVNPath::commonAncestorForPaths(LuSVNPath::arrayWithPathsForStrings(c.paths))), c.ancestor);
}

TEST(LuSVNPathTest, PathRelativeTo)
{
    const struct {
        const char* path;
        const char* base;
        bool denormalize;
        std::optional<std::string> relative;
    } cases[] = {
        {"/a/b", "/a", true, "/b"},
        {"/a/b", "/a/b", true, ""},
        {"/b", "/a", true, std::nullopt},
        {"/a/b/c", "/", false, "a/b/c"},  // the two-argument form has no root rule
        {"svn://h/r/a%20b", "svn://h/r", true, "/a b"},
        {"svn://h/r/a%20b", "svn://h/r", false, "/a%20b"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNPath::pathWithString(c.path)->pathRelativeTo(LuSVNPath::pathWithString(c.base), c.denormalize),
                  c.relative)
            << c.path << " " << c.base;
    // Local paths answer their whole text against the root.
    EXPECT_EQ(local("/a/b")->pathRelativeTo(LuSVNLocalPath::fileSystemRoot()), "/a/b");
    EXPECT_EQ(local("/a/b")->pathRelativeTo(local("/")), "/a/b");
    EXPECT_EQ(url("file:///a/b")->pathRelativeTo(url("file:///")), "a/b");
    // Display forms: "~/x/y" against "~"; against the home's parent the
    // abbreviation does not apply and the stored texts decide.
    const auto homePath = local(home());
    EXPECT_EQ(local(home() + "/x/y")->pathRelativeTo(homePath), "/x/y");
    EXPECT_EQ(local(home() + "/x")->pathRelativeTo(homePath->parent()), "/" + homePath->lastComponent() + "/x");
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([] { local("/a")->pathRelativeTo(nullptr); }),
              "Invalid parameter not satisfying: base != nil");
}

TEST(LuSVNPathTest, PathWithSymlinksRelativeTo)
{
    const struct {
        const char* path;
        const char* base;
        std::optional<std::string> relative;
    } cases[] = {
        {"/x/a/b", "/x/c/d", "../../a/b"},
        {"/x", "/x/c/d", "../.."},
        {"/a/b", "/a/b", "."},
        {"/a/b", "/a", "./b"},
        {"/a/b", "/", ".a/b"},  // as designed, not "./a/b"
        {"/x/a", "/y", "../x/a"},
        {"svn://h/r/a", "svn://h/r/b", "../a"},
        {"svn://h/r/a", "svn://k/r/a", std::nullopt},
        {"/x", "c/d", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNPath::pathWithString(c.path)->pathWithSymlinksRelativeTo(LuSVNPath::pathWithString(c.base)),
                  c.relative)
            << c.path << " " << c.base;
}

TEST(LuSVNPathTest, AddingRelativePathsWithSymlinks)
{
    const struct {
        Maker make;
        const char* base;
        const char* relative;
        bool normalize;
        std::optional<std::string> result;
    } cases[] = {
        {local, "/a", "../../..", false, std::nullopt},
        {local, "/a", "b/./c//d", false, "/a/b/c/d"},
        {local, "/a", "../x", false, "/x"},
        {local, "/a", "", false, "/a"},
        {url, "svn://h/r/a", "../b", false, "svn://h/r/b"},
        {url, "svn://h/r", "../..", false, std::nullopt},
        {url, "svn://h/r", "a b/c", true, "svn://h/r/a%20b/c"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(text(c.make(c.base)->pathByAddingRelativePathWithSymlinks(c.relative, c.normalize)), c.result)
            << c.base << " " << c.relative;
}

TEST(LuSVNPathTest, Rebasing)
{
    const struct {
        Maker make;
        const char* path;
        const char* baseName;
        const char* ancestorName;
        int skip;
        std::optional<std::string> result;
    } cases[] = {
        {local, "/p/trunk/a/b", "tags", "trunk", 0, "/p/tags/a/b"},
        {local, "/p/trunk/a/b", "tags", "trunk", 1, "/p/tags/b"},
        {local, "/p/trunk/a/b", "tags", "trunk", 5, "/p/tags"},
        {local, "/p/trunk", "tags", "trunk", 0, "/p/tags"},
        {local, "/trunk/a", "tags", "trunk", 0, "/tags/a"},
        {local, "/p/a/b", "tags", "trunk", 0, std::nullopt},
        {url, "svn://h/p/trunk/a%20b", "tags", "trunk", 0, "svn://h/p/tags/a%20b"},
        {url, "svn://h/x", "tags", "/", 0, std::nullopt},  // the ancestor "svn://h" has no parent
    };
    for (const auto& c : cases)
        EXPECT_EQ(text(c.make(c.path)->pathRebasedAt(c.baseName, c.ancestorName, c.skip)), c.result) << c.path;
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([] { local("/a")->pathRebasedAt("b", "a", -1); }),
              "Invalid parameter not satisfying: levelsToSkip >= 0");
}

TEST(LuSVNPathTest, DisplayNameAndExtension)
{
    const struct {
        const char* path;
        const char* displayName;
        std::optional<std::string> extension;
    } cases[] = {
        {"/home/proj/trunk", "proj/trunk", std::nullopt},
        {"/trunk", "/trunk", std::nullopt},
        {"/a/tags", "a/tags", std::nullopt},
        {"/", "/", std::nullopt},
        {"/a/b.txt", "b.txt", "txt"},
        {"/a/b.", "b.", ""},
        {"/a/.profile", ".profile", "profile"},
        {"/a.d/b", "b", std::nullopt},
        {"svn://h/p%20q/branches", "p q/branches", std::nullopt},
        {"svn://h/r/x.tar.gz", "x.tar.gz", "gz"},
    };
    for (const auto& c : cases) {
        const auto path = LuSVNPath::pathWithString(c.path);
        EXPECT_EQ(path->displayName(), c.displayName) << c.path;
        EXPECT_EQ(path->extension(), c.extension) << c.path;
    }
}

TEST(LuSVNPathTest, OperationsNoClassSuppliesAreUnrecognized)
{
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([] { local("/a")->isRoot(); }),
              "-[LuSVNLocalPath isRoot]: unrecognized selector sent to instance");
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([] { url("svn://h/r")->pathAndFile(); }),
              "-[LuSVNURL pathAndFile]: unrecognized selector sent to instance");
}

TEST(LuSVNPathTest, ConversionPicksTheClassByScheme)
{
    EXPECT_NE(std::dynamic_pointer_cast<const LuSVNURL>(LuSVNPath::pathWithString("svn://h/r")), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<const LuSVNLocalPath>(LuSVNPath::pathWithString("/x")), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<const LuSVNLocalPath>(LuSVNPath::pathWithString("rel")), nullptr);
    EXPECT_EQ(LuSVNPath::pathWithDenormalizedString("svn://h/a b/\xC3\xBC")->string(), "svn://h/a%20b/%C3%BC");
    EXPECT_EQ(LuSVNPath::pathWithDenormalizedString("/a b")->string(), "/a b");
}

TEST(LuSVNPathTest, ListsOfPaths)
{
    const LuSVNPath::Paths paths{local("/a/b"), url("svn://u@h/r/c%20d"), url("svn://h/x")};
    EXPECT_EQ(LuSVNPath::arrayWithDenormalizedLastPathComponents(paths), (std::vector<std::string>{"b", "c d", "x"}));
    const auto texts = [](const auto& list) {
        std::vector<std::string> result;
        for (const auto& path : list)
            result.push_back(path->string());
        return result;
    };
    EXPECT_EQ(texts(LuSVNPath::arrayWithURLsForPaths(paths)),
              (std::vector<std::string>{"file:///a/b", "svn://u@h/r/c%20d", "svn://h/x"}));
    EXPECT_EQ(texts(LuSVNPath::arrayWithPathsStrippedOfUsers(paths)),
              (std::vector<std::string>{"/a/b", "svn://h/r/c%20d", "svn://h/x"}));
    EXPECT_EQ(texts(LuSVNPath::arrayWithCanonicalPaths(paths)),
              (std::vector<std::string>{"/a/b", "svn://h:3690/r/c%20d", "svn://h:3690/x"}));
    auto hosts = texts(LuSVNPath::arrayWithUniqueHostURLsOfPaths(
        {url("svn://h/a"), url("svn://h/b"), url("svn://k/c"), url("svn://u@h/d")}));
    std::sort(hosts.begin(), hosts.end());
    EXPECT_EQ(hosts, (std::vector<std::string>{"svn://h", "svn://k", "svn://u@h"}));
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>(
                  [] { LuSVNPath::arrayWithStringsOfPaths({local("/a"), nullptr}); }),
              "Invalid parameter not satisfying: path != nil");
}

TEST(LuSVNPathTest, CStringsInOtherEncodings)
{
    const auto path = local("/gr\xC3\xBC\xC3\x9F");
    EXPECT_STREQ(path->cString(), "/gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(path->cStringUsingEncoding("ISO-8859-1"), "/gr\xFC\xDF");
    EXPECT_EQ(local("/\xE6\x97\xA5")->cStringUsingEncoding("ISO-8859-1"), std::nullopt);
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([&] { path->cStringUsingEncoding("NO-SUCH-ENCODING"); }),
              "Unknown encoding \"NO-SUCH-ENCODING\"");
}

TEST(LuSVNPathTest, CopiesAreEqualPathsOfTheSameClass)
{
    for (const auto& path : {local("/a/b"), url("svn://h//")}) {
        const auto copy = path->copy();
        EXPECT_NE(copy.get(), path.get());
        EXPECT_TRUE(copy->isEqualToPath(path)) << path->string();
        EXPECT_EQ(typeid(*copy), typeid(*path));
    }
}

}  // namespace
