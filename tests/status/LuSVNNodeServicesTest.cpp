// Node operations against a real working copy and repository: node kinds,
// URLs, properties, pristine copies, file types and externals.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNExternalDefinition.h>
#include <tessera/LuSVNKeyedArchiver.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "NonKeyedCoder.h"
#include "TesseraTestSupport.h"

namespace {

using tessera_test::svn;
using tessera_test::writeFile;

void svnOrFail(const std::vector<std::string>& arguments)
{
    const auto result = svn(arguments);
    ASSERT_EQ(result.status, 0) << result.output;
}

const std::string binary("\x89\x00\x01\x02\xff\xfe\x00\x10", 8);

class NodeServices : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        directory = new tessera_test::TemporaryDirectory();
        config = new tessera_test::TemporaryDirectory();
        url = tessera_test::makeRepository(*directory / "repo");
        const std::string tree = *directory / "tree";
        std::filesystem::create_directories(tree + "/dir");
        std::filesystem::create_directories(*directory / "lib");
        writeFile(tree + "/notes.txt", "notes\n");
        writeFile(tree + "/picture.png", "not really a picture\n");
        writeFile(tree + "/data.zzq", binary);
        writeFile(tree + "/doc.zzq", "plain words\n");
        for (const char* name : {"custom.zzq", "typed.zzq", "known.zzq", "alias.zzq"})
            writeFile(tree + "/" + name, "typed\n");
        writeFile(tree + "/dir/inner.txt", "inner\n");
        writeFile(*directory / "lib/libfile.txt", "lib\n");
        svnOrFail({"import", "-q", "-m", "import trunk", tree, url + "/trunk"});
        svnOrFail({"import", "-q", "-m", "import lib", *directory / "lib", url + "/lib"});
        tessera_test::checkout(url + "/trunk", workingCopy());
        for (const auto& [name, type] : {std::pair{"custom.zzq", "application/x-tessera-unknown"},
                                         std::pair{"typed.zzq", "text/x-tessera-unknown"},
                                         std::pair{"known.zzq", "image/png"}, std::pair{"alias.zzq", "text/xml"}})
            svnOrFail({"propset", "-q", "svn:mime-type", type, item(name)});
        svnOrFail({"propset", "-q", "svn:externals", "^/lib ext", workingCopy()});
        svnOrFail({"propset", "-q", "svn:externals", "^/lib nested/deep", item("dir")});
        svnOrFail({"commit", "-q", "-m", "types and externals", workingCopy()});
        svnOrFail({"update", "-q", workingCopy()});
        writeFile(item("loose.zzq"), "unversioned words\n");
    }
    static void TearDownTestSuite()
    {
        delete directory;
        delete config;
    }

    static std::string workingCopy() { return *directory / "wc"; }
    static std::string item(const std::string& name) { return workingCopy() + "/" + name; }
    static std::shared_ptr<const LuSVNLocalPath> local(const std::string& name)
    {
        return LuSVNLocalPath::pathWithString(name.empty() ? workingCopy() : item(name));
    }
    static LuSVNPath::Path remote(const std::string& name) { return LuSVNPath::pathWithString(url + "/" + name); }
    static std::shared_ptr<LuSVNContext> context()
    {
        return LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle(), {},
                                               config->path());
    }

    static tessera_test::TemporaryDirectory* directory;
    static tessera_test::TemporaryDirectory* config;
    static std::string url;
};

tessera_test::TemporaryDirectory* NodeServices::directory = nullptr;
tessera_test::TemporaryDirectory* NodeServices::config = nullptr;
std::string NodeServices::url;

TEST_F(NodeServices, KindsAndURLs)
{
    const auto head = LuSVNRevisionSpec::HEAD();
    const auto working = LuSVNRevisionSpec::WORKING();
    EXPECT_EQ(LuSVNNode::kindOfNodeAtPath(local("notes.txt"), working, context()), LuSVNNodeKindFile);
    EXPECT_EQ(LuSVNNode::kindOfNodeAtPath(local("dir"), working, context()), LuSVNNodeKindDirectory);
    EXPECT_EQ(LuSVNNode::kindOfNodeAtPath(remote("trunk/dir"), head, context()), LuSVNNodeKindDirectory);
    EXPECT_TRUE(LuSVNNode::isDirectoryAtPath(remote("lib"), head, context()));
    EXPECT_FALSE(LuSVNNode::isDirectoryAtPath(remote("lib/libfile.txt"), head, context()));
    EXPECT_THROW(LuSVNNode::kindOfNodeAtPath(remote("trunk/absent"), head, context()), LuSVNException);
    EXPECT_THROW(LuSVNNode::kindOfNodeAtPath(local("absent"), working, context()), LuSVNException);

    EXPECT_EQ(LuSVNNode::URLForNodeAtPath(local("dir/inner.txt"), context())->string(), url + "/trunk/dir/inner.txt");
    EXPECT_EQ(LuSVNNode::URLForNodeAtPath(local("ext"), context())->string(), url + "/lib");
    EXPECT_EQ(LuSVNNode::URLForNodeAtPath(remote("lib"), context())->string(), url + "/lib");

    tessera_test::expectParameterAssertion([] { LuSVNNode::kindOfNodeAtPath(nullptr, nullptr, nullptr); },
                                           "path != nil");
    tessera_test::expectParameterAssertion([] { LuSVNNode::kindOfNodeAtPath(local("dir"), nullptr, nullptr); },
                                           "revision != nil");
    tessera_test::expectParameterAssertion(
        [] { LuSVNNode::kindOfNodeAtPath(local("dir"), LuSVNRevisionSpec::HEAD(), nullptr); }, "context != nil");
}

TEST_F(NodeServices, PropertiesAndPristineCopies)
{
    const auto value = LuSVNNode::propertyWithName("svn:mime-type", local("known.zzq"), LuSVNRevisionSpec::WORKING(),
                                                   context());
    ASSERT_TRUE(value.has_value());
    EXPECT_EQ(std::get<std::string>(*value), "image/png");
    EXPECT_EQ(std::get<std::string>(*LuSVNNode::propertyWithName("svn:mime-type", remote("trunk/alias.zzq"),
                                                                 LuSVNRevisionSpec::HEAD(), context())),
              "text/xml");
    EXPECT_FALSE(LuSVNNode::propertyWithName("svn:mime-type", local("notes.txt"), LuSVNRevisionSpec::WORKING(),
                                             context()));
    EXPECT_THROW(LuSVNNode::propertyWithName("svn:mime-type", local("loose.zzq"), LuSVNRevisionSpec::WORKING(),
                                             context()),
                 LuSVNNoSuchEntryException);

    writeFile(item("doc.zzq"), "changed words\n");
    const auto pristine = LuSVNNode::BASEPathForNodeAtPath(local("doc.zzq"), context());
    std::ifstream stream(pristine->string(), std::ios::binary);
    std::stringstream contents;
    contents << stream.rdbuf();
    EXPECT_EQ(contents.str(), "plain words\n");
    svnOrFail({"revert", "-q", item("doc.zzq")});
}

TEST_F(NodeServices, FileTypes)
{
    const auto working = LuSVNRevisionSpec::WORKING();
    const std::pair<const char*, const char*> cases[] = {
        {"notes.txt", "text/plain"},                                  // by extension
        {"picture.png", "image/png"},                                 // by extension, whatever the contents
        {"data.zzq", "application/octet-stream"},                     // Subversion sees binary data
        {"doc.zzq", "text/plain"},                                    // no MIME type at all
        {"custom.zzq", "dyn.mime-type:application/x-tessera-unknown"}, // a MIME type the database lacks
        {"typed.zzq", "text/plain"},                                  // the same, but text
        {"known.zzq", "image/png"},                                   // from svn:mime-type
        {"alias.zzq", "application/xml"},                             // an alias, resolved
        {"loose.zzq", "text/plain"},                                  // unversioned: no property
        {"dir", "inode/directory"},
        {"", "inode/directory"},
    };
    for (const auto& [name, type] : cases)
        EXPECT_EQ(LuSVNNode::UTIForNodeAtPath(local(name), working, context()), type) << name;

    const auto head = LuSVNRevisionSpec::HEAD();
    EXPECT_EQ(LuSVNNode::UTIForNodeAtPath(remote("trunk/data.zzq"), head, context()), "text/plain");
    EXPECT_EQ(LuSVNNode::UTIForNodeAtPath(remote("trunk/dir"), head, context()), "inode/directory");
    EXPECT_EQ(LuSVNNode::UTIForNodeAtPath(remote("trunk/data.zzq"), head, local("data.zzq"), LuSVNNodeKindFile,
                                          context()),
              "application/octet-stream");
    EXPECT_EQ(LuSVNNode::UTIForNodeAtPath(remote("trunk/anything"), head, nullptr, LuSVNNodeKindDirectory, context()),
              "inode/directory");

    // A file gone from disk is read from its pristine copy.
    std::filesystem::rename(item("data.zzq"), *directory / "data.zzq");
    EXPECT_EQ(LuSVNNode::MIMETypeForNodeAtPath(local("data.zzq"), context()), "application/octet-stream");
    std::filesystem::rename(*directory / "data.zzq", item("data.zzq"));
    EXPECT_EQ(LuSVNNode::MIMETypeForNodeAtPath(local("doc.zzq"), context()), std::nullopt);

    EXPECT_EQ(LuSVNNode::preferredTypeForFilenameExtension("png"), "image/png");
    EXPECT_EQ(LuSVNNode::preferredTypeForFilenameExtension("zzq"), "dyn.extension:zzq");
    EXPECT_EQ(LuSVNNode::preferredTypeForMIMEType("text/xml"), "application/xml");
    EXPECT_TRUE(LuSVNNode::isDynamicUTI("dyn.ah62d4rv4ge80"));
    EXPECT_FALSE(LuSVNNode::isDynamicUTI("dy"));
    EXPECT_TRUE(LuSVNNode::isTextMIMEType("text/x-c"));
    EXPECT_FALSE(LuSVNNode::isTextMIMEType("application/text"));
}

TEST_F(NodeServices, ExternalsOfATree)
{
    const auto strings = [](const LuSVNNode::PathSet& paths) {
        std::set<std::string> texts;
        for (const auto& path : paths)
            texts.insert(path->string());
        return texts;
    };
    using Strings = std::set<std::string>;
    EXPECT_EQ(strings(LuSVNDirectory::externalsInDirectoryAtPath(local(""), context())),
              (Strings{item("ext"), item("dir/nested/deep")}));
    EXPECT_EQ(strings(LuSVNDirectory::externalsInDirectoryAtPath(local("dir"), context())),
              (Strings{item("dir/nested/deep")}));
    // The definition on the parent names a directory the walk of dir may meet.
    EXPECT_EQ(strings(LuSVNDirectory::externalsForPath(local("dir"), context())),
              (Strings{item("ext"), item("dir/nested/deep")}));
}

TEST(LuSVNExternalDefinition, ParsesEverySyntax)
{
    struct Case {
        const char* line;
        const char* source;
        const char* target;
        const char* revision;
    };
    const Case cases[] = {
        {"^/lib ext", "^/lib", "ext", "HEAD@HEAD"},
        {"ext -r 3 file:///srv/repo/lib", "file:///srv/repo/lib", "ext", "3@3"},
        {"ext -r3 file:///srv/repo/lib", "file:///srv/repo/lib", "ext", "3@3"},
        {"-r 2 http://host/repo/lib@5 a/b", "http://host/repo/lib", "a/b", "2@5"},
        {"../lib@7 sibling", "../lib", "sibling", "7@7"},
        {"\"name with space\" ext", "name with space", "ext", "HEAD@HEAD"},
    };
    for (const Case& c : cases) {
        const auto definitions = LuSVNExternalDefinition::externalDefinitionListValue(c.line);
        ASSERT_EQ(definitions.size(), 1u) << c.line;
        EXPECT_EQ(definitions[0].sourceDirectory(), c.source) << c.line;
        EXPECT_EQ(definitions[0].targetDirectory(), c.target) << c.line;
        EXPECT_EQ(definitions[0].sourceRevision()->description(), c.revision) << c.line;
    }
    EXPECT_EQ(LuSVNExternalDefinition::externalDefinitionListValue("# a comment\n\n^/a one\r\n^/b two\n").size(), 2u);
    for (const char* bad : {"one", "a b c d e", "^/lib /absolute", "^/lib ../up", "http://a/x http://b/y"})
        EXPECT_THROW(LuSVNExternalDefinition::externalDefinitionListValue(bad),
                     LuSVNInvalidExternalsDescriptionException)
            << bad;
    tessera_status_test::expectInvalidArgument(
        [] { LuSVNExternalDefinition::externalDefinitionListValue("^/lib ex\xff"); },
        "Externals description is not valid UTF-8");
    tessera_status_test::expectInvalidArgument(
        [] { LuSVNExternalDefinition::externalDefinitionListValue("^/lib@{1970-01-01T00:00:00Z} x"); },
        "Time out of range: 0");
    tessera_status_test::expectInvalidArgument(
        [] { LuSVNExternalDefinition::externalDefinitionListValue("-r 99999999999 ^/lib x"); },
        "Revision number out of range: 99999999999");
}

TEST(LuSVNExternalDefinition, ValueSemantics)
{
    LuSVNExternalDefinition definition;
    EXPECT_EQ(definition.sourceRevision()->description(), "HEAD@HEAD");
    definition.setSourceDirectory("^/lib");
    definition.setTargetDirectory("ext");
    LuSVNExternalDefinition copy = definition;
    EXPECT_EQ(copy, definition);
    EXPECT_EQ(copy.hash(), definition.hash());
    copy.sourceRevision()->setOperativeRevision(LuSVNRevision::revisionWithNumber(4));
    EXPECT_EQ(definition.sourceRevision()->description(), "HEAD@HEAD");
    EXPECT_FALSE(copy == definition);
    LuSVNExternalDefinition swapped = definition;
    swapped.setSourceDirectory("ext");
    swapped.setTargetDirectory("^/lib");
    EXPECT_FALSE(swapped == definition);
    EXPECT_NE(definition.description().find(" sourceDirectory: ^/lib, sourceRevision: HEAD@HEAD, targetDirectory: ext }"),
              std::string::npos);

    const auto restored = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNExternalDefinition>(
        LuSVNKeyedArchiver::archivedDataWithRootObject(copy));
    EXPECT_EQ(*restored, copy);
    tessera_status_test::NonKeyedCoder coder;
    tessera_status_test::expectInvalidArgument([&] { copy.encodeWithCoder(coder); }, "Keyed archiver required");
    tessera_status_test::expectInvalidArgument([&] { LuSVNExternalDefinition::initWithCoder(coder); },
                                               "Keyed unarchiver required");
}

}  // namespace
