// What Subversion knows about one node of a working copy or a repository:
// the record that svn info prints.
//
//   LuSVNNode::reportInfoForNodeAtPath(path, LuSVNRevisionSpec::UNSPECIFIED(), LuSVNDepthEmpty,
//       [](const LuSVNInfo& info) { std::cout << info.URL->string() << "\n"; }, context);
//
// A plain record: the handler of the report gets it for the time of the
// call and copies what it keeps.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNLock.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNStatus.h>
#include <tessera/LuSVNURL.h>

/// What Subversion knows of one item of a working copy or repository, as
/// LuSVNNode::reportInfoForNodeAtPath hands it out (the fields of svn info).
struct TESSERA_EXPORT LuSVNInfo {
    /// The dates of the record.
    using Date = std::chrono::system_clock::time_point;

    /// The node as Subversion names it: the absolute path of a working-copy
    /// node; a repository target by its last component ("trunk"), the nodes
    /// below it by their path relative to it ("a.c", "dir/a.c"), URL-decoded.
    std::string path;
    /// The node's repository URL; null for an item Subversion has none for.
    LuSVNNode::URLPath URL;
    /// The repository's root URL, when known.
    LuSVNNode::URLPath repositoryRootURL;
    /// The repository's UUID, when known.
    std::optional<std::string> repositoryUUID;
    /// The node's revision (the working copy's base revision of a
    /// working-copy node); LuSVNInvalidRevision when none.
    std::int32_t revision = LuSVNInvalidRevision;
    /// The node's kind.
    LuSVNNodeKind kind = LuSVNNodeKindUnknown;
    /// A repository file's size; none for directories and working-copy nodes.
    std::optional<std::int64_t> size;
    /// The revision of the node's last change.
    std::int32_t lastChangedRevision = LuSVNInvalidRevision;
    /// The date of the last change, when known.
    std::optional<Date> lastChangedDate;
    /// The author of the last change, when known.
    std::optional<std::string> lastChangedAuthor;
    /// The repository's lock of a repository node, the working copy's lock
    /// of a working-copy node; null when none.
    std::shared_ptr<const LuSVNLock> lock;

    /// Whether the fields below are known: the node is in a working copy.
    bool hasWorkingCopyInfo = false;
    /// The working copy's root directory (backends 1.7 and later).
    std::optional<std::string> workingCopyRootPath;
    /// What the next commit does with the node.
    LuSVNSchedule schedule = LuSVNScheduleNormal;
    /// The source of a copy scheduled for commit: its URL and revision.
    std::optional<std::string> copiedFromURL;
    /// The revision of the copy's source; LuSVNInvalidRevision when none.
    std::int32_t copiedFromRevision = LuSVNInvalidRevision;
    /// The depth of a working-copy directory (LuSVNDepthUnknown when not
    /// recorded).
    LuSVNDepth depth = LuSVNDepthUnknown;
    /// The time of the working file that the working copy recorded.
    std::optional<Date> textLastUpdated;
    /// The pristine text's checksum in hexadecimal: SHA-1 on backends 1.7
    /// and later, MD5 through the older interface.
    std::optional<std::string> checksum;
    /// The changelist the node is on.
    std::optional<std::string> changelist;
    /// Where a moved node came from, an absolute path (1.8 and later).
    std::optional<std::string> movedFromPath;
    /// Where a moved node went, an absolute path (1.8 and later).
    std::optional<std::string> movedToPath;
};
