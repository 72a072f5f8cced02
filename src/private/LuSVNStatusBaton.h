// The state of one status walk, and the callbacks that the backend calls once
// per reported item. The walk itself is LuSVNDirectory::
// statusForNodesInDirectoryAtPath; the single-item collectors (a directory's
// own status with the OR of everything below it, one node's status) use the
// same dispatch, LuSVNReportStatus.
//
// Paths are keyed by their normalised text (LuSVNPath::string()): the walk
// sees every item once and the maps are hit for every ancestor, so a string
// key saves making a path object per look-up.
#pragma once

#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDirectory.h>

#include <exception>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "LuSVNStatusNodeMaker.h"
#include "LuSVNSubversion.h"

using LuSVNPathStrings = std::unordered_set<std::string>;

/// The two ends of a move of the record being handed over, for which the
/// older record form has no room: set by the dispatch of backends 1.7 and
/// later for the duration of one callback (absolute paths or null), null
/// otherwise.
struct LuSVNStatusMoves {
    const char* movedFrom = nullptr;
    const char* movedTo = nullptr;
};

/// Puts the moves on a status made from the record they came with.
void LuSVNStatusSetMoves(LuSVNStatus& status, const LuSVNStatusMoves& moves);

/// One walk's state; lives on the walking thread's stack for one backend call.
/// Nodes go to the handler as they are made; the walk keeps path texts only,
/// and the directory nodes when their aggregates are asked for.
struct LuSVNStatusBaton {
    std::shared_ptr<LuSVNContext> context;
    LuSVNStatusNodeMaker maker;
    apr_pool_t* pool = nullptr;
    const LuSVNDirectory::NodeHandler* handler = nullptr;
    LuSVNNode::LocalPath rootPath;
    /// Every directory handed over, placeholders included.
    LuSVNPathStrings reportedDirectories;
    /// Reported directories (not placeholders) with text status external.
    LuSVNPathStrings externalMarks;
    LuSVNPathStrings placeholders;
    /// The last directory handed over for each path, with propagation only.
    std::unordered_map<std::string, std::shared_ptr<LuSVNDirectory>> directoriesByPath;
    const LuSVNStatusOptions* options = nullptr;
    LuSVNPathStrings externals;
    bool rootOnly = false;
    std::uint32_t localChangeCount = 0;
    std::uint32_t remoteChangeCount = 0;
    LuSVNPathStrings conflictFiles;
    LuSVNPathStrings unversionedPaths;
    LuSVNDirectory::StatiiByPath statii;
    LuSVNDirectory::StatiiByPath repositoryStatii;
    LuSVNStatusMoves moves;
    std::exception_ptr pending;

    LuSVNStatusBaton(std::shared_ptr<LuSVNContext> walkContext, LuSVNNode::LocalPath root,
                     const LuSVNStatusOptions& walkOptions, const LuSVNDirectory::NodeHandler& nodeHandler);
};

/// The callback of the older interface (svn_wc_status_func2_t) and the walk's
/// per-item work for every backend: marks externals, counts, propagates,
/// makes the node and hands it over. An exception (the handler's too) is kept
/// in the baton and later items are ignored; the walk rethrows it once the
/// backend has returned.
void LuSVNStatusFunc(void* baton, const char* path, svn_wc_status2_t* status);

/// For a walk compared against the repository: an item the repository has
/// not changed reads as normal there, not as not asked. Every collector of
/// status records applies it, so that one item reads the same in each.
void LuSVNStatusMarkRepositoryAsked(svn_wc_status2_t& status);

/// ORs a and b into *aggregate; whether the word changed.
bool LuSVNStatusAggregate(std::uint32_t a, std::uint32_t b, std::uint32_t* aggregate);

/// ORs the two kinds into the word of every ancestor of the child up to and
/// including the root, stopping at the first ancestor that gains no bit (all
/// above it hold these bits already). Nothing when neither kind is abnormal.
void LuSVNStatusPropagateStatiiToAncestors(std::string_view childPath, std::string_view rootPath,
                                           std::uint32_t kindA, std::uint32_t kindB,
                                           LuSVNDirectory::StatiiByPath& statii);

/// The parent of a normalised absolute path ("/a/b" gives "/a", "/a" gives
/// "/"); empty for "/".
std::string_view LuSVNParentPathString(std::string_view path);

/// The backend's status call over the path (svn_client_status5 on 1.7 and
/// later, with depth infinity or, not recursive, immediates, or empty when
/// `itemOnly`; svn_client_status2 before), each record handed to `func` in the
/// older form (LuSVNClientStatusToWCStatus on 1.7 and later). `func` keeps
/// its exceptions in `pending`, which then stops the walk where the backend
/// lets it; a kept exception is raised after the call, else the call's error.
struct LuSVNStatusCall {
    bool recursive = true;
    bool itemOnly = false;
    bool getAll = false;
    bool update = false;
    bool noIgnore = false;
    bool ignoreExternals = false;
    bool depthAsSticky = true;

    /// The call's flags from the walk's options.
    static LuSVNStatusCall withOptions(const LuSVNStatusOptions& options);
};
///
/// `externals`, when given, gains the path of every external that the call
/// walks, before any item of it is handed over: Subversion announces each
/// (svn_wc_notify_status_external) to the context's notification function,
/// which the call wraps for its duration. Reading the definitions of the
/// whole tree instead would cost a tenth of the walk. `moves`, when given,
/// holds the moves of each record while `func` runs.
void LuSVNReportStatus(LuSVNContext& context, const LuSVNNode::LocalPath& path, const LuSVNStatusOptions& options,
                       const LuSVNStatusCall& call, svn_wc_status_func2_t func, void* baton,
                       std::exception_ptr& pending, apr_pool_t* pool, LuSVNPathStrings* externals = nullptr,
                       LuSVNStatusMoves* moves = nullptr);
