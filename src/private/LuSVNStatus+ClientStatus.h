// The status records of backends 1.7 and later (svn_client_status_t, from
// svn_client_status5, entry point 70) in the older svn_wc_status2_t form that
// LuSVNStatus::statusWithSVNStatus reads, so that one conversion serves every
// backend.
//
// The status walk's callback for entry point 70 calls
//
//   return LuSVNGuardCallback(baton->pending, [&] {
//       return LuSVNClientStatusToWCStatus(ctx, path, clientStatus, pool, baton->replaced,
//                                          [&](const char* itemPath, svn_wc_status2_t* record) {
//                                              ... as for the records of svn_client_status2 ...
//                                          });
//   });
//
// Must run inside the backend call, with the walk's backend on the stack.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

#include <tessera/LuSVNExport.h>

#include "LuSVNSubversion.h"

/// Fills the four kinds and the two pristine kinds of `wcStatus` from the
/// client status:
///  1. text, property, repository text and repository property from the node,
///     property, repository node and repository property status;
///  2. a node status of modified or conflicted takes the text status instead
///     (the same on the repository side);
///  3. an added node has no property status (none);
///  4. pristine text: the text status when it is none, normal or modified,
///     else none;
///  5. pristine property: the property status when it is none, normal or
///     modified and the node is not added, deleted or replaced, else none.
TESSERA_EXPORT void LuSVNClientStatusConvertFields(const svn_client_status_t* clientStatus,
                                                   svn_wc_status2_t* wcStatus);

/// The working revisions and last changes that the older interface
/// (svn_client_status2, entry point 68) gives the deleted and replaced items
/// of one status call, where svn_client_status5 gives none: read once per
/// deleted or replaced tree, at its first item, and used up item by item.
struct LuSVNReplacedItems {
    struct Values {
        svn_revnum_t revision;
        svn_revnum_t changedRevision;
        apr_time_t changedDate;
        std::optional<std::string> changedAuthor;
    };
    /// Whether the status call goes below the immediates of its target, and
    /// so must the reading of a tree.
    bool recursive = true;
    std::unordered_map<std::string, Values> byPath;
    /// The svn_client_status2 calls made so far.
    std::size_t olderCalls = 0;
};

/// Hands `handler` the svn_wc_status2_t form of one client status, made in
/// the pool:
///  1. With a repository location, an entry: revision, URL (root and the
///     escaped relative path), root, UUID, kind and last change (from the
///     out-of-date fields when the kind is unknown), schedule from the node
///     status, the copied flag, the lock, change list, size and depth,
///     has-properties when the property status is not none and
///     property-modifications when it is neither none nor normal. A
///     conflicted item asks svn_client_info3 (entry point 55) for the
///     conflict's file names (the last components of the base, their and
///     my files; for a property conflict the reject file) and for the tree
///     conflict's description. A deleted or replaced item takes from
///     `replaced` the revision it replaces (unless copied) and, deleted, its
///     last change; the first item of a tree reads them for the whole tree.
///  2. Otherwise, a node status of conflicted with a text status of none (a
///     tree-conflict victim that is not on disk): the record that
///     svn_client_status4 (entry point 69) reports for the path alone, its
///     text status none read as missing, goes to the handler instead, while
///     that call still owns it.
///  3. LuSVNClientStatusConvertFields, then the switched, copied and
///     working-copy-locked flags, the repository lock, the entry's URL, the
///     out-of-date revision, date, kind and author, and the file-external
///     flag.
/// Errors of the inner calls are returned, unchanged, for the walk to hand
/// back to Subversion. An exception of the handler (or of the library) is
/// raised after the inner call has returned: call this inside the walk
/// callback's LuSVNGuardCallback.
using LuSVNWCStatusHandler = std::function<void(const char* path, svn_wc_status2_t* status)>;
TESSERA_EXPORT svn_error_t* LuSVNClientStatusToWCStatus(svn_client_ctx_t* ctx, const char* path,
                                                        const svn_client_status_t* clientStatus, apr_pool_t* pool,
                                                        LuSVNReplacedItems& replaced,
                                                        const LuSVNWCStatusHandler& handler);

/// The older form (svn_wc_conflict_description_t) of a conflict description
/// of 1.7 and later, copied into the pool, for the conversions written for
/// the older form (LuSVNConflict::conflictFromStruct).
svn_wc_conflict_description_t* LuSVNOlderConflictDescription(const svn_wc_conflict_description2_t& conflict,
                                                             apr_pool_t* pool);
