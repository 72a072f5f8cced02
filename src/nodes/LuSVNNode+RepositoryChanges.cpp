// The operations that change a repository directly or a working copy's
// tree: making directories, deleting, importing, copying and moving, with
// the batch forms that ask a LuSVNBatchHandler about each item.
#include <tessera/LuSVNBatchHandler.h>
#include <tessera/LuSVNCommitItem.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNCopyOptions.h>
#include <tessera/LuSVNDeleteOptions.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNImportOptions.h>
#include <tessera/LuSVNMoveOptions.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNSimpleLogMessageProvider.h>

#include <algorithm>
#include <filesystem>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

using namespace tessera_private;

namespace {

const LuSVNLocalPath* localPathOf(const LuSVNPath::Path& path)
{
    return dynamic_cast<const LuSVNLocalPath*>(path.get());
}

// Subversion's form of a working-copy path or a URL, in the pool.
const char* targetOf(const LuSVNPath::Path& path, apr_pool_t* pool)
{
    const LuSVNLocalPath* local = localPathOf(path);
    return local ? LuSVNWorkingCopyTarget(*local, pool) : path->SVNRepresentationInPool(pool);
}

template <class Paths>
apr_array_header_t* targetArray(const Paths& paths, apr_pool_t* pool)
{
    apr_array_header_t* array = LuSVNEntry<11>()(pool, static_cast<int>(paths.size()), sizeof(const char*));
    for (const auto& path : paths) {
        LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
        *static_cast<const char**>(LuSVNEntry<12>()(array)) = targetOf(path, pool);
    }
    return array;
}

std::int32_t committedRevision(const svn_commit_info_t* info)
{
    return info && info->revision >= 0 ? static_cast<std::int32_t>(info->revision) : LuSVNInvalidRevision;
}

[[noreturn]] void raiseCancelled(const std::string& reason)
{
    LuSVNException::exceptionWithReason(reason, LuSVNCancelledErrorStatus)->raise();
    throw LuSVNException(reason);  // raise() never returns
}

// Whether Subversion knows the item as versioned; anything it cannot tell
// about (outside a working copy, unversioned) counts as not.
bool isVersioned(const LuSVNNode::LocalPath& path, const LuSVNNode::Context& context)
{
    try {
        LuSVNNode::URLForNodeAtPath(path, context);
        return true;
    } catch (const LuSVNException&) {
        return false;
    }
}

bool existsOnDisk(const std::string& path)
{
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

// Copies and moves into a local directory need it under version control.
void requireVersionedParent(const LuSVNNode::Path& source, const LuSVNNode::Path& destination, const char* verb,
                            const LuSVNNode::Context& context)
{
    if (!localPathOf(destination))
        return;
    const std::string parent =
        std::filesystem::absolute(destination->string()).lexically_normal().parent_path().string();
    if (!isVersioned(LuSVNLocalPath::pathWithString(parent), context))
        LuSVNException::exceptionWithReason(std::string("Failed to ") + verb + " item at '" + source->string() +
                                                "' to unversioned directory at '" + parent + "'",
                                            155007)
            ->raise();
}

// The chain's answer, or none; without a provider Subversion's callback
// commits with the empty message, and so does this.
std::optional<std::string> askForLogMessage(const std::vector<LuSVNCommitItem>& items,
                                            const LuSVNNode::Context& context)
{
    const auto provider = context->logMessageProvider();
    if (!provider)
        return std::string();
    std::optional<std::string> message;
    if (!provider->contextPromptForLogMessage(*context, message, items))
        return std::nullopt;
    return message.value_or("");
}

// For the commits of a batch the context answers with the message asked
// once before them; its own provider is back afterwards.
class BatchLogMessage {
public:
    BatchLogMessage(const LuSVNNode::Context& context, const std::vector<LuSVNCommitItem>& items)
        : context_(context), saved_(context->logMessageProvider())
    {
        const auto message = askForLogMessage(items, context);
        if (!message)
            raiseCancelled("Operation was cancelled");
        context_->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage(*message));
    }
    ~BatchLogMessage() { context_->setLogMessageProvider(saved_); }
    BatchLogMessage(const BatchLogMessage&) = delete;
    BatchLogMessage& operator=(const BatchLogMessage&) = delete;

private:
    LuSVNNode::Context context_;
    std::shared_ptr<LuSVNLogMessageProvider> saved_;
};

// One copy or move of a batch with the handler's say; none when skipped.
std::optional<std::int32_t> moveItem(const LuSVNNode::Path& source, const LuSVNNode::Path& target, bool copy,
                                     const LuSVNMoveOptions& options,
                                     const std::shared_ptr<LuSVNBatchHandler>& handler, const std::any& contextInfo,
                                     const std::string& cancelReason, const LuSVNNode::Context& context)
{
    LUSVN_PARAMETER_ASSERT(source != nullptr, "source != nil");
    LUSVN_PARAMETER_ASSERT(target != nullptr, "target != nil");
    if (handler) {
        switch (handler->batchWillProcessItem(source, target, contextInfo)) {
        case LuSVNBatchAnswerSkip:
            return std::nullopt;
        case LuSVNBatchAnswerCancel:
            raiseCancelled(cancelReason);
        default:
            break;
        }
        if (const LuSVNLocalPath* local = localPathOf(target); local && existsOnDisk(local->string())) {
            switch (handler->batchShouldOverwriteItem(source, target, contextInfo)) {
            case LuSVNBatchAnswerProceed:
                LuSVNNode::deleteNodeAtPath(LuSVNLocalPath::pathWithString(local->string()), source, context);
                break;
            case LuSVNBatchAnswerSkip:
                return std::nullopt;
            case LuSVNBatchAnswerCancel:
                raiseCancelled(cancelReason);
            default:
                throw LuSVNInvalidArgumentException("Unrecognised overwrite result");
            }
        }
    }
    const std::int32_t revision = copy ? LuSVNNode::copyNodeAtPath(source, target, LuSVNCopyOptions(), context)
                                       : LuSVNNode::moveNodeAtPath(source, target, options, context);
    if (handler)
        handler->batchDidProcessItem(source, target, revision, contextInfo);
    return revision;
}

}  // namespace

std::int32_t LuSVNNode::createDirectoriesAtPaths(const std::vector<Path>& paths, bool makeParents,
                                                 const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "createDirectoriesAtPaths:withContext", {"paths", LuSVNDescribePaths(paths)},
                {"makeParents", makeParents ? "YES" : "NO"}, {"context", context->description()});
    const bool newer = LuSVNHasDepthForms(*context);
    if (!newer && makeParents)
        throw LuSVNInvalidArgumentException("Making the parents needs a backend of 1.5 or later");
    LuSVNBackendFrame frame(context->bundle());
    context->beginProgress();
    apr_array_header_t* targets = targetArray(paths, frame.pool());
    svn_commit_info_t* info = nullptr;
    if (newer)
        context->throwIfError(LuSVNEntry<60>()(&info, targets, makeParents, nullptr, context->ctx(), frame.pool()));
    else
        context->throwIfError(LuSVNEntry<59>()(&info, targets, context->ctx(), frame.pool()));
    const bool remote = !paths.empty() && !localPathOf(paths.front());
    if (remote && !info)
        raiseCancelled("Operation was cancelled");
    return committedRevision(info);
}

std::int32_t LuSVNNode::createDirectoriesAtPaths(const std::vector<Path>& paths, const Context& context)
{
    return createDirectoriesAtPaths(paths, false, context);
}

std::int32_t LuSVNNode::deleteNodes(const std::vector<Path>& nodePaths, const LuSVNDeleteOptions& options,
                                    const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "deleteNodes:withOptions:withContext", {"nodePaths", LuSVNDescribePaths(nodePaths)},
                {"options", options.description()}, {"context", context->description()});
    if (nodePaths.empty())
        return LuSVNInvalidRevision;
    LUSVN_PARAMETER_ASSERT(nodePaths.front() != nullptr, "path != nil");
    if (!localPathOf(nodePaths.front())) {
        std::vector<URLPath> urls;
        for (const auto& path : nodePaths)
            urls.push_back(std::dynamic_pointer_cast<const LuSVNURL>(path));
        return deleteRepositoryNodesAtURLs(urls, options, context);
    }
    std::vector<LocalPath> paths;
    for (const auto& path : nodePaths)
        paths.push_back(std::dynamic_pointer_cast<const LuSVNLocalPath>(path));
    deleteWorkingCopyNodesAtPaths(paths, options, context);
    return LuSVNInvalidRevision;
}

std::int32_t LuSVNNode::deleteRepositoryNodesAtURLs(const std::vector<URLPath>& nodePaths,
                                                    const LuSVNDeleteOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "deleteRepositoryNodesAtURLs:withOptions:withContext",
                {"nodePaths", LuSVNDescribePaths(nodePaths)}, {"options", options.description()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    context->beginProgress();
    svn_commit_info_t* info = nullptr;
    context->throwIfError(
        LuSVNEntry<48>()(&info, targetArray(nodePaths, frame.pool()), options.force(), context->ctx(), frame.pool()));
    return committedRevision(info);
}

void LuSVNNode::deleteWorkingCopyNodesAtPaths(const std::vector<LocalPath>& nodePaths,
                                              const LuSVNDeleteOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "deleteWorkingCopyNodesAtPaths:withOptions:withContext",
                {"nodePaths", LuSVNDescribePaths(nodePaths)}, {"options", options.description()},
                {"context", context->description()});
    // Every path is judged before anything goes, so a refusal loses nothing.
    std::vector<LocalPath> versioned;
    std::vector<LocalPath> unversioned;
    for (const auto& path : nodePaths) {
        LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
        if (!existsOnDisk(path->string()) || isVersioned(path, context)) {
            versioned.push_back(path);
            continue;
        }
        if (!options.force())
            LuSVNException::exceptionWithReason("Cannot delete '" + path->string() +
                                                    "' because it is unversioned and force was not specified",
                                                200005)
                ->raise();
        unversioned.push_back(path);
    }
    for (const auto& path : unversioned) {
        std::error_code error;
        std::filesystem::remove_all(path->string(), error);
        if (error)
            throw LuSVNException("Cannot delete '" + path->string() + "'. The file may be in use");
    }
    if (versioned.empty())
        return;
    LuSVNBackendFrame frame(context->bundle());
    context->beginProgress();
    svn_commit_info_t* info = nullptr;
    context->throwIfError(LuSVNEntry<48>()(&info, LuSVNPathArray(versioned, frame.pool()), options.force(),
                                           context->ctx(), frame.pool()));
}

void LuSVNNode::deleteNodeAtPath(const LocalPath& path, const Path& source, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(source != nullptr, "source != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "deleteNodeAtPath:forOverwriteWithFileAtPath:withContext", {"path", path->string()},
                {"source", source->string()}, {"context", context->description()});
    if (!localPathOf(source))
        throw LuSVNInvalidArgumentException("Local source path expected");
    if (!existsOnDisk(path->string()))
        return;
    LuSVNDeleteOptions options;
    options.setForce(true);
    deleteWorkingCopyNodesAtPaths({path}, options, context);
}

std::int32_t LuSVNNode::importNodeAtPath(const LocalPath& path, const URLPath& url, const LuSVNImportOptions& options,
                                         const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(url != nullptr, "url != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "importNodeAtPath:intoRepositoryAtURL:withOptions:withContext",
                {"path", path->string()}, {"url", url->string()}, {"options", options.description()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    context->beginProgress();
    svn_commit_info_t* info = nullptr;
    context->throwIfError(LuSVNEntry<53>()(&info, path->SVNRepresentationInPool(frame.pool()),
                                           url->SVNRepresentationInPool(frame.pool()), !options.recursive(),
                                           !options.matchIgnorePatterns(), context->ctx(), frame.pool()));
    if (!info)
        raiseCancelled("Operation was cancelled");
    return committedRevision(info);
}

std::vector<std::int32_t> LuSVNNode::importNodes(const std::vector<LocalPath>& paths, const std::vector<URLPath>& urls,
                                                 const LuSVNImportOptions& options,
                                                 const std::shared_ptr<LuSVNBatchHandler>& handler,
                                                 const std::any& contextInfo, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_PARAMETER_ASSERT(paths.size() == urls.size(), "[paths count] == [urls count]");
    LUSVN_TRACE("LuSVNNode", "importNodes:intoRepositoryAtURLs:withOptions:handler:contextInfo:withContext",
                {"paths", LuSVNDescribePaths(paths)}, {"urls", LuSVNDescribePaths(urls)}, {"options", options.description()},
                {"context", context->description()});
    std::vector<std::int32_t> revisions;
    if (paths.empty())
        return revisions;
    BatchLogMessage message(context, commitItemsForImportOfNodes(paths, urls));
    for (std::size_t index = 0; index < paths.size(); ++index) {
        if (handler) {
            const LuSVNBatchAnswer answer = handler->batchWillProcessItem(paths[index], urls[index], contextInfo);
            if (answer == LuSVNBatchAnswerCancel)
                raiseCancelled("Import was canceled by user");
            if (answer == LuSVNBatchAnswerSkip) {
                revisions.push_back(LuSVNInvalidRevision);
                continue;
            }
        }
        revisions.push_back(importNodeAtPath(paths[index], urls[index], options, context));
        if (handler)
            handler->batchDidProcessItem(paths[index], urls[index], revisions.back(), contextInfo);
    }
    return revisions;
}

std::vector<LuSVNCommitItem> LuSVNNode::commitItemsForImportOfNodes(const std::vector<LocalPath>& paths,
                                                                    const std::vector<URLPath>& urls)
{
    LUSVN_PARAMETER_ASSERT(paths.size() == urls.size(), "[paths count] == [urls count]");
    std::vector<LuSVNCommitItem> items;
    for (std::size_t index = 0; index < paths.size(); ++index) {
        LUSVN_PARAMETER_ASSERT(paths[index] != nullptr, "path != nil");
        LUSVN_PARAMETER_ASSERT(urls[index] != nullptr, "url != nil");
        LuSVNCommitItem item;
        item.setPath(paths[index]);
        item.setURL(urls[index]);
        std::error_code error;
        item.setNodeKind(std::filesystem::is_directory(paths[index]->string(), error) ? 2 : 1);
        item.setActions(LuSVNCommitActionAdd);
        items.push_back(item);
    }
    return items;
}

std::int32_t LuSVNNode::copyNodeAtPath(const Path& sourcePath, const Path& destPath, const LuSVNCopyOptions& options,
                                       const Context& context)
{
    LUSVN_PARAMETER_ASSERT(sourcePath != nullptr, "sourcePath != nil");
    LUSVN_PARAMETER_ASSERT(destPath != nullptr, "destPath != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "copyNodeAtPath:toPath:withOptions:withContext", {"sourcePath", sourcePath->string()},
                {"destPath", destPath->string()}, {"options", options.description()},
                {"context", context->description()});
    requireVersionedParent(sourcePath, destPath, "copy", context);
    LuSVNBackendFrame frame(context->bundle());
    context->beginProgress();
    const svn_opt_revision_t revision = options.revision()->SVNRevision();
    svn_commit_info_t* info = nullptr;
    context->throwIfError(LuSVNEntry<46>()(&info, targetOf(sourcePath, frame.pool()), &revision,
                                           targetOf(destPath, frame.pool()), context->ctx(), frame.pool()));
    return committedRevision(info);
}

std::int32_t LuSVNNode::moveNodeAtPath(const Path& sourcePath, const Path& destPath, const LuSVNMoveOptions& options,
                                       const Context& context)
{
    LUSVN_PARAMETER_ASSERT(sourcePath != nullptr, "sourcePath != nil");
    LUSVN_PARAMETER_ASSERT(destPath != nullptr, "destPath != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "moveNodeAtPath:toPath:withOptions:withContext", {"sourcePath", sourcePath->string()},
                {"destPath", destPath->string()}, {"options", options.description()},
                {"context", context->description()});
    requireVersionedParent(sourcePath, destPath, "move", context);
    LuSVNBackendFrame frame(context->bundle());
    context->beginProgress();
    svn_commit_info_t* info = nullptr;
    context->throwIfError(LuSVNEntry<61>()(&info, targetOf(sourcePath, frame.pool()),
                                           targetOf(destPath, frame.pool()), options.force(), context->ctx(),
                                           frame.pool()));
    return committedRevision(info);
}

std::vector<std::int32_t> LuSVNNode::moveNodes(const std::vector<Path>& sourcePaths, const std::vector<Path>& destPaths,
                                               bool copy, const LuSVNMoveOptions& options,
                                               const std::shared_ptr<LuSVNBatchHandler>& handler,
                                               const std::any& contextInfo, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_PARAMETER_ASSERT(sourcePaths.size() == destPaths.size(), "[sourcePaths count] == [destPaths count]");
    LUSVN_TRACE("LuSVNNode", "moveNodes:toPaths:copy:withOptions:handler:contextInfo:withContext",
                {"sourcePaths", LuSVNDescribePaths(sourcePaths)}, {"destPaths", LuSVNDescribePaths(destPaths)},
                {"copy", copy ? "YES" : "NO"}, {"options", options.description()},
                {"context", context->description()});
    // Only commits to a repository need the message.
    std::optional<BatchLogMessage> message;
    if (std::any_of(destPaths.begin(), destPaths.end(), [](const Path& path) { return path && !localPathOf(path); }))
        message.emplace(context, commitItemsForMoveOfNodes(sourcePaths, destPaths, copy));
    const std::string cancelReason = copy ? "Operation canceled by user" : "Move was canceled by user";
    std::vector<std::int32_t> revisions;
    for (std::size_t index = 0; index < sourcePaths.size(); ++index)
        revisions.push_back(moveItem(sourcePaths[index], destPaths[index], copy, options, handler, contextInfo,
                                     cancelReason, context)
                                .value_or(LuSVNInvalidRevision));
    return revisions;
}

std::int32_t LuSVNNode::moveNodeAtPath(const Path& source, const Path& target, bool copy,
                                       const LuSVNMoveOptions& options,
                                       const std::shared_ptr<LuSVNBatchHandler>& handler, const std::any& contextInfo,
                                       const Context& context)
{
    LUSVN_PARAMETER_ASSERT(source != nullptr, "source != nil");
    LUSVN_PARAMETER_ASSERT(target != nullptr, "target != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    return moveItem(source, target, copy, options, handler, contextInfo, "Move was canceled", context)
        .value_or(LuSVNInvalidRevision);
}

std::vector<LuSVNCommitItem> LuSVNNode::commitItemsForMoveOfNodes(const std::vector<Path>& sourcePaths,
                                                                  const std::vector<Path>& destPaths, bool copy)
{
    LUSVN_PARAMETER_ASSERT(sourcePaths.size() == destPaths.size(), "[sourcePaths count] == [destPaths count]");
    std::vector<LuSVNCommitItem> items;
    for (std::size_t index = 0; index < sourcePaths.size(); ++index) {
        LUSVN_PARAMETER_ASSERT(sourcePaths[index] != nullptr, "source != nil");
        LUSVN_PARAMETER_ASSERT(destPaths[index] != nullptr, "target != nil");
        LuSVNCommitItem added;
        added.setPath(destPaths[index]);
        added.setURL(std::dynamic_pointer_cast<const LuSVNURL>(destPaths[index]));
        added.setActions(LuSVNCommitActionAdd | LuSVNCommitActionCopy);
        added.setCopySource(LuSVNPathWithRevision::path(sourcePaths[index], LuSVNRevision::HEAD()));
        items.push_back(added);
        if (copy)
            continue;
        LuSVNCommitItem deleted;
        deleted.setPath(sourcePaths[index]);
        deleted.setURL(std::dynamic_pointer_cast<const LuSVNURL>(sourcePaths[index]));
        deleted.setActions(LuSVNCommitActionDelete);
        items.push_back(deleted);
    }
    return items;
}

std::string LuSVNNode::promptForLogMessage(const std::vector<LuSVNCommitItem>& commitItems, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    return askForLogMessage(commitItems, context).value_or("");
}
