// The unified diff between two locations on standard output, as svn diff and
// svn log --diff print it.
#pragma once

#include <tessera/LuSVNDiff.h>
#include <tessera/LuSVNDiffOptions.h>
#include <tessera/LuSVNNode.h>

#include <memory>

/// Writes the diff as the library makes it. With `relativeToCurrentDirectory`
/// the paths in the headers are relative to the current directory, the
/// header of a deleted file too (Subversion's older diff call leaves that one
/// absolute).
void writeLocationDiff(const LuSVNNode::Path& originalPath, const LuSVNDiff::Revision& originalRevision,
                       const LuSVNNode::Path& modifiedPath, const LuSVNDiff::Revision& modifiedRevision,
                       bool relativeToCurrentDirectory, const LuSVNDiffOptions& options,
                       const std::shared_ptr<LuSVNContext>& context);
