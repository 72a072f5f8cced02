// URLs: construction and its refusals, the parts, rebuilding, escaping,
// Subversion's form and archiving.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <random>

#include "LuSVNBackendFrame.h"
#include "LuSVNPath+Internal.h"
#include "LuSVNPathTestSupport.h"
#include "TesseraTestSupport.h"

using namespace path_test;

namespace {

TEST(LuSVNURLTest, ConstructionTrimsAndRemovesOneTrailingSlash)
{
    const struct {
        std::string text;
        std::string url;
    } cases[] = {
        {"svn://host/repo/", "svn://host/repo"},
        {" svn://host/repo", "svn://host/repo"},
        {"\tsvn://host/repo/\n", "svn://host/repo"},
        {"svn://host//", "svn://host/"},
        {"file:///", "file:///"},
        {"FILE:///", "FILE:///"},
        {"file:///x/", "file:///x"},
        {"svn://", "svn://"},
        {"svn_x://host/r", "svn_x://host/r"},
        {"svn://u:pw@h:3690/a?q=1#f", "svn://u:pw@h:3690/a?q=1#f"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(url(c.text)->string(), c.url) << c.text;
}

TEST(LuSVNURLTest, MalformedTextsAreRefused)
{
    for (const char* text : {"host/repo", "   ", "svn:/host"})
        EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([&] { url(text); }), "URL does not contain a scheme") << text;
    const std::string malformed[] = {
        "svn://host/a b", "svn://h/%zz", "svn://h/a%", "svn://h:65536/x", "svn://h/\xC3\xBC", "svn://h/a{b}",
        "svn://h/[x]",    "\xFF://h/x",  std::string("a\0b://h", 7), "svn://h?x/r", "svn://h#x", "svn://u#@h/r",
    };
    for (const auto& text : malformed) {
        const std::string reason = "Failed to parse \"" + text + "\". URL is probably malformed.";
        EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([&] { url(text); }), reason.c_str()) << text;
    }
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([] { url(""); }),
              "Invalid parameter not satisfying: string != nil && [string length] > 0");
}

TEST(LuSVNURLTest, OddSchemesAreParsedUnderAnotherName)
{
    const struct {
        const char* text;
        const char* parsable;
    } cases[] = {
        {"svn_x://h/r", "scheme://h/r"},
        {"a b://h", "scheme://h"},
        {"svn+ssh://h/r", "svn+ssh://h/r"},
        {"no scheme", "no scheme"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNURL::parsableURLForString(c.text), c.parsable);
    EXPECT_EQ(LuSVNURL::URLWithString("svn_x://h/r")->scheme(), "svn_x");
}

TEST(LuSVNURLTest, Parts)
{
    const struct {
        const char* text;
        std::optional<std::string> user;
        std::string host;
        std::optional<int> port;
        std::string relativePath;
        std::string denormalizedRelativePath;
        std::string lastComponent;
        std::optional<std::string> location;
    } cases[] = {
        {"svn://u:pw@Host:3690/a%20b/c", "u", "Host", 3690, "/a%20b/c", "/a b/c", "c", "svn://u:pw@Host:3690/a%20b"},
        {"svn://h", std::nullopt, "h", std::nullopt, "", "", "/", "svn://h"},
        {"svn://h/", std::nullopt, "h", std::nullopt, "", "", "/", "svn://h"},
        {"file:///", std::nullopt, "", std::nullopt, "/", "/", "/", std::nullopt},
        {"file:///x", std::nullopt, "", std::nullopt, "/x", "/x", "x", "file:///"},
        {"svn://[::1]:80/r", std::nullopt, "[::1]", 80, "/r", "/r", "r", "svn://[::1]:80"},
        {"svn://a%40b@h/r?q#f", "a@b", "h", std::nullopt, "/r%3Fq%23f", "/r?q#f", "r?q#f", "svn://a%40b@h"},
        {"svn://h/a#b/c?d", std::nullopt, "h", std::nullopt, "/a%23b/c%3Fd", "/a#b/c?d", "c?d", "svn://h/a#b"},
        {"svn://h/%23/%3f", std::nullopt, "h", std::nullopt, "/%23/%3F", "/#/?", "%3f", "svn://h/%23"},
        {"svn://h/%7e%41", std::nullopt, "h", std::nullopt, "/~A", "/~A", "%7e%41", "svn://h"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const auto u = LuSVNURL::URLWithString(c.text);
        EXPECT_EQ(u->user(), c.user);
        EXPECT_EQ(u->host(), c.host);
        EXPECT_EQ(u->port(), c.port);
        EXPECT_EQ(u->relativePath(), c.relativePath);
        EXPECT_EQ(u->stringRelativeToServer(), c.relativePath);
        EXPECT_EQ(u->denormalizedRelativePath(), c.denormalizedRelativePath);
        EXPECT_EQ(u->lastComponent(), c.lastComponent);
        EXPECT_EQ(u->location(), c.location);
    }
}

// A URL built on its root without parsing again reads like one parsed whole.
TEST(LuSVNURLTest, EscapedRelativePathsAppendLikeParsedText)
{
    const struct {
        std::string root;
        std::string relative;
    } cases[] = {
        {"file:///var/repo", "trunk/a%20b.txt"},
        {"svn://user@host:3690/repo", "branches/x/y"},
        {"http://host/svn/", "trunk"},
        {"http://host", "trunk/file"},  // no path to extend: parsed instead
        {"file:///var/repo", ""},
    };
    for (const auto& c : cases) {
        const auto root = LuSVNURL::URLWithString(c.root);
        const auto appended = root->URLByAppendingEscapedRelativePath(c.relative);
        const auto parsed = c.relative.empty() ? root : LuSVNURL::URLWithString(
            (c.root.back() == '/' ? c.root : c.root + "/") + c.relative);
        EXPECT_EQ(appended->string(), parsed->string()) << c.root << " + " << c.relative;
        EXPECT_EQ(appended->relativePath(), parsed->relativePath()) << c.root << " + " << c.relative;
        EXPECT_EQ(appended->lastComponent(), parsed->lastComponent()) << c.root << " + " << c.relative;
        EXPECT_EQ(appended->host(), parsed->host()) << c.root << " + " << c.relative;
        EXPECT_EQ(appended->location(), parsed->location()) << c.root << " + " << c.relative;
    }
}

TEST(LuSVNURLTest, Parents)
{
    const struct {
        const char* text;
        std::optional<std::string> parent;
    } cases[] = {
        {"svn://host/repo", "svn://host"}, {"svn://host", std::nullopt},  {"file:///x", "file:///"},
        {"file:///", std::nullopt},        {"FILE:///", std::nullopt},     {"svn:///x", "svn://"},
        {"svn://h/a/b", "svn://h/a"},      {"svn://h//", "svn://h"},       {"svn://", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(text(url(c.text)->parent()), c.parent) << c.text;

    // A parent cut from its child without a new parse has every part that a
    // parse of its text gives, whatever ends the text that is left.
    for (const char* child : {"svn://u@h:3690/r/a%20b/c", "http://[::1]:8080/x/y", "file:///r/a/b", "svn://h/a//b",
                              "svn://h/a%20/b", "svn://h/a%C2%A0/b", "svn://h/a%2F/b"}) {
        const auto parent = url(child)->parent();
        ASSERT_NE(parent, nullptr) << child;
        const auto parsed = LuSVNURL::URLWithString(parent->string());
        EXPECT_EQ(parent->string(), parsed->string()) << child;
        const auto cut = std::static_pointer_cast<const LuSVNURL>(parent);
        EXPECT_EQ(cut->relativePath(), parsed->relativePath()) << child;
        EXPECT_EQ(cut->lastComponent(), parsed->lastComponent()) << child;
        EXPECT_EQ(cut->host(), parsed->host()) << child;
        EXPECT_EQ(cut->user(), parsed->user()) << child;
        EXPECT_EQ(cut->port(), parsed->port()) << child;
        EXPECT_EQ(text(cut->parent()), text(parsed->parent())) << child;
    }
}

TEST(LuSVNURLTest, DisplayFormsDecodeUTF8Escapes)
{
    const struct {
        const char* text;
        const char* denormalized;
        const char* lastComponent;
    } cases[] = {
        {"svn://h/a%20b/%C3%BC", "svn://h/a b/\xC3\xBC", "\xC3\xBC"},
        {"svn://h/%25", "svn://h/%", "%"},
        {"svn://h/%FF", "svn://h/%FF", "%FF"},  // not UTF-8: shown as it is
    };
    for (const auto& c : cases) {
        const auto u = LuSVNURL::URLWithString(c.text);
        EXPECT_EQ(u->denormalizedString(), c.denormalized);
        EXPECT_EQ(u->URLDecodedString(), c.denormalized);
        EXPECT_EQ(u->denormalizedLastComponent(), c.lastComponent);
    }
    EXPECT_EQ(url("svn://h/a%20b/c")->denormalizedLocation(), "svn://h/a b");
}

TEST(LuSVNURLTest, BuildingFromParts)
{
    const struct {
        std::optional<std::string> scheme, user, host;
        std::optional<int> port;
        std::optional<std::string> path;
        std::optional<std::string> url;
    } cases[] = {
        {"svn", "a@b:c", "h", std::nullopt, std::nullopt, "svn://a%40b%3ac@h"},
        {"svn", "%/\\ x", "h", std::nullopt, std::nullopt, "svn://%25%2f%5c%20x@h"},
        {"svn", std::nullopt, "h", 99, "r", "svn://h:99/r"},
        {"svn", std::nullopt, "h%", std::nullopt, "/r", "svn://h%25/r"},
        {"svn", std::nullopt, "h/x@y?z# ", 1, "/r", "svn://h%2fx%40y%3fz%23%20:1/r"},
        {"svn", "\xC3\xBC;", "[::1]", 1, "/r", "svn://%c3%bc;@[::1]:1/r"},
        {"svn", std::nullopt, std::nullopt, 99, "/r", "svn:///r"},
        {"svn", std::nullopt, "h", std::nullopt, "", "svn://h"},
        {std::nullopt, "u", "h", 1, "/r", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(text(LuSVNURL::URLWithScheme(c.scheme, c.user, c.host, c.port, c.path)), c.url);
    // A decoded host is escaped again wherever it would end early.
    for (const char* text : {"svn://h%2Fx%40y/r", "svn://u%C3%BC@h%20"}) {
        const auto odd = LuSVNURL::URLWithString(text);
        const auto rebuilt = odd->URLWithPort(1);
        EXPECT_EQ(rebuilt->user(), odd->user()) << text;
        EXPECT_EQ(rebuilt->host(), odd->host()) << text;
        EXPECT_EQ(rebuilt->relativePath(), odd->relativePath()) << text;
    }
    EXPECT_EQ(LuSVNURL::URLWithString("svn://u@h:1/r")->hostAndScheme(), "svn://u@h:1");
    EXPECT_EQ(LuSVNURL::URLWithString("file:///x")->hostAndScheme(), "file://");
    const auto u = LuSVNURL::URLWithString("svn://u@h/r");
    EXPECT_EQ(u->URLWithScheme("https")->string(), "https://u@h/r");
    EXPECT_EQ(u->URLWithUser(std::nullopt)->string(), "svn://h/r");
    EXPECT_EQ(u->URLWithUser("v w")->string(), "svn://v%20w@h/r");
    EXPECT_EQ(u->URLWithPort(80)->string(), "svn://u@h:80/r");
}

TEST(LuSVNURLTest, CanonicalFormsAndUsers)
{
    const struct {
        const char* text;
        const char* canonical;
        const char* withoutUser;
    } cases[] = {
        {"file://localhost/tmp/x", "file:///tmp/x", "file://localhost/tmp/x"},
        {"FILE://LocalHost/tmp/x", "file:///tmp/x", "FILE://LocalHost/tmp/x"},
        {"svn+ssh://user@host/r", "svn+ssh://host/r", "svn+ssh://host/r"},
        {"svn://user@host/repo", "svn://host:3690/repo", "svn://host/repo"},
        {"SVN://host", "SVN://host:3690", "SVN://host"},
        {"http://u:pw@h:8080/r", "http://h:8080/r", "http://h:8080/r"},
        {"nosuchservice://u@h/r", "nosuchservice://u@h/r", "nosuchservice://h/r"},
    };
    for (const auto& c : cases) {
        const auto u = url(c.text);
        EXPECT_EQ(u->canonicalize()->string(), c.canonical) << c.text;
        EXPECT_EQ(u->stripUser()->string(), c.withoutUser) << c.text;
    }
    const auto plain = url("svn://h/r");
    EXPECT_EQ(plain->stripUser(), plain);
    EXPECT_EQ(LuSVNURL::defaultPortForScheme("svn"), 3690);
    EXPECT_EQ(LuSVNURL::defaultPortForScheme("HTTP"), 80);
    EXPECT_EQ(LuSVNURL::defaultPortForScheme("nosuchservice"), 0);
}

TEST(LuSVNURLTest, LocalPathsOfFileURLs)
{
    EXPECT_EQ(url("file://host/tmp/x")->localPath()->string(), "/tmp/x");
    EXPECT_EQ(url("file:///tmp/a%20b")->localPath()->string(), "/tmp/a b");
    EXPECT_EQ(url("file:///")->localPath()->string(), "/");
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([] { url("file://host")->localPath(); }),
              "URL is not a valid file URL");
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([] { url("svn://h/x")->localPath(); }),
              "URL is not a file:// URL");
}

TEST(LuSVNURLTest, AddingComponents)
{
    const struct {
        const char* url;
        const char* component;
        const char* result;
    } cases[] = {
        {"svn://h/r", "a", "svn://h/r/a"}, {"svn://h/r", "/a/b/", "svn://h/r/a/b"}, {"file://", "x", "file:///x"},
        {"file:///", "x", "file:///x"},    {"svn://h/", "x", "svn://h/x"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(url(c.url)->pathByAddingComponent(c.component)->string(), c.result);
    const auto u = url("svn://h/r");
    EXPECT_EQ(u->pathByAddingComponent("/"), u);
    EXPECT_EQ(u->pathByNormalizingAndAddingComponent("a b/%")->string(), "svn://h/r/a%20b/%25");
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([&] { u->pathByAddingComponent("//"); }),
              "Valid component required");
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([&] { u->pathByNormalizingAndAddingComponent(""); }),
              "Invalid parameter not satisfying: component != nil && [component length] > 0");
}

TEST(LuSVNURLTest, ValidURLsForPeople)
{
    for (const char* text : {"svn://host/repo", " svn://host/repo ", "file:///", "svn_x://h/r", "svn://h/a.b"})
        EXPECT_TRUE(LuSVNURL::isValidURL(text)) << text;
    for (const char* text : {"", "host/repo", "svn://host//repo", "svn://host/repo/.", "svn://host/./repo",
                             "svn://host/a b", "svn://h/\xC3\xBC"})
        EXPECT_FALSE(LuSVNURL::isValidURL(text)) << text;
}

// Random texts of units (bytes or whole characters).
class RandomTexts {
public:
    std::string next(const std::vector<std::string>& units, std::size_t maximum)
    {
        std::string text;
        for (std::size_t n = std::uniform_int_distribution<std::size_t>(0, maximum)(generator_); n > 0; --n)
            text += units[std::uniform_int_distribution<std::size_t>(0, units.size() - 1)(generator_)];
        return text;
    }

private:
    std::mt19937 generator_{20240611};
};

TEST(LuSVNURLTest, EscapingRoundTrips)
{
    RandomTexts random;
    std::vector<std::string> everyByte;
    for (int c = 0; c < 256; ++c)
        everyByte.emplace_back(1, static_cast<char>(c));
    for (int i = 0; i < 2000; ++i) {
        const std::string bytes = random.next(everyByte, 24);
        const std::string escaped = tessera_private::LuSVNAddPercentEscapes(bytes);
        ASSERT_EQ(tessera_private::LuSVNReplacePercentEscapes(escaped), bytes) << escaped;
        ASSERT_EQ(escaped.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                                            "-_.~!$&'()*+,=:@/%"),
                  std::string::npos);
    }
    // A URL made from display text shows that text again and reconstructs
    // from its string into an equal URL.
    std::vector<std::string> units{"\xC3\xBC", "\xE6\x97\xA5", "\xF0\x9F\x8E\x89", "%41", "%"};
    for (const char c : std::string_view("ab/ ?#:@&=+$,;[]{}|\\^`\"<>~*'()!\t."))
        units.emplace_back(1, c);
    for (int i = 0; i < 2000; ++i) {
        const std::string display = "svn://h/" + random.next(units, 16) + "f";
        const auto u = LuSVNURL::URLEncodeString(display);
        ASSERT_EQ(u->denormalizedString(), display);
        ASSERT_TRUE(LuSVNURL::URLWithString(u->string())->isEqualToPath(u)) << u->string();
        ASSERT_TRUE(LuSVNPath::pathWithDenormalizedString(display)->isEqualToPath(u));
    }
}

TEST(LuSVNURLTest, SubversionFormThroughEitherEntryPoint)
{
    // 1.4.6 lacks entry point 29 and is served by 26.
    const auto loader = LuSVNBundleLoader::sharedInstance();
    for (const auto& backend : {loader->newestBundle(), loader->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_4_6)}) {
        LuSVNBackendFrame frame(backend);
        EXPECT_STREQ(url("SVN://Host/a%7e/b")->SVNRepresentationInPool(frame.pool()), "svn://host/a~/b");
        EXPECT_STREQ(url("file:///")->SVNRepresentationInPool(frame.pool()), "file://");
    }
    EXPECT_EQ(reasonOf<LuSVNInternalInconsistencyException>([] { url("svn://h")->SVNRepresentationInPool(nullptr); }),
              "Invalid parameter not satisfying: pool != nil");
}

TEST(LuSVNURLTest, URLsSubversionWouldAbortOnAreRefused)
{
    // Found by fuzzing: svn_uri_canonicalize aborts the process on these.
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    for (const char* text : {"/vn://h/r", "a:b://h", "%41svn://h", "svn://[v1.x]/r", "svn://h:03690/x", "svn://:"})
        EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>([&] { url(text)->SVNRepresentationInPool(frame.pool()); }),
                  "Subversion cannot canonicalize \"" + std::string(text) + "\"");
    EXPECT_STREQ(url("Svn_X://h:0/r")->SVNRepresentationInPool(frame.pool()), "svn_x://h:0/r");
    EXPECT_STREQ(url("svn://u@h:/x")->SVNRepresentationInPool(frame.pool()), "svn://u@h/x");
}

TEST(LuSVNURLTest, ArchivingRunsTheConstructionRules)
{
    const auto u = url("svn://u@h:81/r/a%20b");
    const std::string archive = LuSVNKeyedArchiver::archivedDataWithRootObject(*u);
    EXPECT_EQ(archive, R"({"$class":"LuSVNURL","string":"svn://u@h:81/r/a%20b"})");
    const auto decoded = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNURL>(archive);
    EXPECT_TRUE(decoded->isEqualToPath(u));
    EXPECT_EQ(decoded->port(), 81);
    EXPECT_EQ(LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNURL>(R"({"$class":"LuSVNURL","string":" svn://h/r/"})")
                  ->string(),
              "svn://h/r");
    EXPECT_EQ(reasonOf<LuSVNInvalidArgumentException>(
                  [] { LuSVNKeyedUnarchiver::unarchiveObjectWithData(R"({"$class":"LuSVNURL","string":"nope"})"); }),
              "URL does not contain a scheme");
}

}  // namespace
