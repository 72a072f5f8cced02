// tessera update [PATH...]: the working copy brought to a revision, as svn
// update.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

#include "Command.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    std::shared_ptr<const LuSVNRevisionSpec> revision;
    std::optional<std::string> depth;
    std::optional<std::string> setDepth;
    bool nonRecursive = false;
    bool quiet = false;
    bool force = false;
    bool ignoreExternals = false;
};

// svn's closing lines when several targets were updated.
void printUpdateSummary(const std::vector<std::string>& targets, const std::vector<std::int32_t>& revisions)
{
    if (targets.size() < 2)
        return;
    const std::string prefix = absoluteTargetPath(".");
    std::string out;
    for (std::size_t i = 0; i < targets.size() && i < revisions.size(); ++i) {
        if (revisions[i] == LuSVNInvalidRevision)
            continue;
        if (out.empty())
            out = "Summary of updates:\n";
        out += "  Updated '" + TesseraNotifier::displayPath(prefix, absoluteTargetPath(targets[i])) + "' to r" +
               std::to_string(revisions[i]) + ".\n";
    }
    std::fputs(out.c_str(), stdout);
}

int update(const Settings& settings)
{
    const auto targets = localTargets(settings.arguments, settings.targetsFile, true);
    LuSVNUpdateOptions options;
    // Without a depth, each item keeps the depth its working copy has.
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

    std::vector<LuSVNNode::LocalPath> paths;
    for (const std::string& target : targets)
        paths.push_back(targetPath(splitPegRevision(target).first));
    TesseraOperation operation(targets.front(), {settings.quiet, true});
    const auto revisions = LuSVNNode::updateNodes(
        paths, settings.revision ? settings.revision : LuSVNRevisionSpec::HEAD(), options, operation.context());
    operation.finishProgress();
    if (!settings.quiet) {
        printUpdateSummary(targets, revisions);
        operation.notifier()->printConflictSummary();
    }
    if (operation.notifier() && operation.notifier()->hadExternalsError())
        LuSVNException::exceptionWithReason("Failure occurred processing one or more externals definitions", 205011)
            ->raise();
    return 0;
}

const TesseraCommand updateCommand(
    {"update",
     {"up"},
     "Bring changes from the repository into the working copy.",
     "update [PATH...]",
     "If no revision is given, bring working copy up-to-date with HEAD rev.\n"
     "Else synchronize working copy to revision given by -r.\n"
     "\n"
     "For each updated item a line will be printed with characters reporting\n"
     "the action taken, as svn prints them. On a terminal, a progress line\n"
     "shows the bytes, rate and items so far."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionOption(command, [settings](auto revision) { settings->revision = std::move(revision); });
        addFlag(command, "-N,--non-recursive", settings->nonRecursive, "obsolete; same as --depth=files");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addSetDepthOption(command, [settings](const std::string& word) { settings->setDepth = word; });
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addFlag(command, "--force", settings->force, "handle unversioned obstructions as changes");
        addFlag(command, "--ignore-externals", settings->ignoreExternals, "ignore externals definitions");
        addOption(
            command, "--targets", [settings](const std::string& file) { settings->targetsFile = file; },
            "pass contents of file ARG as additional args");
        addArguments(command, settings->arguments);
        command.final_callback([settings] {
            if (settings->depth && settings->setDepth)
                LuSVNException::exceptionWithReason("--depth and --set-depth are mutually exclusive",
                                                    TesseraArgumentParsingError)
                    ->raise();
        });
        return [settings] { return update(*settings); };
    });

}  // namespace
