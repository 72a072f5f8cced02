// One item of a diff summary: what changed at a path between two locations,
// without the text of the change.
//
//   LuSVNDiff::summarizeOriginalAtPath(old, r1, modified, r2, options,
//       [](const LuSVNDiffSummary& item) { show(item.path(), item.kind()); }, context);
#pragma once

#include <cstdint>
#include <string>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNNode.h>

struct svn_client_diff_summarize_t;

/// How the item differs (Subversion's svn_client_diff_summarize_kind_t).
enum LuSVNDiffSummaryKind : std::int32_t {
    LuSVNDiffSummaryKindNormal = 0,    ///< only its properties changed, or nothing
    LuSVNDiffSummaryKindAdded = 1,     ///< exists on the modified side only
    LuSVNDiffSummaryKindModified = 2,  ///< its text or entries changed
    LuSVNDiffSummaryKindDeleted = 3,   ///< exists on the original side only
};

/// One summarised item, copied from what Subversion reports.
class TESSERA_EXPORT LuSVNDiffSummary {
public:
    /// Path "", kind Normal, no property change, node kind None.
    LuSVNDiffSummary() = default;
    /// An item with every field given.
    LuSVNDiffSummary(std::string path, LuSVNDiffSummaryKind kind, bool propertiesChanged, LuSVNNodeKind nodeKind);
    /// A copy of Subversion's record; nothing of it is kept.
    static LuSVNDiffSummary summaryWithSVNSummary(const svn_client_diff_summarize_t& summary);

    /// The path relative to the compared target, with "/" separators; "" for
    /// the target itself.
    const std::string& path() const { return path_; }
    /// See LuSVNDiffSummaryKind.
    LuSVNDiffSummaryKind kind() const { return kind_; }
    /// Whether the item's properties differ.
    bool propertiesChanged() const { return propertiesChanged_; }
    /// File or directory.
    LuSVNNodeKind nodeKind() const { return nodeKind_; }

    /// "none", "added", "modified" or "deleted" (svn's XML words), "none"
    /// also for values out of range.
    static std::string wordFromKind(LuSVNDiffSummaryKind kind);
    /// "{ <LuSVNDiffSummary: 0x...>, path: a/b, kind: modified, props: none,
    /// nodeKind: 1 }".
    std::string description() const;

private:
    std::string path_;
    LuSVNDiffSummaryKind kind_ = LuSVNDiffSummaryKindNormal;
    bool propertiesChanged_ = false;
    LuSVNNodeKind nodeKind_ = LuSVNNodeKindNone;
};
