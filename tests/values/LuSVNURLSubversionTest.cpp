// URLs of names holding characters a URL must escape, or that look like
// escapes, against the URLs the svn client reports for the same repository
// and working copy.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNStatusOptions.h>
#include <tessera/LuSVNURL.h>
#include <tessera/LuSVNUsernameProvider.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "TesseraTestSupport.h"

namespace {

// Each is a directory holding a file of the same name.
const std::vector<std::string> names = {
    "h#sh",  "q?m",  "p%c",   "%41",      "a%2Fb",      "sp ace",   "\xC3\xBCn\xC3\xAF", "at@x",    "se;mi",
    "br[a]", "ap'o", "pl+us", "eq=a&b",   "c,o$m",      "ti~l(d)!*", "col:on",            "cu{r}|b^`", "lt<gt>\"q",
    "bs\\x",
};

// svn needs a final "@" on a target that holds one.
std::string target(const std::string& path)
{
    return path + "@";
}

void svnOrThrow(const std::vector<std::string>& arguments)
{
    const tessera_test::CommandResult result = tessera_test::svn(arguments);
    if (result.status != 0)
        throw std::runtime_error("svn " + arguments.front() + " failed: " + result.output);
}

// `svn info -R --show-item ITEM` of the working copy, by absolute path.
std::map<std::string, std::string> svnInfo(const std::string& item, const std::string& path)
{
    const tessera_test::CommandResult result = tessera_test::svn({"info", "-R", "--show-item", item, target(path)});
    if (result.status != 0)
        throw std::runtime_error("svn info failed: " + result.output);
    std::map<std::string, std::string> values;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t space = line.find(' ');  // values hold none: they are escaped
        values[line.substr(line.find_first_not_of(' ', space))] = line.substr(0, space);
    }
    return values;
}

// A repository whose directory holds such characters too, made by svnadmin,
// checked out at the URL the library makes of its path, with every name
// committed.
struct Repository {
    tessera_test::TemporaryDirectory directory;
    std::string path = directory / "repo #?%;[\xC3\xBC]@x";
    std::string workingCopy = directory / "wc";
    std::string rootURL;                           // svn's
    std::map<std::string, std::string> urls;       // svn's, by absolute path
    std::map<std::string, std::string> relativeURLs;

    Repository()
    {
        const auto created = tessera_test::run({TESSERA_SVNADMIN_PROGRAM, "create", "--fs-type", "fsfs", path});
        if (created.status != 0)
            throw std::runtime_error("svnadmin create failed: " + created.output);
        svnOrThrow({"checkout", "-q", target(LuSVNLocalPath::pathWithString(path)->URL()->string()), workingCopy});
        for (const auto& name : names) {
            std::filesystem::create_directory(workingCopy + "/" + name);
            tessera_test::writeFile(workingCopy + "/" + name + "/" + name, name + "\n");
        }
        svnOrThrow({"add", "-q", "--force", target(workingCopy)});
        svnOrThrow({"commit", "-q", "-m", "names", target(workingCopy)});
        svnOrThrow({"update", "-q", target(workingCopy)});
        urls = svnInfo("url", workingCopy);
        relativeURLs = svnInfo("relative-url", workingCopy);
        rootURL = urls.at(workingCopy);
        if (urls.size() != 1 + 2 * names.size())
            throw std::runtime_error("svn info reports " + std::to_string(urls.size()) + " items");
    }

    // The components below the working copy's root.
    std::vector<std::string> componentsOf(const std::string& item) const
    {
        std::vector<std::string> components;
        for (const auto& component : std::filesystem::path(item).lexically_relative(workingCopy))
            if (component != ".")
                components.push_back(component.string());
        return components;
    }
};

const Repository& repository()
{
    static const Repository made;
    return made;
}

TEST(LuSVNURLSubversionTest, ALocalPathsURLIsSubversionsOwn)
{
    const Repository& r = repository();
    const auto url = LuSVNLocalPath::pathWithString(r.path)->URL();
    EXPECT_EQ(url->string(), r.rootURL);
    EXPECT_EQ(url->localPath()->string(), r.path);
    EXPECT_EQ(url->denormalizedLastComponent(), std::filesystem::path(r.path).filename().string());
}

TEST(LuSVNURLSubversionTest, NamesAddedToAURLGiveSubversionsURLs)
{
    const Repository& r = repository();
    for (const auto& [item, expected] : r.urls) {
        LuSVNPath::Path url = LuSVNURL::URLWithString(r.rootURL);
        for (const auto& component : r.componentsOf(item))
            url = url->pathByNormalizingAndAddingComponent(component);
        EXPECT_EQ(url->string(), expected) << item;
    }
}

TEST(LuSVNURLSubversionTest, SubversionsURLsReadBackWhole)
{
    const Repository& r = repository();
    const auto root = LuSVNURL::URLWithString(r.rootURL);
    // The same repository as a server would name it, with a user.
    const auto serverRoot = LuSVNURL::URLWithString("svn://host" + root->relativePath());
    for (const auto& [item, text] : r.urls) {
        SCOPED_TRACE(item);
        const auto url = LuSVNURL::URLWithString(text);
        const std::vector<std::string> components = r.componentsOf(item);
        std::string relative;
        for (const auto& component : components)
            relative += "/" + component;
        EXPECT_EQ(url->localPath()->string(), r.path + relative);
        EXPECT_EQ(url->denormalizedRelativePath(), r.path + relative);
        EXPECT_EQ(url->relativePath(), text.substr(std::string("file://").size()));
        if (!components.empty()) {
            EXPECT_EQ(url->denormalizedLastComponent(), components.back());
            EXPECT_EQ(url->parent()->string(), r.urls.at(std::filesystem::path(item).parent_path().string()));
        }
        EXPECT_EQ(url->stringRelativeToRepository(root), r.relativeURLs.at(item));
        const auto onServer = LuSVNURL::URLWithString("svn://me@host" + url->relativePath());
        EXPECT_EQ(onServer->stringRelativeToRepository(serverRoot), r.relativeURLs.at(item));
        EXPECT_EQ(onServer->stripUser()->string(), "svn://host" + url->relativePath());
    }
}

// svn reads "#" and "?" as path characters when they stand unescaped.
TEST(LuSVNURLSubversionTest, UnescapedDelimitersArePartOfThePath)
{
    const Repository& r = repository();
    const auto root = LuSVNURL::URLWithString(r.rootURL);
    for (const std::string name : {"h#sh", "q?m"}) {
        SCOPED_TRACE(name);
        const std::string item = r.workingCopy + "/" + name + "/" + name;
        const auto url = LuSVNURL::URLWithString(r.rootURL + "/" + name + "/" + name);
        const tessera_test::CommandResult svn = tessera_test::svn({"info", "--show-item", "url", target(url->string())});
        ASSERT_EQ(svn.status, 0) << svn.output;
        EXPECT_EQ(svn.output, r.urls.at(item) + "\n");
        EXPECT_EQ(url->relativePath(), LuSVNURL::URLWithString(r.urls.at(item))->relativePath());
        EXPECT_EQ(url->lastComponent(), name);
        EXPECT_EQ(url->parent()->lastComponent(), name);
        EXPECT_EQ(url->stringRelativeToRepository(root), r.relativeURLs.at(item));
        EXPECT_EQ(url->localPath()->string(), r.path + "/" + name + "/" + name);
    }
}

TEST(LuSVNURLSubversionTest, StatusNodesCarrySubversionsURLs)
{
    const Repository& r = repository();
    const auto loader = LuSVNBundleLoader::sharedInstance();
    // Records of svn_client_status5 (repository root and relative path) and
    // of svn_client_status2 (the entry's URL).
    for (const auto& bundle : {loader->newestBundle(), loader->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_6_23)}) {
        const auto context = LuSVNContext::contextWithBundle(bundle);
        context->authenticationStack()->addProvider(std::make_shared<LuSVNUsernameProvider>());
        LuSVNStatusOptions options;
        options.setIncludeNormalFiles(true);
        const auto nodes =
            LuSVNDirectory::statusForNodesInDirectoryAtPath(LuSVNLocalPath::pathWithString(r.workingCopy), options,
                                                            context);
        std::size_t below = 0;
        for (const auto& node : nodes) {
            const std::string path = node->path()->string();
            ASSERT_EQ(r.urls.count(path), 1u) << path;
            ASSERT_TRUE(node->URL()) << path;
            EXPECT_EQ(node->URL()->string(), r.urls.at(path)) << bundle->description();
            below += path != r.workingCopy;
        }
        EXPECT_EQ(below, 2 * names.size()) << bundle->description();
    }
}

}  // namespace
