#include "RepositoryCommit.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "LogMessage.h"
#include "Messages.h"
#include "Options.h"

namespace {

// svn's code for targets of both kinds.
constexpr int IllegalTarget = 200009;
// svn's code for a log message where nothing is committed.
constexpr int LocalLogMessage = 205009;

// The text of -m, else of the file of -F, read as svn reads it.
std::optional<std::string> messageText(const TesseraLogMessageOptions& options)
{
    if (!options.messageFile)
        return options.message;
    std::ifstream file(*options.messageFile, std::ios::binary);
    if (!file)
        LuSVNException::exceptionWithReason("Can't open file '" + *options.messageFile + "': No such file or directory",
                                            2)
            ->raise();
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace

LuSVNNode::URLPath targetURL(const std::string& text)
{
    try {
        return LuSVNURL::URLWithString(text);
    } catch (const LuSVNInvalidArgumentException&) {
        return LuSVNURL::URLEncodeString(text);
    }
}

std::vector<LuSVNNode::Path> repositoryOrWorkingCopyTargets(const CLI::App& command,
                                                            const std::vector<std::string>& arguments)
{
    const bool remote = !arguments.empty() && isURL(arguments.front());
    std::vector<LuSVNNode::Path> paths;
    for (const std::string& target : arguments) {
        if (isURL(target) != remote)
            throwErrorChain({{TesseraArgumentParsingError, "Try 'tessera help " + command.get_name() +
                                                               "' for more information"},
                             {TesseraArgumentParsingError, "Error parsing arguments"},
                             {IllegalTarget, "Cannot mix repository and working copy targets"}});
        if (remote)
            paths.push_back(targetURL(target));
        else
            paths.push_back(targetPath(target));
    }
    return paths;
}

void addLogMessageOptions(CLI::App& command, const std::shared_ptr<TesseraLogMessageOptions>& options)
{
    addOption(
        command, "-m,--message", [options](const std::string& text) { options->message = text; },
        "specify log message ARG");
    addOption(
        command, "-F,--file", [options](const std::string& file) { options->messageFile = file; },
        "read log message from file ARG");
    addFlag(command, "--force-log", options->forceLog, "force validity of log message source");
    addOption(
        command, "--editor-cmd", [options](const std::string& editor) { options->editorCommand = editor; },
        "use ARG as external editor");
    command.final_callback([options] {
        if (options->message && options->messageFile)
            LuSVNException::exceptionWithReason("--message (-m) and --file (-F) are mutually exclusive",
                                                TesseraArgumentParsingError)
                ->raise();
    });
}

void refuseLogMessageLocally(const TesseraLogMessageOptions& options)
{
    if (options.message || options.messageFile)
        LuSVNException::exceptionWithReason(
            "Local, non-commit operations do not take a log message or revision properties", LocalLogMessage)
            ->raise();
}

std::int32_t commitWithLogMessage(TesseraOperation& operation, const TesseraLogMessageOptions& options,
                                  const std::string& baseDirectory, bool quiet,
                                  const std::function<std::int32_t()>& work)
{
    auto provider = std::make_shared<TesseraLogMessageProvider>(TesseraLogMessageProvider::Settings{
        messageText(options), options.editorCommand, baseDirectory, !tesseraGlobalSettings().interactive()});
    operation.context()->setLogMessageProvider(provider);
    std::int32_t revision = LuSVNInvalidRevision;
    try {
        revision = work();
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
    if (revision != LuSVNInvalidRevision && !quiet)
        std::printf("Committed revision %d.\n", revision);
    return revision;
}
