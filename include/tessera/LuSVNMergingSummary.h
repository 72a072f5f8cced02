// Where two lines of development stand in merging with each other: what an
// automatic merge of a source into a target would use.
//
//   auto summary = LuSVNNode::mergingSummaryForNodeAtPath(trunk, LuSVNRevision::HEAD(),
//                                                         branchWorkingCopy, LuSVNRevision::BASE(), context);
//   summary.youngestCommonAncestor().revision;   // where the branch was made
//   summary.base().revision;                     // the last full merge (or the ancestor)
//   summary.repositoryPathOf(summary.target());  // "branches/b"
//   summary.needsReintegration();                // true when the last merge went the other way
//
// An immutable value: the URLs are copied out of Subversion's memory when it
// is made.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNURL.h>

/// Where a source and a target stand in merging with each other, as
/// LuSVNNode::mergingSummaryForNodeAtPath answers it.
class TESSERA_EXPORT LuSVNMergingSummary final {
public:
    /// A node of the repository at a revision.
    struct Location {
        /// The node's URL.
        std::shared_ptr<const LuSVNURL> url;
        /// The revision the node is taken at.
        std::int32_t revision = -1;
    };

    /// A summary of the given locations, all in the repository at
    /// repositoryRootURL.
    LuSVNMergingSummary(bool needsReintegration, Location youngestCommonAncestor, Location base, Location right,
                        Location target, std::shared_ptr<const LuSVNURL> repositoryRootURL);

    /// Whether the next automatic merge from the source is a reintegration:
    /// the last full merge went from the target to the source.
    bool needsReintegration() const { return needsReintegration_; }
    /// The youngest common ancestor of source and target: where they forked.
    const Location& youngestCommonAncestor() const { return youngestCommonAncestor_; }
    /// The base of the next three-way merge: the last full merge in either
    /// direction, or the youngest common ancestor when there was none.
    const Location& base() const { return base_; }
    /// The tip of the source: the right-hand side of the next merge.
    const Location& right() const { return right_; }
    /// The target as the summary sees it.
    const Location& target() const { return target_; }
    /// The root of the repository holding all four locations.
    const std::shared_ptr<const LuSVNURL>& repositoryRootURL() const { return repositoryRootURL_; }

    /// The location's path inside the repository, decoded and without a
    /// leading "/" ("branches/my branch"); "" for the root itself.
    std::string repositoryPathOf(const Location& location) const;

private:
    bool needsReintegration_;
    Location youngestCommonAncestor_;
    Location base_;
    Location right_;
    Location target_;
    std::shared_ptr<const LuSVNURL> repositoryRootURL_;
};
