// tessera changelist CLNAME PATH... and changelist --remove PATH...: items
// put on a changelist or taken off theirs, as svn changelist.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <filesystem>
#include <map>
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
    bool recursive = false;
    bool remove = false;
    bool quiet = false;
};

// svn's codes of targets that changelist skips with a warning.
constexpr int UnversionedResource = 155007;
constexpr int PathNotFound = 155010;

// The changelists the items at and below the targets are on now, by path:
// svn names the list an item leaves, which the notifications do not carry.
std::map<std::string, std::string> currentChangelists(const std::vector<LuSVNNode::LocalPath>& paths,
                                                      const std::shared_ptr<LuSVNContext>& context)
{
    std::map<std::string, std::string> changelists;
    const auto keep = [&changelists](const std::shared_ptr<LuSVNNode>& node) {
        if (node && node->status() && node->status()->changelist())
            changelists[node->path()->string()] = *node->status()->changelist();
    };
    LuSVNStatusOptions options;
    for (const auto& path : paths) {
        std::error_code error;
        if (std::filesystem::is_directory(path->string(), error))
            LuSVNDirectory::reportStatusForNodesInDirectoryAtPath(path, options, keep, nullptr, nullptr, context);
        else if (std::filesystem::exists(path->string(), error))
            keep(LuSVNNode::nodeWithStatusAtPath(path, options, context));
    }
    return changelists;
}

int changelist(const CLI::App& command, const Settings& settings)
{
    std::vector<std::string> arguments = settings.arguments;
    std::optional<std::string> name;
    if (!settings.remove) {
        if (arguments.empty())
            throwUsageError(command.get_name(), TesseraInsufficientArgumentsError, "Not enough arguments provided");
        name = arguments.front();
        arguments.erase(arguments.begin());
    }
    const auto targets = localTargets(arguments, settings.targetsFile, false);
    checkArgumentCount(command, targets, 1, static_cast<std::size_t>(-1));
    const LuSVNDepth depth = settings.depth ? depthForWord(*settings.depth)
                             : settings.recursive ? LuSVNDepthInfinity
                                                  : LuSVNDepthEmpty;
    std::vector<LuSVNNode::LocalPath> paths;
    for (const std::string& target : targets)
        paths.push_back(targetPath(splitPegRevision(target).first));

    TesseraOperation operation(targets.front(), {settings.quiet, false});
    if (operation.notifier()) {
        TesseraOperation walk(targets.front(), {true, false});
        operation.notifier()->setChangelists(name, currentChangelists(paths, walk.context()));
    }
    TesseraTargetFailures failures(
        settings.quiet,
        {{PathNotFound, "Could not set changelists on all targets because some targets don't exist"},
         {UnversionedResource, "Could not set changelists on all targets because some targets are not versioned"}});
    failures.attempt([&] {
        if (name)
            LuSVNNode::addNodesToChangelist(paths, *name, depth, operation.context());
        else
            LuSVNNode::removeNodesFromChangelists(paths, depth, operation.context());
    });
    failures.raiseIfAny();
    return 0;
}

const TesseraCommand changelistCommand(
    {"changelist",
     {"cl"},
     "Associate (or dissociate) changelist CLNAME with the named files.",
     "1. changelist CLNAME PATH...\n2. changelist --remove PATH...",
     ""},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addFlag(command, "-R,--recursive", settings->recursive, "descend recursively, same as --depth=infinity");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "--remove", settings->remove, "remove changelist association");
        addTargetsOption(command, settings->targetsFile);
        addArguments(command, settings->arguments);
        return [&command, settings] { return changelist(command, *settings); };
    });

}  // namespace
