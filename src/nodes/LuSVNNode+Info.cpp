#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNInfo.h>
#include <tessera/LuSVNNode.h>

#include <exception>
#include <filesystem>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNRecordLock.h"
#include "LuSVNResolvedRevisions.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

using namespace tessera_private;

namespace {

struct InfoReport {
    const LuSVNNode::InfoHandler& handler;
    // The fields of svn_info_t that came with 1.5 (depth, changelist) and
    // 1.6 (64-bit sizes): older backends' records end before them.
    bool hasDepthFields;
    bool hasSizeFields;
    std::exception_ptr pending;
};

std::optional<std::string> text(const char* value)
{
    return value ? std::optional<std::string>(value) : std::nullopt;
}

LuSVNNode::URLPath url(const char* value)
{
    return value ? LuSVNURL::URLWithString(value) : nullptr;
}

std::string hexadecimal(const svn_checksum_t& checksum)
{
    static const char digits[] = "0123456789abcdef";
    const std::size_t length = checksum.kind == svn_checksum_md5 ? 16 : checksum.kind == svn_checksum_sha1 ? 20 : 4;
    std::string result;
    for (std::size_t index = 0; index < length; ++index) {
        result += digits[checksum.digest[index] >> 4];
        result += digits[checksum.digest[index] & 15];
    }
    return result;
}

// The fields both records have.
template <class Record>
LuSVNInfo commonFields(const char* path, const Record& record)
{
    LuSVNInfo info;
    info.path = path ? path : "";
    info.URL = url(record.URL);
    info.repositoryRootURL = url(record.repos_root_URL);
    info.repositoryUUID = text(record.repos_UUID);
    info.revision = static_cast<std::int32_t>(record.rev);
    info.kind = static_cast<LuSVNNodeKind>(record.kind);
    info.lastChangedRevision = static_cast<std::int32_t>(record.last_changed_rev);
    info.lastChangedDate = LuSVNDateConversion::dateWithAPRTime(record.last_changed_date);
    info.lastChangedAuthor = text(record.last_changed_author);
    info.lock = LuSVNRecordLock(record.lock, info.path);
    return info;
}

}  // namespace

extern "C" {

static svn_error_t* LuSVNInfoReceiver2Func(void* baton, const char* path, const svn_client_info2_t* record,
                                           apr_pool_t*)
{
    auto* report = static_cast<InfoReport*>(baton);
    return LuSVNGuardCallback(report->pending, [&]() -> svn_error_t* {
        LuSVNInfo info = commonFields(path, *record);
        if (record->size != SVN_INVALID_FILESIZE)
            info.size = record->size;
        if (const svn_wc_info_t* wc = record->wc_info) {
            info.hasWorkingCopyInfo = true;
            info.workingCopyRootPath = text(wc->wcroot_abspath);
            info.schedule = static_cast<LuSVNSchedule>(wc->schedule);
            info.copiedFromURL = text(wc->copyfrom_url);
            info.copiedFromRevision = static_cast<std::int32_t>(wc->copyfrom_rev);
            info.depth = wc->depth;
            info.textLastUpdated = LuSVNDateConversion::dateWithAPRTime(wc->recorded_time);
            if (wc->checksum)
                info.checksum = hexadecimal(*wc->checksum);
            info.changelist = text(wc->changelist);
            info.movedFromPath = text(wc->moved_from_abspath);
            info.movedToPath = text(wc->moved_to_abspath);
        }
        report->handler(info);
        return nullptr;
    });
}

static svn_error_t* LuSVNInfoReceiverFunc(void* baton, const char* path, const svn_info_t* record, apr_pool_t*)
{
    auto* report = static_cast<InfoReport*>(baton);
    return LuSVNGuardCallback(report->pending, [&]() -> svn_error_t* {
        LuSVNInfo info = commonFields(path, *record);
        if (report->hasSizeFields && record->size64 != SVN_INVALID_FILESIZE && !record->has_wc_info)
            info.size = record->size64;
        if (record->has_wc_info) {
            info.hasWorkingCopyInfo = true;
            info.schedule = static_cast<LuSVNSchedule>(record->schedule);
            info.copiedFromURL = text(record->copyfrom_url);
            info.copiedFromRevision = static_cast<std::int32_t>(record->copyfrom_rev);
            info.textLastUpdated = LuSVNDateConversion::dateWithAPRTime(record->text_time);
            info.checksum = text(record->checksum);
            if (report->hasDepthFields) {
                info.depth = record->depth;
                info.changelist = text(record->changelist);
            }
        }
        report->handler(info);
        return nullptr;
    });
}
}

void LuSVNNode::reportInfoForNodeAtPath(const Path& path, const Revision& revision, LuSVNDepth depth,
                                        const InfoHandler& handler, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(handler != nullptr, "handler != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "reportInfoForNodeAtPath:forRevision:depth:handler:withContext", {"path", path->string()},
                {"revision", revision->description()}, {"depth", std::to_string(depth)},
                {"context", context->description()});
    LuSVNCheckDepth(depth);
    LuSVNBackendFrame frame(context->bundle());
    const auto [peg, operative] = LuSVNResolvedRevisions(*path, *revision);
    const char* target = path->SVNRepresentationInPool(frame.pool());
    if (const auto local = std::dynamic_pointer_cast<const LuSVNLocalPath>(path)) {
        // svn_client_info3 aborts the process on a relative path.
        std::string absolute = std::filesystem::absolute(local->string()).lexically_normal().string();
        if (absolute.size() > 1 && absolute.back() == '/')
            absolute.pop_back();
        target = LuSVNWorkingCopyTarget(*LuSVNLocalPath::pathWithString(absolute), frame.pool());
    }
    const auto version = context->bundleVersion();
    InfoReport report{handler, LuSVNHasDepthForms(*context),
                      version && version->isGreaterThanOrEqualTo(LuSVNVersion::version1_6()), nullptr};
    svn_error_t* error = nullptr;
    if (version && version->isGreaterThanOrEqualTo(LuSVNVersion::version1_7())) {
        error = LuSVNEntry<55>()(target, &peg, &operative, static_cast<svn_depth_t>(depth), true, true, nullptr,
                                 LuSVNInfoReceiver2Func, &report, context->ctx(), frame.pool());
    } else {
        if (depth != LuSVNDepthEmpty && depth != LuSVNDepthInfinity)
            throw LuSVNGenericException("Invalid depth");
        error = LuSVNEntry<54>()(target, &peg, &operative, LuSVNInfoReceiverFunc, &report,
                                 depth == LuSVNDepthInfinity, context->ctx(), frame.pool());
    }
    if (report.pending)
        LuSVNRethrowPending(report.pending, error);
    context->throwIfError(error);
}
