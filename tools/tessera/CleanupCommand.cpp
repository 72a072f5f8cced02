// tessera cleanup [WCPATH...]: a working copy's locks removed and its
// interrupted work finished, as svn cleanup.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <memory>

#include "Command.h"
#include "Operation.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    bool quiet = false;
};

int cleanup(const Settings& settings)
{
    for (const std::string& target : localTargets(settings.arguments, settings.targetsFile, true)) {
        TesseraOperation operation(target, {settings.quiet, false});
        LuSVNDirectory::cleanUpWorkingCopyAtPath(targetPath(splitPegRevision(target).first), operation.context());
    }
    return 0;
}

const TesseraCommand cleanupCommand(
    {"cleanup",
     {},
     "Recursively clean up the working copy.",
     "cleanup [WCPATH...]",
     "Removes locks left behind by an operation that was interrupted and\n"
     "finishes its work, so that the working copy can be used again."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addTargetsOption(command, settings->targetsFile);
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addArguments(command, settings->arguments);
        return [settings] { return cleanup(*settings); };
    });

}  // namespace
