// tessera log [TARGET[@REV]]: the history of a path or URL, as svn log prints
// it (or its XML).
//
// Each revision is printed as the library's log hands it over and then
// dropped, so that the memory of a long history stays flat.
#include <tessera/LuSVNLogItem.h>
#include <tessera/LuSVNLogMessageReceiver.h>
#include <tessera/LuSVNLogOptions.h>
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fnmatch.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "DiffOutput.h"
#include "HistoryOptions.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"
#include "RevisionDates.h"
#include "XMLText.h"

namespace {

constexpr const char* separator = "------------------------------------------------------------------------\n";

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> revision;
    std::optional<std::string> change;
    std::optional<std::string> limit;
    // --search starts a group, --search-and adds to the last one; an item
    // matches when all patterns of any group match.
    std::vector<std::vector<std::string>> searchGroups;
    bool verbose = false;
    bool quiet = false;
    bool stopOnCopy = false;
    bool xml = false;
    bool incremental = false;
    bool diff = false;
    bool mergeHistory = false;
    std::optional<std::string> extensions;
};

// Line breaks as svn counts them: "\r\n", "\r" and "\n" one each.
int lineCount(const std::string& message)
{
    int lines = 1;
    for (std::size_t at = 0; at < message.size(); ++at) {
        if (message[at] == '\r' && at + 1 < message.size() && message[at + 1] == '\n')
            ++at;
        lines += message[at] == '\n' || message[at] == '\r';
    }
    return lines;
}

std::string lowercase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

// A pattern matches anywhere in the text (as grep), regardless of case.
bool matches(const std::string& pattern, const std::optional<std::string>& text)
{
    return text && fnmatch(("*" + pattern + "*").c_str(), lowercase(*text).c_str(), 0) == 0;
}

// Author, date and message, and with `verbose` the changed paths and their
// copy sources.
bool matchesPattern(const std::string& pattern, const LuSVNLogItem& item, const std::optional<std::string>& message,
                    bool verbose)
{
    if (matches(pattern, item.author()) || (item.date() && matches(pattern, repositoryDate(*item.date()))) ||
        matches(pattern, message))
        return true;
    if (verbose)
        for (const auto& change : item.changes())
            if (matches(pattern, change->path()) || (change->copyRevision() >= 0 && matches(pattern, change->copyPath())))
                return true;
    return false;
}

bool matchesSearch(const Settings& settings, const LuSVNLogItem& item, const std::optional<std::string>& message)
{
    if (settings.searchGroups.empty())
        return true;
    return std::any_of(settings.searchGroups.begin(), settings.searchGroups.end(), [&](const auto& group) {
        return std::all_of(group.begin(), group.end(), [&](const std::string& pattern) {
            return matchesPattern(pattern, item, message, settings.verbose);
        });
    });
}

// The changes in svn's order: by path.
LuSVNLogItem::Changes sortedChanges(const LuSVNLogItem& item)
{
    auto changes = item.changes();
    std::sort(changes.begin(), changes.end(), [](const auto& a, const auto& b) { return a->path() < b->path(); });
    return changes;
}

// The revisions that merged the item, outermost first.
using MergeStack = std::vector<std::int32_t>;

void appendText(std::string& out, const LuSVNLogItem& item, const std::optional<std::string>& message, bool verbose,
                const MergeStack& mergedVia)
{
    out += separator;
    out += "r" + std::to_string(item.revision()) + " | " + item.author().value_or("(no author)") + " | " +
           (item.date() ? humanDate(*item.date()) : "(no date)");
    if (message) {
        const int lines = lineCount(*message);
        out += " | " + std::to_string(lines) + (lines == 1 ? " line" : " lines");
    }
    out += '\n';
    if (verbose) {
        out += "Changed paths:\n";
        for (const auto& change : sortedChanges(item)) {
            out += "   ";
            out += LuSVNCharFromLogAction(change->action());
            out += " " + change->path();
            if (change->copyPath() && change->copyRevision() >= 0)
                out += " (from " + *change->copyPath() + ":" + std::to_string(change->copyRevision()) + ")";
            out += '\n';
        }
    }
    if (!mergedVia.empty()) {
        out += item.isSubtractiveMerge() ? "Reverse merged via:" : "Merged via:";
        for (std::size_t index = 0; index < mergedVia.size(); ++index)
            out += " r" + std::to_string(mergedVia[index]) + (index + 1 == mergedVia.size() ? '\n' : ',');
    }
    if (message)
        out += "\n" + *message + "\n";
}

const char* trueOrFalse(bool value)
{
    return value ? "true" : "false";
}

// svn's words for node kinds, "" for one the backend did not tell.
const char* kindWord(LuSVNNodeKind kind)
{
    switch (kind) {
    case LuSVNNodeKindFile: return "file";
    case LuSVNNodeKindDirectory: return "dir";
    default: return "";
    }
}

// Without its closing tag: the merged revisions come first.
void appendXML(std::string& out, const LuSVNLogItem& item, const std::optional<std::string>& message, bool verbose,
               const MergeStack& mergedVia)
{
    std::vector<std::pair<std::string, std::string>> entryAttributes{{"revision", std::to_string(item.revision())}};
    if (!mergedVia.empty())
        entryAttributes.emplace_back("reverse-merge", trueOrFalse(item.isSubtractiveMerge()));
    appendXMLOpenTag(out, "logentry", entryAttributes);
    if (item.author())
        appendXMLTaggedData(out, "author", *item.author());
    if (item.date())
        appendXMLTaggedData(out, "date", repositoryDate(*item.date()));
    if (verbose) {
        appendXMLOpenTag(out, "paths", {});
        for (const auto& change : sortedChanges(item)) {
            std::vector<std::pair<std::string, std::string>> attributes{
                {"action", std::string(1, LuSVNCharFromLogAction(change->action()))}};
            if (change->copyPath() && change->copyRevision() >= 0) {
                attributes.emplace_back("copyfrom-path", *change->copyPath());
                attributes.emplace_back("copyfrom-rev", std::to_string(change->copyRevision()));
            }
            // svn stops at the first flag its backend could not tell.
            attributes.emplace_back("kind", kindWord(change->nodeKind()));
            if (change->textModified()) {
                attributes.emplace_back("text-mods", trueOrFalse(*change->textModified()));
                if (change->propertiesModified())
                    attributes.emplace_back("prop-mods", trueOrFalse(*change->propertiesModified()));
            }
            appendXMLOpenTag(out, "path", attributes, true);
            appendXMLData(out, change->path());
            out += "</path>\n";
        }
        out += "</paths>\n";
    }
    if (message)
        appendXMLTaggedData(out, "msg", *message);
}

// With --diff, what each revision changed below the target, between
// blank lines. The target is found at the log's peg revision and followed
// back through copies, as svn does: a revision before the copy that made
// the target's path diffs the path the target had then.
struct RevisionDiffs {
    LuSVNNode::Path target;
    LuSVNDiff::Revision peg;
    bool workingCopy;
    LuSVNDiffOptions options;
    std::shared_ptr<LuSVNContext> context;

    void write(std::int32_t revision) const
    {
        writeOutput("\n");
        writePegDiff(target, peg, LuSVNRevision::revisionWithNumber(revision - 1),
                     LuSVNRevision::revisionWithNumber(revision), workingCopy, options, context);
        writeOutput("\n");
    }
};

// Prints each item as it arrives and keeps none.
class Printer : public LuSVNLogMessageReceiverDelegate {
public:
    Printer(const Settings& settings, std::optional<RevisionDiffs> diffs)
        : settings_(settings), diffs_(std::move(diffs))
    {
    }

    bool logItemReceived(const std::shared_ptr<LuSVNLogItem>& item) override
    {
        MergeStack mergedVia;
        print(*item, mergedVia);
        return true;
    }
    bool keepsLogItems() const override { return false; }

private:
    // The item, then the revisions it merged, each saying which revisions
    // merged it.
    void print(const LuSVNLogItem& item, MergeStack& mergedVia)
    {
        // svn does not fetch the message when quiet.
        std::optional<std::string> message = settings_.quiet ? std::nullopt : item.message();
        if (item.revision() == 0 && !message)
            return;
        if (!settings_.quiet && !message && !settings_.xml)
            message = "";
        const bool shown = matchesSearch(settings_, item, message);
        if (shown) {
            out_.clear();
            if (settings_.xml)
                appendXML(out_, item, message, settings_.verbose, mergedVia);
            else
                appendText(out_, item, message, settings_.verbose, mergedVia);
            writeOutput(out_);
            if (diffs_ && item.revision() > 0)
                diffs_->write(item.revision());
        }
        if (!item.children().empty()) {
            mergedVia.push_back(item.revision());
            for (const auto& child : item.children())
                print(*child, mergedVia);
            mergedVia.pop_back();
        }
        // As svn: the end of the merged revisions closes the entry even when
        // the search left out its start.
        if (settings_.xml && (shown || !item.children().empty()))
            writeOutput("</logentry>\n");
    }

    const Settings& settings_;
    std::optional<RevisionDiffs> diffs_;
    std::string out_;
};

std::int32_t parseLimit(const std::string& text)
{
    char* end = nullptr;
    const long limit = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0')
        throwOptionValueError({{TesseraArgumentParsingError, "Non-numeric limit argument given"},
                         {200004, "Could not convert '" + text + "' into a number"}});
    if (limit <= 0)
        LuSVNException::exceptionWithReason("Argument to --limit must be positive", 200004)->raise();
    return static_cast<std::int32_t>(std::min(limit, 0x7fffffffL));
}

int log(const Settings& settings)
{
    if (settings.revision && settings.change)
        LuSVNException::exceptionWithReason("-c and -r are mutually exclusive", 195002)->raise();
    LuSVNLogOptions options;
    if (settings.limit)
        options.setLimit(parseLimit(*settings.limit));
    const std::string argument = settings.arguments.empty() ? "." : settings.arguments.front();
    const auto [target, peg] = splitPegRevision(argument);
    const bool url = isURL(target);

    std::shared_ptr<const LuSVNRevisionSpec> from;
    std::shared_ptr<const LuSVNRevisionSpec> to;
    if (settings.change) {
        // -c N and -c -N alike: that revision alone.
        from = to = LuSVNRevisionSpec::revisionWithNumber(std::abs(changeNumber(*settings.change)));
    } else if (settings.revision) {
        std::tie(from, to) = parseRevisionRange(*settings.revision);
        if (!to)
            to = from;
    } else {
        // The whole history down from the peg, or from where the target
        // stands: HEAD for a URL, the working copy's base for a path.
        from = peg ? peg : url ? LuSVNRevisionSpec::HEAD() : LuSVNRevisionSpec::BASE();
        to = LuSVNRevisionSpec::revisionWithNumber(0);
    }
    options.setFromRevision(from->keyRevision());
    options.setToRevision(to->keyRevision());
    if (peg)
        options.setPegRevision(peg->keyRevision());
    options.setDiscoverChangedPaths(settings.verbose);
    options.setTraverseCopyHistory(!settings.stopOnCopy);
    options.setIncludeMergedRevisions(settings.mergeHistory);

    TesseraOperation operation(url ? target : absoluteTargetPath(target), {true, false});
    const LuSVNNode::Path path = url ? LuSVNNode::Path(commandLineURL(target))
                                     : LuSVNNode::Path(targetPath(target));
    if (settings.xml && !settings.incremental)
        writeOutput("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<log>\n");
    std::optional<RevisionDiffs> diffs;
    if (settings.diff) {
        auto diffOptions = diffOptionsForExtensions(settings.extensions);
        // As svn log --diff: an item replaced by another is compared with
        // it, and deleted files show their header alone.
        diffOptions.setNoticeAncestry(false);
        diffOptions.setDiffDeleted(false);
        diffs = RevisionDiffs{path, peg ? peg->keyRevision() : url ? LuSVNRevision::HEAD() : LuSVNRevision::WORKING(),
                              !url, diffOptions, operation.context()};
    }
    LuSVNNode::readLogForNodeAtPath(path, std::make_shared<Printer>(settings, std::move(diffs)), options,
                                    operation.context());
    if (!settings.incremental)
        writeOutput(settings.xml ? "</log>\n" : separator);
    return 0;
}

const TesseraCommand logCommand(
    {"log",
     {},
     "Show the log messages for a set of revision(s) and/or path(s).",
     "log [PATH][@REV]\n"
     "log URL[@REV]",
     "Show the log messages of the path or URL (the current directory when\n"
     "none is given), from the revision it stands at down to revision 0,\n"
     "or for the revisions given by -r or -c. Each log message is printed\n"
     "once; with -v the paths changed in each revision are listed too.\n"
     "\n"
     "With --search, only the log messages whose author, date, message or\n"
     "(with -v) changed paths match the pattern are shown; ? and * are\n"
     "wildcards and case is ignored. Several --search options show the\n"
     "revisions that match any; --search-and narrows the last one.\n"
     "\n"
     "With --diff each revision's changes below the target follow its log\n"
     "message as a unified diff.\n"
     "\n"
     "With -g the revisions merged by each revision follow it, each with a\n"
     "line naming the revisions that merged it."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionRangeOption(command, settings->revision);
        addChangeOption(command, settings->change);
        addFlag(command, "-q,--quiet", settings->quiet, "do not print the log message");
        addFlag(command, "-v,--verbose", settings->verbose, "print the paths changed in each revision");
        addOption(
            command, "-l,--limit", [settings](const std::string& text) { settings->limit = text; },
            "maximum number of log entries");
        addFlag(command, "--stop-on-copy", settings->stopOnCopy, "do not cross copies while traversing history");
        addFlag(command, "-g,--use-merge-history", settings->mergeHistory,
                "use/display additional information from merge history");
        addFlag(command, "--xml", settings->xml, "output in XML");
        addFlag(command, "--incremental", settings->incremental, "give output suitable for concatenation");
        addFlag(command, "--diff", settings->diff, "produce diff output");
        addExtensionsOption(command, settings->extensions);
        // Each occurrence counts, in command-line order.
        addOption(
            command, "--search",
            [settings](const std::string& text) { settings->searchGroups.push_back({lowercase(text)}); },
            "use ARG as search pattern (glob syntax)")
            ->trigger_on_parse();
        addOption(
            command, "--search-and",
            [settings](const std::string& text) {
                if (settings->searchGroups.empty())
                    settings->searchGroups.emplace_back();
                settings->searchGroups.back().push_back(lowercase(text));
            },
            "combine ARG with the previous search pattern")
            ->trigger_on_parse();
        addArguments(command, settings->arguments);
        return [settings, &command] {
            // The library's log follows one path; svn takes several only
            // as paths below a URL.
            if (settings->arguments.size() > 1 && !isURL(settings->arguments.front()))
                LuSVNException::exceptionWithReason("When specifying working copy paths, only one target may be "
                                                    "given",
                                                    200007)
                    ->raise();
            checkArgumentCount(command, settings->arguments, 0, 1);
            return log(*settings);
        };
    });

}  // namespace
