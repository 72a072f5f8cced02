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

struct Settings : TesseraUpdateSettings {
    std::optional<std::string> targetsFile;
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
    applyUpdateSettings(options, settings);

    std::vector<LuSVNNode::LocalPath> paths;
    for (const std::string& target : targets)
        paths.push_back(targetPath(splitPegRevision(target).first));
    TesseraOperation operation(targets.front(), {settings.quiet, true});
    const auto revisions = LuSVNNode::updateNodes(
        paths, settings.revision ? settings.revision : LuSVNRevisionSpec::HEAD(), options, operation.context());
    operation.finishProgress();
    if (!settings.quiet)
        printUpdateSummary(targets, revisions);
    operation.concludeUpdate();
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
        addUpdateOptions(command, settings);
        addTargetsOption(command, settings->targetsFile);
        return [settings] { return update(*settings); };
    });

}  // namespace
