// tessera info [TARGET[@REV]...]: what Subversion knows of working-copy
// items and repository nodes, as svn info prints it (or its XML, or one item
// with --show-item).
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
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
    std::optional<std::string> showItem;
    bool recursive = false;
    bool xml = false;
    bool incremental = false;
    bool noNewline = false;
};

const char* kindWord(LuSVNNodeKind kind, bool xml)
{
    switch (kind) {
    case LuSVNNodeKindNone:
        return "none";
    case LuSVNNodeKindFile:
        return "file";
    case LuSVNNodeKindDirectory:
        return xml ? "dir" : "directory";
    default:
        return "unknown";
    }
}

const char* scheduleWord(LuSVNSchedule schedule)
{
    switch (schedule) {
    case LuSVNScheduleAdd:
        return "add";
    case LuSVNScheduleDelete:
        return "delete";
    case LuSVNScheduleReplace:
        return "replace";
    default:
        return "normal";
    }
}

const char* depthWord(LuSVNDepth depth)
{
    switch (depth) {
    case LuSVNDepthExclude:
        return "exclude";
    case LuSVNDepthEmpty:
        return "empty";
    case LuSVNDepthFiles:
        return "files";
    case LuSVNDepthImmediates:
        return "immediates";
    case LuSVNDepthInfinity:
        return "infinity";
    default:
        return "unknown";
    }
}

// A working-copy path as svn shows it: relative to the current directory
// when below it ("." for itself), else absolute.
std::string shownPath(const std::string& absolute)
{
    const std::string current = std::filesystem::current_path().string();
    if (absolute == current)
        return ".";
    if (current == "/")
        return absolute.substr(1);
    if (absolute.starts_with(current + "/"))
        return absolute.substr(current.size() + 1);
    return absolute;
}

std::string relativeURL(const LuSVNInfo& info)
{
    if (!info.URL || !info.repositoryRootURL)
        return "";
    const std::string& url = info.URL->string();
    const std::string& root = info.repositoryRootURL->string();
    if (url == root)
        return "^/";
    if (url.starts_with(root + "/"))
        return "^/" + url.substr(root.size() + 1);
    return "";
}

int lineCount(const std::string& text)
{
    int lines = 1;
    for (std::size_t index = 0; index < text.size(); ++index)
        if (text[index] == '\n' || (text[index] == '\r' && (index + 1 == text.size() || text[index + 1] != '\n')))
            ++lines;
    return lines;
}

std::string infoPath(const LuSVNInfo& info, bool isURL)
{
    return isURL ? info.path : shownPath(info.path);
}

void appendText(std::string& out, const LuSVNInfo& info, bool isURL)
{
    const auto line = [&out](const std::string& label, const std::string& value) {
        out += label + ": " + value + "\n";
    };
    const std::string path = infoPath(info, isURL);
    line("Path", path);
    if (info.kind != LuSVNNodeKindDirectory)
        line("Name", std::filesystem::path(path).filename().string());
    if (info.workingCopyRootPath)
        line("Working Copy Root Path", *info.workingCopyRootPath);
    if (info.URL) {
        line("URL", info.URL->string());
        if (const std::string relative = relativeURL(info); !relative.empty())
            line("Relative URL", relative);
    }
    if (info.repositoryRootURL)
        line("Repository Root", info.repositoryRootURL->string());
    if (info.repositoryUUID)
        line("Repository UUID", *info.repositoryUUID);
    if (info.revision >= 0)
        line("Revision", std::to_string(info.revision));
    line("Node Kind", kindWord(info.kind, false));
    if (info.kind == LuSVNNodeKindFile && info.size)
        line("Size in Repository", std::to_string(*info.size));
    if (info.hasWorkingCopyInfo) {
        line("Schedule", scheduleWord(info.schedule));
        if (info.depth == LuSVNDepthEmpty || info.depth == LuSVNDepthFiles || info.depth == LuSVNDepthImmediates ||
            info.depth == LuSVNDepthExclude)
            line("Depth", depthWord(info.depth));
        if (info.copiedFromURL)
            line("Copied From URL", *info.copiedFromURL);
        if (info.copiedFromRevision >= 0)
            line("Copied From Rev", std::to_string(info.copiedFromRevision));
        if (info.movedFromPath)
            line("Moved From", shownPath(*info.movedFromPath));
        if (info.movedToPath)
            line("Moved To", shownPath(*info.movedToPath));
    }
    if (info.lastChangedAuthor)
        line("Last Changed Author", *info.lastChangedAuthor);
    if (info.lastChangedRevision >= 0)
        line("Last Changed Rev", std::to_string(info.lastChangedRevision));
    if (info.lastChangedDate)
        line("Last Changed Date", humanDate(*info.lastChangedDate));
    if (info.hasWorkingCopyInfo) {
        if (info.textLastUpdated)
            line("Text Last Updated", humanDate(*info.textLastUpdated));
        if (info.checksum)
            line("Checksum", *info.checksum);
    }
    if (const auto& lock = info.lock) {
        if (!lock->token().empty())
            line("Lock Token", lock->token());
        if (!lock->owner().empty())
            line("Lock Owner", lock->owner());
        if (lock->creationDate())
            line("Lock Created", humanDate(*lock->creationDate()));
        if (lock->expirationDate())
            line("Lock Expires", humanDate(*lock->expirationDate()));
        if (lock->comment()) {
            const int lines = lineCount(*lock->comment());
            out += "Lock Comment (" + std::to_string(lines) + (lines == 1 ? " line" : " lines") + "):\n" +
                   *lock->comment() + "\n";
        }
    }
    if (info.hasWorkingCopyInfo && info.changelist)
        line("Changelist", *info.changelist);
    out += "\n";
}

void appendXML(std::string& out, const LuSVNInfo& info, bool isURL)
{
    std::vector<std::pair<std::string, std::string>> attributes{{"path", infoPath(info, isURL)},
                                                                {"kind", kindWord(info.kind, true)}};
    if (info.kind == LuSVNNodeKindFile && info.size)
        attributes.emplace_back("size", std::to_string(*info.size));
    attributes.emplace_back("revision", std::to_string(info.revision));
    appendXMLOpenTag(out, "entry", attributes);
    if (info.URL)
        appendXMLTaggedData(out, "url", info.URL->string());
    if (const std::string relative = relativeURL(info); !relative.empty())
        appendXMLTaggedData(out, "relative-url", relative);
    if (info.repositoryRootURL || info.repositoryUUID) {
        out += "<repository>\n";
        if (info.repositoryRootURL)
            appendXMLTaggedData(out, "root", info.repositoryRootURL->string());
        if (info.repositoryUUID)
            appendXMLTaggedData(out, "uuid", *info.repositoryUUID);
        out += "</repository>\n";
    }
    if (info.hasWorkingCopyInfo) {
        out += "<wc-info>\n";
        if (info.workingCopyRootPath)
            appendXMLTaggedData(out, "wcroot-abspath", *info.workingCopyRootPath);
        appendXMLTaggedData(out, "schedule", scheduleWord(info.schedule));
        // svn shows the files of a working copy at depth infinity.
        appendXMLTaggedData(out, "depth", depthWord(info.kind == LuSVNNodeKindFile && info.depth == LuSVNDepthUnknown
                                                        ? LuSVNDepthInfinity
                                                        : info.depth));
        if (info.copiedFromURL)
            appendXMLTaggedData(out, "copy-from-url", *info.copiedFromURL);
        if (info.copiedFromRevision >= 0)
            appendXMLTaggedData(out, "copy-from-rev", std::to_string(info.copiedFromRevision));
        if (info.textLastUpdated)
            appendXMLTaggedData(out, "text-updated", repositoryDate(*info.textLastUpdated));
        if (info.checksum)
            appendXMLTaggedData(out, "checksum", *info.checksum);
        if (info.changelist)
            appendXMLTaggedData(out, "changelist", *info.changelist);
        if (info.movedFromPath)
            appendXMLTaggedData(out, "moved-from", shownPath(*info.movedFromPath));
        if (info.movedToPath)
            appendXMLTaggedData(out, "moved-to", shownPath(*info.movedToPath));
        out += "</wc-info>\n";
    }
    if (info.lastChangedAuthor || info.lastChangedRevision >= 0) {
        appendXMLOpenTag(out, "commit", {{"revision", std::to_string(info.lastChangedRevision)}});
        if (info.lastChangedAuthor)
            appendXMLTaggedData(out, "author", *info.lastChangedAuthor);
        if (info.lastChangedDate)
            appendXMLTaggedData(out, "date", repositoryDate(*info.lastChangedDate));
        out += "</commit>\n";
    }
    if (info.lock)
        appendXMLLock(out, *info.lock);
    out += "</entry>\n";
}

// The value of one --show-item word, empty when the node has none.
std::string itemValue(const LuSVNInfo& info, const std::string& item)
{
    if (item == "kind")
        return kindWord(info.kind, true);
    if (item == "url")
        return info.URL ? info.URL->string() : "";
    if (item == "relative-url")
        return relativeURL(info);
    if (item == "repos-root-url")
        return info.repositoryRootURL ? info.repositoryRootURL->string() : "";
    if (item == "repos-uuid")
        return info.repositoryUUID.value_or("");
    if (item == "repos-size")
        return info.kind == LuSVNNodeKindFile && info.size ? std::to_string(*info.size) : "";
    if (item == "revision")
        return info.revision >= 0 ? std::to_string(info.revision) : "";
    if (item == "last-changed-revision")
        return info.lastChangedRevision >= 0 ? std::to_string(info.lastChangedRevision) : "";
    if (item == "last-changed-date")
        return info.lastChangedDate ? repositoryDate(*info.lastChangedDate) : "";
    if (item == "last-changed-author")
        return info.lastChangedAuthor.value_or("");
    if (item == "wc-root")
        return info.workingCopyRootPath.value_or("");
    if (item == "schedule")
        return info.hasWorkingCopyInfo ? scheduleWord(info.schedule) : "";
    if (item == "depth")
        return info.hasWorkingCopyInfo ? depthWord(info.depth) : "";
    return info.changelist.value_or("");  // "changelist"
}

const std::vector<std::string>& itemWords()
{
    static const std::vector<std::string> words{"kind", "url", "relative-url", "repos-root-url", "repos-uuid",
                                                "repos-size", "revision", "last-changed-revision",
                                                "last-changed-date", "last-changed-author", "wc-root", "schedule",
                                                "depth", "changelist"};
    return words;
}

constexpr int PathNotFound = 155010, IllegalURL = 170000;

int info(const CLI::App& command, const Settings& settings)
{
    if (settings.showItem &&
        std::find(itemWords().begin(), itemWords().end(), *settings.showItem) == itemWords().end())
        throwUsageError(command.get_name(), TesseraArgumentParsingError,
                        "'" + *settings.showItem + "' is not a valid value for --show-item");
    if (settings.xml && settings.showItem)
        throwUsageError(command.get_name(), TesseraArgumentParsingError,
                        "--show-item is not valid in --xml mode");
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
                                                  : LuSVNDepthEmpty;
    const bool several = targets.size() > 1 || depth != LuSVNDepthEmpty;
    if (settings.noNewline && (!settings.showItem || several))
        throwUsageError(command.get_name(), TesseraArgumentParsingError,
                        settings.showItem ? "--no-newline is only available for single-target, non-recursive info "
                                            "operations"
                                          : "--no-newline is only available with --show-item");
    const bool wrap = settings.xml && !settings.incremental;
    if (wrap)
        writeOutput("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<info>\n");
    bool missing = false;
    for (const std::string& argument : targets) {
        const TesseraReadTarget target = readTarget(argument, settings.revision);
        try {
            TesseraOperation operation(target.isURL ? target.text : absoluteTargetPath(target.text), {true, false});
            std::string out;
            LuSVNNode::reportInfoForNodeAtPath(
                target.path, target.revision, depth,
                [&](const LuSVNInfo& info) {
                    if (settings.xml) {
                        appendXML(out, info, target.isURL);
                    } else if (settings.showItem) {
                        out += itemValue(info, *settings.showItem);
                        if (several) {
                            if (out.size() < 10)
                                out.append(10 - out.size(), ' ');
                            out += " " + infoPath(info, target.isURL);
                        }
                        if (!settings.noNewline)
                            out += "\n";
                    } else {
                        appendText(out, info, target.isURL);
                    }
                    writeOutput(out);
                    out.clear();
                },
                operation.context());
        } catch (const LuSVNException& failure) {
            if (failure.status() != PathNotFound && failure.status() != IllegalURL)
                throw;
            printWarning(static_cast<int>(failure.status()), failure.reason());
            std::fputs("\n", stderr);
            missing = true;
        }
    }
    if (wrap)
        writeOutput("</info>\n");
    if (missing)
        LuSVNException::exceptionWithReason(
            "Could not display info for all targets because some targets don't exist", 200009)
            ->raise();
    return 0;
}

const TesseraCommand infoCommand(
    {"info",
     {},
     "Display information about a local or remote item.",
     "info [TARGET[@REV]...]",
     "Print information about each TARGET (default: '.').\n"
     "TARGET may be either a working-copy path or a URL. If specified, REV\n"
     "determines in which revision the target is first looked up.\n"
     "\n"
     "With --show-item, print only the value of one item of information\n"
     "about TARGET: kind, url, relative-url, repos-root-url, repos-uuid,\n"
     "repos-size, revision, last-changed-revision, last-changed-date,\n"
     "last-changed-author, wc-root, schedule, depth or changelist."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionOption(command, [settings](auto revision) { settings->revision = std::move(revision); });
        addFlag(command, "-R,--recursive", settings->recursive, "descend recursively, same as --depth=infinity");
        addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
        addTargetsOption(command, settings->targetsFile);
        addFlag(command, "--incremental", settings->incremental, "give output suitable for concatenation");
        addFlag(command, "--xml", settings->xml, "output in XML");
        addOption(
            command, "--show-item", [settings](const std::string& item) { settings->showItem = item; },
            "print only the item identified by ARG");
        addFlag(command, "--no-newline", settings->noNewline, "do not output the trailing newline");
        addArguments(command, settings->arguments);
        return [settings, &command] { return info(command, *settings); };
    });

}  // namespace
