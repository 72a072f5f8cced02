// tessera import [PATH] URL: an unversioned tree committed into a
// repository, as svn import.
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
    std::optional<std::string> depth;
    bool nonRecursive = false;
    bool quiet = false;
    bool noIgnore = false;
    bool force = false;
};

int import(const CLI::App& command, const Settings& settings)
{
    const auto& arguments = settings.arguments;
    if (arguments.empty())
        throwUsageError(command.get_name(), TesseraInsufficientArgumentsError,
                        "Repository URL required when importing");
    if (!isURL(arguments.back()))
        throwUsageError(command.get_name(), TesseraArgumentParsingError, "Invalid URL '" + arguments.back() + "'");
    if (arguments.size() > 2)
        throwUsageError(command.get_name(), TesseraArgumentParsingError, "Too many arguments to import command");
    const std::string path = arguments.size() == 2 ? arguments.front() : ".";
    LuSVNImportOptions options;
    // Subversion's import of these releases knows all or the files alone.
    const LuSVNDepth depth = settings.depth ? depthForWord(*settings.depth)
                             : settings.nonRecursive ? LuSVNDepthFiles
                                                     : LuSVNDepthInfinity;
    if (depth != LuSVNDepthInfinity && depth != LuSVNDepthFiles)
        LuSVNException::exceptionWithReason("Importing to depth '" + *settings.depth + "' is not supported",
                                            TesseraArgumentParsingError)
            ->raise();
    options.setRecursive(depth == LuSVNDepthInfinity);
    options.setMatchIgnorePatterns(!settings.noIgnore);
    TesseraOperation operation(arguments.back(), {settings.quiet, false});
    commitWithLogMessage(operation, *settings.logMessage, std::filesystem::current_path().string(), settings.quiet,
                         [&] {
                             return LuSVNNode::importNodeAtPath(targetPath(path),
                                                                commandLineURL(arguments.back()), options,
                                                                operation.context());
                         });
    return 0;
}

const TesseraCommand importCommand(
    {"import",
     {},
     "Commit an unversioned file or tree into the repository.",
     "import [PATH] URL",
     "Recursively commit a copy of PATH to URL.\n"
     "If PATH is omitted '.' is assumed.\n"
     "Parent directories are created as necessary in the repository.\n"
     "If PATH is a directory, the contents of the directory are added\n"
     "directly under URL.\n"
     "Unversionable items such as device files and pipes are ignored\n"
     "if --force is specified."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addFlag(command, "-N,--non-recursive", settings->nonRecursive, "obsolete; same as --depth=files");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "--force", settings->force, "force operation to run");
        addFlag(command, "--no-ignore", settings->noIgnore,
                "disregard default and svn:ignore and\nsvn:global-ignores property ignores");
        addLogMessageOptions(command, settings->logMessage);
        addArguments(command, settings->arguments);
        return [&command, settings] { return import(command, *settings); };
    });

}  // namespace
