#include "StatusFixture.h"

#include <tessera/LuSVNLocalPath.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
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
                    {"sub/file.txt", "sub\n"},        {"sparse/a.txt", "a\n"},
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
    svnOrThrow({"rm", "-q", other + "/treeedit.txt", other + "/treedel.txt"});
    svnOrThrow({"propset", "-q", "svn:externals", "^/lib ext", other});
    svnOrThrow({"commit", "-q", "-m", "their changes", other});

    svnOrThrow({"switch", "-q", "^/branch/sub", item("sub")});
    writeFile(item("conflict.txt"), "one\nmine\nthree\n");
    svnOrThrow({"propset", "-q", "colour", "mine", item("propconflict.txt")});
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
}

std::map<std::string, ClientStatus> clientStatus(const std::string& path)
{
    const tessera_test::CommandResult result = svn({"status", "--xml", "-v", "--no-ignore", path});
    if (result.status != 0)
        throw std::runtime_error("svn status failed: " + result.output);
    static const std::regex entry(R"re(<entry\s+path="([^"]*)">\s*<wc-status([^>]*)>([\s\S]*?)</wc-status>)re");
    static const std::regex attribute(R"re(([\w-]+)="([^"]*)")re");
    std::map<std::string, ClientStatus> items;
    for (std::sregex_iterator match(result.output.begin(), result.output.end(), entry), end; match != end; ++match) {
        ClientStatus status;
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
        }
        status.locked = (*match)[3].str().find("<lock>") != std::string::npos;
        items[(*match)[1]] = status;
    }
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

    void add(const char* path, const svn_wc_status2_t* record)
    {
        (*nodes)[path] = LuSVNNode::nodeAtPath(LuSVNLocalPath::pathWithString(path), record, *context);
    }
};

svn_error_t* collectClientStatus(void* baton, const char* path, const svn_client_status_t* status, apr_pool_t* pool)
{
    auto* collector = static_cast<Collector*>(baton);
    return LuSVNGuardCallback(collector->pending, [&] {
        return LuSVNClientStatusToWCStatus((*collector->context)->ctx(), path, status, pool,
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
                                                                const std::shared_ptr<LuSVNContext>& context)
{
    std::map<std::string, std::shared_ptr<LuSVNNode>> nodes;
    Collector collector{&context, &nodes, nullptr};
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
    return nodes;
}

}  // namespace tessera_status_test
