// tessera proplist [TARGET...]: the properties of working-copy items or
// repository items, as svn proplist lists them (or their XML).
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "HistoryOptions.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"
#include "PropertyOutput.h"
#include "XMLText.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    std::optional<std::string> depth;
    std::shared_ptr<const LuSVNRevisionSpec> revision;
    bool recursive = false;
    bool verbose = false;
    bool quiet = false;
    bool xml = false;
    bool revprop = false;
};

void listTarget(const Settings& settings, const std::string& target, bool recursive)
{
    const auto [pathText, peg] = splitPegRevision(target);
    const bool url = isURL(pathText);
    const std::string absolute = url ? pathText : absoluteTargetPath(pathText);
    TesseraOperation operation(absolute, {true, false});
    LuSVNNode::Path path = url ? LuSVNNode::Path(commandLineURL(pathText)) : LuSVNNode::Path(targetPath(pathText));
    const auto pegRevision = peg ? peg->keyRevision() : LuSVNRevision::UNSPECIFIED();
    const auto operative = settings.revision ? settings.revision->operativeRevision() : pegRevision;
    std::string out;
    for (const auto& [reported, properties] : LuSVNNode::propertiesForNodesAtPath(
             path, LuSVNRevisionSpec::revisionWithRevision(operative, pegRevision), recursive,
             operation.context())) {
        if (properties.empty())
            continue;
        const std::string display = propertyItemDisplay(pathText, absolute, reported);
        if (settings.xml)
            appendXMLOpenTag(out, "target", {{"path", display}});
        else if (!settings.quiet)
            out += "Properties on '" + display + "':\n";
        for (const auto& [name, value] : properties) {
            if (settings.xml)
                appendXMLProperty(out, name, settings.verbose ? &value : nullptr);
            else
                appendListedProperty(out, name, settings.verbose ? &value : nullptr);
        }
        if (settings.xml)
            out += "</target>\n";
    }
    writeOutput(out);
}

int proplist(Settings settings)
{
    if (settings.revprop)
        refuseRevisionProperties();
    std::vector<std::string> targets = settings.arguments;
    if (settings.targetsFile)
        for (std::string& line : readTargetsFile(*settings.targetsFile))
            targets.push_back(std::move(line));
    if (targets.empty())
        targets.push_back("");
    const bool recursive = propertyRecursion(settings.depth, settings.recursive);
    if (settings.xml)
        writeOutput("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<properties>\n");
    TesseraTargetFailures failures(
        false, {{200005, "Could not display properties of all targets because some targets are not versioned"},
                {155010, "Could not display properties of all targets because some targets don't exist"}});
    for (const std::string& target : targets)
        failures.attempt([&] { listTarget(settings, target, recursive); });
    if (settings.xml)
        writeOutput("</properties>\n");
    failures.raiseIfAny();
    return 0;
}

const TesseraCommand proplistCommand(
    {"proplist",
     {"plist", "pl"},
     "List all properties on files, dirs, or revisions.",
     "proplist [TARGET[@REV]...]",
     "List the versioned properties of the targets, or of the current\n"
     "directory when none is given."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addFlag(command, "-v,--verbose", settings->verbose, "print extra information");
        addFlag(command, "-R,--recursive", settings->recursive, "descend recursively, same as --depth=infinity");
        addRevisionOption(command, [settings](std::shared_ptr<const LuSVNRevisionSpec> revision) {
            settings->revision = std::move(revision);
        });
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
        addFlag(command, "--revprop", settings->revprop, "operate on a revision property (use with -r)");
        addFlag(command, "--xml", settings->xml, "output in XML");
        addTargetsOption(command, settings->targetsFile);
        addArguments(command, settings->arguments);
        return [settings] { return proplist(*settings); };
    });

}  // namespace
