// tessera propget NAME TARGET...: one property of working-copy items or
// repository items, as svn propget prints it (or its XML).
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
    bool xml = false;
    bool noNewline = false;
    bool revprop = false;
};

// The values of one target; none (and a warning) when no item has the property.
bool printTarget(const Settings& settings, const std::string& name, const std::string& target, bool recursive,
                 bool withNames)
{
    const auto [pathText, peg] = splitPegRevision(target);
    const bool url = isURL(pathText);
    const std::string absolute = url ? pathText : absoluteTargetPath(pathText);
    TesseraOperation operation(absolute, {true, false});
    LuSVNNode::Path path = url ? LuSVNNode::Path(commandLineURL(pathText)) : LuSVNNode::Path(targetPath(pathText));
    const auto operative = settings.revision ? settings.revision->operativeRevision()
                                             : (peg ? peg->keyRevision() : LuSVNRevision::UNSPECIFIED());
    std::vector<std::pair<std::string, LuSVNPropertyValue>> values;
    try {
        values = LuSVNNode::propertiesWithName(
            name, path,
            LuSVNRevisionSpec::revisionWithRevision(operative,
                                                    peg ? peg->keyRevision() : LuSVNRevision::UNSPECIFIED()),
            recursive, operation.context());
    } catch (const LuSVNException& failure) {
        rethrowPropertyFailure(failure);
    }
    // svn is silent about the items of a recursive target that lack it.
    if (values.empty() && recursive)
        return true;
    if (values.empty()) {
        // svn names the target as it read it: a URL escaped, with the peg revision as typed.
        const std::string shown = url ? path->string() + target.substr(pathText.size()) : target;
        printWarning(200017, "Property '" + name + "' not found on '" + shown + "'");
        return false;
    }
    std::string out;
    for (const auto& [reported, value] : values) {
        if (settings.xml) {
            // svn names the items of propget's XML by their absolute paths.
            appendXMLOpenTag(out, "target", {{"path", reported}});
            appendXMLProperty(out, name, &value);
            out += "</target>\n";
            continue;
        }
        const std::string display = propertyItemDisplay(pathText, absolute, reported);
        if (settings.verbose) {
            out += "Properties on '" + display + "':\n";
            appendListedProperty(out, name, &value);
            continue;
        }
        if (withNames)
            out += display + " - ";
        out += propertyBytes(value);
        if (!settings.noNewline)
            out += "\n";
    }
    writeOutput(out);
    return true;
}

int propget(const CLI::App& command, Settings settings)
{
    if (settings.revprop)
        refuseRevisionProperties();
    std::vector<std::string> arguments = settings.arguments;
    if (settings.targetsFile)
        for (std::string& line : readTargetsFile(*settings.targetsFile))
            arguments.push_back(std::move(line));
    checkArgumentCount(command, arguments, 1, static_cast<std::size_t>(-1));
    const std::string name = arguments.front();
    std::vector<std::string> targets(arguments.begin() + 1, arguments.end());
    if (targets.empty())
        targets.push_back("");
    if (settings.verbose && (settings.noNewline || settings.xml))
        LuSVNException::exceptionWithReason("--verbose cannot be used with --revprop or --no-newline or --xml", 205002)
            ->raise();
    const bool recursive = propertyRecursion(settings.depth, settings.recursive);
    if (settings.noNewline && (targets.size() > 1 || recursive))
        throwUsageError(command.get_name(), TesseraArgumentParsingError,
                        "--no-newline is only available for single-target, non-recursive propget operations");
    if (settings.xml)
        writeOutput("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<properties>\n");
    bool missing = false;
    for (const std::string& target : targets)
        missing |= !printTarget(settings, name, target, recursive, targets.size() > 1 || recursive);
    if (settings.xml)
        writeOutput("</properties>\n");
    if (missing)
        LuSVNException::exceptionWithReason("A problem occurred; see other errors for details", 200000)->raise();
    return 0;
}

const TesseraCommand propgetCommand(
    {"propget",
     {"pget", "pg"},
     "Print the value of a property on files, dirs, or revisions.",
     "propget PROPNAME [TARGET[@REV]...]",
     "By default, this subcommand will add an extra newline to the end\n"
     "of the property values so that the output looks pretty.  Also,\n"
     "whenever there are multiple paths involved, each property value\n"
     "is prefixed with the path with which it is associated.  Use the\n"
     "--no-newline option to disable these beautifications (useful when,\n"
     "for example, redirecting binary property values to a file, but\n"
     "available only if you supply a single TARGET to a non-recursive\n"
     "propget operation)."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addFlag(command, "-v,--verbose", settings->verbose, "print extra information");
        addFlag(command, "-R,--recursive", settings->recursive, "descend recursively, same as --depth=infinity");
        addRevisionOption(command, [settings](std::shared_ptr<const LuSVNRevisionSpec> revision) {
            settings->revision = std::move(revision);
        });
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "--revprop", settings->revprop, "operate on a revision property (use with -r)");
        addFlag(command, "--xml", settings->xml, "output in XML");
        addFlag(command, "--no-newline,--strict", settings->noNewline, "don't print an extra newline");
        addTargetsOption(command, settings->targetsFile);
        addArguments(command, settings->arguments);
        return [&command, settings] { return propget(command, *settings); };
    });

}  // namespace
