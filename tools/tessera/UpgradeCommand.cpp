// tessera upgrade [WCPATH...]: working copies brought to the newest format
// of the loaded backends, as svn upgrade.
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

int upgrade(const Settings& settings)
{
    const auto newest = LuSVNBundleLoader::sharedInstance()->newestVersion();
    if (!newest)
        LuSVNException::exceptionWithReason("No backend found in " + LuSVNBundleLoader::defaultBundleDirectory(),
                                            LuSVNGenericErrorStatus)
            ->raise();
    for (const std::string& target : localTargets(settings.arguments, settings.targetsFile, true))
        LuSVNDirectory::upgradeWorkingCopyAtPath(targetPath(splitPegRevision(target).first), *newest, false);
    return 0;
}

const TesseraCommand upgradeCommand(
    {"upgrade",
     {},
     "Upgrade the metadata storage format for a working copy.",
     "upgrade [WCPATH...]",
     "Local modifications are preserved. The format is the newest that a\n"
     "loaded backend writes."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addTargetsOption(command, settings->targetsFile);
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addArguments(command, settings->arguments);
        return [settings] { return upgrade(*settings); };
    });

}  // namespace
