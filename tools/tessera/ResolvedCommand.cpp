// tessera resolved PATH...: conflicts marked resolved with the working files
// as they are, as svn resolved.
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

int resolved(const CLI::App& command, const Settings& settings)
{
    const auto targets = localTargets(settings.arguments, settings.targetsFile, false);
    checkArgumentCount(command, targets, 1, static_cast<std::size_t>(-1));
    LuSVNResolveOptions options;
    options.setRecursive(settings.recursive || settings.depth.value_or("empty") == "infinity");
    TesseraOperation operation(targets.front(), {settings.quiet, false});
    for (const std::string& target : targets)
        LuSVNNode::resolveNodeAtPath(targetPath(splitPegRevision(target).first), options, operation.context());
    return 0;
}

const TesseraCommand resolvedCommand(
    {"resolved",
     {},
     "Remove 'conflicted' state on working copy files or directories.",
     "resolved PATH...",
     "This subcommand does not semantically resolve conflicts or remove\n"
     "conflict markers; it merely removes the conflict-related artifact\n"
     "files and allows PATH to be committed again."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addTargetsOption(command, settings->targetsFile);
        addFlag(command, "-R,--recursive", settings->recursive, "descend recursively, same as --depth=infinity");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addArguments(command, settings->arguments);
        return [&command, settings] { return resolved(command, *settings); };
    });

}  // namespace
