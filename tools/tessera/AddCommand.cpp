// tessera add PATH...: files and directories put under version control, as
// svn add.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <filesystem>
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

// The unversioned directories between the target and its nearest versioned
// ancestor, outermost first: what --parents adds on the way.
std::vector<std::string> unversionedParents(const std::string& target, const std::shared_ptr<LuSVNContext>& context)
{
    std::vector<std::string> parents;
    std::filesystem::path parent = std::filesystem::path(absoluteTargetPath(target)).parent_path();
    while (parent.has_relative_path()) {
        try {
            LuSVNNode::URLForNodeAtPath(LuSVNLocalPath::pathWithString(parent.string()), context);
            break;
        } catch (const LuSVNException&) {
            parents.insert(parents.begin(), parent.string());
            parent = parent.parent_path();
        }
    }
    return parents;
}

int add(const CLI::App& command, const Settings& settings)
{
    const auto targets = localTargets(settings.arguments, settings.targetsFile, false);
    checkArgumentCount(command, targets, 1, static_cast<std::size_t>(-1));
    const std::string depth = settings.depth.value_or(settings.nonRecursive ? "empty" : "infinity");
    // Subversion's add here recurses fully or not at all.
    if (depth == "files" || depth == "immediates")
        LuSVNException::exceptionWithReason("--depth=" + depth + " is not supported by add; use 'empty' or 'infinity'",
                                            TesseraArgumentParsingError)
            ->raise();
    LuSVNAddOptions options;
    options.setRecursive(depth == "infinity");
    options.setForce(settings.force);
    options.setMatchIgnorePatterns(!settings.noIgnore);
    LuSVNAddOptions parentOptions = options;
    parentOptions.setRecursive(false);
    parentOptions.setForce(true);

    TesseraOperation operation(targets.front(), {settings.quiet, false});
    TesseraTargetFailures failures(settings.quiet,
                                   {{PathNotFound, "Could not add all targets because some targets don't exist"},
                                    {EntryExists, "Could not add all targets because some targets are already versioned"}});
    for (const std::string& target : targets)
        failures.attempt([&] {
            const std::string path = splitPegRevision(target).first;
            if (settings.parents)
                for (const std::string& parent : unversionedParents(path, operation.context()))
                    LuSVNNode::add(LuSVNLocalPath::pathWithString(parent), parentOptions, operation.context());
            LuSVNNode::add(targetPath(path), options, operation.context());
        });
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
        addOption(
            command, "--targets", [settings](const std::string& file) { settings->targetsFile = file; },
            "pass contents of file ARG as additional args");
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
