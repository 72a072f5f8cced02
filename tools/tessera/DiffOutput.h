// The unified diff between two locations on standard output, as svn diff and
// svn log --diff print it, and the summary of svn diff --summarize.
#pragma once

#include <tessera/LuSVNDiff.h>
#include <tessera/LuSVNDiffOptions.h>
#include <tessera/LuSVNNode.h>

#include <memory>
#include <string>

/// Writes the diff as the library makes it. With `relativeToCurrentDirectory`
/// the paths in the headers are relative to the current directory, the
/// header of a deleted file too (Subversion's older diff call leaves that one
/// absolute).
void writeLocationDiff(const LuSVNNode::Path& originalPath, const LuSVNDiff::Revision& originalRevision,
                       const LuSVNNode::Path& modifiedPath, const LuSVNDiff::Revision& modifiedRevision,
                       bool relativeToCurrentDirectory, const LuSVNDiffOptions& options,
                       const std::shared_ptr<LuSVNContext>& context);

/// The same for one location found at its peg revision, between two
/// revisions (svn diff -r N:M TARGET@PEG).
void writePegDiff(const LuSVNNode::Path& path, const LuSVNDiff::Revision& pegRevision,
                  const LuSVNDiff::Revision& startRevision, const LuSVNDiff::Revision& endRevision,
                  bool relativeToCurrentDirectory, const LuSVNDiffOptions& options,
                  const std::shared_ptr<LuSVNContext>& context);

/// Prints each item that differs between the two locations as svn diff
/// --summarize does ("M       path", or a <path> element with `xml`), its path
/// the target as given (`shownTarget`) joined with the item's path.
void writeLocationSummary(const LuSVNNode::Path& originalPath, const LuSVNDiff::Revision& originalRevision,
                          const LuSVNNode::Path& modifiedPath, const LuSVNDiff::Revision& modifiedRevision,
                          const std::string& shownTarget, bool xml, const LuSVNDiffOptions& options,
                          const std::shared_ptr<LuSVNContext>& context);
