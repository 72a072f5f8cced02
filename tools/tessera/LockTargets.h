// What tessera lock and unlock share: their targets as svn takes them (all
// working-copy paths or all URLs, no peg revisions), the context for them,
// and svn's one error after targets that failed.
#pragma once

#include <tessera/Tessera.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

struct TesseraLockTargets {
    std::vector<LuSVNNode::Path> paths;
    /// Whether the targets are URLs; else working-copy paths.
    bool urls = false;
};

/// The arguments and the lines of the --targets file. Raises svn's errors:
/// E205001 for no target, E205000 "Error parsing arguments" over E200009
/// "Cannot mix repository and working copy targets", and E200009
/// "'<target>': a peg revision is not allowed here".
TesseraLockTargets lockTargets(const CLI::App& command, const std::vector<std::string>& arguments,
                               const std::optional<std::string>& targetsFile);

/// Runs the library's lock or unlock on a context for the targets (the
/// working copy's backend, the newest one for URLs). The targets that
/// failed were warned about one by one (unless quiet), so of the library's
/// error that sums them up only its own line is raised, as svn prints it.
void runOnLockTargets(const TesseraLockTargets& targets, bool quiet,
                      const std::function<void(const std::shared_ptr<LuSVNContext>&)>& work);
