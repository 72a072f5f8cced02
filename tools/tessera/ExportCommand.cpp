// tessera export [-r REV] URL[@PEGREV] [PATH] and export PATH1[@PEGREV]
// [PATH2]: a clean tree of a repository or of a working copy's working
// files, with svn export's lines ("A    path", "Exported revision N.").
#include <tessera/LuSVNExportOptions.h>
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"
#include "ReadTarget.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::shared_ptr<const LuSVNRevisionSpec> revision;
    std::optional<std::string> depth;
    std::optional<std::string> nativeEOL;
    bool quiet = false;
    bool force = false;
    bool ignoreExternals = false;
};

constexpr int ObstructedUpdate = 155000;

// Where svn puts the export without a destination: the source's last
// component, in the current directory.
std::string defaultDestination(const TesseraReadTarget& source)
{
    std::string name = source.path->denormalizedLastComponent();
    return name.empty() || name == "/" ? "." : name;
}

int exportTree(const CLI::App& command, const Settings& settings)
{
    checkArgumentCount(command, settings.arguments, 1, 2);
    if (settings.nativeEOL && *settings.nativeEOL != "LF" && *settings.nativeEOL != "CR" &&
        *settings.nativeEOL != "CRLF")
        throwOptionValueError(
            {{TesseraArgumentParsingError, "Syntax error in native-eol argument '" + *settings.nativeEOL + "'"}});
    const TesseraReadTarget source = readTarget(settings.arguments[0], settings.revision);
    std::string destination = settings.arguments.size() > 1 ? settings.arguments[1] : defaultDestination(source);
    if (destination.size() > 1 && destination.back() == '/')
        destination.pop_back();

    LuSVNExportOptions options;
    options.setRevision(source.revision);
    if (settings.depth)
        options.setDepth(depthForWord(*settings.depth));
    options.setOverwriteExisting(settings.force);
    options.setProcessExternals(!settings.ignoreExternals);
    options.setEOLMarkers(settings.nativeEOL.value_or(std::string(LuSVNEndOfLineDefault)));

    TesseraOperation operation(source.isURL ? source.text : absoluteTargetPath(source.text),
                               {settings.quiet, false});
    if (operation.notifier())
        operation.notifier()->markExport();
    try {
        // The destination as given, so that Subversion's messages name it so.
        LuSVNNode::exportNodeAtPath(source.path, LuSVNLocalPath::pathWithString(destination), options,
                                    operation.context());
    } catch (const LuSVNException& failure) {
        if (failure.status() != ObstructedUpdate || settings.force)
            throw;
        auto links = errorLinks(failure);
        links.insert(links.begin(),
                     {ObstructedUpdate,
                      "Destination directory exists; please remove the directory or use --force to overwrite"});
        throwErrorChain(links);
    }
    return 0;
}

const TesseraCommand exportCommand(
    {"export",
     {},
     "Create an unversioned copy of a tree.",
     "export [-r REV] URL[@PEGREV] [PATH]\n"
     "export [-r REV] PATH1[@PEGREV] [PATH2]",
     "1. Exports a clean directory tree from the repository specified by\n"
     "   URL, at revision REV if it is given, otherwise at HEAD, into\n"
     "   PATH. If PATH is omitted, the last component of the URL is used\n"
     "   for the local directory name.\n"
     "\n"
     "2. Exports a clean directory tree from the working copy specified by\n"
     "   PATH1, at revision REV if it is given, otherwise at WORKING, into\n"
     "   PATH2. If PATH2 is omitted, the last component of the PATH1 is used\n"
     "   for the local directory name. If REV is not specified, all local\n"
     "   changes will be preserved. Files not under version control will\n"
     "   not be copied.\n"
     "\n"
     "If specified, PEGREV determines in which revision the target is first\n"
     "looked up."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionOption(command, [settings](auto revision) { settings->revision = std::move(revision); });
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "--force", settings->force, "force operation to run");
        addOption(
            command, "--native-eol", [settings](const std::string& eol) { settings->nativeEOL = eol; },
            "use a different EOL marker than the standard\n"
            "system marker for files with the svn:eol-style\n"
            "property set to 'native'.\n"
            "ARG may be one of 'LF', 'CR', 'CRLF'");
        addFlag(command, "--ignore-externals", settings->ignoreExternals, "ignore externals definitions");
        addArguments(command, settings->arguments);
        return [settings, &command] { return exportTree(command, *settings); };
    });

}  // namespace
