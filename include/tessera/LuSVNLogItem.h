// One revision of a log: number, author, date, message and the paths changed
// in it, one LuSVNLogPathChange per path (adding a change for a path that has
// one replaces it; the order of the changes is unspecified).
//
//   for (const auto& item : LuSVNNode::readLogForNodeAtPath(path, nullptr, options, context))
//       std::cout << item->stringValue();   // the command-line log layout
//
// Copies share the change objects and have their own map of them.
//
// With LuSVNLogOptions::includeMergedRevisions, an item whose revision merged
// others carries them as its children, in the order the backend reports
// them, each child with the revisions it merged in turn; a child of a reverse
// merge reads isSubtractiveMerge().
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNLogPathChange.h>

class LuSVNRevisionRange;

/// One revision of a log with its changed paths.
class TESSERA_EXPORT LuSVNLogItem {
public:
    /// A commit date.
    using Date = std::chrono::system_clock::time_point;
    /// One changed path.
    using Change = std::shared_ptr<LuSVNLogPathChange>;
    /// Changed paths.
    using Changes = std::vector<Change>;
    /// The changes keyed by their paths.
    using ChangesByPath = std::unordered_map<std::string, Change>;
    /// Items of merged revisions.
    using Children = std::vector<std::shared_ptr<LuSVNLogItem>>;

    /// Revision -1, nothing else.
    LuSVNLogItem() = default;
    /// An item without changes.
    LuSVNLogItem(std::optional<std::string> message, std::int32_t revision, std::optional<Date> date,
                 std::optional<std::string> author);
    /// An item with its own copy of the map of changes.
    LuSVNLogItem(std::optional<std::string> message, std::int32_t revision, std::optional<Date> date,
                 std::optional<std::string> author, ChangesByPath changes);

    /// The log message; none when the revision has none or it was not read.
    const std::optional<std::string>& message() const { return message_; }
    /// See message().
    void setMessage(std::optional<std::string> message) { message_ = std::move(message); }
    /// The revision number; -1 for none.
    std::int32_t revision() const { return revision_; }
    /// See revision().
    void setRevision(std::int32_t revision) { revision_ = revision; }
    /// The commit date.
    const std::optional<Date>& date() const { return date_; }
    /// See date().
    void setDate(std::optional<Date> date) { date_ = date; }
    /// The commit's author.
    const std::optional<std::string>& author() const { return author_; }
    /// See author().
    void setAuthor(std::optional<std::string> author) { author_ = std::move(author); }

    /// The revisions merged by this one (with merged revisions asked for),
    /// in the backend's order.
    const Children& children() const { return children_; }
    /// Appends a merged revision.
    void addChild(std::shared_ptr<LuSVNLogItem> child) { children_.push_back(std::move(child)); }
    /// Whether this merged revision was merged in reverse (undone).
    bool isSubtractiveMerge() const { return subtractiveMerge_; }
    /// See isSubtractiveMerge().
    void setSubtractiveMerge(bool subtractive) { subtractiveMerge_ = subtractive; }

    /// The paths of the changes, in the map's order.
    std::vector<std::string> changedPaths() const;
    /// The changes, in the map's order.
    Changes changes() const;
    /// The changes of one action, in the map's order.
    Changes changesWithAction(LuSVNLogAction action) const;
    /// changesWithAction(LuSVNLogActionAdded).
    Changes additions() const { return changesWithAction(LuSVNLogActionAdded); }
    /// changesWithAction(LuSVNLogActionDeleted).
    Changes deletions() const { return changesWithAction(LuSVNLogActionDeleted); }
    /// changesWithAction(LuSVNLogActionReplaced).
    Changes replacements() const { return changesWithAction(LuSVNLogActionReplaced); }
    /// changesWithAction(LuSVNLogActionModified).
    Changes modifications() const { return changesWithAction(LuSVNLogActionModified); }
    /// The change stored for exactly this path, or null.
    Change changeForPath(const std::string& path) const;
    /// The change of the path or of its nearest ancestor that has one
    /// ("/trunk/a/b" finds "/trunk"), or null.
    Change changeForAncestorOfPath(const std::optional<std::string>& path) const;
    /// Stores the change under its path, replacing one stored there.
    void addChange(Change change);
    /// Removes the change stored under the change's path.
    void removeChange(const LuSVNLogPathChange& change) { removeChangeWithPath(change.path()); }
    /// Removes the change stored under the path.
    void removeChangeWithPath(const std::string& path) { changes_.erase(path); }
    /// Removes every change.
    void removeAllChanges() { changes_.clear(); }

    /// Takes revision, date, author, message, a copy of the map (sharing
    /// the change objects) and the merged children from the other item.
    void assignFrom(const LuSVNLogItem& other);
    /// For a number range whether it holds revision(), for a date range
    /// whether it holds date() (false without a date), else true.
    bool isInRange(const LuSVNRevisionRange& range) const;

    /// "{ <LuSVNLogItem: 0x...> revision: 5, date: ..., author: "a",
    /// message: "first 50 characters", changes: 2 }".
    std::string description() const;
    /// The item in the command-line log layout:
    ///   72 dashes
    ///   r5 | author | 2026-11-24 05:10:35 +0000 (UTC)
    ///   Changed paths:
    ///     A /b (from /a:4)        (one line per change, sorted by path)
    ///   (an empty line)
    ///   message
    /// each line ending in "\n". "Changed paths:" is written without changes
    /// too; a missing author, date or message reads "(null)".
    std::string stringValue() const;

private:
    std::optional<std::string> message_;
    std::int32_t revision_ = -1;
    std::optional<Date> date_;
    std::optional<std::string> author_;
    ChangesByPath changes_;
    Children children_;
    bool subtractiveMerge_ = false;
};
