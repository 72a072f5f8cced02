// What the working-copy operations of LuSVNNode and LuSVNDirectory share:
// the choice of the older or newer Subversion form, depths for the older
// forms, path arrays, and Tessera's own Started/Succeeded/Failed
// notifications around the Subversion call.
#pragma once

#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNNotification.h>
#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "LuSVNAssert.h"
#include "LuSVNEntryPoints+Typed.h"

namespace tessera_private {

/// Whether the context's backend has the forms of 1.5 (depths, changelists).
inline bool LuSVNHasDepthForms(const LuSVNContext& context)
{
    const auto version = context.bundleVersion();
    return version && version->isGreaterThanOrEqualTo(LuSVNVersion::version1_5());
}

/// Raises "Invalid depth" for a value that is none of Subversion's depths:
/// Subversion asserts on those rather than reporting an error.
inline void LuSVNCheckDepth(LuSVNDepth depth)
{
    if (depth < LuSVNDepthUnknown || depth > LuSVNDepthInfinity)
        throw LuSVNGenericException("Invalid depth");
}

/// The recursion flag of the forms before 1.5, which know only files
/// (false) and infinity (true, also for the unknown depth).
inline bool LuSVNRecursionForDepth(LuSVNDepth depth)
{
    switch (depth) {
    case LuSVNDepthFiles:
        return false;
    case LuSVNDepthInfinity:
    case LuSVNDepthUnknown:
        return true;
    default:
        throw LuSVNGenericException("Invalid depth");
    }
}

/// The path's Subversion form for a working-copy call. Raises
/// LuSVNNotWorkingCopyException "'<path>' is not a working copy" when the
/// administrative area of the path (a directory) or of its parent (anything
/// else) names a format of 1.7 or later but holds no wc.db: Subversion 1.14
/// crashes on those instead of reporting them.
const char* LuSVNWorkingCopyTarget(const LuSVNLocalPath& path, apr_pool_t* pool);

/// The paths as a Subversion array of internal-style paths in the pool.
inline apr_array_header_t* LuSVNPathArray(const std::vector<std::shared_ptr<const LuSVNLocalPath>>& paths,
                                          apr_pool_t* pool)
{
    apr_array_header_t* array = LuSVNEntry<11>()(pool, static_cast<int>(paths.size()), sizeof(const char*));
    for (const auto& path : paths) {
        LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
        *static_cast<const char**>(LuSVNEntry<12>()(array)) = LuSVNWorkingCopyTarget(*path, pool);
    }
    return array;
}

/// The paths for the level-3 log line: "(a, b)", "(null)" for a null path.
template <class Paths>
std::string LuSVNDescribePaths(const Paths& paths)
{
    std::string text = "(";
    for (const auto& path : paths)
        text += (text.size() > 1 ? ", " : "") + (path ? path->string() : std::string("(null)"));
    return text + ")";
}

/// Runs the operation between its Started notification (none when
/// `started` is nullopt) and its Succeeded or Failed one, each for the path,
/// and starts the context's progress anew. The Failed notification carries
/// the exception's reason and status when it is a LuSVNException; the
/// exception then goes on to the caller, whatever the handlers do with
/// Failed.
template <class Body>
auto LuSVNRunNotified(LuSVNContext& context, std::optional<std::int32_t> started, std::int32_t succeeded,
                      std::int32_t failed, const std::string& path, Body&& body) -> decltype(body())
{
    const auto notification = [&](std::int32_t action) {
        LuSVNNotification record(action);
        record.setPath(path);
        return record;
    };
    context.beginProgress();
    if (started)
        context.notify(notification(*started));
    const auto run = [&]() -> decltype(body()) {
        try {
            return body();
        } catch (...) {
            LuSVNNotification record = notification(failed);
            try {
                throw;
            } catch (const LuSVNException& exception) {
                record.setError(std::make_shared<LuSVNException>(exception));
            } catch (...) {
            }
            try {
                context.notify(record);
            } catch (...) {
                // The operation's own failure is what the caller needs to see.
            }
            throw;
        }
    };
    if constexpr (std::is_void_v<decltype(body())>) {
        run();
        context.notify(notification(succeeded));
    } else {
        auto result = run();
        context.notify(notification(succeeded));
        return result;
    }
}

}  // namespace tessera_private
