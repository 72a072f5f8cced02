// What the commands that change a working copy share: the context of the
// right backend with the run's configuration and credentials, svn's
// notification lines (unless quiet), the progress line on a terminal, and
// the targets as the command line and --targets give them.
#pragma once

#include <tessera/Tessera.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Notifier.h"
#include "Options.h"
#include "ProgressLine.h"

class TesseraOperation {
public:
    struct Settings {
        bool quiet = false;
        /// Whether the command shows a progress line on a terminal.
        bool progress = false;
    };

    /// A context on the backend of the given release.
    TesseraOperation(const LuSVNVersion& version, Settings settings);
    /// A context on the backend that reads the working copy holding the
    /// path (its nearest existing directory).
    TesseraOperation(const std::string& workingCopyPath, Settings settings);
    // The context's handlers point back here.
    ~TesseraOperation();
    TesseraOperation(const TesseraOperation&) = delete;
    TesseraOperation& operator=(const TesseraOperation&) = delete;

    const std::shared_ptr<LuSVNContext>& context() const { return context_; }
    /// Null when quiet: svn then prints no notification.
    const std::shared_ptr<TesseraNotifier>& notifier() const { return notifier_; }
    /// Takes the progress line away for good, before the command's own last
    /// lines.
    void finishProgress() { progress_.finish(); }
    /// svn's last words of an update or switch: the conflict summary, and
    /// E205011 when an external could not be worked on.
    void concludeUpdate() const;

private:
    TesseraProgressLine progress_;
    std::shared_ptr<LuSVNContext> context_;
    std::shared_ptr<TesseraNotifier> notifier_;
};

/// What update and switch take alike.
struct TesseraUpdateSettings {
    std::vector<std::string> arguments;
    std::shared_ptr<const LuSVNRevisionSpec> revision;
    std::optional<std::string> depth;
    std::optional<std::string> setDepth;
    bool nonRecursive = false;
    bool quiet = false;
    bool force = false;
    bool ignoreExternals = false;
};

/// -r, -N, --depth, --set-depth (the two refused together, as by svn), -q,
/// --force, --ignore-externals and the arguments.
void addUpdateOptions(CLI::App& command, const std::shared_ptr<TesseraUpdateSettings>& settings);

/// The options of an update or switch as the settings say: without a depth
/// each item keeps the depth its working copy has; --set-depth makes the
/// depth sticky.
template <class UpdateOptions>
void applyUpdateSettings(UpdateOptions& options, const TesseraUpdateSettings& settings)
{
    options.setDepth(LuSVNDepthUnknown);
    options.setDepthIsSticky(false);
    if (settings.setDepth) {
        options.setDepth(depthForWord(*settings.setDepth));
        options.setDepthIsSticky(true);
    } else if (settings.depth) {
        options.setDepth(depthForWord(*settings.depth));
    } else if (settings.nonRecursive) {
        options.setDepth(LuSVNDepthFiles);
    }
    options.setProcessExternals(!settings.ignoreExternals);
    options.setAllowUnversionedObstructions(settings.force);
}

/// The absolute, normalised path of a target given on the command line.
std::string absoluteTargetPath(const std::string& target);

/// The library's path value of a target given on the command line.
LuSVNNode::LocalPath targetPath(const std::string& target);

/// The targets of a command: its arguments, then the lines of the --targets
/// file; "." when there are none and the command then works on the current
/// directory. URLs are refused in svn's words, E205000 "'<target>' is not a
/// local path".
std::vector<std::string> localTargets(const std::vector<std::string>& arguments,
                                      const std::optional<std::string>& targetsFile, bool implicitDot);

/// Whether the text is a URL ("scheme://...").
bool isURL(const std::string& text);

/// The URL of a command-line argument as svn takes it: what a URL cannot
/// hold (spaces, quotes, bytes beyond ASCII, ...) escaped, the escapes
/// already there kept.
LuSVNNode::URLPath commandLineURL(const std::string& text);

/// svn's way with targets that cannot be worked on: an error of one of the
/// given codes becomes a warning (none when quiet) and the next target is
/// worked on; at the end one error says which kinds there were.
class TesseraTargetFailures {
public:
    /// `summaries`: for each code, the line of the final error ("Could not
    /// add all targets because some targets don't exist").
    TesseraTargetFailures(bool quiet, std::vector<std::pair<int, std::string>> summaries);

    /// Runs the work of one target.
    void attempt(const std::function<void()>& work);
    /// E200009 "Illegal target for the requested operation" under the
    /// summaries of the codes seen, when there were any.
    void raiseIfAny() const;

private:
    bool quiet_;
    std::vector<std::pair<int, std::string>> summaries_;
    std::vector<int> seen_;
};

/// A target without its peg revision ("URL@5", "path@HEAD"; a final "@"
/// alone names none, so that paths holding "@" can be given), and the peg
/// revision, null when none. A peg svn cannot read raises E205000 "Syntax
/// error parsing peg revision '<peg>'".
std::pair<std::string, std::shared_ptr<const LuSVNRevisionSpec>> splitPegRevision(const std::string& target);
