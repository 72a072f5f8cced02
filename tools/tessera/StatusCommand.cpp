// tessera status: one library status walk per target, printed as the svn
// client prints its status (or its XML), plus --json and --aggregates.
//
// The walk hands back nodes in the backend's order; the sections that svn
// prints around externals come from the walk's own notifications (status
// external, status completed), which arrive in the order svn prints them.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Command.h"
#include "Messages.h"
#include "Options.h"

namespace {

enum class Depth { Empty, Files, Immediates, Infinity };

struct Settings {
    bool verbose = false;
    bool update = false;
    bool quiet = false;
    bool noIgnore = false;
    bool ignoreExternals = false;
    bool xml = false;
    bool json = false;
    bool aggregates = false;
    std::optional<Depth> depth;
    bool nonRecursive = false;
    std::optional<std::string> configDir;
    std::vector<std::string> targets;

    Depth effectiveDepth() const { return depth.value_or(nonRecursive ? Depth::Immediates : Depth::Infinity); }
    bool detailed() const { return verbose || update; }
    // svn hides externals placeholders (and plain file externals) only when
    // quiet without verbose, and installs its notifier only otherwise.
    bool suppressPlaceholders() const { return quiet && !verbose; }
};

// --- Output -------------------------------------------------------------------

// One buffer written in large pieces: a status of many items is mostly output.
class Output {
public:
    Output() { buffer_.reserve(1 << 16); }
    ~Output() { flush(); }
    std::string& buffer() { return buffer_; }
    void maybeFlush()
    {
        if (buffer_.size() >= (1 << 16))
            flush();
    }
    void flush()
    {
        if (!buffer_.empty())
            std::fwrite(buffer_.data(), 1, buffer_.size(), stdout);
        buffer_.clear();
    }

private:
    std::string buffer_;
};

void appendNumber(std::string& out, long long value)
{
    char digits[24];
    const int length = std::snprintf(digits, sizeof digits, "%lld", value);
    out.append(digits, static_cast<std::size_t>(length));
}

// printf's "%*s" for a piece of text: right-aligned (or left with a negative width).
void appendPadded(std::string& out, std::string_view text, int width)
{
    const std::size_t pad = static_cast<std::size_t>(std::abs(width)) > text.size()
                                ? static_cast<std::size_t>(std::abs(width)) - text.size()
                                : 0;
    if (width > 0)
        out.append(pad, ' ');
    out.append(text);
    if (width < 0)
        out.append(pad, ' ');
}

void appendEscaped(std::string& out, std::string_view text, bool attribute)
{
    for (const char c : text) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '\r': out += "&#13;"; break;
        case '"':
            if (attribute) {
                out += "&quot;";
                break;
            }
            [[fallthrough]];
        case '\'':
            if (attribute && c == '\'') {
                out += "&apos;";
                break;
            }
            [[fallthrough]];
        default: out += c;
        }
    }
}

void appendJSONString(std::string& out, std::string_view text)
{
    out += '"';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", byte);
            out += escape;
        } else {
            out += c;
        }
    }
    out += '"';
}

// Subversion's XML date: UTC with microseconds.
std::string xmlDate(const std::chrono::system_clock::time_point& date)
{
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(date.time_since_epoch()).count();
    long long seconds = micros / 1000000;
    long long fraction = micros % 1000000;
    if (fraction < 0) {
        fraction += 1000000;
        --seconds;
    }
    const std::time_t time = static_cast<std::time_t>(seconds);
    std::tm utc{};
    gmtime_r(&time, &utc);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%06lldZ", utc.tm_year + 1900, utc.tm_mon + 1,
                  utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, fraction);
    return text;
}

// --- Status words ---------------------------------------------------------------

char statusCode(LuSVNStatusKind kind)
{
    switch (kind) {
    case LuSVNStatusNone:
    case LuSVNStatusNormal: return ' ';
    case LuSVNStatusAdded: return 'A';
    case LuSVNStatusMissing:
    case LuSVNStatusIncomplete: return '!';
    case LuSVNStatusDeleted: return 'D';
    case LuSVNStatusReplaced: return 'R';
    case LuSVNStatusModified: return 'M';
    case LuSVNStatusMerged: return 'G';
    case LuSVNStatusConflicted: return 'C';
    case LuSVNStatusObstructed: return '~';
    case LuSVNStatusIgnored: return 'I';
    case LuSVNStatusExternal: return 'X';
    default: return '?';
    }
}

const char* statusWord(LuSVNStatusKind kind)
{
    switch (kind) {
    case LuSVNStatusNone: return "none";
    case LuSVNStatusUnversioned: return "unversioned";
    case LuSVNStatusNormal: return "normal";
    case LuSVNStatusAdded: return "added";
    case LuSVNStatusMissing: return "missing";
    case LuSVNStatusDeleted: return "deleted";
    case LuSVNStatusReplaced: return "replaced";
    case LuSVNStatusModified: return "modified";
    case LuSVNStatusMerged: return "merged";
    case LuSVNStatusConflicted: return "conflicted";
    case LuSVNStatusIgnored: return "ignored";
    case LuSVNStatusObstructed: return "obstructed";
    case LuSVNStatusExternal: return "external";
    case LuSVNStatusIncomplete: return "incomplete";
    default: return "unknown";
    }
}

// The words of an OR of kinds, in bit order, separated by blanks.
std::string kindWords(std::uint32_t kinds)
{
    std::string words;
    for (std::uint32_t bit = 1; bit != 0 && bit <= LuSVNStatusUnknown; bit <<= 1) {
        if ((kinds & bit) == 0)
            continue;
        if (!words.empty())
            words += ' ';
        words += statusWord(static_cast<LuSVNStatusKind>(bit));
    }
    return words;
}

// Subversion's generic tree-conflict wording: the local change, the incoming
// change and the operation (svn_wc_conflict_reason_t, _action_t, operation_t).
std::string treeConflictDescription(const LuSVNConflict& conflict)
{
    static constexpr const char* localChanges[] = {"edit",        "obstruction", "delete",     "missing",
                                                   "unversioned", "add",         "replace",    "moved away",
                                                   "moved here"};
    static constexpr const char* operations[] = {"none", "update", "switch", "merge"};
    const char* kindWord = conflict.nodeKind() == LuSVNNodeKindFile        ? "file "
                           : conflict.nodeKind() == LuSVNNodeKindDirectory ? "dir "
                                                                           : "";
    std::string local = "local ";
    if (conflict.reason() >= 0 && conflict.reason() <= 8) {
        local += kindWord;
        local += localChanges[conflict.reason()];
        if (conflict.reason() == 3 && conflict.operation() == 3)
            local += " or deleted or moved away";
    } else {
        local += "change";
    }

    // Edits and deletes act on the older side, adds and replacements on the newer.
    const bool older = conflict.action() == 0 || conflict.action() == 2;
    const auto& version = older ? conflict.leftVersion() : conflict.rightVersion();
    const std::int32_t incomingKind = version ? version->nodeKind() : LuSVNNodeKindNone;
    const char* incomingKindWord = incomingKind == LuSVNNodeKindFile        ? "file "
                                   : incomingKind == LuSVNNodeKindDirectory ? "dir "
                                                                            : "";
    std::string incoming = "incoming ";
    switch (conflict.action()) {
    case 0: incoming = incoming + incomingKindWord + "edit"; break;
    case 1: incoming = incoming + incomingKindWord + "add"; break;
    case 2: incoming = incoming + incomingKindWord + "delete or move"; break;
    case 3:
        incoming += "replace";
        if (*incomingKindWord)
            incoming = incoming + " with " + std::string(incomingKindWord, std::strlen(incomingKindWord) - 1);
        break;
    default: incoming += "change"; break;
    }
    const int operation = conflict.operation();
    return local + ", " + incoming + " upon " + (operation >= 0 && operation <= 3 ? operations[operation] : "none");
}

// --- Reading the nodes ------------------------------------------------------------

bool isExternalMark(const LuSVNStatus& status)
{
    return status.textStatus() == LuSVNStatusExternal;
}

// Whether svn counts the item as versioned: the external marks of a parent's
// walk and tree-conflict victims without a node on disk or in the metadata
// are not.
bool isVersioned(const LuSVNNode& node, const LuSVNStatus& status)
{
    switch (status.textStatus()) {
    case LuSVNStatusNone:
    case LuSVNStatusUnversioned:
    case LuSVNStatusIgnored:
    case LuSVNStatusExternal: return false;
    case LuSVNStatusMissing: return !(status.treeConflict() && !node.URL());
    default: return true;
    }
}

bool isAbnormalKind(LuSVNStatusKind kind)
{
    return LuSVNStatusIsAbnormal(kind);
}

bool isOutOfDate(const LuSVNStatus& status)
{
    return isAbnormalKind(status.repositoryTextStatus()) || isAbnormalKind(status.repositoryPropertyStatus());
}

// svn_client_status_t's repos_node_status from the two repository kinds.
LuSVNStatusKind repositoryNodeStatus(const LuSVNStatus& status)
{
    if (isAbnormalKind(status.repositoryTextStatus()))
        return status.repositoryTextStatus();
    if (isAbnormalKind(status.repositoryPropertyStatus()))
        return LuSVNStatusModified;
    return LuSVNStatusNone;
}

// svn_path_compare_paths: component by component, '/' before any other byte.
bool pathLess(std::string_view a, std::string_view b)
{
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (a[i] == b[i])
            continue;
        if (a[i] == '/')
            return true;
        if (b[i] == '/')
            return false;
        return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[i]);
    }
    return a.size() < b.size();
}

bool isUnder(std::string_view path, std::string_view root)
{
    return path.size() > root.size() && path.compare(0, root.size(), root) == 0 &&
           (root.back() == '/' || path[root.size()] == '/');
}

std::string parentPath(const std::string& path)
{
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return {};
    return slash == 0 ? std::string("/") : path.substr(0, slash);
}

// svn's canonical form of a path as the user typed it: no "./", no doubled
// or trailing slashes; "" for the current directory.
std::string canonicalDisplayPath(const std::string& text)
{
    std::string out;
    std::size_t i = 0;
    const bool absolute = !text.empty() && text[0] == '/';
    if (absolute)
        out = "/";
    while (i < text.size()) {
        std::size_t end = text.find('/', i);
        if (end == std::string::npos)
            end = text.size();
        const std::string_view component(text.data() + i, end - i);
        if (!component.empty() && component != ".") {
            if (!out.empty() && out.back() != '/')
                out += '/';
            out.append(component);
        }
        i = end + 1;
    }
    return out;
}

// --- One target's walk -------------------------------------------------------------

// The walk's notifications, in order: externals entered, walks completed.
class StatusEvents final : public LuSVNNotificationHandler {
public:
    struct Event {
        bool completed;
        std::string path;
        std::int32_t revision;
    };
    std::vector<Event> events;

    void contextNotify(LuSVNContext&, const LuSVNNotification& notification) override
    {
        if (notification.action() == LuSVNNotifyActionStatusCompleted)
            events.push_back({true, {}, notification.revision()});
        else if (notification.action() == LuSVNNotifyActionStatusExternal && notification.path())
            events.push_back({false, canonicalDisplayPath(*notification.path()), LuSVNInvalidRevision});
    }
};

enum class LineKind {
    Item,          // a node as the walk reported it
    ExternalMark,  // the parent's "X" report of an external it walked into
    ExternalRoot,  // the external's own report of its root
};

struct Line {
    const LuSVNNode* node;
    LineKind kind;
};

struct Section {
    std::string root;  // empty for the target's own tree
    std::vector<Line> lines;
};

struct ChangelistItem {
    Line line;
    std::string displayPath;
};

class StatusPrinter {
public:
    StatusPrinter(const Settings& settings, Output& output) : settings_(settings), output_(output)
    {
        std::error_code error;
        currentDirectory_ = std::filesystem::current_path(error).string();
    }

    int run();

private:
    struct Target {
        std::string display;   // as svn shows it
        std::string absolute;  // the walk's form
        LuSVNNode::Nodes nodes;
        std::shared_ptr<LuSVNDirectory> root;
        std::vector<StatusEvents::Event> events;
    };

    std::shared_ptr<LuSVNContext> contextForPath(const std::string& absolute);
    bool walk(Target& target);
    std::vector<Section> sections(const Target& target, std::vector<ChangelistItem>& changelists);
    bool shown(const Line& line) const;
    void displayPath(const Target& target, const std::string& path, std::string& out) const;
    void printLine(const Line& line, std::string_view path);
    void printXMLEntry(const Line& line, std::string_view path);
    void printJSON(const std::vector<Target>& targets);
    std::string externalHeaderPath(const std::string& path) const;

    const Settings& settings_;
    Output& output_;
    std::string currentDirectory_;
    std::map<std::string, std::shared_ptr<LuSVNContext>> contexts_;
    unsigned textConflicts_ = 0, propertyConflicts_ = 0, treeConflicts_ = 0;
    std::string path_;  // reused for each line's path
};

std::shared_ptr<LuSVNContext> StatusPrinter::contextForPath(const std::string& absolute)
{
    std::error_code error;
    const std::string directory =
        std::filesystem::is_directory(absolute, error) ? absolute : parentPath(absolute);
    const LuSVNVersion version = LuSVNNode::versionForWorkingCopyAtPath(directory);
    auto& context = contexts_[version.versionString()];
    if (!context) {
        context = LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->bundleForVersion(version), {},
                                                  settings_.configDir);
        // -u over file:// asks for a user name and nothing else.
        context->authenticationStack()->addProvider(std::make_shared<LuSVNUsernameProvider>());
    }
    return context;
}

bool StatusPrinter::walk(Target& target)
{
    const Depth depth = settings_.effectiveDepth();
    LuSVNStatusOptions options;
    // The walk answers only the root when aggregates (or -v with -u) are
    // asked without recursion, so those walk everything and filter below.
    const bool wholeTree =
        depth == Depth::Infinity || settings_.aggregates || (settings_.verbose && settings_.update);
    options.setRecursive(wholeTree);
    options.setIncludeNormalFiles(settings_.verbose);
    options.setCompareAgainstRepository(settings_.update);
    options.setRespectIgnoreProperties(!settings_.noIgnore);
    // svn walks externals only at depth infinity.
    options.setProcessExternals(!settings_.ignoreExternals && depth == Depth::Infinity);
    options.setPropagateStatusToAncestor(settings_.aggregates);
    options.setIncludeConflictVersionFiles(true);

    auto context = contextForPath(target.absolute);
    auto events = std::make_shared<StatusEvents>();
    context->setNotificationHandler(events);
    try {
        target.nodes = LuSVNDirectory::statusForNodesInDirectoryAtPath(
            LuSVNLocalPath::pathWithString(target.absolute), options, &target.root, nullptr, nullptr, context);
    } catch (...) {
        context->setNotificationHandler(nullptr);
        throw;
    }
    context->setNotificationHandler(nullptr);
    target.events = std::move(events->events);

    // Depth empty and files are cut from an immediates walk.
    if (depth != Depth::Infinity) {
        const std::string& root = target.absolute;
        std::erase_if(target.nodes, [&](const std::shared_ptr<LuSVNNode>& node) {
            const std::string& path = node->path()->string();
            if (path == root)
                return false;
            if (!isUnder(path, root))
                return true;
            const bool child = path.find('/', root.size() + (root.back() == '/' ? 0 : 1)) == std::string::npos;
            if (!child || depth == Depth::Empty)
                return true;
            return depth == Depth::Files && node->isDirectory();
        });
    }
    return true;
}

// Whether the walk added the node only to lead to an external below it: such
// placeholders stand for versioned directories that svn did not report.
bool isPlaceholder(const LuSVNNode& node, const std::unordered_set<std::string>& externalAncestors,
                   const LuSVNStatusOptions& options, const std::shared_ptr<LuSVNContext>& context)
{
    if (!node.isDirectory() || !isExternalMark(*node.status()) || node.URL() ||
        !externalAncestors.contains(node.path()->string()))
        return false;
    // Rare (ancestors of externals only): ask what the directory really is.
    const auto real = LuSVNNode::nodeWithStatusAtPath(std::static_pointer_cast<const LuSVNLocalPath>(node.path()),
                                                      options, context);
    return real && real->status() && isVersioned(*real, *real->status());
}

std::vector<Section> StatusPrinter::sections(const Target& target, std::vector<ChangelistItem>& changelists)
{
    std::vector<Section> result(1);
    std::unordered_map<std::string, std::size_t> sectionOfRoot;
    for (const auto& event : target.events)
        if (!event.completed && !sectionOfRoot.contains(event.path)) {
            sectionOfRoot.emplace(event.path, result.size());
            result.push_back({event.path, {}});
        }

    // The section holding a path: that of its innermost walked external.
    // Externals are few, so a scan beats building each ancestor's path.
    auto sectionOf = [&](const std::string& path) -> std::size_t {
        std::size_t best = 0;
        for (std::size_t section = 1; section < result.size(); ++section) {
            const std::string& root = result[section].root;
            if ((path == root || isUnder(path, root)) && (best == 0 || root.size() > result[best].root.size()))
                best = section;
        }
        return best;
    };

    std::unordered_set<std::string> unversionedMarks, externalAncestors;
    for (const auto& node : target.nodes)
        if (node->status() && isExternalMark(*node->status())) {
            if (!node->URL())
                unversionedMarks.insert(node->path()->string());
            for (std::string parent = parentPath(node->path()->string()); isUnder(parent, target.absolute);
                 parent = parentPath(parent))
                externalAncestors.insert(parent);
        }

    std::shared_ptr<LuSVNContext> context;
    LuSVNStatusOptions placeholderOptions;
    placeholderOptions.setIncludeNormalFiles(true);

    auto add = [&](std::size_t section, Line line) {
        if (line.node->status()->changelist() && line.kind == LineKind::Item) {
            ChangelistItem item{line, {}};
            displayPath(target, line.node->path()->string(), item.displayPath);
            changelists.push_back(std::move(item));
            return;
        }
        result[section].lines.push_back(line);
    };
    for (const auto& node : target.nodes) {
        if (!node->status())
            continue;
        const std::string& path = node->path()->string();
        const LuSVNStatus& status = *node->status();
        if (isExternalMark(status) && !settings_.verbose && externalAncestors.contains(path)) {
            if (!context)
                context = contextForPath(target.absolute);
            if (isPlaceholder(*node, externalAncestors, placeholderOptions, context))
                continue;
        }
        const auto walked = sectionOfRoot.find(path);
        if (isExternalMark(status) && walked != sectionOfRoot.end()) {
            // One node stands for two reports: the parent's mark and the
            // external's root. svn shows the mark only from a versioned parent.
            const std::string parent = parentPath(path);
            if (path != target.absolute && !unversionedMarks.contains(parent)) {
                Section& outer = result[sectionOf(parent)];
                const Line mark{node.get(), LineKind::ExternalMark};
                // The walk without -u reports in path order; keep that order.
                auto position = outer.lines.end();
                if (!settings_.update)
                    position = std::find_if(outer.lines.begin(), outer.lines.end(), [&](const Line& line) {
                        return pathLess(path, line.node->path()->string());
                    });
                outer.lines.insert(position, mark);
            }
            add(walked->second, {node.get(), LineKind::ExternalRoot});
        } else if (isExternalMark(status) && path == target.absolute && node->URL()) {
            // A walk started inside an external: its root is a plain item there.
            add(0, {node.get(), LineKind::ExternalRoot});
        } else {
            add(sectionOf(path), {node.get(), LineKind::Item});
        }
    }
    return result;
}

void StatusPrinter::displayPath(const Target& target, const std::string& path, std::string& out) const
{
    out.clear();
    if (path == target.absolute) {
        out = target.display.empty() ? "." : target.display;
        return;
    }
    const std::size_t skip = target.absolute.size() + (target.absolute.back() == '/' ? 0 : 1);
    out = target.display;
    if (!out.empty() && out.back() != '/')
        out += '/';
    out.append(path, skip, std::string::npos);
}

// The "Performing status on external item" path: relative to the current
// directory when below it, as svn shows it.
std::string StatusPrinter::externalHeaderPath(const std::string& path) const
{
    if (!currentDirectory_.empty() && isUnder(path, currentDirectory_))
        return path.substr(currentDirectory_.size() + (currentDirectory_.back() == '/' ? 0 : 1));
    return path;
}

// svn_cl__print_status's filter.
bool StatusPrinter::shown(const Line& line) const
{
    const LuSVNNode& node = *line.node;
    const LuSVNStatus& status = *node.status();
    if (line.kind == LineKind::ExternalMark) {
        return settings_.xml || !settings_.suppressPlaceholders() || status.treeConflict();
    }
    if (line.kind == LineKind::ExternalRoot) {
        // The external's root comes only when svn's walk finds it worth sending.
        return settings_.verbose || isAbnormalKind(status.propertyStatus()) || status.isLocked() || node.lock() ||
               status.treeConflict() || status.isSwitched() || isOutOfDate(status) || status.repositoryLock() ||
               status.changelist();
    }
    const bool versioned = isVersioned(node, status);
    if (status.textStatus() == LuSVNStatusNone && !isOutOfDate(status))
        return false;
    if (settings_.xml)
        return true;
    if (settings_.quiet && !(versioned || status.treeConflict() || isExternalMark(status)))
        return false;
    if (settings_.suppressPlaceholders()) {
        if (isExternalMark(status) && !status.treeConflict())
            return false;
        // A file external with nothing to say is part of the placeholders.
        if (status.isFileExternal() && !isAbnormalKind(status.textStatus()) &&
            !isAbnormalKind(status.propertyStatus()) && !node.lock() && !status.treeConflict() &&
            !isOutOfDate(status) && !status.repositoryLock())
            return false;
    }
    return true;
}

void StatusPrinter::printLine(const Line& line, std::string_view path)
{
    const LuSVNNode& node = *line.node;
    const LuSVNStatus& status = *node.status();
    const bool mark = line.kind == LineKind::ExternalMark || (isExternalMark(status) && line.kind == LineKind::Item);
    const bool versioned = !mark && (line.kind == LineKind::ExternalRoot || isVersioned(node, status));
    std::string& out = output_.buffer();

    char text = line.kind == LineKind::ExternalRoot ? ' ' : statusCode(status.textStatus());
    if (line.kind == LineKind::ExternalMark)
        text = 'X';
    const char properties =
        mark || status.textStatus() == LuSVNStatusAdded ? ' ' : statusCode(status.propertyStatus());
    const auto& conflict = mark ? nullptr : status.treeConflict();
    char lock = ' ';
    if (!mark) {
        const auto& mine = node.lock();
        const auto& theirs = status.repositoryLock();
        if (settings_.update)
            lock = theirs ? (mine ? (theirs->token() == mine->token() ? 'K' : 'T') : 'O') : (mine ? 'B' : ' ');
        else
            lock = mine ? 'K' : ' ';
    }
    out += text;
    out += properties;
    out += !mark && status.isLocked() ? 'L' : ' ';
    out += !mark && status.isCopied() ? '+' : ' ';
    out += mark ? ' ' : status.isSwitched() ? 'S' : status.isFileExternal() ? 'X' : ' ';
    out += lock;
    out += conflict ? 'C' : ' ';

    if (settings_.detailed()) {
        out += ' ';
        out += !mark && isOutOfDate(status) ? '*' : ' ';
        out += ' ';
        char revision[24] = "";
        if (versioned) {
            if (status.isCopied() || status.workingRevision() == LuSVNInvalidRevision)
                std::strcpy(revision, "-");
            else
                std::snprintf(revision, sizeof revision, "%d", status.workingRevision());
        }
        appendPadded(out, revision, 8);
        if (settings_.verbose) {
            out += ' ';
            char changed[24] = "";
            if (versioned && node.revision() != LuSVNInvalidRevision)
                std::snprintf(changed, sizeof changed, "%d", node.revision());
            else if (versioned)
                std::strcpy(changed, " ? ");
            appendPadded(out, changed, 8);
            out += ' ';
            appendPadded(out, versioned && node.author() ? std::string_view(*node.author()) : versioned ? " ? " : "", -12);
            out += ' ';
        } else {
            out += "   ";
        }
    } else {
        out += ' ';
    }
    out.append(path);
    if (conflict) {
        out += "\n      >   ";
        out += treeConflictDescription(*conflict);
        ++treeConflicts_;
    } else if (!mark && status.textStatus() == LuSVNStatusConflicted) {
        ++textConflicts_;
    } else if (!mark && status.propertyStatus() == LuSVNStatusConflicted) {
        ++propertyConflicts_;
    }
    if (settings_.aggregates && node.isDirectory() && line.kind != LineKind::ExternalMark) {
        const auto& directory = static_cast<const LuSVNDirectory&>(node);
        const std::uint32_t local = directory.aggregateChildStatus();
        const std::uint32_t remote = directory.aggregateRepositoryChildStatus();
        if (local || remote) {
            out += "  [";
            out += kindWords(local);
            if (remote) {
                out += local ? "; " : "";
                out += "repository: ";
                out += kindWords(remote);
            }
            out += ']';
        }
    }
    out += '\n';
    output_.maybeFlush();
}

void appendXMLLock(std::string& out, const LuSVNLock& lock)
{
    out += "<lock>\n<token>";
    appendEscaped(out, lock.token(), false);
    out += "</token>\n<owner>";
    appendEscaped(out, lock.owner(), false);
    out += "</owner>\n";
    if (lock.comment()) {
        out += "<comment>";
        appendEscaped(out, *lock.comment(), false);
        out += "</comment>\n";
    }
    if (lock.creationDate())
        out += "<created>" + xmlDate(*lock.creationDate()) + "</created>\n";
    if (lock.expirationDate())
        out += "<expires>" + xmlDate(*lock.expirationDate()) + "</expires>\n";
    out += "</lock>\n";
}

void appendAttribute(std::string& out, const char* name, std::string_view value)
{
    out += "\n   ";
    out += name;
    out += "=\"";
    appendEscaped(out, value, true);
    out += '"';
}

void StatusPrinter::printXMLEntry(const Line& line, std::string_view path)
{
    const LuSVNNode& node = *line.node;
    const LuSVNStatus& status = *node.status();
    const bool mark = line.kind == LineKind::ExternalMark || (isExternalMark(status) && line.kind == LineKind::Item);
    const bool versioned = !mark && (line.kind == LineKind::ExternalRoot || isVersioned(node, status));
    std::string& out = output_.buffer();
    out += "<entry";
    appendAttribute(out, "path", path);
    out += ">\n<wc-status";
    LuSVNStatusKind item = line.kind == LineKind::ExternalRoot ? LuSVNStatusNormal : status.textStatus();
    if (line.kind == LineKind::ExternalMark)
        item = LuSVNStatusExternal;
    appendAttribute(out, "item", statusWord(item));
    appendAttribute(out, "props",
                    mark || status.textStatus() == LuSVNStatusDeleted ? "none"
                                                                      : statusWord(status.propertyStatus()));
    if (versioned && !status.isCopied()) {
        std::string revision;
        appendNumber(revision, status.workingRevision());
        appendAttribute(out, "revision", revision);
    }
    if (!mark) {
        if (status.isLocked())
            appendAttribute(out, "wc-locked", "true");
        if (status.isCopied())
            appendAttribute(out, "copied", "true");
        if (status.isSwitched())
            appendAttribute(out, "switched", "true");
        if (status.isFileExternal())
            appendAttribute(out, "file-external", "true");
        if (status.treeConflict())
            appendAttribute(out, "tree-conflicted", "true");
    }
    out += ">\n";
    // An item new in the repository carries the repository's last change,
    // which svn does not show as the item's own.
    if (versioned && node.revision() != LuSVNInvalidRevision) {
        out += "<commit";
        std::string revision;
        appendNumber(revision, node.revision());
        appendAttribute(out, "revision", revision);
        out += ">\n";
        if (node.author()) {
            out += "<author>";
            appendEscaped(out, *node.author(), false);
            out += "</author>\n";
        }
        if (node.date())
            out += "<date>" + xmlDate(*node.date()) + "</date>\n";
        out += "</commit>\n";
    }
    if (!mark && node.lock())
        appendXMLLock(out, *node.lock());
    out += "</wc-status>\n";
    if (!mark && (isOutOfDate(status) || status.repositoryLock())) {
        out += "<repos-status";
        appendAttribute(out, "item", statusWord(repositoryNodeStatus(status)));
        appendAttribute(out, "props",
                        statusWord(isAbnormalKind(status.repositoryPropertyStatus()) ? status.repositoryPropertyStatus()
                                                                                    : LuSVNStatusNone));
        out += ">\n";
        if (status.repositoryLock())
            appendXMLLock(out, *status.repositoryLock());
        out += "</repos-status>\n";
    }
    out += "</entry>\n";
    output_.maybeFlush();
}

void StatusPrinter::printJSON(const std::vector<Target>& targets)
{
    std::string& out = output_.buffer();
    out += "{\"targets\":[";
    bool firstTarget = true;
    for (const auto& target : targets) {
        out += firstTarget ? "\n{\"target\":" : ",\n{\"target\":";
        firstTarget = false;
        appendJSONString(out, target.display.empty() ? "." : target.display);
        out += ",\"path\":";
        appendJSONString(out, target.absolute);
        for (const auto& event : target.events)
            if (event.completed) {
                out += ",\"againstRevision\":";
                appendNumber(out, event.revision);
                break;
            }
        out += ",\"nodes\":[";
        bool first = true;
        for (const auto& node : target.nodes) {
            out += first ? "\n" : ",\n";
            first = false;
            out += LuSVNKeyedArchiver::archivedDataWithRootObject(*node);
            output_.maybeFlush();
        }
        out += "]}";
    }
    out += "]}\n";
}

int StatusPrinter::run()
{
    std::vector<Target> targets;
    for (const std::string& argument : settings_.targets) {
        Target target;
        target.display = canonicalDisplayPath(argument);
        if (argument.empty() || argument == ".")
            target.display.clear();
        target.absolute = LuSVNLocalPath::pathWithString(
                              std::filesystem::absolute(target.display.empty() ? "." : target.display)
                                  .lexically_normal()
                                  .string())
                              ->string();
        try {
            walk(target);
        } catch (const LuSVNException& e) {
            const int code = e.status();
            if (e.name() != "LuSVNNotWorkingCopyException" && code != 155007 && code != 155010)
                throw;
            output_.flush();
            if (e.name() == "LuSVNNotWorkingCopyException" || code == 155007)
                std::fprintf(stderr, "tessera: warning: W155007: '%s' is not a working copy\n",
                             target.absolute.c_str());
            else
                std::fprintf(stderr, "tessera: warning: W%d: %s\n", code, e.reason().c_str());
            continue;
        }
        targets.push_back(std::move(target));
    }

    if (settings_.json) {
        printJSON(targets);
        return 0;
    }

    std::string& out = output_.buffer();
    if (settings_.xml)
        out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<status>\n";
    // svn's notifier (external headers, "Status against revision") is off
    // when quiet without verbose.
    const bool notify = !settings_.xml && !settings_.suppressPlaceholders();
    std::vector<ChangelistItem> changelists;
    for (const auto& target : targets) {
        if (settings_.xml) {
            out += "<target";
            appendAttribute(out, "path", target.display.empty() ? "." : target.display);
            out += ">\n";
        }
        auto printSection = [&](const Section& section) {
            for (const Line& line : section.lines) {
                if (!shown(line))
                    continue;
                displayPath(target, line.node->path()->string(), path_);
                if (settings_.xml)
                    printXMLEntry(line, path_);
                else
                    printLine(line, path_);
            }
        };
        const std::vector<Section> sections = this->sections(target, changelists);
        printSection(sections[0]);
        // With --aggregates the root always shows, to carry its words.
        if (settings_.aggregates && !settings_.xml && target.root &&
            std::none_of(sections[0].lines.begin(), sections[0].lines.end(),
                         [&](const Line& line) { return line.node == target.root.get(); })) {
            displayPath(target, target.root->path()->string(), path_);
            printLine({target.root.get(), LineKind::Item}, path_);
        }
        std::size_t nextSection = 1;
        std::optional<std::int32_t> against;
        for (const auto& event : target.events) {
            if (event.completed) {
                if (!against)
                    against = event.revision;
                if (notify && event.revision != LuSVNInvalidRevision) {
                    char text[64];
                    std::snprintf(text, sizeof text, "Status against revision: %6d\n", event.revision);
                    out += text;
                }
            } else if (nextSection < sections.size() && sections[nextSection].root == event.path) {
                if (notify) {
                    out += "\nPerforming status on external item at '";
                    out += externalHeaderPath(event.path);
                    out += "':\n";
                }
                printSection(sections[nextSection++]);
            }
        }
        for (; nextSection < sections.size(); ++nextSection)
            printSection(sections[nextSection]);
        if (settings_.xml) {
            if (against && *against != LuSVNInvalidRevision) {
                out += "<against";
                std::string revision;
                appendNumber(revision, *against);
                appendAttribute(out, "revision", revision);
                out += "/>\n";
            }
            out += "</target>\n";
        }
    }

    // Items of change lists come last, grouped by list.
    std::stable_sort(changelists.begin(), changelists.end(), [](const ChangelistItem& a, const ChangelistItem& b) {
        return *a.line.node->status()->changelist() < *b.line.node->status()->changelist();
    });
    const std::string* current = nullptr;
    for (const auto& item : changelists) {
        if (!shown(item.line))
            continue;
        const std::string& name = *item.line.node->status()->changelist();
        if (!current || *current != name) {
            if (settings_.xml) {
                if (current)
                    out += "</changelist>\n";
                out += "<changelist";
                appendAttribute(out, "name", name);
                out += ">\n";
            } else {
                out += "\n--- Changelist '" + name + "':\n";
            }
            current = &name;
        }
        if (settings_.xml)
            printXMLEntry(item.line, item.displayPath);
        else
            printLine(item.line, item.displayPath);
    }
    if (settings_.xml) {
        if (current)
            out += "</changelist>\n";
        out += "</status>\n";
    } else if (!settings_.quiet && (textConflicts_ || propertyConflicts_ || treeConflicts_)) {
        out += "Summary of conflicts:\n";
        char text[64];
        if (textConflicts_) {
            std::snprintf(text, sizeof text, "  Text conflicts: %u\n", textConflicts_);
            out += text;
        }
        if (propertyConflicts_) {
            std::snprintf(text, sizeof text, "  Property conflicts: %u\n", propertyConflicts_);
            out += text;
        }
        if (treeConflicts_) {
            std::snprintf(text, sizeof text, "  Tree conflicts: %u\n", treeConflicts_);
            out += text;
        }
    }
    output_.flush();
    return 0;
}

// --- Arguments ------------------------------------------------------------------------

std::optional<Depth> depthNamed(std::string_view name)
{
    if (name == "empty")
        return Depth::Empty;
    if (name == "files")
        return Depth::Files;
    if (name == "immediates")
        return Depth::Immediates;
    if (name == "infinity")
        return Depth::Infinity;
    return std::nullopt;
}

// Declares the options on the command's parser, filling the settings.
void addOptions(CLI::App& command, Settings& settings)
{
    addFlag(command, "-u,--show-updates", settings.update, "display update information");
    addFlag(command, "-v,--verbose", settings.verbose, "print extra information");
    addFlag(command, "-N,--non-recursive", settings.nonRecursive, "obsolete; same as --depth=immediates");
    addDepthOption(command, [&settings](const std::string& word) { settings.depth = depthNamed(word); });
    addFlag(command, "-q,--quiet", settings.quiet, "don't print unversioned items");
    addFlag(command, "--no-ignore", settings.noIgnore,
            "disregard default and svn:ignore and\nsvn:global-ignores property ignores");
    addFlag(command, "--xml", settings.xml, "output in XML");
    addFlag(command, "--json", settings.json, "the nodes with their whole status records,\nin JSON");
    addFlag(command, "--aggregates", settings.aggregates, "each directory's aggregate status words");
    addFlag(command, "--ignore-externals", settings.ignoreExternals, "ignore externals definitions");
    addConfigDirOption(command, settings.configDir);
    addArguments(command, settings.targets);
    command.final_callback([&settings] {
        if (settings.xml && settings.json)
            LuSVNException::exceptionWithReason("--xml and --json are mutually exclusive", TesseraArgumentParsingError)
                ->raise();
        // -N wins over --depth, as in svn.
        if (settings.nonRecursive)
            settings.depth.reset();
        if (settings.targets.empty())
            settings.targets.emplace_back(".");
    });
}

const TesseraCommand statusCommand(
    {"status",
     {"stat", "st"},
     "Print the status of working copy files and directories.",
     "status [PATH...]",
     "The status of the items at and below each PATH (the current directory\n"
     "when none is given), in the svn client's columns: without options only\n"
     "the changed items, with -u what the repository holds that is newer, with\n"
     "-v every item with its revisions and last author.\n"
     "\n"
     "Beyond svn: --json prints each node with its whole status record, and\n"
     "--aggregates adds each directory's aggregate status words."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addOptions(command, *settings);
        return [settings] {
            Output output;
            StatusPrinter printer(*settings, output);
            return printer.run();
        };
    });

}  // namespace
