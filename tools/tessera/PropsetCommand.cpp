// tessera propset NAME VALUE PATH... (or -F FILE) and tessera propdel NAME
// [PATH...]: a property set on or deleted from working-copy items, with
// svn's lines ("property 'x' set on 'y'").
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"
#include "PropertyOutput.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    std::optional<std::string> depth;
    std::optional<std::string> file;
    bool recursive = false;
    bool quiet = false;
    bool force = false;
    bool revprop = false;
};

std::string fileContents(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        LuSVNException::exceptionWithReason("Can't open file '" + absoluteTargetPath(path) +
                                                "': No such file or directory",
                                            2)
            ->raise();
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Sets (or, without value, deletes) the property on each working-copy target.
int changeProperty(const CLI::App& command, const Settings& settings, bool set)
{
    if (settings.revprop)
        refuseRevisionProperties();
    std::vector<std::string> arguments = settings.arguments;
    if (settings.targetsFile)
        for (std::string& line : readTargetsFile(*settings.targetsFile))
            arguments.push_back(std::move(line));
    const std::size_t named = set && !settings.file ? 2 : 1;
    checkArgumentCount(command, arguments, named, static_cast<std::size_t>(-1));
    const std::string name = arguments.front();
    checkPropertyName(name);
    std::optional<LuSVNPropertyValue> value;
    if (set) {
        std::string bytes = settings.file ? fileContents(*settings.file) : arguments[1];
        value = propertyValue(name.starts_with("svn:") ? propertyLineFeeds(bytes) : bytes);
    }
    std::vector<std::string> targets(arguments.begin() + static_cast<std::ptrdiff_t>(named), arguments.end());
    if (targets.empty()) {
        if (set)
            throwUsageError(command.get_name(), TesseraInsufficientArgumentsError,
                            "Explicit target required ('" + arguments.back() + "' interpreted as prop value)");
        targets.push_back("");
    }
    for (const std::string& target : targets)
        if (isURL(target))
            LuSVNException::exceptionWithReason("Targets must be working copy paths", 200009)->raise();
    const bool recursive = propertyRecursion(settings.depth, settings.recursive);
    TesseraOperation operation(targets.front(), {settings.quiet, false});
    for (const std::string& target : targets)
        LuSVNNode::setProperty(name, value, targetPath(splitPegRevision(target).first),
                               recursive, settings.force, operation.context());
    return 0;
}

void addCommonOptions(CLI::App& command, Settings& settings)
{
    addFlag(command, "-q,--quiet", settings.quiet, "print nothing, or only summary information");
    addFlag(command, "-R,--recursive", settings.recursive, "descend recursively, same as --depth=infinity");
    addDepthOption(command, [&settings](const std::string& word) { settings.depth = word; });
    addFlag(command, "--revprop", settings.revprop, "operate on a revision property (use with -r)");
    addTargetsOption(command, settings.targetsFile);
    addArguments(command, settings.arguments);
}

const TesseraCommand propsetCommand(
    {"propset",
     {"pset", "ps"},
     "Set the value of a property on files or dirs.",
     "propset PROPNAME PROPVAL PATH...\n"
     "propset PROPNAME -F FILE PATH...",
     "The value comes from PROPVAL or from the file of -F, byte for byte;\n"
     "the lines of svn: properties are kept with LF line ends."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addOption(
            command, "-F,--file", [settings](const std::string& file) { settings->file = file; },
            "read property value from file ARG");
        addFlag(command, "--force", settings->force, "force operation to run");
        addCommonOptions(command, *settings);
        return [&command, settings] { return changeProperty(command, *settings, true); };
    });

const TesseraCommand propdelCommand(
    {"propdel",
     {"pdel", "pd"},
     "Remove a property from files or dirs.",
     "propdel PROPNAME [PATH...]",
     "Removes the property from the working-copy items, or from the current\n"
     "directory when none is given."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addCommonOptions(command, *settings);
        return [&command, settings] { return changeProperty(command, *settings, false); };
    });

}  // namespace
