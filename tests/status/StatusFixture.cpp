#include "StatusFixture.h"

#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNLocalPath.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "LuSVNBackendFrame.h"
#include "LuSVNStatus+ClientStatus.h"

namespace tessera_status_test {

namespace {

using tessera_test::svn;
using tessera_test::writeFile;

void svnOrThrow(const std::vector<std::string>& arguments)
{
    const tessera_test::CommandResult result = svn(arguments);
    if (result.status != 0)
        throw std::runtime_error("svn " + arguments.front() + " failed: " + result.output);
}

void makeTree(const std::string& root, const std::vector<std::pair<std::string, std::string>>& files)
{
    for (const auto& [name, contents] : files) {
        std::filesystem::create_directories(std::filesystem::path(root + "/" + name).parent_path());
        writeFile(root + "/" + name, contents);
    }
}

}  // namespace

StatusFixture::StatusFixture()
{
    url_ = tessera_test::makeRepository(directory_ / "repo");
    const std::string tree = directory_ / "tree";
    makeTree(tree, {{"normal.txt", "normal\n"},       {"modified.txt", "modified\n"},
                    {"propmod.txt", "propmod\n"},     {"deleted.txt", "deleted\n"},
                    {"replaced.txt", "replaced\n"},   {"missing.txt", "missing\n"},
                    {"obstructed.txt", "obstructed\n"}, {"conflict.txt", "one\ntwo\nthree\n"},
                    {"propconflict.txt", "prop\n"},   {"treeedit.txt", "tree\n"},
                    {"treedel.txt", "tree\n"},        {"locked.txt", "locked\n"},
                    {"outdated.txt", "outdated\n"},
                    {"sub/file.txt", "sub\n"},        {"sparse/a.txt", "a\n"},
                    {"propdir/inside.txt", "inside\n"},
                    {"sparse/inner/b.txt", "b\n"}});
    makeTree(directory_ / "lib", {{"libfile.txt", "lib\n"}});
    svnOrThrow({"import", "-q", "-m", "import trunk", tree, url_ + "/trunk"});
    svnOrThrow({"import", "-q", "-m", "import lib", directory_ / "lib", url_ + "/lib"});
    svnOrThrow({"copy", "-q", "-m", "make branch", url_ + "/trunk", url_ + "/branch"});

    const std::string wc = workingCopy();
    const std::string other = directory_ / "other";
    tessera_test::checkout(url_ + "/trunk", wc);
    tessera_test::checkout(url_ + "/trunk", other);

    // The conflicting side, committed from the other working copy.
    writeFile(other + "/conflict.txt", "one\ntheirs\nthree\n");
    svnOrThrow({"propset", "-q", "colour", "theirs", other + "/propconflict.txt"});
    svnOrThrow({"propset", "-q", "colour", "theirs", other + "/propdir"});
    svnOrThrow({"rm", "-q", other + "/treeedit.txt", other + "/treedel.txt"});
    svnOrThrow({"propset", "-q", "svn:externals", "^/lib ext", other});
    svnOrThrow({"commit", "-q", "-m", "their changes", other});

    svnOrThrow({"switch", "-q", "^/branch/sub", item("sub")});
    writeFile(item("conflict.txt"), "one\nmine\nthree\n");
    svnOrThrow({"propset", "-q", "colour", "mine", item("propconflict.txt")});
    svnOrThrow({"propset", "-q", "colour", "mine", item("propdir")});
    writeFile(item("treeedit.txt"), "edited\n");
    svnOrThrow({"rm", "-q", item("treedel.txt")});
    svnOrThrow({"update", "-q", "--accept", "postpone", wc});

    writeFile(item("modified.txt"), "changed\n");
    svnOrThrow({"propset", "-q", "colour", "blue", item("propmod.txt")});
    writeFile(item("added.txt"), "added\n");
    svnOrThrow({"add", "-q", item("added.txt")});
    svnOrThrow({"copy", "-q", item("normal.txt"), item("copied.txt")});
    svnOrThrow({"rm", "-q", item("deleted.txt")});
    svnOrThrow({"rm", "-q", item("replaced.txt")});
    writeFile(item("replaced.txt"), "new\n");
    svnOrThrow({"add", "-q", item("replaced.txt")});
    std::filesystem::remove(item("missing.txt"));
    std::filesystem::remove(item("obstructed.txt"));
    std::filesystem::create_directory(item("obstructed.txt"));
    writeFile(item("unversioned.txt"), "unversioned\n");
    svnOrThrow({"propset", "-q", "svn:ignore", "*.o", wc});
    writeFile(item("ignored.o"), "ignored\n");
    svnOrThrow({"lock", "-q", item("locked.txt")});
    svnOrThrow({"update", "-q", "--set-depth", "empty", item("sparse")});

    // Revision 5, which the working copy has not seen.
    svnOrThrow({"update", "-q", "--ignore-externals", other});
    writeFile(other + "/outdated.txt", "newer\n");
    writeFile(other + "/incoming.txt", "incoming\n");
    svnOrThrow({"add", "-q", other + "/incoming.txt"});
    svnOrThrow({"commit", "-q", "-m", "later changes", other});
}

NestedFixture::NestedFixture()
{
    url_ = tessera_test::makeRepository(directory_ / "repo");
    const std::string tree = directory_ / "tree";
    makeTree(tree, {{"top/a/b/deep.txt", "deep\n"},
                    {"top/a/side/s.txt", "side\n"},
                    {"top/t.txt", "t\n"},
                    {"deep/er/x.txt", "x\n"}});
    makeTree(directory_ / "lib", {{"libfile.txt", "lib\n"}});
    svnOrThrow({"import", "-q", "-m", "import trunk", tree, url_ + "/trunk"});
    svnOrThrow({"import", "-q", "-m", "import lib", directory_ / "lib", url_ + "/lib"});
    const std::string wc = workingCopy();
    tessera_test::checkout(url_ + "/trunk", wc);
    svnOrThrow({"propset", "-q", "svn:externals", "^/lib deep/er/ext\n^/lib nv/w/ext2", wc});
    svnOrThrow({"commit", "-q", "-m", "externals", wc});
    svnOrThrow({"update", "-q", wc});
    writeFile(item("top/a/b/deep.txt"), "changed\n");
    writeFile(item("top/a/u.txt"), "unversioned\n");
    svnOrThrow({"propset", "-q", "colour", "green", item("top")});
}

DeletionFixture::DeletionFixture()
{
    url_ = tessera_test::makeRepository(directory_ / "repo");
    const std::string tree = directory_ / "tree";
    std::vector<std::pair<std::string, std::string>> files = {
        {"nested/a/b/f", "f\n"}, {"nested/a/g", "g\n"},   {"nested/keep/k", "k\n"}, {"nested/keep/del/f", "f\n"},
        {"rep/f0", "0\n"},       {"rep/f1", "1\n"},       {"rh/old", "old\n"},     {"src/s0", "s0\n"},
        {"src/s1", "s1\n"}};
    for (const int size : {1, 3, 100, 1000})
        for (int i = 0; i < size; ++i)
            files.emplace_back("d" + std::to_string(size) + "/f" + std::to_string(i), std::to_string(i) + "\n");
    makeTree(tree, files);
    svnOrThrow({"import", "-q", "-m", "import trunk", tree, url_ + "/trunk"});

    const std::string wc = workingCopy();
    tessera_test::checkout(url_ + "/trunk", wc);
    writeFile(item("d3/f1"), "changed\n");
    writeFile(item("rep/f1"), "changed\n");
    svnOrThrow({"commit", "-q", "--username", "second", "-m", "second", wc});
    svnOrThrow({"update", "-q", wc});
    svnOrThrow({"update", "-q", "-r", "1", item("d3/f2")});

    svnOrThrow({"rm", "-q", item("d1"), item("d3"), item("d100"), item("d1000"), item("nested/keep/del")});
    svnOrThrow({"rm", "-q", item("nested/a/b")});
    svnOrThrow({"rm", "-q", item("nested/a")});
    svnOrThrow({"rm", "-q", item("rep")});
    std::filesystem::create_directory(item("rep"));
    writeFile(item("rep/f1"), "again\n");
    svnOrThrow({"add", "-q", item("rep")});
    svnOrThrow({"rm", "-q", item("rh")});
    svnOrThrow({"copy", "-q", item("src"), item("rh")});
}

std::vector<ClientEntry> clientStatusReport(const std::string& path, const std::vector<std::string>& arguments)
{
    std::vector<std::string> command = {"status", "--xml"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    command.push_back(path);
    const tessera_test::CommandResult result = svn(command);
    if (result.status != 0)
        throw std::runtime_error("svn status failed: " + result.output);
    static const std::regex entry(
        R"re(<entry\s+path="([^"]*)">\s*<wc-status([^>]*)>([\s\S]*?)</wc-status>\s*(<repos-status([^>]*)>)?)re");
    static const std::regex attribute(R"re(([\w-]+)="([^"]*)")re");
    std::vector<ClientEntry> entries;
    for (std::sregex_iterator match(result.output.begin(), result.output.end(), entry), end; match != end; ++match) {
        ClientEntry item{(*match)[1], {}};
        ClientStatus& status = item.status;
        const std::string attributes = (*match)[2];
        for (std::sregex_iterator a(attributes.begin(), attributes.end(), attribute); a != end; ++a) {
            const std::string name = (*a)[1], value = (*a)[2];
            if (name == "item")
                status.item = value;
            else if (name == "props")
                status.props = value;
            else if (name == "copied")
                status.copied = value == "true";
            else if (name == "switched")
                status.switched = value == "true";
            else if (name == "tree-conflicted")
                status.treeConflicted = value == "true";
            else if (name == "revision")
                status.revision = std::stol(value);
            else if (name == "moved-from")
                status.movedFrom = value;
            else if (name == "moved-to")
                status.movedTo = value;
        }
        const std::string inner = (*match)[3];
        status.locked = inner.find("<lock>") != std::string::npos;
        static const std::regex commit(R"re(<commit\s+revision="(\d+)">)re");
        static const std::regex author("<author>([^<]*)</author>");
        static const std::regex date("<date>([^<]*)</date>");
        std::smatch found;
        if (std::regex_search(inner, found, commit))
            status.commitRevision = std::stol(found[1]);
        if (std::regex_search(inner, found, author))
            status.commitAuthor = found[1];
        if (std::regex_search(inner, found, date))
            status.commitDate = found[1];
        const std::string repository = (*match)[5];
        for (std::sregex_iterator a(repository.begin(), repository.end(), attribute); a != end; ++a) {
            if ((*a)[1] == "item")
                status.reposItem = (*a)[2];
            else if ((*a)[1] == "props")
                status.reposProps = (*a)[2];
        }
        entries.push_back(std::move(item));
    }
    return entries;
}

std::map<std::string, ClientStatus> clientStatus(const std::string& path)
{
    std::map<std::string, ClientStatus> items;
    for (auto& entry : clientStatusReport(path, {"-v", "--no-ignore"}))
        items[entry.path] = std::move(entry.status);
    return items;
}

LuSVNStatusKind kindNamed(const std::string& name)
{
    static const std::map<std::string, LuSVNStatusKind> kinds = {
        {"none", LuSVNStatusNone},         {"unversioned", LuSVNStatusUnversioned},
        {"normal", LuSVNStatusNormal},     {"added", LuSVNStatusAdded},
        {"missing", LuSVNStatusMissing},   {"deleted", LuSVNStatusDeleted},
        {"replaced", LuSVNStatusReplaced}, {"modified", LuSVNStatusModified},
        {"merged", LuSVNStatusMerged},     {"conflicted", LuSVNStatusConflicted},
        {"ignored", LuSVNStatusIgnored},   {"obstructed", LuSVNStatusObstructed},
        {"external", LuSVNStatusExternal}, {"incomplete", LuSVNStatusIncomplete},
    };
    const auto kind = kinds.find(name);
    if (kind == kinds.end())
        throw std::runtime_error("unknown status word " + name);
    return kind->second;
}

namespace {

struct Collector {
    const std::shared_ptr<LuSVNContext>* context;
    std::map<std::string, std::shared_ptr<LuSVNNode>>* nodes;
    std::exception_ptr pending;
    LuSVNReplacedItems replaced;

    void add(const char* path, const svn_wc_status2_t* record)
    {
        (*nodes)[path] = LuSVNNode::nodeAtPath(LuSVNLocalPath::pathWithString(path), record, *context);
    }
};

svn_error_t* collectClientStatus(void* baton, const char* path, const svn_client_status_t* status, apr_pool_t* pool)
{
    auto* collector = static_cast<Collector*>(baton);
    return LuSVNGuardCallback(collector->pending, [&] {
        return LuSVNClientStatusToWCStatus((*collector->context)->ctx(), path, status, pool, collector->replaced,
                                           [&](const char* itemPath, svn_wc_status2_t* record) {
                                               collector->add(itemPath, record);
                                           });
    });
}

svn_error_t* collectStatus3(void* baton, const char* path, svn_wc_status2_t* status, apr_pool_t*)
{
    auto* collector = static_cast<Collector*>(baton);
    return LuSVNGuardCallback(collector->pending, [&]() -> svn_error_t* {
        collector->add(path, status);
        return nullptr;
    });
}

void collectStatus2(void* baton, const char* path, svn_wc_status2_t* status)
{
    auto* collector = static_cast<Collector*>(baton);
    try {
        collector->add(path, status);
    } catch (...) {
        collector->pending = std::current_exception();
    }
}

}  // namespace

std::map<std::string, std::shared_ptr<LuSVNNode>> libraryStatus(const std::string& path,
                                                                const std::shared_ptr<LuSVNContext>& context,
                                                                std::size_t* olderCalls)
{
    std::map<std::string, std::shared_ptr<LuSVNNode>> nodes;
    Collector collector{&context, &nodes, nullptr, {}};
    const LuSVNVersion version = *context->bundleVersion();
    LuSVNBackendFrame frame(context->bundle());
    const char* target = LuSVNLocalPath::pathWithString(path)->SVNRepresentationInPool(frame.pool());
    const svn_opt_revision_t revision = LuSVNRevision::UNSPECIFIED()->SVNRevision();
    svn_error_t* error = nullptr;
    if (version.isGreaterThanOrEqualTo(LuSVNVersion::version1_7()))
        error = LuSVNEntry<70>()(nullptr, context->ctx(), target, &revision, svn_depth_infinity, true, false, true,
                                 false, true, nullptr, collectClientStatus, &collector, frame.pool());
    else if (version.isGreaterThanOrEqualTo(LuSVNVersion::version1_6()))
        error = LuSVNEntry<69>()(nullptr, target, &revision, collectStatus3, &collector, svn_depth_infinity, true,
                                 false, true, false, nullptr, context->ctx(), frame.pool());
    else
        error = LuSVNEntry<68>()(nullptr, target, &revision, collectStatus2, &collector, true, true, false, true,
                                 false, context->ctx(), frame.pool());
    if (collector.pending)
        LuSVNRethrowPending(collector.pending, error);
    context->throwIfError(error);
    if (olderCalls)
        *olderCalls = collector.replaced.olderCalls;
    return nodes;
}

}  // namespace tessera_status_test

namespace tessera_status_test {

std::shared_ptr<LuSVNNode> Walk::at(const std::string& path) const
{
    for (const auto& node : nodes)
        if (node->path()->string() == path)
            return node;
    return nullptr;
}

Walk walk(const std::string& path, const LuSVNStatusOptions& options, const std::shared_ptr<LuSVNContext>& context)
{
    Walk result;
    result.nodes = LuSVNDirectory::statusForNodesInDirectoryAtPath(LuSVNLocalPath::pathWithString(path), options,
                                                                   &result.root, &result.localChanges,
                                                                   &result.remoteChanges, context);
    return result;
}

Walk stream(const std::string& path, const LuSVNStatusOptions& options, const std::shared_ptr<LuSVNContext>& context)
{
    Walk result;
    LuSVNDirectory::reportStatusForNodesInDirectoryAtPath(
        LuSVNLocalPath::pathWithString(path), options,
        [&](const std::shared_ptr<LuSVNNode>& node) {
            if (node->isDirectory() && node->path()->string() == LuSVNLocalPath::pathWithString(path)->string())
                result.root = std::static_pointer_cast<LuSVNDirectory>(node);
            result.nodes.push_back(node);
        },
        &result.localChanges, &result.remoteChanges, context);
    return result;
}

LuSVNNode::Nodes keptOnce(const LuSVNNode::Nodes& streamed)
{
    LuSVNNode::Nodes kept;
    for (const auto& node : streamed) {
        if (node->isDirectory())
            std::erase_if(kept, [&](const std::shared_ptr<LuSVNNode>& earlier) {
                return earlier->isDirectory() && earlier->path()->string() == node->path()->string();
            });
        kept.push_back(node);
    }
    return kept;
}

void expectStreamAgreesWithArray(const std::string& path, const LuSVNStatusOptions& options,
                                 const std::shared_ptr<LuSVNContext>& context)
{
    const Walk array = walk(path, options, context);
    const Walk streamed = stream(path, options, context);
    const auto describe = [](const LuSVNNode::Nodes& nodes) {
        std::vector<std::string> lines;
        for (const auto& node : nodes) {
            std::string line = node->path()->string() + " " + std::to_string(node->status()->textStatus()) + " " +
                               std::to_string(node->status()->propertyStatus());
            if (const auto directory = std::dynamic_pointer_cast<LuSVNDirectory>(node))
                line += " [" + std::to_string(directory->aggregateChildStatus()) + " " +
                        std::to_string(directory->aggregateRepositoryChildStatus()) + "]";
            lines.push_back(line);
        }
        return lines;
    };
    auto expected = describe(array.nodes);
    auto actual = describe(keptOnce(streamed.nodes));
    // Against the repository the order follows its answer, which may differ
    // from one run to the next.
    if (options.compareAgainstRepository()) {
        std::sort(expected.begin(), expected.end());
        std::sort(actual.begin(), actual.end());
    }
    EXPECT_EQ(actual, expected);
    EXPECT_EQ(streamed.localChanges, array.localChanges);
    EXPECT_EQ(streamed.remoteChanges, array.remoteChanges);
    ASSERT_EQ(streamed.root == nullptr, array.root == nullptr);
    if (array.root) {
        EXPECT_EQ(streamed.root->aggregateChildStatus(), array.root->aggregateChildStatus());
    }
}

LuSVNStatusKind repositoryKindNamed(const std::string& name)
{
    const LuSVNStatusKind kind = kindNamed(name);
    return kind == LuSVNStatusNone ? LuSVNStatusNormal : kind;
}

LuSVNStatusKind ExpectedItem::text() const
{
    return external ? LuSVNStatusExternal : kindNamed(reports.back().item);
}

std::uint32_t ExpectedItem::localKinds() const
{
    return text() | kindNamed(reports.back().props);
}

std::uint32_t ExpectedItem::remoteKinds() const
{
    return repositoryKindNamed(reports.back().reposItem) | repositoryKindNamed(reports.back().reposProps);
}

std::vector<ExpectedItem> expectedItems(const std::vector<ClientEntry>& entries, const std::set<std::string>& externals)
{
    std::vector<ExpectedItem> items;
    for (const auto& entry : entries) {
        // A path reported again moves to its newer report.
        const auto earlier = std::find_if(items.begin(), items.end(),
                                          [&](const ExpectedItem& item) { return item.path == entry.path; });
        ExpectedItem item{entry.path, {}, externals.contains(entry.path)};
        if (earlier != items.end()) {
            item = std::move(*earlier);
            items.erase(earlier);
            item.external = true;
        }
        item.reports.push_back(entry.status);
        item.external = item.external || entry.status.item == "external";
        items.push_back(std::move(item));
    }
    return items;
}

namespace {

std::string statusDifferences(const LuSVNNode& node, const ClientStatus& client, LuSVNStatusKind text,
                              unsigned fields, std::optional<long> outOfDate)
{
    if (!node.status())
        return " no status";
    const LuSVNStatus& status = *node.status();
    std::ostringstream out;
    const auto differ = [&](const char* what, long actual, long expected) {
        if (actual != expected)
            out << " " << what << " " << actual << " (svn " << expected << ")";
    };
    if (fields & KindsField) {
        differ("text", status.textStatus(), text);
        differ("props", status.propertyStatus(), kindNamed(client.props));
    }
    if (fields & FlagsField) {
        differ("copied", status.isCopied(), client.copied);
        differ("switched", status.isSwitched(), client.switched);
        differ("lock", node.lock() != nullptr, client.locked);
    }
    if (fields & TreeConflictField)
        differ("tree conflict", status.treeConflict() != nullptr, client.treeConflicted);
    if (fields & WorkingRevisionField)
        differ("revision", status.workingRevision(), client.revision);
    if (fields & LastChangeField) {
        differ("last change", status.lastChangedRevision(), client.commitRevision);
        if (status.lastChangedAuthor() != client.commitAuthor)
            out << " author " << status.lastChangedAuthor().value_or("(none)") << " (svn "
                << client.commitAuthor.value_or("(none)") << ")";
        const auto date = client.commitDate ? LuSVNDateConversion::dateWithISO8601String(*client.commitDate)
                                            : std::nullopt;
        if (status.lastChangedDate() != date)
            out << " date " << (status.lastChangedDate() ? LuSVNDateConversion::ISO8601StringValue(*status.lastChangedDate()) : "(none)")
                << " (svn " << client.commitDate.value_or("(none)") << ")";
    }
    if (fields & RepositoryField) {
        differ("repository text", status.repositoryTextStatus(), repositoryKindNamed(client.reposItem));
        differ("repository props", status.repositoryPropertyStatus(), repositoryKindNamed(client.reposProps));
        // Subversion gives the roots it walks (the target, each external)
        // their last commit even when unchanged; svn prints no such revision.
        if (outOfDate || !node.isDirectory())
            differ("out-of-date revision", status.outOfDateLastCommitRevision(),
                   outOfDate.value_or(LuSVNInvalidRevision));
    }
    return out.str();
}

}  // namespace

void expectAgreement(const Walk& walk, const std::vector<ExpectedItem>& expected, unsigned fields, bool inOrder,
                     const std::map<std::string, long>& outOfDate)
{
    std::vector<std::string> reported, wanted;
    for (const auto& node : walk.nodes)
        reported.push_back(node->path()->string());
    for (const auto& item : expected)
        wanted.push_back(item.path);
    if (!inOrder) {
        std::sort(reported.begin(), reported.end());
        std::sort(wanted.begin(), wanted.end());
    }
    EXPECT_EQ(reported, wanted);
    for (const auto& item : expected) {
        const auto node = walk.at(item.path);
        if (!node)
            continue;
        const auto revision = outOfDate.find(item.path);
        const std::string differences =
            statusDifferences(*node, item.reports.back(), item.text(), fields,
                              revision == outOfDate.end() ? std::nullopt : std::optional<long>(revision->second));
        EXPECT_EQ(differences, "") << item.path;
    }
}

std::uint32_t expectedLocalChanges(const std::vector<ExpectedItem>& items, const std::set<std::string>& extraFiles)
{
    std::uint32_t count = 0;
    for (const auto& item : items)
        count += LuSVNStatusIsAbnormal(item.localKinds()) && !extraFiles.contains(item.path);
    return count;
}

std::uint32_t expectedRemoteChanges(const std::vector<ExpectedItem>& items)
{
    std::uint32_t count = 0;
    for (const auto& item : items)
        count += LuSVNStatusIsAbnormal(item.remoteKinds());
    return count;
}

std::uint32_t expectedAggregate(const std::vector<ExpectedItem>& items, const std::string& directory, bool remote,
                                bool everyItem)
{
    std::uint32_t kinds = 0;
    for (const auto& item : items) {
        const std::uint32_t itemKinds = remote ? item.remoteKinds() : item.localKinds();
        if (item.path.starts_with(directory + "/") && (everyItem || LuSVNStatusIsAbnormal(itemKinds)))
            kinds |= itemKinds;
    }
    return kinds;
}

void expectPredicates(const LuSVNDirectory& directory, std::uint32_t local, std::uint32_t remote)
{
    const std::pair<bool (LuSVNDirectory::*)() const, LuSVNStatusKind> predicates[] = {
        {&LuSVNDirectory::hasUnversionedNodes, LuSVNStatusUnversioned},
        {&LuSVNDirectory::hasModifiedNodes, LuSVNStatusModified},
        {&LuSVNDirectory::hasAddedNodes, LuSVNStatusAdded},
        {&LuSVNDirectory::hasDeletedNodes, LuSVNStatusDeleted},
        {&LuSVNDirectory::hasReplacedNodes, LuSVNStatusReplaced},
        {&LuSVNDirectory::hasMissingNodes, LuSVNStatusMissing},
        {&LuSVNDirectory::hasConflictedNodes, LuSVNStatusConflicted},
    };
    const std::string path = directory.path()->string();
    for (const auto& [predicate, kind] : predicates) {
        EXPECT_EQ((directory.*predicate)(), (local & kind) != 0) << path << " kind " << kind;
        const std::uint32_t kinds = kind | LuSVNStatusIncomplete;
        EXPECT_EQ(directory.hasNodesWithStatus(kinds), (local & kinds) != 0) << path;
    }
    EXPECT_EQ(directory.hasNodesChangedInRepository(), LuSVNStatusIsAbnormal(remote)) << path;
}

}  // namespace tessera_status_test
