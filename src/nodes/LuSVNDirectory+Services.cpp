#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNFile.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRepositoryInfo.h>

#include <exception>
#include <filesystem>
#include <optional>
#include <string>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNPath+Internal.h"
#include "LuSVNRecordLock.h"
#include "LuSVNResolvedRevisions.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

using namespace tessera_private;

namespace {

// The record of the directory, copied out of the receiver's pool.
struct DirectoryBaton {
    bool answered = false;
    svn_node_kind_t kind = svn_node_unknown;
    std::int32_t revision = LuSVNInvalidRevision;
    std::int32_t lastChangedRevision = LuSVNInvalidRevision;
    std::int64_t time = 0;
    std::optional<std::string> author;
    std::optional<std::string> url;
    std::optional<std::string> rootURL;
    std::optional<std::string> UUID;
    std::shared_ptr<const LuSVNLock> lock;
    std::exception_ptr pending;
};

struct ListBaton {
    const LuSVNNode::Path& target;
    // The target as a URL, or null for a working-copy path.
    std::shared_ptr<const LuSVNURL> targetURL;
    const LuSVNDirectory::ListHandler& handler;
    LuSVNDepth depth;
    std::exception_ptr pending;
};

}  // namespace

extern "C" {

static svn_error_t* LuSVNInfoFunc(void* baton, const char* path, const svn_info_t* info, apr_pool_t*)
{
    auto* directory = static_cast<DirectoryBaton*>(baton);
    return LuSVNGuardCallback(directory->pending, [&]() -> svn_error_t* {
        directory->answered = true;
        directory->kind = info->kind;
        directory->revision = static_cast<std::int32_t>(info->rev);
        directory->lastChangedRevision = static_cast<std::int32_t>(info->last_changed_rev);
        directory->time = info->last_changed_date;
        if (info->last_changed_author)
            directory->author = info->last_changed_author;
        if (info->URL)
            directory->url = info->URL;
        if (info->repos_root_URL)
            directory->rootURL = info->repos_root_URL;
        if (info->repos_UUID)
            directory->UUID = info->repos_UUID;
        directory->lock = LuSVNRecordLock(info->lock, path ? path : "");
        return nullptr;
    });
}

static svn_error_t* LuSVNListFunc(void* baton, const char* path, const svn_dirent_t* dirent, const svn_lock_t* lock,
                                  const char*, apr_pool_t*)
{
    auto* list = static_cast<ListBaton*>(baton);
    return LuSVNGuardCallback(list->pending, [&]() -> svn_error_t* {
        const bool directory = dirent->kind == svn_node_dir;
        // Listings without recursion bring the children, which depth empty
        // leaves out, and the subdirectories, which depth files leaves out.
        if (*path && (list->depth == LuSVNDepthEmpty || (directory && list->depth == LuSVNDepthFiles)))
            return nullptr;
        // A URL child extends the target's text without a new parse: a
        // recursive listing makes one for every entry.
        std::shared_ptr<const LuSVNURL> url;
        LuSVNNode::Path path_ = list->target;
        if (*path && list->targetURL)
            path_ = url = list->targetURL->URLByAppendingEscapedRelativePath(LuSVNAddPercentEscapes(path));
        else if (*path)
            path_ = list->target->pathByNormalizingAndAddingComponent(path);
        else
            url = list->targetURL;
        std::optional<std::string> name = path_->denormalizedLastComponent();
        if (directory)
            list->handler(LuSVNDirectory::nodeWithName(std::move(name), path_, url, dirent, lock), path);
        else
            list->handler(LuSVNFile::nodeWithName(std::move(name), path_, url, dirent, lock), path);
        return nullptr;
    });
}
}

namespace {

const char* target(const LuSVNNode::Path& path, apr_pool_t* pool)
{
    if (const auto local = std::dynamic_pointer_cast<const LuSVNLocalPath>(path)) {
        std::error_code error;
        if (!std::filesystem::exists(local->string(), error))
            throw LuSVNException("'" + local->string() + "' does not exist");
        return LuSVNWorkingCopyTarget(*local, pool);
    }
    return path->SVNRepresentationInPool(pool);
}

}  // namespace

std::shared_ptr<LuSVNDirectory> LuSVNDirectory::directoryAtPath(
    const Path& path, const Revision& revision, std::shared_ptr<const LuSVNRepositoryInfo>* repositoryInfo,
    const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDirectory", "directoryAtPath:forRevision:repositoryInfo:withContext", {"path", path->string()},
                {"revision", revision->description()}, {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    const auto [peg, operative] = LuSVNResolvedRevisions(*path, *revision);
    DirectoryBaton baton;
    svn_error_t* error = LuSVNEntry<54>()(target(path, frame.pool()), &peg, &operative, LuSVNInfoFunc, &baton, false,
                                          context->ctx(), frame.pool());
    if (baton.pending)
        LuSVNRethrowPending(baton.pending, error);
    context->throwIfError(error);

    auto directory = nodeWithPath(path);
    const auto url = std::dynamic_pointer_cast<const LuSVNURL>(path);
    if (!baton.answered) {
        // svnserve over ssh answers no record for some directories it serves.
        if (url && url->scheme() == "svn+ssh")
            return directory;
        throw LuSVNException("Unable to obtain dir info from svn for '" + path->string() +
                             "'. Does URL point to root directory of pre-1.2 repository?");
    }
    if (baton.kind != svn_node_dir)
        throw LuSVNInternalInconsistencyException("Expected valid dir from LuSVNInfoFunc");
    directory->setURL(baton.url ? LuSVNURL::URLWithString(*baton.url) : nullptr);
    directory->setRevision(baton.lastChangedRevision);
    directory->setDate(LuSVNDateConversion::dateWithAPRTime(baton.time));
    directory->setAuthor(baton.author);
    directory->setLock(baton.lock);
    if (repositoryInfo)
        *repositoryInfo = baton.rootURL ? LuSVNRepositoryInfo::infoForRepositoryWithUUID(
                                              baton.UUID, LuSVNURL::URLWithString(*baton.rootURL), baton.revision)
                                        : nullptr;
    return directory;
}

std::shared_ptr<LuSVNDirectory> LuSVNDirectory::directoryAtPath(const Path& path, const Revision& revision,
                                                                const Context& context)
{
    return directoryAtPath(path, revision, static_cast<std::shared_ptr<const LuSVNRepositoryInfo>*>(nullptr),
                           context);
}

std::shared_ptr<LuSVNDirectory> LuSVNDirectory::directoryAtPath(const Path& path, const Revision& revision,
                                                                Nodes& children, const Context& context)
{
    auto directory = directoryAtPath(path, revision, context);
    Nodes found;
    listNodesAtPath(path, revision, LuSVNDepthImmediates, true, true,
                    [&](const std::shared_ptr<LuSVNNode>& node, const std::string& relativePath) {
                        if (!relativePath.empty())
                            found.push_back(node);
                    },
                    context);
    children = std::move(found);
    return directory;
}

void LuSVNDirectory::listNodesAtPath(const Path& path, const Revision& revision, LuSVNDepth depth, bool details,
                                     bool fetchLocks,
                                     const ListHandler& handler, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(handler != nullptr, "handler != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDirectory", "listNodesAtPath:forRevision:depth:details:fetchLocks:handler:withContext",
                {"path", path->string()}, {"revision", revision->description()},
                {"depth", std::to_string(depth)}, {"context", context->description()});
    LuSVNCheckDepth(depth);
    if (depth == LuSVNDepthExclude)
        throw LuSVNGenericException("Invalid depth");
    LuSVNBackendFrame frame(context->bundle());
    const auto [peg, operative] = LuSVNResolvedRevisions(*path, *revision);
    ListBaton baton{path, std::dynamic_pointer_cast<const LuSVNURL>(path), handler, depth, nullptr};
    const char* where = path->SVNRepresentationInPool(frame.pool());
    svn_error_t* error = LuSVNEntry<56>()(where, &peg, &operative, depth == LuSVNDepthInfinity || depth == LuSVNDepthUnknown,
                                          details ? SVN_DIRENT_ALL : SVN_DIRENT_KIND, fetchLocks, LuSVNListFunc, &baton, context->ctx(),
                                          frame.pool());
    if (baton.pending)
        LuSVNRethrowPending(baton.pending, error);
    context->throwIfError(error);
}
