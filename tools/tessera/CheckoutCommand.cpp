// tessera checkout URL[@REV]... [PATH]: new working copies, as svn checkout.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <cctype>
#include <cstdio>
#include <memory>

#include "Command.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::shared_ptr<const LuSVNRevisionSpec> revision;
    std::optional<std::string> depth;
    bool nonRecursive = false;
    bool quiet = false;
    bool force = false;
    bool ignoreExternals = false;
};

// The last component of a URL, its escapes decoded, as svn names the
// directory of a check-out without PATH.
std::string urlBaseName(const std::string& url)
{
    std::string name = url.substr(url.find_last_of('/') + 1);
    std::string decoded;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] == '%' && i + 2 < name.size() && std::isxdigit(static_cast<unsigned char>(name[i + 1])) &&
            std::isxdigit(static_cast<unsigned char>(name[i + 2]))) {
            decoded += static_cast<char>(std::stoi(name.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            decoded += name[i];
        }
    }
    return decoded;
}

int checkout(const CLI::App& command, const Settings& settings)
{
    std::vector<std::string> urls = settings.arguments;
    checkArgumentCount(command, urls, 1, static_cast<std::size_t>(-1));
    std::optional<std::string> destination;
    if (!isURL(urls.back())) {
        destination = urls.back();
        urls.pop_back();
        if (urls.empty())
            throwUsageError(command.get_name(), TesseraInsufficientArgumentsError, "Not enough arguments provided");
    }
    for (const std::string& url : urls)
        if (!isURL(url))
            LuSVNException::exceptionWithReason("'" + url + "' does not appear to be a URL", 125002)->raise();

    LuSVNCheckOutOptions options;
    if (settings.depth)
        options.setDepth(depthForWord(*settings.depth));
    else if (settings.nonRecursive)
        options.setDepth(LuSVNDepthFiles);
    options.setProcessExternals(!settings.ignoreExternals);
    options.setAllowUnversionedObstructions(settings.force);

    const auto newest = LuSVNBundleLoader::sharedInstance()->newestVersion();
    if (!newest)
        LuSVNException::exceptionWithReason("No backend found in " + LuSVNBundleLoader::defaultBundleDirectory(),
                                            LuSVNGenericErrorStatus)
            ->raise();
    for (const std::string& argument : urls) {
        const auto [url, peg] = splitPegRevision(argument);
        // -r names the revision to check out; a peg alone names it too.
        const auto& operative = settings.revision ? settings.revision : peg;
        options.setRevision(!operative ? LuSVNRevisionSpec::HEAD()
                            : peg      ? LuSVNRevisionSpec::revisionWithRevision(operative->keyRevision(),
                                                                                 peg->keyRevision())
                                       : operative);
        std::string path = urlBaseName(url);
        if (destination)
            path = urls.size() == 1 ? *destination : *destination + "/" + path;
        TesseraOperation operation(*newest, {settings.quiet, true});
        if (operation.notifier())
            operation.notifier()->markCheckout();
        LuSVNDirectory::checkoutDirectoryAtURL(commandLineURL(url), targetPath(path), options,
                                               operation.context());
    }
    return 0;
}

const TesseraCommand checkoutCommand(
    {"checkout",
     {"co"},
     "Check out a working copy from a repository.",
     "checkout URL[@REV]... [PATH]",
     "If specified, REV determines in which revision the URL is first\n"
     "looked up.\n"
     "\n"
     "If PATH is omitted, the basename of the URL will be used as\n"
     "the destination. If multiple URLs are given each will be checked\n"
     "out into a sub-directory of PATH, with the name of the sub-directory\n"
     "being the basename of the URL.\n"
     "\n"
     "On a terminal, a progress line shows the bytes, rate and items so far."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionOption(command, [settings](auto revision) { settings->revision = std::move(revision); });
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addFlag(command, "-N,--non-recursive", settings->nonRecursive, "obsolete; same as --depth=files");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "--force", settings->force, "handle unversioned obstructions as changes");
        addFlag(command, "--ignore-externals", settings->ignoreExternals, "ignore externals definitions");
        addArguments(command, settings->arguments);
        return [&command, settings] { return checkout(command, *settings); };
    });

}  // namespace
