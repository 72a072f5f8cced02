// Properties of working copies and repositories on every backend, svn
// reading what the library wrote; the externals printer against the parser.
#include <tessera/LuSVNExternalDefinition.h>
#include <tessera/LuSVNPropertyConversion.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "OperationsTestSupport.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

const auto WORKING = [] { return LuSVNRevisionSpec::revisionWithRevision(LuSVNRevision::UNSPECIFIED()); };
const auto HEAD = [] { return LuSVNRevisionSpec::revisionWithRevision(LuSVNRevision::HEAD()); };

std::string svnPropget(const std::string& name, const std::string& target)
{
    const auto result = svn({"propget", "--strict", name, target});
    return result.status == 0 ? result.output : "error: " + result.output;
}

// A working copy of a repository whose r1 has a.txt and sub/b.txt, a.txt
// with "color" = "red" and sub with svn:ignore "*.o\n".
class Properties : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        repositoryURL = tessera_test::makeRepository(directory / "repo");
        std::filesystem::create_directories(directory / "tree/sub");
        tessera_test::writeFile(directory / "tree/a.txt", "a\n");
        tessera_test::writeFile(directory / "tree/sub/b.txt", "b\n");
        ASSERT_EQ(svn({"import", "-q", "-m", "tree", directory / "tree", repositoryURL}).status, 0);
        tessera_test::checkout(repositoryURL, wc);
        ASSERT_EQ(svn({"propset", "-q", "color", "red", wc + "/a.txt"}).status, 0);
        ASSERT_EQ(svn({"propset", "-q", "svn:ignore", "*.o\n", wc + "/sub"}).status, 0);
        ASSERT_EQ(svn({"commit", "-q", "-m", "props", wc}).status, 0);
        ASSERT_EQ(svn({"update", "-q", wc}).status, 0);
        context = contextFor(GetParam());
    }

    tessera_test::TemporaryDirectory directory;
    std::string repositoryURL;
    std::string wc = directory / "wc";
    std::shared_ptr<LuSVNContext> context;
};

TEST_P(Properties, SetAndDeleteAsSvnReadsThem)
{
    const std::vector<std::uint8_t> binary{0xff, 0x00, 0xfe, '\n'};
    LuSVNNode::setProperty("shape", std::string("round"), local(wc + "/a.txt"), context);
    LuSVNNode::setProperty("blob", LuSVNData(binary), local(wc + "/a.txt"), context);
    EXPECT_EQ(svnPropget("shape", wc + "/a.txt"), "round");
    EXPECT_EQ(svnPropget("blob", wc + "/a.txt"), std::string("\xff\0\xfe\n", 4));
    // Binary values come back as they went in, text as text.
    const auto properties = LuSVNNode::propertiesForNodeAtPath(local(wc + "/a.txt"), WORKING(), context);
    EXPECT_EQ(properties.at("blob"), LuSVNPropertyValue(LuSVNData(binary)));
    EXPECT_EQ(properties.at("color"), LuSVNPropertyValue(std::string("red")));
    EXPECT_EQ(properties.size(), 3u);

    LuSVNNode::setProperty("color", std::nullopt, local(wc + "/a.txt"), context);
    EXPECT_EQ(svn({"proplist", "-q", wc + "/a.txt"}).output, "  blob\n  shape\n");
    // The repository still has the committed value.
    EXPECT_EQ(LuSVNNode::propertyWithName("color", url(repositoryURL + "/a.txt"), HEAD(), context),
              std::optional<LuSVNPropertyValue>(std::string("red")));
}

TEST_P(Properties, RecursiveReadsAndWrites)
{
    LuSVNNode::setProperty("mark", std::string("x"), local(wc), true, false, context);
    EXPECT_EQ(svnPropget("mark", wc + "/sub/b.txt"), "x");
    const auto marks = LuSVNNode::propertiesWithName("mark", local(wc), WORKING(), true, context);
    std::vector<std::string> paths;
    for (const auto& [path, value] : marks) {
        paths.push_back(path);
        EXPECT_EQ(value, LuSVNPropertyValue(std::string("x"))) << path;
    }
    EXPECT_EQ(paths, (std::vector<std::string>{wc, wc + "/a.txt", wc + "/sub", wc + "/sub/b.txt"}));
    // Not recursive: the target alone.
    EXPECT_EQ(LuSVNNode::propertiesWithName("mark", local(wc), WORKING(), false, context).size(), 1u);

    // On the repository (in Subversion's hash order), at a revision: r1
    // had no properties at all.
    std::set<std::string> items;
    for (const auto& [item, properties] :
         LuSVNNode::propertiesForNodesAtPath(url(repositoryURL), HEAD(), true, context))
        if (!properties.empty())
            items.insert(item);
    EXPECT_EQ(items, (std::set<std::string>{repositoryURL + "/a.txt", repositoryURL + "/sub"}));
    EXPECT_TRUE(LuSVNNode::propertiesForNodesAtPath(url(repositoryURL), LuSVNRevisionSpec::revisionWithNumber(1),
                                                    true, context)
                    .empty());
}

TEST_P(Properties, IgnoreEntriesKeepTheRestOfTheValue)
{
    const auto sub = local(wc + "/sub");
    EXPECT_EQ(LuSVNNode::ignoredFilenamesForNodeAtPath(sub, WORKING(), context), std::vector<std::string>{"*.o"});
    // A value of someone else's making: a blank line, blanks around a pattern, tabs.
    LuSVNNode::setProperty("svn:ignore", std::string("*.o\n\n  *.tmp  \nbuild\t*.a\n"), sub, context);
    LuSVNNode::addIgnoredFilename("*.log", sub, context);
    LuSVNNode::addIgnoredFilename("*.tmp", sub, context);
    LuSVNNode::addIgnoredFilename("*.a", sub, context);
    EXPECT_EQ(svnPropget("svn:ignore", wc + "/sub"), "*.o\n\n  *.tmp  \nbuild\t*.a\n*.log\n");
    LuSVNNode::removeIgnoredFilename("*.tmp", sub, context);
    // A line of two patterns is not the pattern's own line.
    LuSVNNode::removeIgnoredFilename("build", sub, context);
    EXPECT_EQ(svnPropget("svn:ignore", wc + "/sub"), "*.o\n\nbuild\t*.a\n*.log\n");
    EXPECT_EQ(LuSVNNode::ignoredFilenamesForNodeAtPath(sub, WORKING(), context),
              (std::vector<std::string>{"*.o", "build", "*.a", "*.log"}));
    LuSVNNode::setProperty("svn:ignore", std::string("*.o\n\n*.log"), sub, context);
    for (const char* pattern : {"*.o", "*.log"})
        LuSVNNode::removeIgnoredFilename(pattern, sub, context);
    EXPECT_EQ(svn({"proplist", "-q", wc + "/sub"}).output, "");

    LuSVNNode::setIgnoredFilenames({"a", "b", "a"}, sub, context);
    EXPECT_EQ(svnPropget("svn:ignore", wc + "/sub"), "a\nb\n");
}

TEST_P(Properties, ExternalsEntriesKeepTheRestOfTheValue)
{
    const auto root = local(wc);
    const std::string value = "# tools\n^/sub  tools\nold -r 1 " + repositoryURL + "/sub\n";
    LuSVNNode::setProperty("svn:externals", value, root, context);
    const auto definitions = LuSVNNode::externalDefinitionsForNodeAtPath(root, WORKING(), context);
    ASSERT_EQ(definitions.size(), 2u);
    EXPECT_EQ(definitions[1].format(), LuSVNExternalFormat::Old);

    LuSVNExternalDefinition added;
    added.setSourceDirectory("../x y");
    added.setTargetDirectory("with space");
    LuSVNNode::addExternalDefinition(added, root, context);
    EXPECT_EQ(svnPropget("svn:externals", wc), value + "../x\\ y with\\ space\n");
    LuSVNNode::removeExternalDefinition("tools", root, context);
    EXPECT_EQ(svnPropget("svn:externals", wc), "# tools\nold -r 1 " + repositoryURL + "/sub\n../x\\ y with\\ space\n");
    const auto left = LuSVNNode::externalDefinitionsForNodeAtPath(root, WORKING(), context);
    ASSERT_EQ(left.size(), 2u);
    EXPECT_EQ(left[1], added);
    LuSVNNode::removeExternalDefinition("old", root, context);
    LuSVNNode::removeExternalDefinition("with space", root, context);
    // Only the comment would be left: no definitions, no property.
    EXPECT_EQ(svn({"proplist", "-q", wc}).output, "");
}

TEST_P(Properties, FailuresLoseNothing)
{
    EXPECT_THROW(LuSVNNode::setProperty("color", std::string("blue"), local(wc + "/missing"), context),
                 LuSVNException);
    EXPECT_THROW(LuSVNNode::propertiesForNodeAtPath(url(repositoryURL + "/missing"), HEAD(), context),
                 LuSVNException);
    // A value Subversion refuses.
    EXPECT_THROW(LuSVNNode::setProperty("svn:eol-style", std::string("sideways"), local(wc + "/a.txt"), context),
                 LuSVNException);
    EXPECT_EQ(svn({"status", wc}).output, "");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::setProperty("x", std::nullopt, nullptr, context); }, "path != nil");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::propertiesForNodesAtPath(local(wc), nullptr, false, context); }, "revision != nil");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::propertiesWithName("x", local(wc), WORKING(), false, nullptr); }, "context != nil");
}

// The property calls are the same from 1.2 on: the newest backend and the
// oldest interface are enough.
INSTANTIATE_TEST_SUITE_P(Backends, Properties, ::testing::Values(nullptr, TESSERA_TEST_BUNDLE_1_4_6),
                         [](const auto& info) { return backendTestName(info.param); });

// Printing a definition back: the line each format gives, and the parser
// reading it as the same definition in the same format.
TEST(LuSVNExternalDefinitionPrinter, EachFormatRoundTrips)
{
    struct Case {
        const char* line;
        const char* printed;
    };
    const Case cases[] = {
        {"ext http://host/repo/lib", "ext http://host/repo/lib"},
        {"ext   -r3   file:///srv/repo/lib", "ext -r 3 file:///srv/repo/lib"},
        {"ext -r {2020-01-02T03:04:05.000006Z} svn://h/r", "ext -r {2020-01-02T03:04:05.000006Z} svn://h/r"},
        {"^/lib ext", "^/lib ext"},
        {"-r 2 http://host/repo/lib@5 a/b", "-r 2 http://host/repo/lib@5 a/b"},
        {"-r5 ../lib@5 sibling", "../lib@5 sibling"},
        {"//host/repo x", "//host/repo x"},
        {"/repo/lib@BASE y", "/repo/lib@BASE y"},
        {"\"name with space\" 'quoted target'", "name\\ with\\ space quoted\\ target"},
        {"^/a@b@ x", "^/a@b@HEAD x"},
        {"-r 4 -rx ./-rt", "-r 4 -rx ./-rt"},
        {"\\#lib x", "\\#lib x"},
        {"^/lib \"t \"", "^/lib \"t\\ \""},
        {"^/a\\\\@HEAD t", "^/a\\\\@HEAD t"},
        {"t\\\\/. -r 1 http://h/r", "t\\\\/. -r 1 http://h/r"},
        // No scheme, no URL: the new syntax, whose target Subversion canonicalises.
        {"^i ://h/r", "^i :/h/r"},
    };
    for (const Case& c : cases) {
        const auto definitions = LuSVNExternalDefinition::externalDefinitionListValue(c.line);
        ASSERT_EQ(definitions.size(), 1u) << c.line;
        EXPECT_EQ(definitions[0].stringValue(), c.printed) << c.line;
        const auto again = LuSVNExternalDefinition::externalDefinitionListValue(definitions[0].stringValue());
        ASSERT_EQ(again.size(), 1u) << c.line;
        EXPECT_EQ(again[0], definitions[0]) << c.line;
        EXPECT_EQ(again[0].format(), definitions[0].format()) << c.line;
    }
    // Subversion reads the value up to its first NUL; so does the syntax.
    const std::string withNul("ext ~\0tp://h/r", 14);
    const auto cut = LuSVNExternalDefinition::externalDefinitionListValue(withNul);
    ASSERT_EQ(cut.size(), 1u);
    EXPECT_EQ(cut[0].format(), LuSVNExternalFormat::New);
    // A definition of the old format that the old syntax cannot say is
    // printed in the new one.
    auto relative = LuSVNExternalDefinition::externalDefinitionListValue("x http://h/r")[0];
    relative.setSourceDirectory("^/r");
    EXPECT_EQ(relative.stringValue(), "^/r x");
    EXPECT_EQ(LuSVNExternalDefinition::stringFromExternalDefinitionList(
                  LuSVNExternalDefinition::externalDefinitionListValue("# c\n^/a x\r\n\n^/b y")),
              "^/a x\n^/b y\n");
}

}  // namespace
