// What Subversion 1.10 and later say of one tree conflict and the ways they
// offer to resolve it (LuSVNNode::treeConflictOptionsForNodeAtPath).
//
//   auto offered = LuSVNNode::treeConflictOptionsForNodeAtPath(path, context);
//   // offered.incomingChange: "File moved to 'g' by ... in r2."
//   for (const LuSVNTreeConflictOption& option : offered.options)
//       std::printf("%s: %s\n", option.label.c_str(), option.description.c_str());
//   LuSVNNode::resolveTreeConflictAtPath(path, offered.options[1].id, context);
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// One way to resolve a tree conflict.
struct LuSVNTreeConflictOption {
    /// Subversion's option id (svn_client_conflict_option_id_t of the
    /// backend's release, passed through unchanged): what
    /// LuSVNNode::resolveTreeConflictAtPath takes.
    std::int32_t id = 0;
    /// A few words ("Move and merge").
    std::string label;
    /// What the option does, in a sentence.
    std::string description;

    /// Equal id, label and description.
    bool operator==(const LuSVNTreeConflictOption&) const = default;
};

/// A tree conflict as Subversion describes it, with its options in
/// Subversion's order.
struct LuSVNTreeConflictOptions {
    /// The change that came in ("File moved to 'g' by alice in r2.").
    std::string incomingChange;
    /// What the working copy had done ("A file containing uncommitted
    /// changes was found in the working copy.").
    std::string localChange;
    /// The resolutions offered; postponing is among them.
    std::vector<LuSVNTreeConflictOption> options;
};
