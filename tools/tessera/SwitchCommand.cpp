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

using Settings = TesseraUpdateSettings;

int switchWorkingCopy(const CLI::App& command, const Settings& settings)
{
    checkArgumentCount(command, settings.arguments, 1, 2);
    const auto [url, peg] = splitPegRevision(settings.arguments.front());
    if (!isURL(url))
        LuSVNException::exceptionWithReason("'" + url + "' does not appear to be a URL", 125002)->raise();
    const std::string target = settings.arguments.size() > 1 ? settings.arguments[1] : ".";
    localTargets({target}, std::nullopt, false);

    LuSVNSwitchOptions options;
    applyUpdateSettings(options, settings);
    const auto operative = settings.revision ? settings.revision->keyRevision()
                           : peg             ? peg->keyRevision()
                                             : LuSVNRevision::HEAD();
    options.setRevision(LuSVNRevisionSpec::revisionWithRevision(operative,
                                                                peg ? peg->keyRevision() : LuSVNRevision::HEAD()));

    TesseraOperation operation(target, {settings.quiet, true});
    LuSVNNode::switchNodeAtPath(targetPath(target), commandLineURL(url), options, operation.context());
    operation.finishProgress();
    operation.concludeUpdate();
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
        addUpdateOptions(command, settings);
        return [&command, settings] { return switchWorkingCopy(command, *settings); };
    });

}  // namespace
