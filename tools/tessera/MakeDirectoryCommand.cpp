// tessera mkdir PATH... | URL...: new directories under version control, as
// svn mkdir.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>

#include "Command.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"
#include "RepositoryCommit.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::shared_ptr<TesseraLogMessageOptions> logMessage = std::make_shared<TesseraLogMessageOptions>();
    bool quiet = false;
    bool parents = false;
};

// svn's codes of a missing parent: on disk, in the repository.
constexpr int MissingFile = 2;
constexpr int NotDirectory = 160016;
constexpr int NotFound = 160013;

int makeDirectories(const CLI::App& command, const Settings& settings)
{
    checkArgumentCount(command, settings.arguments, 1, static_cast<std::size_t>(-1));
    const std::vector<LuSVNNode::Path> paths = repositoryOrWorkingCopyTargets(command, settings.arguments);
    const bool remote = isURL(settings.arguments.front());
    if (!remote)
        refuseLogMessageLocally(*settings.logMessage);
    const std::string first = remote ? settings.arguments.front() : absoluteTargetPath(settings.arguments.front());
    TesseraOperation operation(first, {settings.quiet, false});
    commitWithLogMessage(operation, *settings.logMessage, std::filesystem::current_path().string(), settings.quiet, [&] {
        try {
            return LuSVNNode::createDirectoriesAtPaths(paths, settings.parents, operation.context());
        } catch (const LuSVNException& failure) {
            // svn's hint where a parent is missing.
            auto links = errorLinks(failure);
            const int code = links.front().first;
            if (settings.parents || (code != MissingFile && code != NotDirectory && code != NotFound))
                throw;
            links.insert(links.begin(), {code, "Try 'tessera mkdir --parents' instead?"});
            throwErrorChain(links);
        }
    });
    return 0;
}

const TesseraCommand makeDirectoryCommand(
    {"mkdir",
     {},
     "Create a new directory under version control.",
     "1. mkdir PATH...\n2. mkdir URL...",
     "Create version controlled directories.\n"
     "\n"
     "1. Each directory specified by a working copy PATH is created locally\n"
     "  and scheduled for addition upon the next commit.\n"
     "\n"
     "2. Each directory specified by a URL is created in the repository via\n"
     "  an immediate commit.\n"
     "\n"
     "In both cases, all the intermediate directories must already exist,\n"
     "unless the --parents option is given."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addFlag(command, "--parents", settings->parents, "make intermediate directories");
        addLogMessageOptions(command, settings->logMessage);
        addArguments(command, settings->arguments);
        return [&command, settings] { return makeDirectories(command, *settings); };
    });

}  // namespace
