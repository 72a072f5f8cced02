// tessera merge: changes of a source applied to a working copy, as svn merge:
// a sync merge of everything eligible, chosen revisions (-r, -c), the
// differences between two sources, or a branch reintegrated.
#include <tessera/LuSVNDiffOptions.h>
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <exception>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "Command.h"
#include "HistoryOptions.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::vector<std::string> revisionRanges;
    std::vector<std::string> changes;
    std::optional<std::string> depth;
    std::optional<std::string> extensions;
    LuSVNConflictChoice accept = LuSVNConflictChoicePostpone;
    bool quiet = false;
    bool force = false;
    bool dryRun = false;
    bool recordOnly = false;
    bool ignoreAncestry = false;
    bool reintegrate = false;
    bool allowMixedRevisions = false;
};

using Ranges = LuSVNNode::MergeRanges;

std::shared_ptr<const LuSVNRevisionRange> numberRange(std::int32_t first, std::int32_t last)
{
    return LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(first), LuSVNRevision::revisionWithNumber(last));
}

// -c N merges N-1:N, -c -N reverses it; several changes may be given with
// commas, each in its own range, in the given order.
void addChangeRanges(const std::string& text, Ranges& ranges)
{
    std::istringstream changes(text);
    std::string change;
    while (std::getline(changes, change, ',')) {
        const std::int32_t number = changeNumber(change);
        ranges.push_back(number > 0 ? numberRange(number - 1, number) : numberRange(-number, -number - 1));
    }
}

Ranges rangesOfSettings(const Settings& settings)
{
    Ranges ranges;
    for (const std::string& text : settings.revisionRanges) {
        const auto [first, last] = parseRevisionRange(text);
        if (!last)
            raiseArgumentError("Second revision required");
        ranges.push_back(LuSVNRevisionRange::from(first->keyRevision(), last->keyRevision()));
    }
    for (const std::string& text : settings.changes)
        addChangeRanges(text, ranges);
    return ranges;
}

LuSVNNode::Path sourcePath(const std::string& source)
{
    return isURL(source) ? LuSVNNode::Path(LuSVNURL::URLWithString(source)) : LuSVNNode::Path(targetPath(source));
}

// The peg revision of a source: the one given, else HEAD for a URL and the
// working files for a working-copy path, as svn takes them.
LuSVNNode::MergeRevision pegOf(const std::string& source, const std::shared_ptr<const LuSVNRevisionSpec>& peg)
{
    if (peg)
        return peg->keyRevision();
    return isURL(source) ? LuSVNRevision::HEAD() : LuSVNRevision::WORKING();
}

LuSVNMergeOptions mergeOptions(const Settings& settings)
{
    LuSVNMergeOptions options;
    if (settings.depth)
        options.setDepth(depthForWord(*settings.depth));
    const LuSVNDiffOptions comparison = diffOptionsForExtensions(settings.extensions);
    options.setWhitespaceCompareBehavior(comparison.whitespaceCompareBehavior());
    options.setIgnoreEOLStyle(comparison.ignoreEOLStyle());
    options.setForce(settings.force);
    options.setDryRun(settings.dryRun);
    options.setRecordOnly(settings.recordOnly);
    options.setIgnoreAncestry(settings.ignoreAncestry);
    return options;
}

// svn's way with --accept: the merge postpones every conflict, and then each
// item that conflicted is resolved with the choice, in path order. svn counts
// an item it tried as resolved even when Subversion refuses (a tree conflict
// takes only "working"); the refusal ends the resolving and is handed back,
// to be raised after the summary. Quiet, there are no notifications to name
// the items: the whole target is resolved.
std::exception_ptr resolveConflicts(const TesseraOperation& operation, const std::string& target,
                                    LuSVNConflictChoice choice)
{
    LuSVNResolveOptions options;
    options.setConflictChoice(choice);
    const auto& notifier = operation.notifier();
    if (!notifier) {
        options.setRecursive(true);
        LuSVNNode::resolveNodeAtPath(targetPath(target), options, operation.context());
        return nullptr;
    }
    for (const std::string& path : notifier->conflictedPaths()) {
        notifier->markResolved(path);
        try {
            LuSVNNode::resolveNodeAtPath(LuSVNLocalPath::pathWithString(path), options, operation.context());
        } catch (const LuSVNException&) {
            return std::current_exception();
        }
    }
    return nullptr;
}

int merge(const CLI::App& command, const Settings& settings)
{
    checkArgumentCount(command, settings.arguments, 1, 3);
    const Ranges ranges = rangesOfSettings(settings);
    const auto [source, peg] = splitPegRevision(settings.arguments[0]);
    // Two sources are two URLs (or paths with revisions); otherwise the
    // second argument is the target.
    const bool twoSources = settings.arguments.size() == 3 ||
                            (settings.arguments.size() == 2 && isURL(source) && isURL(settings.arguments[1]));
    if (twoSources && !ranges.empty())
        raiseArgumentError("Cannot specify a revision range with two URLs");
    if (settings.reintegrate && !ranges.empty())
        raiseArgumentError("-r and -c can't be used with --reintegrate");
    const std::string target = settings.arguments.size() == (twoSources ? 3U : 2U) ? settings.arguments.back() : ".";
    localTargets({target}, std::nullopt, false);
    const LuSVNMergeOptions options = mergeOptions(settings);

    TesseraOperation operation(target, {settings.quiet, false});
    const auto& context = operation.context();
    if (twoSources) {
        const auto [secondSource, secondPeg] = splitPegRevision(settings.arguments[1]);
        LuSVNNode::mergeNodeAtPath(sourcePath(source), pegOf(source, peg), sourcePath(secondSource),
                                   pegOf(secondSource, secondPeg), targetPath(target), options, context);
    } else if (settings.reintegrate) {
        LuSVNNode::reintegrateMergeNodeAtPath(sourcePath(source), pegOf(source, peg), targetPath(target), options,
                                              context);
    } else {
        // Without revisions everything of the source's history up to the peg
        // that is not merged yet; merge tracking leaves out the rest.
        const Ranges merged = ranges.empty() ? Ranges{LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(1),
                                                                                pegOf(source, peg))}
                                             : ranges;
        LuSVNNode::mergeNodeAtPath(sourcePath(source), merged, pegOf(source, peg), targetPath(target), options,
                                   context);
    }
    std::exception_ptr refusal;
    if (settings.accept != LuSVNConflictChoicePostpone && !settings.dryRun)
        refusal = resolveConflicts(operation, target, settings.accept);
    operation.concludeUpdate();
    if (refusal)
        std::rethrow_exception(refusal);
    return 0;
}

const TesseraCommand mergeCommand(
    {"merge",
     {},
     "Merge changes into a working copy.",
     "merge SOURCE[@REV] [TARGET_WCPATH]\n"
     "       merge [-c M[,N...] | -r N:M ...] SOURCE[@REV] [TARGET_WCPATH]\n"
     "       merge --reintegrate SOURCE[@REV] [TARGET_WCPATH]\n"
     "       merge SOURCE1[@N] SOURCE2[@M] [TARGET_WCPATH]",
     "Applies the changes of SOURCE to the working copy at TARGET_WCPATH\n"
     "(default '.'), as svn merge: without revisions every revision not\n"
     "merged yet, with -r and -c the ones named (-c -N reverses r N), with\n"
     "two sources the differences between them. Conflicts are postponed, or\n"
     "resolved afterwards with the version --accept names."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addOption(
            command, "-r,--revision", [settings](const std::string& text) { settings->revisionRanges.push_back(text); },
            "the revisions N:M to merge (N exclusive); may be repeated");
        addOption(
            command, "-c,--change", [settings](const std::string& text) { settings->changes.push_back(text); },
            "the change made by revision ARG (-ARG reverses it); a comma-separated list merges each");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addFlag(command, "--force", settings->force, "delete modified and unversioned items the merge deletes");
        addFlag(command, "--dry-run", settings->dryRun, "show what the merge would do, change nothing");
        addFlag(command, "--record-only", settings->recordOnly, "only record the merge in the merge info");
        addFlag(command, "--ignore-ancestry", settings->ignoreAncestry, "compare unrelated items as related");
        addFlag(command, "--reintegrate", settings->reintegrate, "merge a branch back into the line it came from");
        addFlag(command, "--allow-mixed-revisions", settings->allowMixedRevisions,
                "merge into a working copy of several revisions (always allowed here)");
        addOption(
            command, "-x,--extensions", [settings](const std::string& text) { settings->extensions = text; },
            "how lines are compared: -b (--ignore-space-change), -w (--ignore-all-space), --ignore-eol-style");
        addOption(
            command, "--accept",
            [settings](const std::string& word) { settings->accept = acceptChoiceForWord(word); },
            "resolve conflicts with ARG: 'postpone' (p), 'working', 'base',\n"
            "'mine-conflict' (mc), 'theirs-conflict' (tc), 'mine-full' (mf),\n"
            "'theirs-full' (tf); 'edit' and 'launch' need a terminal");
        addArguments(command, settings->arguments);
        return [&command, settings] { return merge(command, *settings); };
    });

}  // namespace
