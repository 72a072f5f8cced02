// tessera status: one library status walk per target, printed as the svn
// client prints its status (or its XML), plus --json and --aggregates.
//
// The streaming walk hands over nodes in the backend's order, and they are
// printed as they come, so memory does not grow with the size of the tree;
// the sections that svn prints around externals come from the walk's own
// notifications (status external, status completed), which arrive between
// the nodes in the order svn prints them.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Authentication.h"
#include "Command.h"
#include "Messages.h"
#include "Options.h"
#include "RevisionDates.h"
#include "XMLText.h"

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
    std::vector<std::string> targets;

    Depth effectiveDepth() const { return depth.value_or(nonRecursive ? Depth::Immediates : Depth::Infinity); }
    bool detailed() const { return verbose || update; }
    // svn hides externals placeholders (and plain file externals) only when
    // quiet without verbose, and installs its notifier only otherwise.
    bool suppressPlaceholders() const { return quiet && !verbose; }
};

// --- Output -------------------------------------------------------------------

// A failed write to standard output, with the system's error number.
struct WriteError {
    int code;
};

// One buffer written in large pieces: a status of many items is mostly output.
// A write that fails raises WriteError, which ends the walk.
class Output {
public:
    Output() { buffer_.reserve(1 << 16); }
    std::string& buffer() { return buffer_; }
    void maybeFlush()
    {
        if (buffer_.size() >= (1 << 16))
            flush();
    }
    void flush()
    {
        const bool written = buffer_.empty() || std::fwrite(buffer_.data(), 1, buffer_.size(), stdout) == buffer_.size();
        buffer_.clear();
        if (!written || std::fflush(stdout) != 0)
            throw WriteError{errno};
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

// Whether a walk without the unchanged items reports the node (Subversion's
// test of an item worth sending).
bool reportedWithoutAll(const LuSVNNode& node)
{
    const LuSVNStatus& status = *node.status();
    const LuSVNStatusKind text = status.textStatus();
    return isOutOfDate(status) || status.repositoryLock() || status.treeConflict() ||
           (text != LuSVNStatusNone && text != LuSVNStatusNormal) || isAbnormalKind(status.propertyStatus()) ||
           status.isSwitched() || node.lock() || status.changelist() || status.movedToPath();
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

void appendXMLLock(std::string& out, const LuSVNLock& lock)
{
    out += "<lock>\n<token>";
    appendXMLData(out, lock.token());
    out += "</token>\n<owner>";
    appendXMLData(out, lock.owner());
    out += "</owner>\n";
    if (lock.comment()) {
        out += "<comment>";
        appendXMLData(out, *lock.comment());
        out += "</comment>\n";
    }
    if (lock.creationDate())
        out += "<created>" + repositoryDate(*lock.creationDate()) + "</created>\n";
    if (lock.expirationDate())
        out += "<expires>" + repositoryDate(*lock.expirationDate()) + "</expires>\n";
    out += "</lock>\n";
}

// --- One target's walk -------------------------------------------------------------

// Hands the walk's notifications on: externals entered, walks completed.
class StatusEvents final : public LuSVNNotificationHandler {
public:
    using Receiver = std::function<void(bool completed, std::string path, std::int32_t revision)>;
    explicit StatusEvents(Receiver receiver) : receiver_(std::move(receiver)) {}

    void contextNotify(LuSVNContext&, const LuSVNNotification& notification) override
    {
        if (notification.action() == LuSVNNotifyActionStatusCompleted)
            receiver_(true, {}, notification.revision());
        else if (notification.action() == LuSVNNotifyActionStatusExternal && notification.path())
            receiver_(false, canonicalDisplayPath(*notification.path()), LuSVNInvalidRevision);
    }

private:
    Receiver receiver_;
};

enum class LineKind {
    Item,          // a node as the walk reported it
    ExternalMark,  // the parent's "X" report of an external that is walked later
    ExternalRoot,  // the external's own report of its root
};

struct Line {
    const LuSVNNode* node;
    LineKind kind;
};

struct ChangelistItem {
    std::shared_ptr<LuSVNNode> node;
    LineKind kind;
    std::string displayPath;
};

// Prints each node as the walk hands it over; only the items of change lists
// (printed last, as svn does) are kept. With --aggregates a target's nodes
// and notifications are kept until its walk ends, when the directories'
// words are known.
class StatusPrinter {
public:
    StatusPrinter(const Settings& settings, Output& output) : settings_(settings), output_(output)
    {
        std::error_code error;
        currentDirectory_ = std::filesystem::current_path(error).string();
    }

    int run();

private:
    // A node, or a notification of the walk: an external entered (path) or
    // a walk completed.
    struct Event {
        std::shared_ptr<LuSVNNode> node;
        bool completed = false;
        std::string path;
        std::int32_t revision = LuSVNInvalidRevision;
    };

    struct Target {
        std::string display;   // as svn shows it
        std::string absolute;  // the walk's form
        bool started = false;  // its XML or JSON opening is out
        std::string section;   // the external being walked; empty in the target's own tree
        bool rootPlaced = false;
        std::shared_ptr<LuSVNDirectory> root;  // with --aggregates
        std::unordered_set<std::string> unversionedMarks;
        std::vector<std::shared_ptr<LuSVNNode>> candidates;  // placeholders perhaps, until the next node
        std::optional<std::int32_t> against;
        std::size_t jsonNodes = 0;
    };

    std::shared_ptr<LuSVNContext> contextForPath(const std::string& absolute);
    void walk(Target& target);
    void receive(Event event);
    void process(const Event& event);
    void take(const std::shared_ptr<LuSVNNode>& node);
    bool withinDepth(const LuSVNNode& node) const;
    void resolveCandidates(const LuSVNNode* next);
    void place(const std::shared_ptr<LuSVNNode>& node);
    void placeRootForAggregates();
    bool worthAnAggregateLine(const LuSVNNode& node) const;
    void enterExternal(const std::string& path);
    void complete(std::int32_t revision);
    void startTarget();
    void finishTarget();
    bool shown(const Line& line) const;
    void displayPath(const std::string& path, std::string& out) const;
    std::string movePath(const std::string& path) const;
    void appendMoveLines(const LuSVNStatus& status, std::string& out) const;
    void printLine(const Line& line, std::string_view path);
    void printXMLEntry(const Line& line, std::string_view path);
    void print(const Line& line, std::string_view path);
    void printChangelists();
    std::string externalHeaderPath(const std::string& path) const;
    // svn's notifier (external headers, "Status against revision") is off
    // when quiet without verbose.
    bool notifies() const { return !settings_.xml && !settings_.json && !settings_.suppressPlaceholders(); }

    const Settings& settings_;
    Output& output_;
    std::string currentDirectory_;
    std::map<std::string, std::shared_ptr<LuSVNContext>> contexts_;
    std::unordered_map<std::string, LuSVNVersion> versions_;  // by directory
    unsigned textConflicts_ = 0, propertyConflicts_ = 0, treeConflicts_ = 0;
    std::string path_;  // reused for each line's path
    Target* target_ = nullptr;
    std::vector<Event> kept_;  // with --aggregates (or keeping_), until the walk ends
    bool keeping_ = false;
    std::vector<ChangelistItem> changelists_;
    bool firstJSONTarget_ = true;
};

// The release of the working copy that holds the directory: its own, or that
// of the nearest parent in a working copy (an unversioned directory, or one
// reached through a versioned link, is in its parent's). Raises the
// directory's own error when no parent is in one either.
LuSVNVersion versionForDirectory(const std::string& directory)
{
    try {
        return LuSVNNode::versionForWorkingCopyAtPath(directory);
    } catch (const LuSVNException&) {
        for (std::string parent = parentPath(directory); !parent.empty(); parent = parentPath(parent)) {
            try {
                return LuSVNNode::versionForWorkingCopyAtPath(parent);
            } catch (const LuSVNException&) {
                if (parent == "/")
                    break;
            }
        }
        throw;
    }
}

std::shared_ptr<LuSVNContext> StatusPrinter::contextForPath(const std::string& absolute)
{
    // A symbolic link is an item of its own, even one to a directory.
    std::error_code error;
    const std::string directory = std::filesystem::is_directory(std::filesystem::symlink_status(absolute, error))
                                      ? absolute
                                      : parentPath(absolute);
    // Many file targets share a few directories; each look opens the
    // working copy's database.
    auto known = versions_.find(directory);
    if (known == versions_.end())
        known = versions_.emplace(directory, versionForDirectory(directory)).first;
    const LuSVNVersion& version = known->second;
    auto& context = contexts_[version.versionString()];
    if (!context) {
        context = LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->bundleForVersion(version), {},
                                                  tesseraGlobalSettings().configDir);
        setUpContext(*context, tesseraGlobalSettings());
    }
    return context;
}

void StatusPrinter::walk(Target& target)
{
    const Depth depth = settings_.effectiveDepth();
    LuSVNStatusOptions options;
    // The walk answers only the root when aggregates (or -v with -u) are
    // asked without recursion, so those walk everything and filter below.
    const bool wholeTree =
        depth == Depth::Infinity || settings_.aggregates || (settings_.verbose && settings_.update);
    options.setRecursive(wholeTree);
    // --aggregates shows the unchanged directories that hold changes too.
    options.setIncludeNormalFiles(settings_.verbose || settings_.aggregates);
    options.setCompareAgainstRepository(settings_.update);
    options.setRespectIgnoreProperties(!settings_.noIgnore);
    // svn walks externals only at depth infinity.
    options.setProcessExternals(!settings_.ignoreExternals && depth == Depth::Infinity);
    options.setPropagateStatusToAncestor(settings_.aggregates);
    options.setIncludeConflictVersionFiles(true);
    // As svn: a sparse directory does not report what it never fetched.
    options.setDepthIsSticky(false);

    auto context = contextForPath(target.absolute);
    context->setNotificationHandler(std::make_shared<StatusEvents>(
        [this](bool completed, std::string path, std::int32_t revision) {
            receive({nullptr, completed, std::move(path), revision});
        }));
    target_ = &target;
    kept_.clear();
    const auto path = LuSVNLocalPath::pathWithString(target.absolute);
    try {
        if (depth == Depth::Empty && !settings_.aggregates) {
            // The item alone, at svn's depth: the repository's changes below
            // a directory do not mark it. Its line comes before the
            // notifications of the call.
            keeping_ = true;
            const auto node = LuSVNNode::nodeWithStatusAtPath(path, options, context);
            keeping_ = false;
            if (node && (settings_.verbose || reportedWithoutAll(*node)))
                kept_.insert(kept_.begin(), {node, false, {}, LuSVNInvalidRevision});
        } else {
            LuSVNDirectory::reportStatusForNodesInDirectoryAtPath(
                path, options,
                [this](const std::shared_ptr<LuSVNNode>& node) { receive({node, false, {}, LuSVNInvalidRevision}); },
                nullptr, nullptr, context);
        }
    } catch (...) {
        context->setNotificationHandler(nullptr);
        keeping_ = false;
        kept_.clear();
        throw;
    }
    context->setNotificationHandler(nullptr);
    if (settings_.aggregates) {
        for (const Event& event : kept_)
            if (event.node && event.node->isDirectory() && event.node->path()->string() == target.absolute)
                target.root = std::static_pointer_cast<LuSVNDirectory>(event.node);
    }
    for (const Event& event : kept_)
        process(event);
    kept_.clear();
    finishTarget();
}

void StatusPrinter::receive(Event event)
{
    if (settings_.aggregates || keeping_)
        kept_.push_back(std::move(event));
    else
        process(event);
}

void StatusPrinter::process(const Event& event)
{
    if (event.node)
        take(event.node);
    else if (event.completed)
        complete(event.revision);
    else
        enterExternal(event.path);
}

// Depth empty and files are cut from an immediates walk.
bool StatusPrinter::withinDepth(const LuSVNNode& node) const
{
    const Depth depth = settings_.effectiveDepth();
    if (depth == Depth::Infinity)
        return true;
    const std::string& root = target_->absolute;
    const std::string& path = node.path()->string();
    if (path == root)
        return true;
    if (!isUnder(path, root))
        return false;
    const bool child = path.find('/', root.size() + (root.back() == '/' ? 0 : 1)) == std::string::npos;
    if (!child || depth == Depth::Empty)
        return false;
    return depth != Depth::Files || !node.isDirectory();
}

void StatusPrinter::take(const std::shared_ptr<LuSVNNode>& node)
{
    if (!withinDepth(*node))
        return;
    if (settings_.json) {
        startTarget();
        std::string& out = output_.buffer();
        out += target_->jsonNodes++ ? ",\n" : "\n";
        out += LuSVNKeyedArchiver::archivedDataWithRootObject(*node);
        output_.maybeFlush();
        return;
    }
    if (!node->status())
        return;
    // A directory marked external without a URL may be a placeholder that
    // the walk made for the parents of an external: the next node tells.
    const bool candidate = !settings_.verbose && node->isDirectory() && isExternalMark(*node->status()) &&
                           !node->URL();
    resolveCandidates(node.get());
    if (candidate)
        target_->candidates.push_back(node);
    else
        place(node);
}

// Whether the walk added the node only to lead to an external below it: such
// placeholders stand for versioned directories that svn did not report.
bool isPlaceholder(const LuSVNNode& node, const std::shared_ptr<LuSVNContext>& context)
{
    LuSVNStatusOptions options;
    options.setIncludeNormalFiles(true);
    // Rare (ancestors of externals only): ask what the directory really is.
    const auto real = LuSVNNode::nodeWithStatusAtPath(std::static_pointer_cast<const LuSVNLocalPath>(node.path()),
                                                      options, context);
    return real && real->status() && isVersioned(*real, *real->status());
}

// The held directories leading to an external mark (`next`) are placeholders
// when the directory is versioned; the others are shown as they are.
void StatusPrinter::resolveCandidates(const LuSVNNode* next)
{
    if (target_->candidates.empty())
        return;
    const bool nextIsMark = next && next->status() && isExternalMark(*next->status());
    auto candidates = std::move(target_->candidates);
    target_->candidates.clear();
    for (const auto& candidate : candidates) {
        const bool leads = nextIsMark && isUnder(next->path()->string(), candidate->path()->string());
        if (!leads || !isPlaceholder(*candidate, contextForPath(target_->absolute)))
            place(candidate);
    }
}

void StatusPrinter::place(const std::shared_ptr<LuSVNNode>& node)
{
    const std::string& path = node->path()->string();
    const LuSVNStatus& status = *node->status();
    LineKind kind = LineKind::Item;
    if (isExternalMark(status)) {
        if (path == target_->section || (path == target_->absolute && node->URL())) {
            // The external's own report of its root (also a walk started
            // inside an external).
            kind = LineKind::ExternalRoot;
        } else if (target_->section.empty() && settings_.effectiveDepth() == Depth::Infinity &&
                   !settings_.ignoreExternals && path != target_->absolute) {
            if (!node->URL())
                target_->unversionedMarks.insert(path);
            // The external is walked later; svn shows its mark only from a
            // versioned parent.
            if (target_->unversionedMarks.contains(parentPath(path)))
                return;
            kind = LineKind::ExternalMark;
        }
    }
    if (path == target_->absolute && target_->section.empty())
        target_->rootPlaced = true;
    if (kind == LineKind::Item && status.changelist()) {
        ChangelistItem item{node, kind, {}};
        displayPath(path, item.displayPath);
        changelists_.push_back(std::move(item));
        return;
    }
    const Line line{node.get(), kind};
    if (!shown(line) || (settings_.aggregates && !settings_.verbose && !worthAnAggregateLine(*node)))
        return;
    displayPath(path, path_);
    print(line, path_);
}

// Without -v, --aggregates shows what svn shows, the target itself and the
// directories with a change below them.
bool StatusPrinter::worthAnAggregateLine(const LuSVNNode& node) const
{
    if (node.path()->string() == target_->absolute || reportedWithoutAll(node))
        return true;
    if (!node.isDirectory())
        return false;
    const auto& directory = static_cast<const LuSVNDirectory&>(node);
    return isAbnormalKind(static_cast<LuSVNStatusKind>(directory.aggregateChildStatus())) ||
           isAbnormalKind(static_cast<LuSVNStatusKind>(directory.aggregateRepositoryChildStatus()));
}

// With --aggregates the root always shows, to carry its words, after the
// target's own tree.
void StatusPrinter::placeRootForAggregates()
{
    if (!settings_.aggregates || settings_.xml || !target_->root || target_->rootPlaced)
        return;
    target_->rootPlaced = true;
    displayPath(target_->root->path()->string(), path_);
    printLine({target_->root.get(), LineKind::Item}, path_);
}

void StatusPrinter::enterExternal(const std::string& path)
{
    resolveCandidates(nullptr);
    placeRootForAggregates();
    target_->section = path;
    if (notifies()) {
        std::string& out = output_.buffer();
        out += "\nPerforming status on external item at '";
        out += externalHeaderPath(path);
        out += "':\n";
    }
}

void StatusPrinter::complete(std::int32_t revision)
{
    resolveCandidates(nullptr);
    if (!target_->against)
        target_->against = revision;
    if (notifies() && revision != LuSVNInvalidRevision) {
        char text[64];
        std::snprintf(text, sizeof text, "Status against revision: %6d\n", revision);
        output_.buffer() += text;
    }
}

void StatusPrinter::startTarget()
{
    if (target_->started)
        return;
    target_->started = true;
    std::string& out = output_.buffer();
    const std::string& display = target_->display.empty() ? std::string(".") : target_->display;
    if (settings_.xml) {
        out += "<target";
        appendXMLAttribute(out, "path", display);
        out += ">\n";
    } else if (settings_.json) {
        out += firstJSONTarget_ ? "\n{\"target\":" : ",\n{\"target\":";
        firstJSONTarget_ = false;
        appendJSONString(out, display);
        out += ",\"path\":";
        appendJSONString(out, target_->absolute);
        out += ",\"nodes\":[";
    }
}

void StatusPrinter::finishTarget()
{
    resolveCandidates(nullptr);
    placeRootForAggregates();
    startTarget();
    std::string& out = output_.buffer();
    const bool against = target_->against && *target_->against != LuSVNInvalidRevision;
    if (settings_.xml) {
        if (against) {
            out += "<against";
            std::string revision;
            appendNumber(revision, *target_->against);
            appendXMLAttribute(out, "revision", revision);
            out += "/>\n";
        }
        out += "</target>\n";
    } else if (settings_.json) {
        out += ']';
        if (target_->against) {
            out += ",\"againstRevision\":";
            appendNumber(out, *target_->against);
        }
        out += '}';
    }
}

void StatusPrinter::displayPath(const std::string& path, std::string& out) const
{
    const Target& target = *target_;
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

// The other end of a move as svn shows it: below the target as the target's
// items are shown, elsewhere with ".." from the target.
std::string StatusPrinter::movePath(const std::string& path) const
{
    const std::string& target = target_->absolute;
    if (path == target || isUnder(path, target)) {
        const std::string& display = target_->display;
        if (path == target)
            return display;
        const std::string below = path.substr(target.size() + (target.back() == '/' ? 0 : 1));
        return display.empty() ? below : display + (display.back() == '/' ? "" : "/") + below;
    }
    std::string common = target;
    std::string up;
    while (!common.empty() && common != "/" && !isUnder(path, common)) {
        common = parentPath(common);
        up += up.empty() ? ".." : "/..";
    }
    return up + "/" + path.substr(common.size() + (common.back() == '/' ? 0 : 1));
}

// svn's lines under an item that was moved: where it went, where it came
// from, or whom it swapped places with.
void StatusPrinter::appendMoveLines(const LuSVNStatus& status, std::string& out) const
{
    const auto& from = status.movedFromPath();
    const auto& to = status.movedToPath();
    if (from && to && *from == *to) {
        out += "\n        > swapped places with ";
        out += movePath(*from);
        return;
    }
    if (to) {
        out += "\n        > moved to ";
        out += movePath(*to);
    }
    if (from) {
        out += "\n        > moved from ";
        out += movePath(*from);
    }
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
    if (!mark)
        appendMoveLines(status, out);
    if (conflict) {
        out += "\n      >   ";
        out += treeConflictDescription(*conflict);
        ++treeConflicts_;
    } else if (!mark && status.textStatus() == LuSVNStatusConflicted) {
        ++textConflicts_;
    } else if (!mark && status.propertyStatus() == LuSVNStatusConflicted) {
        ++propertyConflicts_;
    }
    out += '\n';
    output_.maybeFlush();
}

void StatusPrinter::printXMLEntry(const Line& line, std::string_view path)
{
    const LuSVNNode& node = *line.node;
    const LuSVNStatus& status = *node.status();
    const bool mark = line.kind == LineKind::ExternalMark || (isExternalMark(status) && line.kind == LineKind::Item);
    const bool versioned = !mark && (line.kind == LineKind::ExternalRoot || isVersioned(node, status));
    std::string& out = output_.buffer();
    out += "<entry";
    appendXMLAttribute(out, "path", path);
    out += ">\n<wc-status";
    LuSVNStatusKind item = line.kind == LineKind::ExternalRoot ? LuSVNStatusNormal : status.textStatus();
    if (line.kind == LineKind::ExternalMark)
        item = LuSVNStatusExternal;
    appendXMLAttribute(out, "item", statusWord(item));
    appendXMLAttribute(out, "props",
                    mark || status.textStatus() == LuSVNStatusDeleted ? "none"
                                                                      : statusWord(status.propertyStatus()));
    if (versioned && !status.isCopied()) {
        std::string revision;
        appendNumber(revision, status.workingRevision());
        appendXMLAttribute(out, "revision", revision);
    }
    if (!mark) {
        if (status.isLocked())
            appendXMLAttribute(out, "wc-locked", "true");
        if (status.isCopied())
            appendXMLAttribute(out, "copied", "true");
        if (status.isSwitched())
            appendXMLAttribute(out, "switched", "true");
        if (status.isFileExternal())
            appendXMLAttribute(out, "file-external", "true");
        if (status.treeConflict())
            appendXMLAttribute(out, "tree-conflicted", "true");
        if (status.movedFromPath())
            appendXMLAttribute(out, "moved-from", movePath(*status.movedFromPath()));
        if (status.movedToPath())
            appendXMLAttribute(out, "moved-to", movePath(*status.movedToPath()));
    }
    out += ">\n";
    // An item new in the repository carries the repository's last change,
    // which svn does not show as the item's own.
    if (versioned && node.revision() != LuSVNInvalidRevision) {
        out += "<commit";
        std::string revision;
        appendNumber(revision, node.revision());
        appendXMLAttribute(out, "revision", revision);
        out += ">\n";
        if (node.author()) {
            out += "<author>";
            appendXMLData(out, *node.author());
            out += "</author>\n";
        }
        if (node.date())
            out += "<date>" + repositoryDate(*node.date()) + "</date>\n";
        out += "</commit>\n";
    }
    if (!mark && node.lock())
        appendXMLLock(out, *node.lock());
    out += "</wc-status>\n";
    if (!mark && (isOutOfDate(status) || status.repositoryLock())) {
        out += "<repos-status";
        appendXMLAttribute(out, "item", statusWord(repositoryNodeStatus(status)));
        appendXMLAttribute(out, "props",
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

void StatusPrinter::print(const Line& line, std::string_view path)
{
    if (target_)
        startTarget();
    if (settings_.xml)
        printXMLEntry(line, path);
    else
        printLine(line, path);
}

// Items of change lists come last, grouped by list.
void StatusPrinter::printChangelists()
{
    std::stable_sort(changelists_.begin(), changelists_.end(), [](const ChangelistItem& a, const ChangelistItem& b) {
        return *a.node->status()->changelist() < *b.node->status()->changelist();
    });
    std::string& out = output_.buffer();
    const std::string* current = nullptr;
    for (const auto& item : changelists_) {
        const Line line{item.node.get(), item.kind};
        if (!shown(line))
            continue;
        const std::string& name = *item.node->status()->changelist();
        if (!current || *current != name) {
            if (settings_.xml) {
                if (current)
                    out += "</changelist>\n";
                out += "<changelist";
                appendXMLAttribute(out, "name", name);
                out += ">\n";
            } else {
                out += "\n--- Changelist '" + name + "':\n";
            }
            current = &name;
        }
        print(line, item.displayPath);
    }
    if (settings_.xml && current)
        out += "</changelist>\n";
}

int StatusPrinter::run()
{
    std::string& out = output_.buffer();
    if (settings_.xml)
        out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<status>\n";
    else if (settings_.json)
        out += "{\"targets\":[";
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
        target_ = &target;
        try {
            walk(target);
        } catch (const LuSVNException& e) {
            const int code = e.status();
            if (e.name() != "LuSVNNotWorkingCopyException" && code != 155007 && code != 155010)
                throw;
            // svn's XML keeps the target, empty.
            if (settings_.xml && !target.started) {
                startTarget();
                out += "</target>\n";
            }
            output_.flush();
            // svn keeps its warnings to itself when quiet.
            if (settings_.quiet) {
            } else if (e.name() == "LuSVNNotWorkingCopyException" || code == 155007) {
                printWarning(155007, "'" + target.absolute + "' is not a working copy");
            } else {
                printWarning(code, e.reason());
            }
        }
        target_ = nullptr;
    }

    if (settings_.json) {
        out += "]}\n";
    } else {
        printChangelists();
        if (settings_.xml) {
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
            // A reader that goes away is a write error, as for svn.
            std::signal(SIGPIPE, SIG_IGN);
            Output output;
            StatusPrinter printer(*settings, output);
            try {
                return printer.run();
            } catch (const WriteError& error) {
                printError(*LuSVNException::exceptionWithReason(std::string("Write error: ") + std::strerror(error.code),
                                                                error.code));
                return 1;
            }
        };
    });

}  // namespace
