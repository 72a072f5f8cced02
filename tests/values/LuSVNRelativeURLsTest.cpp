// The relative notations of externals definitions: classifying, resolving
// and rendering.
#include <tessera/LuSVNPlatformExceptions.h>

#include "LuSVNPathTestSupport.h"

using namespace path_test;

namespace {

LuSVNURL::URLPath u(const std::string& text)
{
    return LuSVNURL::URLWithString(text);
}

TEST(LuSVNRelativeURLsTest, TypesByFirstCharacters)
{
    const struct {
        const char* text;
        LuSVNURLType type;
    } cases[] = {
        {"/", LuSVNURLTypeRelativeToServer},    {"/x", LuSVNURLTypeRelativeToServer},
        {"//h/x", LuSVNURLTypeRelativeToScheme}, {"^", LuSVNURLTypeRelativeToRepository},
        {"^/x", LuSVNURLTypeRelativeToRepository}, {"./x", LuSVNURLTypeRelativeToDirectory},
        {"../x", LuSVNURLTypeRelativeToDirectory}, {"svn://h/x", LuSVNURLTypeAbsolute},
        {"x", LuSVNURLTypeAbsolute},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(LuSVNURL::typeOfURL(c.text), c.type) << c.text;
        EXPECT_EQ(LuSVNURL::isAbsolute(c.text), c.type == LuSVNURLTypeAbsolute) << c.text;
        EXPECT_EQ(LuSVNURL::isRelative(c.text), c.type != LuSVNURLTypeAbsolute) << c.text;
    }
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([] { LuSVNURL::typeOfURL(""); }),
              "Invalid parameter not satisfying: [url length] > 0");
}

TEST(LuSVNRelativeURLsTest, Resolving)
{
    const struct {
        const char* text;
        const char* base;
        std::optional<std::string> url;
    } cases[] = {
        {"../x", "svn://h/r/a/dir", "svn://h/r/a/x"},
        {"./x/y", "svn://h/r/dir", "svn://h/r/dir/x/y"},
        {"../../../..", "svn://h/r", std::nullopt},
        {"^/x", "svn://h/r", "svn://h/r/x"},
        {"^", "svn://h/r", "svn://h/r"},
        {"^/", "svn://h/r", "svn://h/r"},
        {"/x/y", "svn://u@h:81/r/a", "svn://u@h:81/x/y"},
        {"/", "svn://h/r/a", "svn://h"},
        {"svn://k/z", "svn://h/r", "svn://k/z"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(text(LuSVNURL::URLWithString(c.text, u(c.base))), c.url) << c.text;
    EXPECT_EQ(LuSVNURL::URLWithStringRelativeToScheme("//k/x", u("https://h/r"))->string(), "https://k/x");
    // Deliberately not dispatched.
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([] { LuSVNURL::URLWithString("//h/x", u("svn://h/r")); }),
              "Unexpected URL format");
}

TEST(LuSVNRelativeURLsTest, ResolvingChecksItsArguments)
{
    const auto base = u("svn://h/r");
    const struct {
        std::function<void()> call;
        const char* condition;
    } cases[] = {
        {[&] { LuSVNURL::URLWithStringRelativeToDirectory("^/x", base); },
         "[LuSVNURL typeOfURL:string] == LuSVNURLTypeRelativeToDirectory"},
        {[&] { LuSVNURL::URLWithStringRelativeToScheme("/x", base); },
         "[LuSVNURL typeOfURL:string] == LuSVNURLTypeRelativeToScheme"},
        {[] { LuSVNURL::URLWithString("^/x", nullptr); }, "repositoryRootURL != nil"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>(c.call),
                  std::string("Invalid parameter not satisfying: ") + c.condition);
}

TEST(LuSVNRelativeURLsTest, RenderingInEachNotation)
{
    const auto receiver = u("svn://u@h/r/a/b");
    const struct {
        LuSVNURLType type;
        const char* base;
        std::optional<std::string> text;
    } cases[] = {
        {LuSVNURLTypeAbsolute, "svn://h/r", "svn://u@h/r/a/b"},
        {LuSVNURLTypeRelativeToDirectory, "svn://h/r/c/d", "../../a/b"},
        {LuSVNURLTypeRelativeToDirectory, "svn://h:3690/r/a/b", "."},
        {LuSVNURLTypeRelativeToDirectory, "svn://x@h/r/a", "./b"},
        {LuSVNURLTypeRelativeToDirectory, "svn://k/r/a", std::nullopt},
        {LuSVNURLTypeRelativeToRepository, "svn://h/r", "^/a/b"},
        {LuSVNURLTypeRelativeToRepository, "svn://h/r/a/b", "^/"},
        {LuSVNURLTypeRelativeToRepository, "svn://h/x", std::nullopt},
        {LuSVNURLTypeRelativeToServer, "svn://h/r", "/r/a/b"},
        {LuSVNURLTypeRelativeToScheme, "svn://h/r", "//u@h/r/a/b"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(receiver->stringOfType(c.type, u(c.base)), c.text) << c.type << " " << c.base;
    // Escaped delimiters in the path survive the user's removal.
    const auto escaped = u("svn://me@host/repo/h%23sh.txt");
    EXPECT_EQ(escaped->stringRelativeToRepository(u("svn://host/repo")), "^/h%23sh.txt");
    EXPECT_EQ(escaped->stringRelativeToDirectory(u("svn://host/repo")), "./h%23sh.txt");
    EXPECT_EQ(u("svn://me@host/repo/a%3Fb/c")->stringRelativeToRepository(u("svn://host/repo/a%3Fb")), "^/c");
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>(
                  [&] { receiver->stringOfType(static_cast<LuSVNURLType>(5), u("svn://h/r")); }),
              "Unexpected URL type");
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([&] { receiver->stringRelativeToDirectory(nullptr); }),
              "Invalid parameter not satisfying: directoryURL != nil");
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([&] { receiver->stringRelativeToRepository(nullptr); }),
              "Invalid parameter not satisfying: repositoryURL != nil");
}

TEST(LuSVNRelativeURLsTest, RenderedTextsResolveBackToTheURL)
{
    const auto receiver = u("svn://h:3690/r/a/b%20c");
    for (const char* base : {"svn://h:3690/r/x/y", "svn://h:3690/r", "svn://h:3690/r/a", "svn://h:3690/r/a/b%20c"}) {
        for (const LuSVNURLType type :
             {LuSVNURLTypeRelativeToDirectory, LuSVNURLTypeRelativeToRepository, LuSVNURLTypeRelativeToServer}) {
            const std::optional<std::string> relative = receiver->stringOfType(type, u(base));
            if (!relative)
                continue;  // not below the base
            EXPECT_EQ(text(LuSVNURL::URLWithString(*relative, u(base))), receiver->string())
                << base << " " << *relative;
        }
    }
}

}  // namespace
