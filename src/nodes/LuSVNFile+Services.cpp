#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNFile.h>

#include <exception>
#include <filesystem>
#include <optional>
#include <string>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNRecordLock.h"
#include "LuSVNResolvedRevisions.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

using namespace tessera_private;

namespace {

// What the receivers keep of the one record they get, copied at once: the
// record's pool ends with the callback.
struct FileBaton {
    bool answered = false;
    std::int32_t revision = LuSVNInvalidRevision;
    std::int64_t time = 0;
    std::optional<std::string> author;
    std::optional<std::string> url;
    std::optional<std::int64_t> size;
    bool hasProperties = false;
    std::shared_ptr<const LuSVNLock> lock;
    bool infoHasSize = false;  // the 64-bit sizes of svn_info_t came with 1.6
    std::exception_ptr pending;
};

// The record must name a node by a path with a last component; the node's
// own name then comes from the caller's path, as the user wrote it.
void requireName(const char* path)
{
    const std::string text = path ? path : "";
    if (text.empty() || text.back() == '/')
        throw LuSVNException("Unexpected format of abs_path. Could not parse out name");
}

void requireFile(svn_node_kind_t kind)
{
    if (kind != svn_node_file)
        throw LuSVNException("Node is not a file");
}

}  // namespace

extern "C" {

static svn_error_t* LuTesseraFileInfoFunc(void* baton, const char* path, const svn_info_t* info, apr_pool_t*)
{
    auto* file = static_cast<FileBaton*>(baton);
    return LuSVNGuardCallback(file->pending, [&]() -> svn_error_t* {
        requireFile(info->kind);
        requireName(path);
        file->answered = true;
        file->revision = static_cast<std::int32_t>(info->last_changed_rev);
        file->time = info->last_changed_date;
        if (info->last_changed_author)
            file->author = info->last_changed_author;
        if (info->URL)
            file->url = info->URL;
        file->lock = LuSVNRecordLock(info->lock, path);
        if (file->infoHasSize && info->size64 != SVN_INVALID_FILESIZE)
            file->size = info->size64;
        return nullptr;
    });
}

static svn_error_t* TesseraFileListFunc(void* baton, const char* path, const svn_dirent_t* dirent,
                                        const svn_lock_t* lock, const char* absPath, apr_pool_t*)
{
    auto* file = static_cast<FileBaton*>(baton);
    return LuSVNGuardCallback(file->pending, [&]() -> svn_error_t* {
        requireFile(dirent->kind);
        // A file target is listed as itself, by the empty path; its absolute
        // path is the file's.
        requireName(path && *path ? path : absPath);
        file->size = dirent->size;
        file->hasProperties = dirent->has_props != 0;
        file->lock = LuSVNRecordLock(lock, absPath ? absPath : "");
        return nullptr;
    });
}
}

namespace {

void finish(FileBaton& baton, svn_error_t* error, LuSVNContext& context)
{
    if (baton.pending)
        LuSVNRethrowPending(baton.pending, error);
    context.throwIfError(error);
}

}  // namespace

std::shared_ptr<LuSVNFile> LuSVNFile::fileAtPath(const Path& path, const Revision& revision, bool fetchLock,
                                                 const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNFile", "fileAtPath:forRevision:fetchLock:withContext", {"path", path->string()},
                {"revision", revision->description()}, {"fetchLock", fetchLock ? "YES" : "NO"},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    const auto [peg, operative] = LuSVNResolvedRevisions(*path, *revision);
    const char* target = path->SVNRepresentationInPool(frame.pool());
    FileBaton baton;
    const auto version = context->bundleVersion();
    baton.infoHasSize = version && version->isGreaterThanOrEqualTo(LuSVNVersion::version1_6());
    finish(baton,
           LuSVNEntry<54>()(target, &peg, &operative, LuTesseraFileInfoFunc, &baton, false, context->ctx(),
                            frame.pool()),
           *context);
    if (!baton.answered)
        throw LuSVNException(path->string() + " does not exist");
    if (fetchLock)
        finish(baton,
               LuSVNEntry<56>()(target, &peg, &operative, false, SVN_DIRENT_ALL, true, TesseraFileListFunc, &baton,
                                context->ctx(), frame.pool()),
               *context);

    auto file = nodeWithPath(path);
    file->setURL(baton.url ? LuSVNURL::URLWithString(*baton.url) : nullptr);
    file->setRevision(baton.revision);
    file->setDate(LuSVNDateConversion::dateWithAPRTime(baton.time));
    file->setAuthor(baton.author);
    file->setHasProperties(baton.hasProperties);
    file->setLock(baton.lock);
    std::error_code error;
    if (baton.size)
        file->setSize(*baton.size);
    else if (!std::dynamic_pointer_cast<const LuSVNURL>(path))
        file->setSize(static_cast<std::int64_t>(std::filesystem::file_size(path->string(), error)));
    if (error)
        file->setSize(0);
    return file;
}

std::shared_ptr<LuSVNFile> LuSVNFile::fileAtPath(const Path& path, const Revision& revision, const Context& context)
{
    return fileAtPath(path, revision, false, context);
}

void LuSVNFile::catRevision(const Revision& revision, const Path& path,
                            const std::shared_ptr<LuSVNOutputStream>& stream, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(stream != nullptr, "stream != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNFile", "catRevision:ofFileAtPath:toOutputStream:withContext",
                {"revision", revision->description()}, {"path", path->string()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    const auto [peg, operative] = LuSVNResolvedRevisions(*path, *revision);
    svn_stream_t* output = LuSVNAdaptOutputStream(stream, frame.pool());
    context->throwIfError(LuSVNEntry<40>()(output, path->SVNRepresentationInPool(frame.pool()), &peg, &operative,
                                           context->ctx(), frame.pool()));
    // Releases the application stream now rather than with the pool.
    LuSVNThrowIfError(LuSVNEntry<112>()(output));
}
