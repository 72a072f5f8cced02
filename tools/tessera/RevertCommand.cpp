// tessera revert PATH...: local changes undone, as svn revert.
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
    bool recursive = false;
    bool quiet = false;
};

int revert(const CLI::App& command, const Settings& settings)
{
    const auto targets = localTargets(settings.arguments, settings.targetsFile, false);
    checkArgumentCount(command, targets, 1, static_cast<std::size_t>(-1));
    LuSVNRevertOptions options;
    // As little as asked: only the targets themselves unless told otherwise.
    options.setDepth(settings.depth ? depthForWord(*settings.depth)
                     : settings.recursive ? LuSVNDepthInfinity
                                          : LuSVNDepthEmpty);
    std::vector<LuSVNNode::LocalPath> paths;
    for (const std::string& target : targets)
        paths.push_back(targetPath(splitPegRevision(target).first));
    TesseraOperation operation(targets.front(), {settings.quiet, false});
    try {
        LuSVNNode::revertNodes(paths, options, operation.context());
    } catch (const LuSVNException& failure) {
        // A directory's deletion cannot be reverted alone.
        if (failure.status() != 155038 || options.depth() == LuSVNDepthInfinity)
            throw;
        throwErrorChain({{155038, "Try 'svn revert --depth infinity' instead?"}, {155038, failure.reason()}});
    }
    return 0;
}

const TesseraCommand revertCommand(
    {"revert",
     {},
     "Restore pristine working copy state (undo local changes).",
     "revert PATH...",
     "Revert changes in the working copy at or within PATH, and remove\n"
     "conflict markers as well, if any.\n"
     "\n"
     "This subcommand does not revert already committed changes."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addTargetsOption(command, settings->targetsFile);
        addFlag(command, "-R,--recursive", settings->recursive, "descend recursively, same as --depth=infinity");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addArguments(command, settings->arguments);
        return [&command, settings] { return revert(command, *settings); };
    });

}  // namespace
