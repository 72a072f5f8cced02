// tessera unlock TARGET...: locks released, as svn unlock.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <memory>

#include "Command.h"
#include "LockTargets.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    bool force = false;
    bool quiet = false;
};

int unlock(const CLI::App& command, const Settings& settings)
{
    const TesseraLockTargets targets = lockTargets(command, settings.arguments, settings.targetsFile);
    LuSVNUnlockOptions options;
    options.setBreakLocks(settings.force);
    runOnLockTargets(targets, settings.quiet, [&](const std::shared_ptr<LuSVNContext>& context) {
        LuSVNNode::unlockNodes(targets.paths, options, context);
    });
    return 0;
}

const TesseraCommand unlockCommand(
    {"unlock",
     {},
     "Unlock working copy paths or URLs.",
     "unlock TARGET...",
     "Use --force to break a lock held by another user or working copy."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addTargetsOption(command, settings->targetsFile);
        addFlag(command, "--force", settings->force, "break locks");
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addArguments(command, settings->arguments);
        return [&command, settings] { return unlock(command, *settings); };
    });

}  // namespace
