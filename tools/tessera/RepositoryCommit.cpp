#include "RepositoryCommit.h"

#include <CLI/CLI.hpp>

#include <cctype>
#include <cstdio>
#include <filesystem>
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

// Whether the file is a versioned item of a working copy.
bool isVersioned(const std::string& file)
{
    try {
        auto context = LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle());
        LuSVNNode::kindOfNodeAtPath(LuSVNLocalPath::pathWithString(std::filesystem::absolute(file).string()),
                                    LuSVNRevisionSpec::UNSPECIFIED(), context);
        return true;
    } catch (const LuSVNException&) {
        return false;
    }
}

}  // namespace

std::optional<std::string> givenMessage(const std::optional<std::string>& message,
                                        const std::optional<std::string>& file, bool forceLog,
                                        const std::string& noun)
{
    // Likely mistakes, as svn sees them before it runs the command.
    std::error_code error;
    if (message && !forceLog && std::filesystem::exists(*message, error))
        LuSVNException::exceptionWithReason(
            "The " + noun + " is a pathname (was -F intended?); use '--force-log' to override", 205005)
            ->raise();
    if (!file)
        return message;
    std::ifstream stream(*file, std::ios::binary);
    if (!stream)
        LuSVNException::exceptionWithReason("Can't open file '" + *file + "': No such file or directory", 2)->raise();
    std::ostringstream text;
    text << stream.rdbuf();
    if (!forceLog && isVersioned(*file)) {
        std::string capitalised = noun;
        capitalised[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(capitalised[0])));
        LuSVNException::exceptionWithReason(capitalised + " file is a versioned file; use '--force-log' to override",
                                            205004)
            ->raise();
    }
    return text.str();
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
            paths.push_back(commandLineURL(target));
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
        givenMessage(options.message, options.messageFile, options.forceLog, "log message"), options.editorCommand, baseDirectory, !tesseraGlobalSettings().interactive()});
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
