// tessera commit [PATH...]: the working copy's changes sent to the
// repository, as svn commit.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>

#include "Command.h"
#include "RepositoryCommit.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    std::shared_ptr<TesseraLogMessageOptions> logMessage = std::make_shared<TesseraLogMessageOptions>();
    std::optional<std::string> depth;
    bool nonRecursive = false;
    bool quiet = false;
    bool noUnlock = false;
};

// Where svn keeps the editor's file and shows the items from: the targets'
// common parent, or for one target that is not a working copy's root, the
// directory that holds it.
std::string baseDirectory(const std::vector<std::string>& targets)
{
    namespace fs = std::filesystem;
    fs::path base = absoluteTargetPath(targets.front());
    for (const std::string& target : targets) {
        const fs::path path = absoluteTargetPath(target);
        while (base != path && !(path.string().rfind(base.string() + "/", 0) == 0 || base == "/"))
            base = base.parent_path();
    }
    std::error_code error;
    if (targets.size() == 1 && !fs::is_directory(base / ".svn", error))
        base = base.parent_path();
    return base.string();
}

int commit(const Settings& settings)
{
    const auto targets = localTargets(settings.arguments, settings.targetsFile, true);
    LuSVNCommitOptions options;
    options.setDepth(settings.depth ? depthForWord(*settings.depth)
                     : settings.nonRecursive ? LuSVNDepthEmpty
                                             : LuSVNDepthInfinity);
    options.setReleaseLocks(!settings.noUnlock);

    std::vector<LuSVNNode::LocalPath> paths;
    for (const std::string& target : targets)
        paths.push_back(targetPath(splitPegRevision(target).first));
    TesseraOperation operation(targets.front(), {settings.quiet, true});
    commitWithLogMessage(operation, *settings.logMessage, baseDirectory(targets), settings.quiet,
                         [&] { return LuSVNNode::commitChangesToNodes(paths, options, operation.context()); });
    return 0;
}

const TesseraCommand commitCommand(
    {"commit",
     {"ci"},
     "Send changes from your working copy to the repository.",
     "commit [PATH...]",
     "A log message must be provided, but it can be empty.  If it is not\n"
     "given by a --message or --file option, an editor will be started.\n"
     "\n"
     "On a terminal, a progress line shows the bytes, rate and items so far."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addFlag(command, "-N,--non-recursive", settings->nonRecursive, "obsolete; same as --depth=empty");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addTargetsOption(command, settings->targetsFile);
        addFlag(command, "--no-unlock", settings->noUnlock, "don't unlock the targets");
        addLogMessageOptions(command, settings->logMessage);
        addArguments(command, settings->arguments);
        return [settings] { return commit(*settings); };
    });

}  // namespace
