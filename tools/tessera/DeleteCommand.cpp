// tessera delete PATH... | URL...: items scheduled for deletion or deleted
// from the repository, as svn delete.
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

namespace fs = std::filesystem;

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    std::shared_ptr<TesseraLogMessageOptions> logMessage = std::make_shared<TesseraLogMessageOptions>();
    bool quiet = false;
    bool force = false;
    bool keepLocal = false;
};

// svn's code of an unversioned target.
constexpr int UnversionedResource = 200005;

// Deletes the working-copy items; with --keep-local each item is set aside
// on disk while Subversion deletes it, then put back, unversioned.
void deleteLocally(const std::vector<LuSVNNode::LocalPath>& paths, const LuSVNDeleteOptions& options,
                   bool keepLocal, const LuSVNNode::Context& context)
{
    std::vector<std::pair<std::string, std::string>> setAside;
    if (keepLocal) {
        for (const auto& path : paths) {
            std::error_code error;
            if (!fs::exists(fs::symlink_status(path->string(), error)))
                continue;
            const std::string aside = path->string() + ".tessera-keep-local";
            fs::rename(path->string(), aside);
            setAside.emplace_back(aside, path->string());
        }
    }
    const auto restore = [&] {
        for (const auto& [aside, original] : setAside) {
            std::error_code error;
            fs::remove_all(original, error);
            fs::rename(aside, original, error);
        }
    };
    try {
        LuSVNNode::deleteWorkingCopyNodesAtPaths(paths, options, context);
    } catch (const LuSVNUnversionedResourceException& failure) {
        restore();
        // svn's words for what the library refuses.
        const std::string reason = failure.reason();
        const std::string path = reason.substr(reason.find('\'') + 1, reason.find('\'', reason.find('\'') + 1) -
                                                                            reason.find('\'') - 1);
        throwErrorChain({{UnversionedResource, "Use --force to override this restriction (local modifications may be lost)"},
                         {UnversionedResource, "'" + path + "' is not under version control"}});
    } catch (...) {
        restore();
        throw;
    }
    restore();
}

int deleteTargets(const CLI::App& command, const Settings& settings)
{
    std::vector<std::string> targets = settings.arguments;
    if (settings.targetsFile)
        for (const std::string& line : readTargetsFile(*settings.targetsFile))
            targets.push_back(line);
    checkArgumentCount(command, targets, 1, static_cast<std::size_t>(-1));
    const std::vector<LuSVNNode::Path> paths = repositoryOrWorkingCopyTargets(command, targets);
    const bool remote = isURL(targets.front());
    LuSVNDeleteOptions options;
    options.setForce(settings.force || settings.keepLocal);
    TesseraOperation operation(remote ? targets.front() : absoluteTargetPath(targets.front()),
                               {settings.quiet, false});
    if (!remote) {
        refuseLogMessageLocally(*settings.logMessage);
        std::vector<LuSVNNode::LocalPath> local;
        for (const auto& path : paths)
            local.push_back(std::dynamic_pointer_cast<const LuSVNLocalPath>(path));
        deleteLocally(local, options, settings.keepLocal, operation.context());
        return 0;
    }
    commitWithLogMessage(operation, *settings.logMessage, fs::current_path().string(), settings.quiet,
                         [&] { return LuSVNNode::deleteNodes(paths, options, operation.context()); });
    return 0;
}

const TesseraCommand deleteCommand(
    {"delete",
     {"del", "remove", "rm"},
     "Remove files and directories from version control.",
     "1. delete PATH...\n2. delete URL...",
     "1. Each item specified by a PATH is scheduled for deletion upon\n"
     "  the next commit.  Files, and directories that have not been\n"
     "  committed, are immediately removed from the working copy\n"
     "  unless the --keep-local option is given.\n"
     "  PATHs that are, or contain, unversioned or modified items will\n"
     "  not be removed unless the --force or --keep-local option is given.\n"
     "\n"
     "2. Each item specified by a URL is deleted from the repository\n"
     "  via an immediate commit."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addFlag(command, "--force", settings->force, "force operation to run");
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addTargetsOption(command, settings->targetsFile);
        addFlag(command, "--keep-local", settings->keepLocal, "keep path in working copy");
        addLogMessageOptions(command, settings->logMessage);
        addArguments(command, settings->arguments);
        return [&command, settings] { return deleteTargets(command, *settings); };
    });

}  // namespace
