// tessera list [TARGET[@REV]...]: the entries of repository directories, as
// svn list prints them (or its XML). Entries are printed while the
// repository sends them.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "HistoryOptions.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"
#include "ReadTarget.h"
#include "RevisionDates.h"
#include "XMLText.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    std::shared_ptr<const LuSVNRevisionSpec> revision;
    std::optional<std::string> depth;
    bool verbose = false;
    bool recursive = false;
    bool xml = false;
    bool incremental = false;
};

// svn's short date: the time within half a year of now, else the year.
std::string shortDate(const std::optional<LuSVNNode::Date>& date)
{
    using namespace std::chrono;
    const auto when = date.value_or(LuSVNNode::Date{});
    const std::time_t seconds = system_clock::to_time_t(when);
    std::tm local{};
    localtime_r(&seconds, &local);
    const auto distance = duration_cast<std::chrono::seconds>(system_clock::now() - when).count();
    const bool recent = distance < 365 * 86400 / 2 && -distance < 365 * 86400 / 2;
    char text[32];
    if (std::strftime(text, sizeof text, recent ? "%b %d %H:%M" : "%b %d  %Y", &local) == 0)
        text[0] = '\0';
    return text;
}

void appendLine(std::string& out, const LuSVNNode& node, const std::string& name, bool verbose)
{
    const std::string suffix = node.isDirectory() ? "/" : "";
    if (!verbose) {
        out += name + suffix + "\n";
        return;
    }
    char line[128];
    const std::string size = node.isDirectory() ? "" : std::to_string(node.size());
    std::snprintf(line, sizeof line, "%7ld %-8.8s %c %10s %12s ", static_cast<long>(node.revision()),
                  node.author() ? node.author()->c_str() : " ? ", node.lock() ? 'O' : ' ', size.c_str(),
                  shortDate(node.date()).c_str());
    out += line + name + suffix + "\n";
}

void appendXMLEntry(std::string& out, const LuSVNNode& node, const std::string& name)
{
    appendXMLOpenTag(out, "entry", {{"kind", node.isDirectory() ? "dir" : "file"}});
    appendXMLTaggedData(out, "name", name);
    if (!node.isDirectory())
        appendXMLTaggedData(out, "size", std::to_string(node.size()));
    appendXMLOpenTag(out, "commit", {{"revision", std::to_string(node.revision())}});
    if (node.author())
        appendXMLTaggedData(out, "author", *node.author());
    if (node.date())
        appendXMLTaggedData(out, "date", repositoryDate(*node.date()));
    out += "</commit>\n";
    if (node.lock())
        appendXMLLock(out, *node.lock());
    out += "</entry>\n";
}

void listTarget(const Settings& settings, const std::string& argument, LuSVNDepth depth)
{
    const TesseraReadTarget target = readTarget(argument, settings.revision);
    TesseraOperation operation(target.isURL ? target.text : absoluteTargetPath(target.text), {true, false});
    std::string out;
    if (settings.xml) {
        appendXMLOpenTag(out, "list", {{"path", target.text.empty() ? "." : target.text}});
        writeOutput(out);
        out.clear();
    }
    LuSVNDirectory::listNodesAtPath(
        target.path, target.revision, depth, settings.verbose || settings.xml, settings.verbose || settings.xml,
        [&](const std::shared_ptr<LuSVNNode>& node, const std::string& relativePath) {
            std::string name = relativePath;
            if (relativePath.empty()) {
                // The target itself: a file by its name, a directory as "."
                // in the verbose listing only.
                if (node->isDirectory() && (settings.xml || !settings.verbose))
                    return;
                name = node->isDirectory() ? "." : node->name().value_or("");
            }
            if (settings.xml)
                appendXMLEntry(out, *node, name);
            else
                appendLine(out, *node, name, settings.verbose);
            if (out.size() >= 64 * 1024) {
                writeOutput(out);
                out.clear();
            }
        },
        operation.context());
    if (settings.xml)
        out += "</list>\n";
    writeOutput(out);
}

constexpr int PathNotFound = 155010, FileSystemNotFound = 160013;

int list(const CLI::App& command, const Settings& settings)
{
    if (settings.xml && settings.verbose)
        throwUsageError(command.get_name(), TesseraArgumentParsingError, "--verbose is not valid in --xml mode");
    if (!settings.xml && settings.incremental)
        throwUsageError(command.get_name(), TesseraArgumentParsingError,
                        "'incremental' option only valid in XML mode");
    std::vector<std::string> targets = settings.arguments;
    if (settings.targetsFile)
        for (const std::string& line : readTargetsFile(*settings.targetsFile))
            targets.push_back(line);
    if (targets.empty())
        targets.push_back("");
    const LuSVNDepth depth = settings.depth ? depthForWord(*settings.depth)
                             : settings.recursive ? LuSVNDepthInfinity
                                                  : LuSVNDepthImmediates;
    const bool wrap = settings.xml && !settings.incremental;
    if (wrap)
        writeOutput("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<lists>\n");
    // A missing target is a warning, and the others are still listed.
    bool missing = false;
    for (const std::string& target : targets) {
        try {
            listTarget(settings, target, depth);
        } catch (const LuSVNException& failure) {
            if (failure.status() != PathNotFound && failure.status() != FileSystemNotFound)
                throw;
            printWarning(static_cast<int>(failure.status()), failure.reason());
            missing = true;
        }
    }
    if (wrap)
        writeOutput("</lists>\n");
    if (missing)
        LuSVNException::exceptionWithReason("Could not list all targets because some targets don't exist", 200009)
            ->raise();
    return 0;
}

const TesseraCommand listCommand(
    {"list",
     {"ls"},
     "List directory entries in the repository.",
     "list [TARGET[@REV]...]",
     "List each TARGET file and the contents of each TARGET directory as\n"
     "they exist in the repository. If TARGET is a working copy path, the\n"
     "corresponding repository URL will be used. If specified, REV\n"
     "determines in which revision the target is first looked up.\n"
     "\n"
     "The default TARGET is '.', meaning the repository URL of the current\n"
     "working directory.\n"
     "\n"
     "With --verbose, the following fields will be shown for each item:\n"
     "\n"
     "  Revision number of the last commit\n"
     "  Author of the last commit\n"
     "  If locked, the letter 'O'.  (Use 'tessera info URL' to see details)\n"
     "  Size (in bytes)\n"
     "  Date and time of the last commit"},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionOption(command, [settings](auto revision) { settings->revision = std::move(revision); });
        addFlag(command, "-v,--verbose", settings->verbose, "print extra information");
        addFlag(command, "-R,--recursive", settings->recursive, "descend recursively, same as --depth=infinity");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addFlag(command, "--incremental", settings->incremental, "give output suitable for concatenation");
        addFlag(command, "--xml", settings->xml, "output in XML");
        addTargetsOption(command, settings->targetsFile);
        addArguments(command, settings->arguments);
        return [settings, &command] { return list(command, *settings); };
    });

}  // namespace
