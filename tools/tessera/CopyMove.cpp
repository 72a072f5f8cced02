#include "CopyMove.h"

#include <CLI/CLI.hpp>

#include <filesystem>

#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

namespace fs = std::filesystem;

// svn's codes.
constexpr int UnsupportedFeature = 200007;
constexpr int PathNotFound = 155010;  // a missing source, a destination that is no directory
constexpr int NotWorkingCopy = 155007;

// The last component of a target: a URL's as given (escaped or not), a
// path's as the file system names it.
std::string baseName(const std::string& target)
{
    if (isURL(target)) {
        std::string text = target;
        while (text.size() > 1 && text.back() == '/')
            text.pop_back();
        return text.substr(text.find_last_of('/') + 1);
    }
    return fs::path(absoluteTargetPath(target)).filename().string();
}

// Where a copy of the target would go, as the library names it.
LuSVNNode::Path location(const std::string& target)
{
    if (isURL(target))
        return commandLineURL(target);
    return targetPath(target);
}

// Whether the destination is an existing directory, which takes the sources
// as children.
bool isDirectory(const std::string& destination, const LuSVNNode::Context& context)
{
    if (!isURL(destination)) {
        std::error_code error;
        return fs::is_directory(absoluteTargetPath(destination), error);
    }
    try {
        return LuSVNNode::isDirectoryAtPath(commandLineURL(destination), LuSVNRevisionSpec::HEAD(), context);
    } catch (const LuSVNException&) {
        return false;
    }
}

// The destination's parent, made with its own missing parents (--parents).
void makeParent(const std::string& destination, const LuSVNNode::Context& context)
{
    if (isURL(destination)) {
        const std::string parent = destination.substr(0, destination.find_last_of('/'));
        if (!isDirectory(parent, context))
            LuSVNNode::createDirectoriesAtPaths({commandLineURL(parent)}, true, context);
        return;
    }
    const fs::path parent = fs::path(absoluteTargetPath(destination)).parent_path();
    std::error_code error;
    if (!fs::exists(parent, error))
        LuSVNNode::createDirectoriesAtPaths({targetPath(parent.string())}, true, context);
}

}  // namespace

void addCopyMoveOptions(CLI::App& command, TesseraCopyMoveSettings& settings)
{
    addFlag(command, "-q,--quiet", settings.quiet, "print nothing, or only summary information");
    addFlag(command, "--parents", settings.parents, "make intermediate directories");
    addLogMessageOptions(command, settings.logMessage);
    addArguments(command, settings.arguments);
}

int copyOrMove(const CLI::App& command, const TesseraCopyMoveSettings& settings, bool copy)
{
    checkArgumentCount(command, settings.arguments, 2, static_cast<std::size_t>(-1));
    const std::string destination = settings.arguments.back();
    std::vector<std::pair<std::string, std::shared_ptr<const LuSVNRevisionSpec>>> sources;
    for (std::size_t index = 0; index + 1 < settings.arguments.size(); ++index)
        sources.push_back(splitPegRevision(settings.arguments[index]));
    const bool fromRepository = isURL(sources.front().first);
    for (const auto& source : sources)
        if (isURL(source.first) != fromRepository)
            LuSVNException::exceptionWithReason("Cannot mix repository and working copy sources", UnsupportedFeature)
                ->raise();
    const bool toRepository = isURL(destination);
    if (!copy && fromRepository != toRepository)
        LuSVNException::exceptionWithReason("Moves between the working copy and the repository are not supported",
                                            UnsupportedFeature)
            ->raise();

    if (!toRepository)
        refuseLogMessageLocally(*settings.logMessage);
    for (const auto& source : sources) {
        std::error_code error;
        if (!fromRepository && !fs::exists(fs::symlink_status(absoluteTargetPath(source.first), error)))
            LuSVNException::exceptionWithReason("Path '" + absoluteTargetPath(source.first) + "' does not exist",
                                                PathNotFound)
                ->raise();
    }
    TesseraOperation operation(toRepository ? destination : absoluteTargetPath(destination), {settings.quiet, false});
    const auto& context = operation.context();
    const bool asChildren = isDirectory(destination, context);
    if (sources.size() > 1 && !asChildren)
        LuSVNException::exceptionWithReason("Path '" + (toRepository ? destination : absoluteTargetPath(destination)) +
                                                "' is not a directory",
                                            PathNotFound)
            ->raise();
    LuSVNMoveOptions moveOptions;
    moveOptions.setForce(settings.force);
    commitWithLogMessage(operation, *settings.logMessage, fs::current_path().string(), settings.quiet, [&] {
        std::int32_t revision = LuSVNInvalidRevision;
        for (const auto& [source, peg] : sources) {
            const std::string target = asChildren ? (toRepository ? destination + "/" + baseName(source)
                                                                  : absoluteTargetPath(destination) + "/" + baseName(source))
                                                  : destination;
            if (settings.parents && !asChildren)
                makeParent(target, context);
            try {
                if (copy) {
                    LuSVNCopyOptions options;
                    if (const auto& chosen = settings.revision ? settings.revision : peg)
                        options.setRevision(chosen->keyRevision());
                    revision = LuSVNNode::copyNodeAtPath(location(source), location(target), options, context);
                } else {
                    revision = LuSVNNode::moveNodeAtPath(location(source), location(target), moveOptions, context);
                }
            } catch (const LuSVNNotWorkingCopyException& failure) {
                // The library names the unversioned directory; svn the destination in it.
                if (failure.reason().rfind("Failed to ", 0) != 0)
                    throw;
                LuSVNException::exceptionWithReason("'" + absoluteTargetPath(target) + "' is not a working copy",
                                                    NotWorkingCopy)
                    ->raise();
            }
        }
        return revision;
    });
    return 0;
}
