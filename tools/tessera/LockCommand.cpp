// tessera lock TARGET...: files locked in the repository, as svn lock.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <memory>

#include "Command.h"
#include "LockTargets.h"
#include "Messages.h"
#include "Options.h"
#include "RepositoryCommit.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    std::optional<std::string> message;
    std::optional<std::string> commentFile;
    bool force = false;
    bool forceLog = false;
    bool quiet = false;
};

// svn's codes for a comment it will not take.
constexpr int BadComment = 205008;
constexpr int InconsistentLineEndings = 135000;

// The comment with its line ends made LF, as svn stores it; one text must
// keep to one style of line end.
std::string withLineFeeds(const std::string& text)
{
    std::string result;
    std::string style;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '\r' && text[index] != '\n') {
            result += text[index];
            continue;
        }
        const bool pair = text[index] == '\r' && index + 1 < text.size() && text[index + 1] == '\n';
        const std::string end = pair ? "\r\n" : std::string(1, text[index]);
        if (style.empty())
            style = end;
        else if (end != style)
            throwErrorChain({{InconsistentLineEndings, "Inconsistent line ending style"}});
        result += '\n';
        index += pair ? 1 : 0;
    }
    return result;
}

int lock(const CLI::App& command, const Settings& settings)
{
    std::optional<std::string> comment =
        givenMessage(settings.message, settings.commentFile, settings.forceLog, "lock comment");
    const TesseraLockTargets targets = lockTargets(command, settings.arguments, settings.targetsFile);
    if (comment && comment->find('\0') != std::string::npos)
        throwErrorChain({{BadComment, "Lock comment contains a zero byte"}});
    if (comment)
        comment = withLineFeeds(*comment);
    LuSVNLockOptions options;
    options.setStealLocks(settings.force);
    runOnLockTargets(targets, settings.quiet, [&](const std::shared_ptr<LuSVNContext>& context) {
        LuSVNNode::lockNodes(targets.paths, comment, options, context);
    });
    return 0;
}

const TesseraCommand lockCommand(
    {"lock",
     {},
     "Lock working copy paths or URLs in the repository, so that no other user can commit changes to them.",
     "lock TARGET...",
     "Use --force to steal a lock from another user or working copy."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addTargetsOption(command, settings->targetsFile);
        addOption(
            command, "-m,--message", [settings](const std::string& text) { settings->message = text; },
            "specify lock comment ARG");
        addOption(
            command, "-F,--file", [settings](const std::string& file) { settings->commentFile = file; },
            "read lock comment from file ARG");
        addFlag(command, "--force-log", settings->forceLog, "force validity of lock comment source");
        addFlag(command, "--force", settings->force, "steal locks");
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addArguments(command, settings->arguments);
        // svn refuses the pair while reading the options.
        command.final_callback([settings] {
            if (settings->message && settings->commentFile)
                LuSVNException::exceptionWithReason("--message (-m) and --file (-F) are mutually exclusive",
                                                    TesseraArgumentParsingError)
                    ->raise();
        });
        return [&command, settings] { return lock(command, *settings); };
    });

}  // namespace
