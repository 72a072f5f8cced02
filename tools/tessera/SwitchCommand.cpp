// tessera switch URL[@PEGREV] [PATH]: a working copy moved to another URL
// of its repository, as svn switch.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <memory>

#include "Command.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::shared_ptr<const LuSVNRevisionSpec> revision;
    std::optional<std::string> depth;
    std::optional<std::string> setDepth;
    bool nonRecursive = false;
    bool quiet = false;
    bool force = false;
    bool ignoreExternals = false;
};

int switchWorkingCopy(const CLI::App& command, const Settings& settings)
{
    checkArgumentCount(command, settings.arguments, 1, 2);
    const auto [url, peg] = splitPegRevision(settings.arguments.front());
    if (!isURL(url))
        LuSVNException::exceptionWithReason("'" + url + "' does not appear to be a URL", 125002)->raise();
    const std::string target = settings.arguments.size() > 1 ? settings.arguments[1] : ".";
    localTargets({target}, std::nullopt, false);

    LuSVNSwitchOptions options;
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
    const auto operative = settings.revision ? settings.revision->keyRevision()
                           : peg             ? peg->keyRevision()
                                             : LuSVNRevision::HEAD();
    options.setRevision(LuSVNRevisionSpec::revisionWithRevision(operative,
                                                                peg ? peg->keyRevision() : LuSVNRevision::HEAD()));

    TesseraOperation operation(target, {settings.quiet, true});
    LuSVNNode::switchNodeAtPath(targetPath(target), LuSVNURL::URLWithString(url), options, operation.context());
    operation.finishProgress();
    if (operation.notifier()) {
        operation.notifier()->printConflictSummary();
        if (operation.notifier()->hadExternalsError())
            LuSVNException::exceptionWithReason("Failure occurred processing one or more externals definitions",
                                                205011)
                ->raise();
    }
    return 0;
}

const TesseraCommand switchCommand(
    {"switch",
     {"sw"},
     "Update the working copy to a different URL within the same repository.",
     "switch URL[@PEGREV] [PATH]",
     "This subcommand updates the working copy to mirror a new URL within\n"
     "the repository, as svn switch. On a terminal, a progress line shows\n"
     "the bytes, rate and items so far."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionOption(command, [settings](auto revision) { settings->revision = std::move(revision); });
        addFlag(command, "-N,--non-recursive", settings->nonRecursive, "obsolete; same as --depth=files");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addSetDepthOption(command, [settings](const std::string& word) { settings->setDepth = word; });
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addFlag(command, "--force", settings->force, "handle unversioned obstructions as changes");
        addFlag(command, "--ignore-externals", settings->ignoreExternals, "ignore externals definitions");
        addArguments(command, settings->arguments);
        command.final_callback([settings] {
            if (settings->depth && settings->setDepth)
                LuSVNException::exceptionWithReason("--depth and --set-depth are mutually exclusive",
                                                    TesseraArgumentParsingError)
                    ->raise();
        });
        return [&command, settings] { return switchWorkingCopy(command, *settings); };
    });

}  // namespace
