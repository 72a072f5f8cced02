// The status walk over a working copy with every status kind, against what
// the svn client reports of it with the matching options.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNUsernameProvider.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>

#include "StatusFixture.h"

namespace {

using namespace tessera_status_test;

struct OptionRow {
    const char* name;
    std::function<void(LuSVNStatusOptions&)> set;
    std::vector<std::string> svnArguments;
    bool remote = false;
};

const std::vector<OptionRow>& optionRows()
{
    static const std::vector<OptionRow> rows = {
        {"default", [](LuSVNStatusOptions&) {}, {}},
        {"includeNormalFiles", [](LuSVNStatusOptions& o) { o.setIncludeNormalFiles(true); }, {"-v"}},
        {"no ignores", [](LuSVNStatusOptions& o) { o.setRespectIgnoreProperties(false); }, {"--no-ignore"}},
        {"no externals",
         [](LuSVNStatusOptions& o) {
             o.setProcessExternals(false);
             o.setIncludeNormalFiles(true);
         },
         {"--ignore-externals", "-v"}},
        {"not recursive", [](LuSVNStatusOptions& o) { o.setRecursive(false); }, {"--depth", "immediates"}},
        {"not recursive, everything",
         [](LuSVNStatusOptions& o) {
             o.setRecursive(false);
             o.setIncludeNormalFiles(true);
             o.setRespectIgnoreProperties(false);
         },
         {"--depth", "immediates", "-v", "--no-ignore"}},
        {"repository", [](LuSVNStatusOptions& o) { o.setCompareAgainstRepository(true); }, {"-u"}, true},
        {"repository, includeNormalFiles",
         [](LuSVNStatusOptions& o) {
             o.setCompareAgainstRepository(true);
             o.setIncludeNormalFiles(true);
         },
         {"-u", "-v"},
         true},
    };
    return rows;
}

// With the svn client's choice of depth: not sticky.
LuSVNStatusOptions optionsOf(const std::function<void(LuSVNStatusOptions&)>& set)
{
    LuSVNStatusOptions options;
    options.setDepthIsSticky(false);
    set(options);
    return options;
}

class StatusWalk : public ::testing::Test {
protected:
    static void SetUpTestSuite() { fixture = new StatusFixture(); }
    static void TearDownTestSuite()
    {
        delete fixture;
        fixture = nullptr;
    }

    static std::shared_ptr<LuSVNContext> contextFor(const char* bundle)
    {
        const auto loader = LuSVNBundleLoader::sharedInstance();
        auto context = LuSVNContext::contextWithBundle(
            bundle ? loader->loadBundleAtPath(bundle) : loader->newestBundle(), {}, fixture->configDirectory());
        // The file:// repository asks for a user name.
        context->authenticationStack()->addProvider(std::make_shared<LuSVNUsernameProvider>());
        return context;
    }
    // What the records of svn_client_status2 can say: an unversioned
    // tree-conflict victim (treedel.txt) reads as none where svn says missing.
    static void readThroughOlderInterface(std::vector<ExpectedItem>& items)
    {
        for (auto& item : items)
            if (item.path == fixture->item("treedel.txt"))
                item.reports.back().item = "none";
    }
    static std::vector<ExpectedItem> svnReport(const std::vector<std::string>& arguments, const std::string& name = "")
    {
        const std::string path = name.empty() ? fixture->workingCopy() : fixture->item(name);
        return expectedItems(clientStatusReport(path, arguments));
    }
    // The conflicts' extra files, which count only when the walk keeps them.
    static std::set<std::string> conflictFiles()
    {
        return {fixture->item("conflict.txt.mine"), fixture->item("conflict.txt.r3"), fixture->item("conflict.txt.r4"),
                fixture->item("propconflict.txt.prej"), fixture->item("propdir/dir_conflicts.prej")};
    }
    // The last commit of each item that the repository changed, as svn info
    // of its URL says.
    static std::map<std::string, long> lastCommits(const std::vector<ExpectedItem>& items)
    {
        std::map<std::string, long> revisions;
        for (const auto& item : items) {
            if (!LuSVNStatusIsAbnormal(item.remoteKinds()))
                continue;
            const std::string url =
                fixture->repositoryURL() + "/trunk" + item.path.substr(fixture->workingCopy().size());
            const auto info = tessera_test::svn({"info", "--show-item", "last-changed-revision", url});
            EXPECT_EQ(info.status, 0) << info.output;
            revisions[item.path] = std::stol(info.output);
        }
        return revisions;
    }

    static StatusFixture* fixture;
};

StatusFixture* StatusWalk::fixture = nullptr;

// The records of svn_client_status5 carry a tree-conflict description only
// for victims missing from the working copy, so that flag is compared on the
// 1.6 interface alone (below).
TEST_F(StatusWalk, NewestBackendAgreesWithSvnForEachOptionSet)
{
    const auto context = contextFor(nullptr);
    for (const OptionRow& row : optionRows()) {
        SCOPED_TRACE(row.name);
        const auto expected = svnReport(row.svnArguments);
        const Walk result = walk(fixture->workingCopy(), optionsOf(row.set), context);
        // svn reports in hash order when it asks the repository.
        expectAgreement(result, expected,
                        KindsField | FlagsField | WorkingRevisionField | (row.remote ? RepositoryField : 0),
                        !row.remote, row.remote ? lastCommits(expected) : std::map<std::string, long>{});
        EXPECT_EQ(result.localChanges, expectedLocalChanges(expected, {}));
        EXPECT_EQ(result.remoteChanges, expectedRemoteChanges(expected));
    }
}

// Through svn_client_status2 the records have the layout of their release,
// which cannot carry everything svn shows:
//  - the tree-conflict description exists from 1.6 on (none on 1.4 and 1.5);
//  - an unversioned tree-conflict victim (treedel.txt) reads as none where
//    svn says missing;
//  - the entries give an item svn shows without working revision (added,
//    copied) one anyway: 0 for a plain addition, a number for a copy;
//  - svn_client_status2 applies the depth as sticky, so against the
//    repository it also reports what the depth-empty directory sparse has not
//    fetched, and sparse as changed there; svn leaves those out.
TEST_F(StatusWalk, OlderBackendsAgreeWithSvn)
{
    for (const char* bundle : {TESSERA_TEST_BUNDLE_1_6_23, TESSERA_TEST_BUNDLE_1_5_9, TESSERA_TEST_BUNDLE_1_4_6}) {
        const auto context = contextFor(bundle);
        const unsigned treeConflicts = bundle == std::string(TESSERA_TEST_BUNDLE_1_6_23) ? TreeConflictField : 0;
        for (const OptionRow& row : optionRows()) {
            SCOPED_TRACE(std::string(bundle) + ": " + row.name);
            auto expected = svnReport(row.svnArguments);
            readThroughOlderInterface(expected);
            Walk result = walk(fixture->workingCopy(), optionsOf(row.set), context);
            if (row.remote) {
                const auto sparse = [](const std::string& path) { return path.starts_with(fixture->item("sparse")); };
                std::erase_if(expected, [&](const ExpectedItem& item) { return sparse(item.path); });
                std::erase_if(result.nodes, [&](const auto& node) { return sparse(node->path()->string()); });
            }
            const unsigned fields = KindsField | FlagsField | treeConflicts | (row.remote ? RepositoryField : 0);
            expectAgreement(result, expected, fields, !row.remote,
                            row.remote ? lastCommits(expected) : std::map<std::string, long>{});
            for (const auto& item : expected) {
                if (const auto node = result.at(item.path); node && item.reports.back().revision >= 0) {
                    EXPECT_EQ(node->status()->workingRevision(), item.reports.back().revision) << item.path;
                }
            }
        }
    }
}

// Propagation fills every directory's aggregates with the kinds of the
// abnormal items below it, quiet kinds included; the predicates read them.
TEST_F(StatusWalk, PropagationAggregatesWhatSvnReportsBelowEachDirectory)
{
    const auto context = contextFor(nullptr);
    for (const OptionRow& row : optionRows()) {
        if (std::string(row.name).starts_with("not recursive"))
            continue;
        SCOPED_TRACE(row.name);
        LuSVNStatusOptions options = optionsOf(row.set);
        options.setPropagateStatusToAncestor(true);
        const auto expected = svnReport(row.svnArguments);
        const Walk result = walk(fixture->workingCopy(), options, context);
        expectAgreement(result, expected, KindsField, !row.remote);
        EXPECT_EQ(result.localChanges, expectedLocalChanges(expected, {}));
        ASSERT_NE(result.root, nullptr);
        EXPECT_EQ(result.root->path()->string(), fixture->workingCopy());
        std::size_t directories = 0;
        for (const auto& node : result.nodes) {
            const auto directory = std::dynamic_pointer_cast<LuSVNDirectory>(node);
            if (!directory)
                continue;
            ++directories;
            const std::string path = directory->path()->string();
            const std::uint32_t local = expectedAggregate(expected, path, false);
            const std::uint32_t remote = expectedAggregate(expected, path, true);
            EXPECT_EQ(directory->aggregateChildStatus(), local) << path;
            EXPECT_EQ(directory->aggregateRepositoryChildStatus(), remote) << path;
            expectPredicates(*directory, local, remote);
        }
        EXPECT_GE(directories, 2u);
    }
}

// Walks that must see the whole tree answer the root alone when the options
// are not recursive, with counts and aggregates of everything.
TEST_F(StatusWalk, RootOnlyWalksCountTheWholeTree)
{
    const auto context = contextFor(nullptr);
    const auto everything = svnReport({"-u", "-v"});
    const std::uint32_t local = expectedLocalChanges(everything, {});
    const std::uint32_t remote = expectedRemoteChanges(everything);
    ASSERT_GT(remote, 0u);
    struct Case {
        const char* name;
        bool propagate, compare, includeNormal;
    };
    for (const Case& c : {Case{"propagating", true, false, false}, Case{"comparing everything", false, true, true},
                          Case{"both", true, true, true}}) {
        SCOPED_TRACE(c.name);
        LuSVNStatusOptions options = optionsOf([](LuSVNStatusOptions&) {});
        options.setRecursive(false);
        options.setPropagateStatusToAncestor(c.propagate);
        options.setCompareAgainstRepository(c.compare);
        options.setIncludeNormalFiles(c.includeNormal);
        const Walk result = walk(fixture->workingCopy(), options, context);
        ASSERT_EQ(result.nodes.size(), 1u);
        EXPECT_EQ(result.nodes.front()->path()->string(), fixture->workingCopy());
        ASSERT_NE(result.root, nullptr);
        EXPECT_EQ(result.root->path()->string(), fixture->workingCopy());
        EXPECT_EQ(result.localChanges, local);
        EXPECT_EQ(result.remoteChanges, c.compare ? remote : 0u);
        if (c.propagate) {
            EXPECT_EQ(result.root->aggregateChildStatus(),
                      expectedAggregate(everything, fixture->workingCopy(), false));
            EXPECT_EQ(result.root->aggregateRepositoryChildStatus(),
                      c.compare ? expectedAggregate(everything, fixture->workingCopy(), true) : 0u);
        }
    }
}

// Without the conflicts' extra files the walk is svn's report less those
// files; the counts never include them.
TEST_F(StatusWalk, ConflictVersionFilesLeftOut)
{
    for (const char* bundle : {static_cast<const char*>(nullptr), TESSERA_TEST_BUNDLE_1_4_6}) {
        SCOPED_TRACE(bundle ? bundle : "newest");
        auto expected = svnReport({"-v"});
        if (bundle)
            readThroughOlderInterface(expected);
        const std::uint32_t count = expectedLocalChanges(expected, conflictFiles());
        std::erase_if(expected, [](const ExpectedItem& item) { return conflictFiles().contains(item.path); });
        ASSERT_EQ(expected.size() + conflictFiles().size(), svnReport({"-v"}).size());
        LuSVNStatusOptions options;
        options.setIncludeNormalFiles(true);
        options.setIncludeConflictVersionFiles(false);
        const Walk result = walk(fixture->workingCopy(), options, contextFor(bundle));
        expectAgreement(result, expected, KindsField, true);
        EXPECT_EQ(result.localChanges, count);
    }
}

// Compared against the repository with the walk's depth as sticky (the
// default), the depth-empty directory sparse reports what it never fetched,
// as the older interface always does; with svn's choice, none of it.
TEST_F(StatusWalk, StickyDepthReportsWhatSparseDirectoriesNeverFetched)
{
    const auto belowSparse = [](const Walk& result) {
        std::map<std::string, std::uint32_t> kinds;
        for (const auto& node : result.nodes)
            if (node->path()->string().starts_with(fixture->item("sparse") + "/"))
                kinds[node->path()->string()] = node->status()->repositoryTextStatus();
        return kinds;
    };
    LuSVNStatusOptions options;
    options.setCompareAgainstRepository(true);
    const auto sticky = belowSparse(walk(fixture->workingCopy(), options, contextFor(nullptr)));
    EXPECT_EQ(sticky, belowSparse(walk(fixture->workingCopy(), options, contextFor(TESSERA_TEST_BUNDLE_1_6_23))));
    EXPECT_EQ(sticky.size(), 3u);  // a.txt, inner, inner/b.txt
    for (const auto& [path, kind] : sticky)
        EXPECT_EQ(kind, LuSVNStatusAdded) << path;
    options.setDepthIsSticky(false);
    EXPECT_TRUE(belowSparse(walk(fixture->workingCopy(), options, contextFor(nullptr))).empty());
}

// The streaming walk hands over what the array holds, for every option set,
// with and without propagation and (in path order) the conflicts' extra
// files, on the newest and the oldest interface.
TEST_F(StatusWalk, StreamHandsOverWhatTheArrayHolds)
{
    for (const char* bundle : {static_cast<const char*>(nullptr), TESSERA_TEST_BUNDLE_1_4_6}) {
        const auto context = contextFor(bundle);
        for (const OptionRow& row : optionRows()) {
            for (const bool propagate : {false, true}) {
                for (const bool extraFiles : {true, false}) {
                    // Against the repository an extra file may come before
                    // its conflicted item, and then through the stream.
                    if (row.remote && !extraFiles)
                        continue;
                    SCOPED_TRACE(std::string(bundle ? bundle : "newest") + ": " + row.name +
                                 (propagate ? ", propagated" : "") + (extraFiles ? "" : ", no conflict files"));
                    LuSVNStatusOptions options = optionsOf(row.set);
                    options.setPropagateStatusToAncestor(propagate);
                    options.setIncludeConflictVersionFiles(extraFiles);
                    expectStreamAgreesWithArray(fixture->workingCopy(), options, context);
                }
            }
        }
    }
}

// An exception of the handler ends the walk and reaches the caller as it
// was thrown; no node follows it, and the context walks again afterwards.
TEST_F(StatusWalk, HandlerExceptionStopsTheStream)
{
    struct Enough {
        int calls;
    };
    for (const char* bundle : {static_cast<const char*>(nullptr), TESSERA_TEST_BUNDLE_1_4_6}) {
        SCOPED_TRACE(bundle ? bundle : "newest");
        const auto context = contextFor(bundle);
        LuSVNStatusOptions options;
        options.setIncludeNormalFiles(true);
        std::uint32_t local = 12345;
        int calls = 0;
        try {
            LuSVNDirectory::reportStatusForNodesInDirectoryAtPath(
                LuSVNLocalPath::pathWithString(fixture->workingCopy()), options,
                [&](const std::shared_ptr<LuSVNNode>&) {
                    if (++calls == 3)
                        throw Enough{calls};
                },
                &local, nullptr, context);
            ADD_FAILURE() << "no exception";
        } catch (const Enough& enough) {
            EXPECT_EQ(enough.calls, 3);
        }
        EXPECT_EQ(calls, 3);
        EXPECT_EQ(local, 12345u);
        EXPECT_FALSE(walk(fixture->workingCopy(), options, context).nodes.empty());
    }
    EXPECT_THROW(LuSVNDirectory::reportStatusForNodesInDirectoryAtPath(
                     LuSVNLocalPath::pathWithString(fixture->workingCopy()), LuSVNStatusOptions(), nullptr,
                     nullptr, nullptr, contextFor(nullptr)),
                 LuSVNInternalInconsistencyException);
}

// Moves of a file, a directory, a file inside the moved directory and two
// files that swapped places carry svn's moved-from and moved-to paths (svn
// shows them absolute for an absolute target); the older interface has no
// room for them.
TEST_F(StatusWalk, MovesAsSvnShowsThem)
{
    tessera_test::TemporaryDirectory directory;
    const std::string url = tessera_test::makeRepository(directory / "repo");
    ASSERT_EQ(tessera_test::svn({"mkdir", "-q", "-m", "tree", "--parents", url + "/a/b/c", url + "/d"}).status, 0);
    const std::string wc = directory / "wc";
    tessera_test::checkout(url, wc);
    for (const char* name : {"a/one", "a/two", "a/three", "a/b/in b"})
        tessera_test::writeFile(wc + "/" + name, name);
    const std::vector<std::vector<std::string>> commands = {
        {"add", "-q", wc + "/a/one", wc + "/a/two", wc + "/a/three", wc + "/a/b/in b"},
        {"commit", "-q", "-m", "files", wc},
        {"update", "-q", wc},
        {"move", "-q", wc + "/a/one", wc + "/d/one moved"},
        {"move", "-q", wc + "/a/b", wc + "/d/b"},
        {"move", "-q", wc + "/d/b/in b", wc + "/d/b/c/in c"},
        {"move", "-q", wc + "/a/two", wc + "/a/swap"},
        {"move", "-q", wc + "/a/three", wc + "/a/two"},
        {"move", "-q", wc + "/a/swap", wc + "/a/three"},
    };
    for (const auto& command : commands)
        ASSERT_EQ(tessera_test::svn(command).status, 0) << command.front();

    std::map<std::string, std::pair<std::string, std::string>> expected;
    for (const ClientEntry& entry : clientStatusReport(wc, {}))
        if (!entry.status.movedFrom.empty() || !entry.status.movedTo.empty())
            expected[entry.path] = {entry.status.movedFrom, entry.status.movedTo};
    ASSERT_EQ(expected.size(), 8u);  // both ends of one, b and in b; two and three
    for (const char* bundle : {static_cast<const char*>(nullptr), TESSERA_TEST_BUNDLE_1_6_23}) {
        SCOPED_TRACE(bundle ? bundle : "newest");
        std::map<std::string, std::pair<std::string, std::string>> moves;
        for (const auto& node : stream(wc, LuSVNStatusOptions(), contextFor(bundle)).nodes) {
            const LuSVNStatus& status = *node->status();
            if (status.movedFromPath() || status.movedToPath())
                moves[node->path()->string()] = {status.movedFromPath().value_or(""),
                                                 status.movedToPath().value_or("")};
        }
        EXPECT_EQ(moves, bundle ? decltype(moves){} : expected);
    }
    const auto node = LuSVNNode::nodeWithStatusAtPath(LuSVNLocalPath::pathWithString(wc + "/d/b"),
                                                      LuSVNStatusOptions(), contextFor(nullptr));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->status()->movedFromPath(), wc + "/a/b");
}

// A relative path is taken from the current directory: the same nodes, with
// absolute paths and the root found, as for the absolute path.
TEST_F(StatusWalk, RelativePathsAreTakenFromTheCurrentDirectory)
{
    const auto context = contextFor(nullptr);
    LuSVNStatusOptions options;
    options.setPropagateStatusToAncestor(true);
    const Walk absolute = walk(fixture->workingCopy(), options, context);
    const auto here = std::filesystem::current_path();
    std::filesystem::current_path(fixture->item("sub"));
    for (const char* relative : {"..", "../", "../sub/..", "./.."}) {
        SCOPED_TRACE(relative);
        const Walk result = walk(relative, options, context);
        ASSERT_EQ(result.nodes.size(), absolute.nodes.size());
        for (std::size_t i = 0; i < result.nodes.size(); ++i)
            EXPECT_EQ(result.nodes[i]->path()->string(), absolute.nodes[i]->path()->string());
        ASSERT_NE(result.root, nullptr);
        EXPECT_EQ(result.root->aggregateChildStatus(), absolute.root->aggregateChildStatus());
        const auto directory = LuSVNDirectory::statusForDirectoryAtPath(LuSVNLocalPath::pathWithString(relative),
                                                                        LuSVNStatusOptions(), context);
        ASSERT_NE(directory, nullptr);
        EXPECT_EQ(directory->path()->string(), fixture->workingCopy());
    }
    const auto file = LuSVNNode::nodeWithStatusAtPath(LuSVNLocalPath::pathWithString("file.txt"),
                                                      LuSVNStatusOptions(), context);
    std::filesystem::current_path(here);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->path()->string(), fixture->item("sub/file.txt"));
}

// The single-item queries agree with svn status --depth empty of the item.
// The external is external as in a walk (svn reports it from inside alone).
TEST_F(StatusWalk, SingleItemsAgreeWithSvn)
{
    const auto context = contextFor(nullptr);
    const LuSVNStatusOptions options;
    for (const char* name : {"modified.txt", "propmod.txt", "locked.txt", "copied.txt", "missing.txt", "replaced.txt",
                             "unversioned.txt", "ignored.o", "conflict.txt", "sub", "sparse", "ext"}) {
        SCOPED_TRACE(name);
        auto expected = expectedItems(clientStatusReport(fixture->item(name), {"-v", "--depth", "empty"}),
                                      {fixture->item("ext")});
        const auto node = LuSVNNode::nodeWithStatusAtPath(LuSVNLocalPath::pathWithString(fixture->item(name)),
                                                          options, context);
        Walk single;
        if (node)
            single.nodes.push_back(node);
        expectAgreement(single, expected, KindsField | FlagsField | WorkingRevisionField, true);
    }
    // Subversion hands over a record of kind none for a path that does not
    // exist, which the svn client does not print.
    ASSERT_TRUE(clientStatusReport(fixture->item("no-such-file"), {"-v", "--depth", "empty"}).empty());
    const auto absent = LuSVNLocalPath::pathWithString(fixture->item("no-such-file"));
    const auto nothing = LuSVNNode::nodeWithStatusAtPath(absent, options, context);
    if (nothing) {
        EXPECT_EQ(nothing->status()->textStatus(), LuSVNStatusNone);
        EXPECT_EQ(nothing->status()->propertyStatus(), LuSVNStatusNone);
    }

    // The directory's own status, and the aggregates of the walk below it.
    for (const char* name : {"", "sub", "sparse"}) {
        SCOPED_TRACE(name);
        const std::string path = name[0] ? fixture->item(name) : fixture->workingCopy();
        const auto directory =
            LuSVNDirectory::statusForDirectoryAtPath(LuSVNLocalPath::pathWithString(path), options, context);
        if (!directory) {
            ADD_FAILURE() << "no status for the directory";
            continue;
        }
        Walk single;
        single.nodes.push_back(directory);
        expectAgreement(single, svnReport({"-v", "--depth", "empty"}, name),
                        KindsField | FlagsField | WorkingRevisionField, true);
        // Every item below, quiet ones included.
        const auto below = svnReport({}, name);
        EXPECT_EQ(directory->aggregateChildStatus(), expectedAggregate(below, path, false, true));
        expectPredicates(*directory, expectedAggregate(below, path, false, true), 0);
        ASSERT_NE(directory->URL(), nullptr);
        const auto info = tessera_test::svn({"info", "--show-item", "url", path});
        EXPECT_EQ(directory->URL()->string() + "\n", info.output);
    }
}

// A directory that is not a working copy raises the exception of
// Subversion's error, leaves the out-arguments and the directory alone and
// the backend stack empty.
TEST_F(StatusWalk, NotAWorkingCopy)
{
    tessera_test::TemporaryDirectory plain;
    tessera_test::writeFile(plain / "loose.txt", "loose\n");
    const auto local = LuSVNLocalPath::pathWithString(plain.path());
    for (const char* bundle : {static_cast<const char*>(nullptr), TESSERA_TEST_BUNDLE_1_4_6}) {
        SCOPED_TRACE(bundle ? bundle : "newest");
        const auto context = contextFor(bundle);
        std::shared_ptr<LuSVNDirectory> root;
        std::uint32_t localCount = 7, remoteCount = 7;
        const std::pair<const char*, std::function<void()>> calls[] = {
            {"walk",
             [&] {
                 LuSVNDirectory::statusForNodesInDirectoryAtPath(local, LuSVNStatusOptions(), &root, &localCount,
                                                                 &remoteCount, context);
             }},
            {"directory", [&] { LuSVNDirectory::statusForDirectoryAtPath(local, LuSVNStatusOptions(), context); }},
            {"node", [&] { LuSVNNode::nodeWithStatusAtPath(local, LuSVNStatusOptions(), context); }},
        };
        for (const auto& [name, call] : calls) {
            SCOPED_TRACE(name);
            EXPECT_THROW(call(), LuSVNNotWorkingCopyException);
            EXPECT_THROW(LuSVNBundleCurrent(), LuSVNGenericException);
        }
        EXPECT_EQ(root, nullptr);
        EXPECT_EQ(localCount, 7u);
        EXPECT_EQ(remoteCount, 7u);
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(plain.path()))
            names.push_back(entry.path().filename().string());
        EXPECT_EQ(names, std::vector<std::string>{"loose.txt"});
    }
}

TEST_F(StatusWalk, ParameterAssertions)
{
    const auto context = contextFor(nullptr);
    const auto path = LuSVNLocalPath::pathWithString(fixture->workingCopy());
    const LuSVNStatusOptions options;
    for (const bool nullPath : {true, false}) {
        const auto p = nullPath ? nullptr : path;
        const auto c = nullPath ? context : nullptr;
        const std::string condition = nullPath ? "path != nil" : "context != nil";
        tessera_test::expectParameterAssertion(
            [&] { LuSVNDirectory::statusForNodesInDirectoryAtPath(p, options, nullptr, nullptr, nullptr, c); },
            condition);
        tessera_test::expectParameterAssertion([&] { LuSVNDirectory::statusForNodesInDirectoryAtPath(p, options, c); },
                                               condition);
        tessera_test::expectParameterAssertion([&] { LuSVNDirectory::statusForDirectoryAtPath(p, options, c); },
                                               condition);
        tessera_test::expectParameterAssertion([&] { LuSVNNode::nodeWithStatusAtPath(p, options, c); }, condition);
    }
}

}  // namespace

// A context kept in a static goes after the thread's own objects at exit,
// and still needs its backend pushed then.
TEST_F(StatusWalk, ContextInAStaticSurvivesTheExitAfterAWalk)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            static std::shared_ptr<LuSVNContext> kept;
            kept = contextFor(nullptr);
            LuSVNDirectory::statusForNodesInDirectoryAtPath(LuSVNLocalPath::pathWithString(fixture->workingCopy()),
                                                            LuSVNStatusOptions(), kept);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

namespace {

class DeletedTrees : public ::testing::Test {
protected:
    static void SetUpTestSuite() { fixture = new DeletionFixture(); }
    static void TearDownTestSuite()
    {
        delete fixture;
        fixture = nullptr;
    }
    static std::shared_ptr<LuSVNContext> context()
    {
        return LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle(), {},
                                               fixture->configDirectory());
    }

    static DeletionFixture* fixture;
};

DeletionFixture* DeletedTrees::fixture = nullptr;

// Deleted items show the working revision and last change of what they
// delete, replaced ones the revision they replace (none for a copy) and their
// own last change, as svn status -v does; for trees of every size, from the
// working copy's root and from each tree's own root.
TEST_F(DeletedTrees, WorkingRevisionAndLastChangeAgreeWithSvn)
{
    LuSVNStatusOptions options;
    options.setIncludeNormalFiles(true);
    const unsigned fields = KindsField | FlagsField | WorkingRevisionField | LastChangeField;
    for (const char* name : {"", "d1", "d3", "d100", "d1000", "nested", "nested/a", "rep", "rh"}) {
        SCOPED_TRACE(name);
        const std::string path = name[0] ? fixture->item(name) : fixture->workingCopy();
        const auto expected = expectedItems(clientStatusReport(path, {"-v"}));
        expectAgreement(walk(path, options, context()), expected, fields, true);
    }
    // The changed items alone, as svn status without -v, keep their values.
    const auto changed = expectedItems(clientStatusReport(fixture->workingCopy(), {}));
    const Walk result = walk(fixture->workingCopy(), LuSVNStatusOptions(), context());
    expectAgreement(result, changed, KindsField | WorkingRevisionField, true);
    EXPECT_EQ(result.localChanges, expectedLocalChanges(changed, {}));
}

// One older-interface call per deleted or replaced tree, whatever its size.
TEST_F(DeletedTrees, OneExtraCallPerDeletedTree)
{
    for (const auto& [name, calls] : std::vector<std::pair<std::string, std::size_t>>{
             {"d1", 1}, {"d3", 1}, {"d100", 1}, {"d1000", 1}, {"nested", 2}, {"", 8}}) {
        SCOPED_TRACE(name);
        std::size_t olderCalls = 0;
        const auto nodes =
            libraryStatus(name.empty() ? fixture->workingCopy() : fixture->item(name), context(), &olderCalls);
        EXPECT_GT(nodes.size(), calls);
        EXPECT_EQ(olderCalls, calls);
    }
}

}  // namespace

namespace {

// Sets the format that a working copy's wc.db declares (SQLite keeps the user
// version big-endian at offset 60 of the file).
void setDatabaseFormat(const std::string& workingCopy, std::uint32_t format)
{
    std::fstream database(workingCopy + "/.svn/wc.db", std::ios::in | std::ios::out | std::ios::binary);
    database.seekp(60);
    const char bytes[] = {static_cast<char>(format >> 24), static_cast<char>(format >> 16),
                          static_cast<char>(format >> 8), static_cast<char>(format)};
    database.write(bytes, 4);
    ASSERT_TRUE(database.good());
}

// Working copies that Subversion cannot read: their own errors arrive as
// exceptions, an internal assertion of Subversion included, and nothing
// aborts or crashes the process.
TEST(UnreadableWorkingCopies, RaiseSubversionsErrors)
{
    tessera_test::TemporaryDirectory directory;
    const std::string original = directory / "wc";
    tessera_test::checkout(tessera_test::makeRepository(directory / "repo"), original);
    struct Case {
        const char* name;
        std::function<void(const std::string&)> damage;
        int status;  // of the exception; 0 for "not a working copy"
        const char* reasonPart;
    };
    const Case cases[] = {
        {"database of format 0", [](const std::string& wc) { setDatabaseFormat(wc, 0); }, 235000, "format >= 1"},
        {"too old", [](const std::string& wc) { setDatabaseFormat(wc, 10); }, 155036, "upgrade"},
        {"too new", [](const std::string& wc) { setDatabaseFormat(wc, 99); }, 155021, "too old"},
        {"format file without database",
         [](const std::string& wc) {
             std::filesystem::remove_all(wc + "/.svn");
             std::filesystem::create_directory(wc + "/.svn");
             tessera_test::writeFile(wc + "/.svn/entries", "31\n");
         },
         0, "is not a working copy"},
    };
    const auto context = LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle());
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string wc = directory / c.name;
        std::filesystem::copy(original, wc, std::filesystem::copy_options::recursive);
        c.damage(wc);
        const auto expectRaised = [&](const std::function<void()>& call) {
            try {
                call();
                ADD_FAILURE() << "nothing raised";
            } catch (const LuSVNException& e) {
                EXPECT_EQ(e.status(), c.status ? c.status : 20014) << e.reason();
                EXPECT_NE(e.reason().find(c.reasonPart), std::string::npos) << e.reason();
                if (c.status == 155021 || c.status == 0) {
                    EXPECT_EQ(e.name(), c.status ? "LuSVNUnsupportedWorkingCopyFormatException"
                                                 : "LuSVNNotWorkingCopyException");
                }
            }
        };
        if (c.status == 235000)
            expectRaised([&] { LuSVNNode::formatVersionForWorkingCopyAtPath(wc); });
        else
            EXPECT_EQ(LuSVNNode::formatVersionForWorkingCopyAtPath(wc), 0);
        expectRaised([&] { LuSVNNode::versionForWorkingCopyAtPath(wc); });
        // Subversion's walk of the damaged area is the known crash.
        if (c.status != 0)
            expectRaised([&] {
                LuSVNDirectory::statusForNodesInDirectoryAtPath(LuSVNLocalPath::pathWithString(wc),
                                                                LuSVNStatusOptions(), context);
            });
    }
}

}  // namespace
