// tessera add PATH...: files and directories put under version control, as
// svn add.
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
    std::optional<std::string> targetsFile;
    std::optional<std::string> depth;
    bool nonRecursive = false;
    bool quiet = false;
    bool force = false;
    bool noIgnore = false;
    bool parents = false;
};

// svn's codes of targets that add skips with a warning.
constexpr int EntryExists = 150002;
constexpr int PathNotFound = 155010;

int add(const CLI::App& command, const Settings& settings)
{
    const auto targets = localTargets(settings.arguments, settings.targetsFile, false);
    checkArgumentCount(command, targets, 1, static_cast<std::size_t>(-1));
    LuSVNAddOptions options;
    options.setDepth(settings.depth          ? depthForWord(*settings.depth)
                     : settings.nonRecursive ? LuSVNDepthEmpty
                                             : LuSVNDepthInfinity);
    options.setForce(settings.force);
    options.setMatchIgnorePatterns(!settings.noIgnore);
    options.setAddParents(settings.parents);

    TesseraOperation operation(targets.front(), {settings.quiet, false});
    TesseraTargetFailures failures(settings.quiet,
                                   {{PathNotFound, "Could not add all targets because some targets don't exist"},
                                    {EntryExists, "Could not add all targets because some targets are already versioned"}});
    for (const std::string& target : targets)
        failures.attempt(
            [&] { LuSVNNode::add(targetPath(splitPegRevision(target).first), options, operation.context()); });
    failures.raiseIfAny();
    return 0;
}

const TesseraCommand addCommand(
    {"add",
     {},
     "Put new files and directories under version control.",
     "add PATH...",
     "Schedule them for addition to repository.  They will be added in\n"
     "next commit."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addTargetsOption(command, settings->targetsFile);
        addFlag(command, "-N,--non-recursive", settings->nonRecursive, "obsolete; same as --depth=empty");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addFlag(command, "--force", settings->force, "ignore already versioned paths");
        addFlag(command, "--no-ignore", settings->noIgnore,
                "disregard default and svn:ignore and\nsvn:global-ignores property ignores");
        addFlag(command, "--parents", settings->parents, "add intermediate parents");
        addArguments(command, settings->arguments);
        return [&command, settings] { return add(command, *settings); };
    });

}  // namespace
