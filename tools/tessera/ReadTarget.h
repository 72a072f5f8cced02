// A target of the commands that read a node (cat, list, info, export): a URL
// or a working-copy path with its peg revision, and the revisions as svn
// resolves them.
#pragma once

#include <tessera/Tessera.h>

#include <memory>
#include <string>

struct TesseraReadTarget {
    /// The target without its peg revision, as the user wrote it.
    std::string text;
    bool isURL = false;
    /// The URL, or the absolute working-copy path.
    LuSVNNode::Path path;
    /// The operative revision of -r at the peg revision of the argument,
    /// each unspecified when not given: Subversion then resolves them as svn
    /// does (HEAD for a URL; for a path what the operation reads there).
    std::shared_ptr<const LuSVNRevisionSpec> revision;
};

/// The target of a command-line argument ("URL@5", "path@BASE") read at the
/// operative revision of -r (null when not given).
TesseraReadTarget readTarget(const std::string& argument, const std::shared_ptr<const LuSVNRevisionSpec>& operative);
