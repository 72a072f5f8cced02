// Nodes read from working copies and repositories, file contents, listings
// and exports, with svn info, cat, list and export as the oracle.
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNExportOptions.h>
#include <tessera/LuSVNFile.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRepositoryInfo.h>
#include <tessera/LuSVNStreams.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <functional>
#include <sstream>

#include "OperationsTestSupport.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

// Counts the writes it gets and keeps their bytes.
class CountingStream : public LuSVNOutputStream {
public:
    long write(const std::uint8_t* buffer, std::size_t length) override
    {
        ++writes;
        largestWrite = std::max(largestWrite, length);
        bytes.append(reinterpret_cast<const char*>(buffer), length);
        return static_cast<long>(length);
    }
    std::string bytes;
    std::size_t writes = 0;
    std::size_t largestWrite = 0;
};

class FailingStream : public LuSVNOutputStream {
public:
    long write(const std::uint8_t*, std::size_t) override { return -1; }
};

// The lock token svn info shows for the path, "" when none.
std::string lockToken(const std::string& path)
{
    const std::string output = svn({"info", path}).output;
    const auto start = output.find("Lock Token: ");
    if (start == std::string::npos)
        return "";
    const auto end = output.find('\n', start);
    return output.substr(start + 12, end - start - 12);
}

// "a.txt" with a keyword and native line ends, changed in r2; "big.bin" of
// 1 MiB; "dir" holding "x y@z.txt" and "sub/deep.txt".
class FileServices : public ::testing::Test {
protected:
    void SetUp() override
    {
        repositoryURL = tessera_test::makeRepository(directory / "repo");
        wc = directory / "wc";
        tessera_test::checkout(repositoryURL, wc);
        tessera_test::writeFile(wc + "/a.txt", "one $Revision$\n");
        std::string big;
        for (int line = 0; big.size() < (1 << 20); ++line)
            big += "line " + std::to_string(line) + "\n";
        tessera_test::writeFile(wc + "/big.bin", big);
        std::filesystem::create_directories(wc + "/dir/sub");
        tessera_test::writeFile(wc + "/dir/x y@z.txt", "x\n");
        tessera_test::writeFile(wc + "/dir/sub/deep.txt", "deep\n");
        ASSERT_EQ(svn({"add", "-q", wc + "/a.txt", wc + "/big.bin", wc + "/dir"}).status, 0);
        ASSERT_EQ(svn({"propset", "-q", "svn:keywords", "Revision", wc + "/a.txt"}).status, 0);
        ASSERT_EQ(svn({"propset", "-q", "svn:eol-style", "native", wc + "/a.txt"}).status, 0);
        ASSERT_EQ(svn({"commit", "-q", "-m", "r1", wc}).status, 0);
        tessera_test::writeFile(wc + "/a.txt", "two $Revision$\n");
        ASSERT_EQ(svn({"commit", "-q", "-m", "r2", wc}).status, 0);
        ASSERT_EQ(svn({"update", "-q", wc}).status, 0);
    }

    tessera_test::TemporaryDirectory directory;
    std::string repositoryURL;
    std::string wc;
};

TEST_F(FileServices, CatWritesWhatSvnCatPrintsOnEveryBackend)
{
    struct Case {
        std::string target;
        LuSVNNode::Revision revision;
        std::vector<std::string> svnArguments;
    };
    const std::vector<Case> cases = {
        {repositoryURL + "/a.txt", LuSVNRevisionSpec::UNSPECIFIED(), {}},
        {repositoryURL + "/a.txt", LuSVNRevisionSpec::revisionWithNumber(1), {"-r", "1"}},
        {wc + "/a.txt", LuSVNRevisionSpec::BASE(), {}},
        {wc + "/a.txt", LuSVNRevisionSpec::revisionWithNumber(1), {"-r", "1"}},
    };
    for (const char* backend : allBackends()) {
        const auto context = contextFor(backend);
        for (const Case& c : cases) {
            SCOPED_TRACE(c.target + " " + c.revision->description() + " " + (backend ? backend : "newest"));
            const LuSVNNode::Path path = c.target.starts_with("file:") ? LuSVNNode::Path(url(c.target))
                                                                       : LuSVNNode::Path(local(c.target));
            std::ostringstream text;
            LuSVNFile::catRevision(c.revision, path, LuSVNStdOutputStream::streamWithStream(text), context);
            std::vector<std::string> arguments{"cat"};
            arguments.insert(arguments.end(), c.svnArguments.begin(), c.svnArguments.end());
            arguments.push_back(c.target);
            EXPECT_EQ(text.str(), svn(arguments).output);
        }
    }
}

TEST_F(FileServices, CatStreamsInPiecesSmallerThanTheFile)
{
    auto stream = std::make_shared<CountingStream>();
    LuSVNFile::catRevision(LuSVNRevisionSpec::HEAD(), url(repositoryURL + "/big.bin"), stream, contextFor(nullptr));
    EXPECT_EQ(stream->bytes.size(), std::filesystem::file_size(wc + "/big.bin"));
    EXPECT_GT(stream->writes, 8u);
    EXPECT_LE(stream->largestWrite, std::size_t{128 * 1024});
}

TEST_F(FileServices, CatFailuresKeepTheirCause)
{
    const auto context = contextFor(nullptr);
    try {
        LuSVNFile::catRevision(LuSVNRevisionSpec::HEAD(), url(repositoryURL + "/a.txt"),
                               std::make_shared<FailingStream>(), context);
        FAIL() << "a failing stream went unnoticed";
    } catch (const LuSVNException& exception) {
        EXPECT_NE(exception.reason().find("Unable to write data to output stream"), std::string::npos)
            << exception.reason();
    }
    std::ostringstream text;
    EXPECT_THROW(LuSVNFile::catRevision(LuSVNRevisionSpec::HEAD(), url(repositoryURL + "/dir"),
                                        LuSVNStdOutputStream::streamWithStream(text), context),
                 LuSVNException);
    EXPECT_THROW(LuSVNFile::catRevision(LuSVNRevisionSpec::HEAD(), url(repositoryURL + "/missing"),
                                        LuSVNStdOutputStream::streamWithStream(text), context),
                 LuSVNException);
    EXPECT_EQ(text.str(), "");
}

TEST_F(FileServices, FileNodesAgreeWithSvnInfo)
{
    ASSERT_EQ(svn({"lock", "-q", "-m", "mine", wc + "/a.txt"}).status, 0);
    const auto context = contextFor(nullptr);
    const std::string token = lockToken(wc + "/a.txt");
    ASSERT_FALSE(token.empty());
    struct Case {
        LuSVNNode::Path path;
        bool fetchLock;
        std::int64_t size;
        bool hasProperties;
    };
    const std::vector<Case> cases = {
        {url(repositoryURL + "/a.txt"), false, 15, false},
        {url(repositoryURL + "/a.txt"), true, 15, true},
        {local(wc + "/a.txt"), false, 19, false},  // the working file, its keyword expanded
        {local(wc + "/a.txt"), true, 15, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path->string() + (c.fetchLock ? " with lock" : ""));
        const auto file = LuSVNFile::fileAtPath(c.path, LuSVNRevisionSpec::UNSPECIFIED(), c.fetchLock, context);
        EXPECT_EQ(file->name(), "a.txt");
        EXPECT_EQ(file->path(), c.path);
        EXPECT_EQ(file->URL()->string(), svnInfo(wc + "/a.txt", "url"));
        EXPECT_EQ(file->revision(), 2);
        EXPECT_EQ(file->author(), svnInfo(wc + "/a.txt", "last-changed-author"));
        EXPECT_TRUE(file->date().has_value());
        EXPECT_EQ(file->size(), c.size);
        EXPECT_EQ(file->hasProperties(), c.hasProperties);
        // A URL's info carries the repository's lock, a working copy's its own.
        ASSERT_NE(file->lock(), nullptr);
        EXPECT_EQ(file->lock()->token(), token);
    }
    const auto older = LuSVNFile::fileAtPath(url(repositoryURL + "/a.txt"),
                                             LuSVNRevisionSpec::pegRevisionWithNumber(1), context);
    EXPECT_EQ(older->revision(), 1);
}

TEST_F(FileServices, FileRefusals)
{
    const auto context = contextFor(nullptr);
    const auto head = LuSVNRevisionSpec::HEAD();
    struct Case {
        std::function<void()> call;
        std::string reason;
    };
    const std::vector<Case> cases = {
        {[&] { LuSVNFile::fileAtPath(url(repositoryURL + "/dir"), head, context); }, "Node is not a file"},
        {[&] { LuSVNFile::fileAtPath(local(wc + "/dir"), LuSVNRevisionSpec::UNSPECIFIED(), true, context); },
         "Node is not a file"},
        {[&] { LuSVNFile::fileAtPath(url(repositoryURL + "/missing"), head, context); }, "missing"},
        {[&] { LuSVNFile::fileAtPath(local(wc + "/missing"), LuSVNRevisionSpec::UNSPECIFIED(), context); },
         "missing"},
    };
    for (const Case& c : cases) {
        try {
            c.call();
            ADD_FAILURE() << "no exception, expected " << c.reason;
        } catch (const LuSVNException& exception) {
            EXPECT_NE(exception.reason().find(c.reason), std::string::npos) << exception.reason();
        }
    }
    std::ostringstream text;
    const auto stream = LuSVNStdOutputStream::streamWithStream(text);
    const auto path = url(repositoryURL + "/a.txt");
    tessera_test::expectParameterAssertion([&] { LuSVNFile::fileAtPath(nullptr, head, context); }, "path != nil");
    tessera_test::expectParameterAssertion([&] { LuSVNFile::fileAtPath(path, nullptr, context); }, "revision != nil");
    tessera_test::expectParameterAssertion([&] { LuSVNFile::fileAtPath(path, head, nullptr); }, "context != nil");
    tessera_test::expectParameterAssertion([&] { LuSVNFile::catRevision(head, path, nullptr, context); },
                                           "stream != nil");
    tessera_test::expectParameterAssertion([&] { LuSVNFile::catRevision(nullptr, path, stream, context); },
                                           "revision != nil");
}

// svn list's lines of the nodes: relative paths, directories with "/".
std::string listing(const LuSVNNode::Path& path, LuSVNDepth depth, const std::shared_ptr<LuSVNContext>& context)
{
    std::string lines;
    LuSVNDirectory::listNodesAtPath(path, LuSVNRevisionSpec::HEAD(), depth, false,
                                    [&](const std::shared_ptr<LuSVNNode>& node, const std::string& relativePath) {
                                        if (relativePath.empty() && node->isDirectory())
                                            return;
                                        lines += (relativePath.empty() ? *node->name() : relativePath) +
                                                 (node->isDirectory() ? "/" : "") + "\n";
                                    },
                                    context);
    return lines;
}

TEST_F(FileServices, ListingsAgreeWithSvnListAtEveryDepth)
{
    const std::vector<std::pair<LuSVNDepth, std::string>> depths = {
        {LuSVNDepthEmpty, "empty"}, {LuSVNDepthFiles, "files"},
        {LuSVNDepthImmediates, "immediates"}, {LuSVNDepthInfinity, "infinity"}};
    for (const char* backend : {static_cast<const char*>(nullptr), TESSERA_TEST_BUNDLE_1_4_6}) {
        const auto context = contextFor(backend);
        for (const std::string& target : {repositoryURL, repositoryURL + "/dir", repositoryURL + "/a.txt", wc}) {
            for (const auto& [depth, word] : depths) {
                SCOPED_TRACE(target + " " + word);
                const LuSVNNode::Path path = target.starts_with("file:") ? LuSVNNode::Path(url(target))
                                                                         : LuSVNNode::Path(local(target));
                EXPECT_EQ(listing(path, depth, context), svn({"list", "--depth", word, target}).output);
            }
        }
    }
}

TEST_F(FileServices, ListedNodesCarryTheirDetails)
{
    ASSERT_EQ(svn({"lock", "-q", "-m", "mine", wc + "/a.txt"}).status, 0);
    const auto context = contextFor(nullptr);
    LuSVNNode::Nodes children;
    const auto root = LuSVNDirectory::directoryAtPath(url(repositoryURL), LuSVNRevisionSpec::HEAD(), children, context);
    EXPECT_EQ(root->revision(), 2);
    ASSERT_EQ(children.size(), 3u);
    const auto a = LuSVNNode::nodeWithPath(children, url(repositoryURL + "/a.txt"));
    ASSERT_NE(a, nullptr);
    EXPECT_FALSE(a->isDirectory());
    EXPECT_EQ(a->size(), 15);
    EXPECT_TRUE(a->hasProperties());
    EXPECT_EQ(a->revision(), 2);
    ASSERT_NE(a->lock(), nullptr);
    EXPECT_EQ(a->lock()->token(), lockToken(repositoryURL + "/a.txt"));
    const auto dir = LuSVNNode::nodeWithPath(children, url(repositoryURL + "/dir"));
    ASSERT_NE(dir, nullptr);
    EXPECT_TRUE(dir->isDirectory());
    EXPECT_EQ(dir->revision(), 1);

    std::vector<std::string> names;
    LuSVNDirectory::listNodesAtPath(url(repositoryURL + "/dir"), LuSVNRevisionSpec::HEAD(), LuSVNDepthInfinity, false,
                                    [&](const std::shared_ptr<LuSVNNode>& node, const std::string& relativePath) {
                                        if (relativePath == "x y@z.txt") {
                                            EXPECT_EQ(node->path()->string(), repositoryURL + "/dir/x%20y@z.txt");
                                            EXPECT_EQ(node->URL(), node->path());
                                        }
                                        names.push_back(node->name().value_or("(none)"));
                                    },
                                    context);
    EXPECT_EQ(names, (std::vector<std::string>{"dir", "sub", "deep.txt", "x y@z.txt"}));
}

TEST_F(FileServices, DirectoryNodesAndTheirRepository)
{
    const auto context = contextFor(nullptr);
    for (const LuSVNNode::Path& path : {LuSVNNode::Path(url(repositoryURL + "/dir")), LuSVNNode::Path(local(wc + "/dir"))}) {
        SCOPED_TRACE(path->string());
        std::shared_ptr<const LuSVNRepositoryInfo> repository;
        const auto directory = LuSVNDirectory::directoryAtPath(path, LuSVNRevisionSpec::UNSPECIFIED(), &repository,
                                                               context);
        EXPECT_EQ(directory->name(), "dir");
        EXPECT_EQ(directory->URL()->string(), repositoryURL + "/dir");
        EXPECT_EQ(directory->revision(), 1);
        EXPECT_EQ(directory->author(), svnInfo(wc + "/dir", "last-changed-author"));
        ASSERT_NE(repository, nullptr);
        EXPECT_EQ(repository->UUID(), svnInfo(wc, "repos-uuid"));
        EXPECT_EQ(repository->rootURL()->string(), repositoryURL);
        EXPECT_EQ(repository->revision(), 2);
    }
    std::filesystem::create_directories(directory / "plain");
    struct Case {
        std::function<void()> call;
        std::string reason;
    };
    const auto unspecified = LuSVNRevisionSpec::UNSPECIFIED();
    const std::vector<Case> cases = {
        {[&] { LuSVNDirectory::directoryAtPath(url(repositoryURL + "/a.txt"), unspecified, context); },
         "Expected valid dir from LuSVNInfoFunc"},
        {[&] { LuSVNDirectory::directoryAtPath(local(wc + "/gone"), unspecified, context); },
         "'" + wc + "/gone' does not exist"},
        {[&] { LuSVNDirectory::directoryAtPath(local(directory / "plain"), unspecified, context); },
         "'" + std::string(directory / "plain") + "' is not a working copy"},
    };
    for (const Case& c : cases) {
        try {
            c.call();
            ADD_FAILURE() << "no exception, expected " << c.reason;
        } catch (const LuSVNException& exception) {
            EXPECT_EQ(exception.reason(), c.reason);
        }
    }
    EXPECT_THROW(LuSVNDirectory::directoryAtPath(url(repositoryURL + "/a.txt"), unspecified, context),
                 LuSVNInternalInconsistencyException);
}

TEST_F(FileServices, TheFactoryMakesTheNodeOfTheKind)
{
    ASSERT_EQ(svn({"lock", "-q", "-m", "mine", wc + "/a.txt"}).status, 0);
    const auto context = contextFor(nullptr);
    const auto directory = LuSVNNode::nodeAtPath(url(repositoryURL + "/dir"), LuSVNRevisionSpec::HEAD(), context);
    EXPECT_NE(std::dynamic_pointer_cast<LuSVNDirectory>(directory), nullptr);
    const auto file = LuSVNNode::nodeAtPath(local(wc + "/a.txt"), LuSVNRevisionSpec::UNSPECIFIED(), context);
    EXPECT_NE(std::dynamic_pointer_cast<LuSVNFile>(file), nullptr);
    EXPECT_TRUE(file->hasProperties());  // only the repository's listing tells
    const auto plain = LuSVNNode::nodeAtPath(local(wc + "/a.txt"), LuSVNRevisionSpec::UNSPECIFIED(), false, context);
    EXPECT_FALSE(plain->hasProperties());
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::nodeAtPath(nullptr, LuSVNRevisionSpec::HEAD(), context); }, "path != nil");
}

std::string contents(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

TEST_F(FileServices, ExportsAsSvnExportDoes)
{
    for (const char* backend : allBackends()) {
        SCOPED_TRACE(backend ? backend : "newest");
        const auto context = contextFor(backend);
        const std::string to = directory / "export";
        std::filesystem::remove_all(to);
        LuSVNExportOptions options;
        options.setRevision(LuSVNRevisionSpec::revisionWithNumber(1));
        options.setDepth(LuSVNDepthFiles);
        options.setEOLMarkers("CRLF");
        EXPECT_EQ(LuSVNNode::exportNodeAtPath(url(repositoryURL), local(to), options, context), 1);
        EXPECT_EQ(contents(to + "/a.txt"), "one $Revision: 1 $\r\n");
        EXPECT_TRUE(std::filesystem::exists(to + "/big.bin"));
        EXPECT_FALSE(std::filesystem::exists(to + "/dir"));

        // An existing target is kept unless overwriting is asked for.
        options.setDepth(LuSVNDepthInfinity);
        options.setRevision(LuSVNRevisionSpec::HEAD());
        EXPECT_THROW(LuSVNNode::exportNodeAtPath(url(repositoryURL), local(to), options, context), LuSVNException);
        options.setOverwriteExisting(true);
        options.setEOLMarkers("");
        LuSVNNode::exportNodeAtPath(url(repositoryURL), local(to), options, context);
        EXPECT_EQ(contents(to + "/a.txt"), "two $Revision: 2 $\n");
        EXPECT_EQ(contents(to + "/dir/sub/deep.txt"), "deep\n");
        EXPECT_FALSE(std::filesystem::exists(to + "/.svn"));

        options.setDepth(LuSVNDepthImmediates);
        if (backend && std::string(backend) == TESSERA_TEST_BUNDLE_1_4_6) {
            try {
                LuSVNNode::exportNodeAtPath(url(repositoryURL), local(to), options, context);
                ADD_FAILURE() << "depth immediates went through 1.4";
            } catch (const LuSVNGenericException& exception) {
                EXPECT_EQ(exception.reason(), "Invalid depth");
            }
        }
    }
    // A working copy exports its working files.
    tessera_test::writeFile(wc + "/a.txt", "changed\n");
    LuSVNExportOptions options;
    options.setRevision(LuSVNRevisionSpec::WORKING());
    LuSVNNode::exportNodeAtPath(local(wc), local(directory / "fromwc"), options, contextFor(nullptr));
    EXPECT_EQ(contents(directory / "fromwc/a.txt"), "changed\n");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::exportNodeAtPath(local(wc), nullptr, options, contextFor(nullptr)); }, "toPath != nil");
}

}  // namespace
