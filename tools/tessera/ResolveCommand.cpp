// tessera resolve --accept ARG PATH...: conflicts resolved with a choice of
// version, as svn resolve does it without asking.
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
    std::optional<LuSVNConflictChoice> choice;
    std::optional<std::string> depth;
    bool recursive = false;
    bool quiet = false;
};

// The kind of conflict of each conflicted item at and below the paths.
std::map<std::string, TesseraNotifier::ConflictKind> conflictKinds(const std::vector<LuSVNNode::LocalPath>& paths,
                                                                   bool recursive,
                                                                   const std::shared_ptr<LuSVNContext>& context)
{
    std::map<std::string, TesseraNotifier::ConflictKind> kinds;
    const auto keep = [&kinds](const std::shared_ptr<LuSVNNode>& node) {
        if (!node || !node->status())
            return;
        if (node->status()->textStatus() == LuSVNStatusConflicted)
            kinds[node->path()->string()] = TesseraNotifier::ConflictKind::Text;
        else if (node->status()->treeConflict())
            kinds[node->path()->string()] = TesseraNotifier::ConflictKind::Tree;
    };
    LuSVNStatusOptions options;
    for (const auto& path : paths) {
        std::error_code error;
        if (recursive && std::filesystem::is_directory(path->string(), error))
            LuSVNDirectory::reportStatusForNodesInDirectoryAtPath(path, options, keep, nullptr, nullptr, context);
        else
            keep(LuSVNNode::nodeWithStatusAtPath(path, options, context));
    }
    return kinds;
}

int resolve(const CLI::App& command, const Settings& settings)
{
    const auto targets = localTargets(settings.arguments, settings.targetsFile, false);
    checkArgumentCount(command, targets, 1, static_cast<std::size_t>(-1));
    // Without a choice svn would ask; with no one to ask it leaves them.
    if (!settings.choice)
        return 0;
    LuSVNResolveOptions options;
    options.setConflictChoice(*settings.choice);
    options.setRecursive(settings.recursive || settings.depth.value_or("empty") == "infinity");
    std::vector<LuSVNNode::LocalPath> paths;
    for (const std::string& target : targets)
        paths.push_back(targetPath(splitPegRevision(target).first));
    TesseraOperation operation(targets.front(), {settings.quiet, false});
    if (operation.notifier()) {
        TesseraOperation walk(targets.front(), {true, false});
        operation.notifier()->setConflictKinds(conflictKinds(paths, options.recursive(), walk.context()));
    }
    for (const auto& path : paths)
        LuSVNNode::resolveNodeAtPath(path, options, operation.context());
    return 0;
}

const TesseraCommand resolveCommand(
    {"resolve",
     {},
     "Resolve conflicts on working copy files or directories.",
     "resolve --accept=ARG [PATH...]",
     "The conflicts of each PATH are resolved with the version that --accept\n"
     "names: 'base', 'working', 'mine-conflict', 'theirs-conflict',\n"
     "'mine-full' or 'theirs-full'."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addTargetsOption(command, settings->targetsFile);
        addFlag(command, "-R,--recursive", settings->recursive, "descend recursively, same as --depth=infinity");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addOption(
            command, "--accept",
            [settings](const std::string& word) {
                // Resolving takes no "postpone", which would leave the conflicts.
                settings->choice = acceptChoiceForWord(word);
                if (settings->choice == LuSVNConflictChoicePostpone)
                    LuSVNException::exceptionWithReason("'" + word + "' is not a valid --accept value",
                                                        TesseraArgumentParsingError)
                        ->raise();
            },
            "specify automatic conflict resolution source\n"
            "('base', 'working', 'mine-conflict',\n"
            "'theirs-conflict', 'mine-full', 'theirs-full')");
        addArguments(command, settings->arguments);
        return [&command, settings] { return resolve(command, *settings); };
    });

}  // namespace
