// tessera diff [TARGET...]: the changes of working-copy paths or URLs between
// two revisions as a unified diff, as svn diff prints it. The library's diff
// writes to standard output as Subversion produces the text, so a large
// tree's diff is never held whole. --summarize lists the changed items
// instead, as they arrive.
#include <tessera/LuSVNDiff.h>
#include <tessera/LuSVNDiffOptions.h>
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "DiffOutput.h"
#include "HistoryOptions.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> revision;
    std::optional<std::string> change;
    std::optional<std::string> extensions;
    std::optional<std::string> old;
    std::optional<std::string> modified;
    bool nonRecursive = false;
    bool noticeAncestry = false;
    bool noDiffDeleted = false;
    bool summarize = false;
    bool xml = false;
    bool git = false;
    bool propertiesOnly = false;
    bool showCopiesAsAdds = false;
};

// -c N is the change N-1:N, -c -N its reversal.
std::pair<LuSVNDiff::Revision, LuSVNDiff::Revision> changeRange(std::int32_t change)
{
    const auto from = LuSVNRevision::revisionWithNumber(change > 0 ? change - 1 : -change);
    const auto to = LuSVNRevision::revisionWithNumber(change > 0 ? change : -change - 1);
    return {from, to};
}

// Where one side of the diff stands: the path or URL and its revision.
struct Side {
    std::string target;
    LuSVNDiff::Revision revision;
};

// The side of a target (peg revision allowed), at the revision of -r or -c
// when given, else at its peg, else at `fallback`.
Side side(const std::string& text, const std::optional<LuSVNDiff::Revision>& given, const LuSVNDiff::Revision& fallback)
{
    auto [target, peg] = splitPegRevision(text);
    return {target, given ? *given : peg ? peg->keyRevision() : fallback};
}

LuSVNNode::Path nodePath(const std::string& target)
{
    return isURL(target) ? LuSVNNode::Path(commandLineURL(target)) : LuSVNNode::Path(targetPath(target));
}

void writeDiff(const Side& original, const Side& modified, const LuSVNDiffOptions& options, const Settings& settings)
{
    const bool url = isURL(original.target);
    TesseraOperation operation(url ? original.target : absoluteTargetPath(original.target), {true, false});
    if (settings.summarize) {
        writeLocationSummary(nodePath(original.target), original.revision, nodePath(modified.target),
                             modified.revision, original.target, settings.xml, options, operation.context());
        return;
    }
    // Paths in the headers as svn shows them: relative to the current
    // directory. Subversion refuses that for the working files of two
    // targets, whose headers then name the targets as given.
    const bool twoWorkingFiles = original.target != modified.target &&
                                 original.revision->isEqual(LuSVNRevision::WORKING()) &&
                                 modified.revision->isEqual(LuSVNRevision::WORKING());
    writeLocationDiff(nodePath(original.target), original.revision, nodePath(modified.target), modified.revision,
                      !url && !twoWorkingFiles, options, operation.context());
}

// The diff or summary of each target, or of --old against --new.
void writeDiffs(const Settings& settings, const LuSVNDiffOptions& options)
{
    // The revisions of -c or -r; a single -r N ends at the working files (or
    // HEAD for a URL).
    std::optional<LuSVNDiff::Revision> from;
    std::optional<LuSVNDiff::Revision> to;
    if (settings.change) {
        std::tie(from, to) = changeRange(changeNumber(*settings.change));
    } else if (settings.revision) {
        const auto [first, second] = parseRevisionRange(*settings.revision);
        from = first->keyRevision();
        if (second)
            to = second->keyRevision();
    }
    const auto base = [](const std::string& target) {
        return isURL(target) ? LuSVNRevision::HEAD() : LuSVNRevision::BASE();
    };
    const auto working = [](const std::string& target) {
        return isURL(target) ? LuSVNRevision::HEAD() : LuSVNRevision::WORKING();
    };

    // --old and --new, or two URLs: one side against the other.
    const bool twoURLs = !settings.old && settings.arguments.size() == 2 && isURL(settings.arguments[0]) &&
                         isURL(settings.arguments[1]) && !from;
    if (settings.old || twoURLs) {
        const std::string old = settings.old ? *settings.old : settings.arguments[0];
        const std::string modified = settings.modified ? *settings.modified : twoURLs ? settings.arguments[1] : old;
        // Two working-copy paths compare their working files; one with itself
        // compares its base with its working file.
        const std::string oldTarget = splitPegRevision(old).first;
        const std::string newTarget = splitPegRevision(modified).first;
        const Side original = side(old, from, oldTarget == newTarget ? base(oldTarget) : working(oldTarget));
        const Side changed = side(modified, to, working(newTarget));
        // With --old, the arguments are paths below both sides.
        const std::vector<std::string> paths =
            settings.old && !settings.arguments.empty() ? settings.arguments : std::vector<std::string>{""};
        for (const std::string& path : paths) {
            const auto below = [&path](const Side& at) {
                return Side{path.empty() ? at.target : at.target + "/" + path, at.revision};
            };
            writeDiff(below(original), below(changed), options, settings);
        }
        return;
    }

    std::vector<std::string> targets = settings.arguments;
    if (targets.empty())
        targets.push_back(".");
    for (const std::string& target : targets) {
        const Side original = side(target, from, base(target));
        if (isURL(original.target) && !from)
            LuSVNException::exceptionWithReason("Not all required revisions are specified", 195002)->raise();
        writeDiff(original, {original.target, to ? *to : working(original.target)}, options, settings);
    }
}

int diff(const Settings& settings)
{
    if (settings.revision && settings.change)
        raiseArgumentError("Multiple revision arguments encountered; can't specify -c twice, or both -c and -r");
    LuSVNDiffOptions options = diffOptionsForExtensions(settings.extensions);
    options.setRecursive(!settings.nonRecursive);
    options.setNoticeAncestry(settings.noticeAncestry);
    options.setDiffDeleted(!settings.noDiffDeleted);
    options.setUseGitDiffFormat(settings.git);
    options.setPropertiesOnly(settings.propertiesOnly);
    options.setShowCopiesAsAdds(settings.showCopiesAsAdds);
    if (settings.xml && !settings.summarize)
        throwUsageError("diff", 205000, "'--xml' option only valid with '--summarize' option");
    if (settings.git && settings.summarize)
        throwUsageError("diff", 205000, "'--git' not valid with '--summarize' option");
    if (settings.xml)
        writeOutput("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<diff>\n<paths>\n");
    writeDiffs(settings, options);
    if (settings.xml)
        writeOutput("</paths>\n</diff>\n");
    return 0;
}

const TesseraCommand diffCommand(
    {"diff",
     {"di"},
     "Display local changes or differences between two revisions.",
     "diff [-c M | -r N[:M]] [TARGET[@REV]...]\n"
     "diff [-r N[:M]] --old=OLD-TGT[@OLDREV] [--new=NEW-TGT[@NEWREV]]\n"
     "diff OLD-URL[@OLDREV] NEW-URL[@NEWREV]",
     "Display the changes made to TARGETs as they are seen in REV between\n"
     "two revisions. TARGETs may be all working copy paths or all URLs.\n"
     "Without -r or -c, the working copy's base text is compared with its\n"
     "working files; a single -r N compares N with the working files (with\n"
     "HEAD for a URL); -c M compares M-1 with M.\n"
     "\n"
     "With --old (and --new, else the same target), or two URLs, one target\n"
     "at its revision is compared with the other at its revision."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionRangeOption(command, settings->revision);
        addChangeOption(command, settings->change);
        addFlag(command, "-N,--non-recursive", settings->nonRecursive, "obsolete; compare the files of the target only");
        addExtensionsOption(command, settings->extensions);
        addFlag(command, "--notice-ancestry", settings->noticeAncestry,
                "diff unrelated nodes as delete and add");
        addFlag(command, "--no-diff-deleted", settings->noDiffDeleted, "do not print differences for deleted files");
        addFlag(command, "--summarize", settings->summarize, "show a summary of the results");
        addFlag(command, "--xml", settings->xml, "output in XML (with --summarize)");
        addFlag(command, "--git", settings->git, "use git's extended diff format");
        addFlag(command, "--properties-only", settings->propertiesOnly, "show only properties during the operation");
        addFlag(command, "--show-copies-as-adds", settings->showCopiesAsAdds,
                "don't diff copied or moved files with their source");
        addOption(
            command, "--old", [settings](const std::string& text) { settings->old = text; },
            "use ARG as the older target");
        addOption(
            command, "--new", [settings](const std::string& text) { settings->modified = text; },
            "use ARG as the newer target");
        addArguments(command, settings->arguments);
        return [settings] { return diff(*settings); };
    });

}  // namespace
