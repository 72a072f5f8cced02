// tessera commit [PATH...]: the working copy's changes sent to the
// repository, as svn commit.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include "Command.h"
#include "LogMessage.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    std::optional<std::string> message;
    std::optional<std::string> messageFile;
    std::optional<std::string> editorCommand;
    std::optional<std::string> depth;
    bool nonRecursive = false;
    bool quiet = false;
    bool noUnlock = false;
    bool forceLog = false;
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
    std::optional<std::string> message = settings.message;
    if (settings.messageFile) {
        std::ifstream file(*settings.messageFile, std::ios::binary);
        if (!file)
            LuSVNException::exceptionWithReason("Can't open file '" + *settings.messageFile +
                                                    "': No such file or directory",
                                                2)
                ->raise();
        std::ostringstream text;
        text << file.rdbuf();
        message = text.str();
    }

    LuSVNCommitOptions options;
    options.setDepth(settings.depth ? depthForWord(*settings.depth)
                     : settings.nonRecursive ? LuSVNDepthEmpty
                                             : LuSVNDepthInfinity);
    options.setReleaseLocks(!settings.noUnlock);

    std::vector<LuSVNNode::LocalPath> paths;
    for (const std::string& target : targets)
        paths.push_back(targetPath(splitPegRevision(target).first));
    TesseraOperation operation(targets.front(), {settings.quiet, true});
    auto provider = std::make_shared<TesseraLogMessageProvider>(TesseraLogMessageProvider::Settings{
        message, settings.editorCommand, baseDirectory(targets),
        !tesseraGlobalSettings().interactive()});
    operation.context()->setLogMessageProvider(provider);
    std::int32_t revision = LuSVNInvalidRevision;
    try {
        revision = LuSVNNode::commitChangesToNodes(paths, options, operation.context());
    } catch (const LuSVNException& failure) {
        // svn's words around a failed commit: what failed in finding the
        // message is the commit's failure, and the user's text is kept.
        auto links = errorLinks(failure);
        if (provider->failed())
            links.insert(links.begin(), {links.front().first, "Commit failed (details follow):"});
        if (provider->leftFile()) {
            links.emplace_back(links.front().first, "Your commit message was left in a temporary file:");
            links.emplace_back(links.front().first, "   '" + *provider->leftFile() + "'");
        }
        throwErrorChain(links);
    }
    provider->removeLeftFile();
    operation.finishProgress();
    if (revision != LuSVNInvalidRevision && !settings.quiet)
        std::printf("Committed revision %d.\n", revision);
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
        addOption(
            command, "-m,--message", [settings](const std::string& text) { settings->message = text; },
            "specify log message ARG");
        addOption(
            command, "-F,--file", [settings](const std::string& file) { settings->messageFile = file; },
            "read log message from file ARG");
        addFlag(command, "--force-log", settings->forceLog, "force validity of log message source");
        addOption(
            command, "--editor-cmd", [settings](const std::string& editor) { settings->editorCommand = editor; },
            "use ARG as external editor");
        addArguments(command, settings->arguments);
        // svn refuses the pair while reading the options.
        command.final_callback([settings] {
            if (settings->message && settings->messageFile)
                LuSVNException::exceptionWithReason("--message (-m) and --file (-F) are mutually exclusive",
                                                    TesseraArgumentParsingError)
                    ->raise();
        });
        return [settings] { return commit(*settings); };
    });

}  // namespace
