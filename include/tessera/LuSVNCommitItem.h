// One item about to be committed, as the log-message providers are shown it.
//
//   item.actions();                                  // LuSVNCommitActionAdd | LuSVNCommitActionCopy
//   LuSVNStringForCommitActions(item.actions());     // "LuSVNCommitActionAdd|LuSVNCommitActionCopy"
//   item.copySource()->path()->string();             // where the copy comes from
//
// A plain value: copies share the path, URL and copy source objects, which
// are immutable.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNPath.h>
#include <tessera/LuSVNPathWithRevision.h>
#include <tessera/LuSVNRevision.h>
#include <tessera/LuSVNURL.h>

class LuSVNNode;
class LuSVNStatus;
struct svn_client_commit_item2_t;
struct svn_client_commit_item3_t;

/// What a commit does to an item, as a set of bits.
enum LuSVNCommitAction : std::int32_t {
    LuSVNCommitActionNone = 0,
    LuSVNCommitActionAdd = 1,
    LuSVNCommitActionDelete = 2,
    LuSVNCommitActionCopy = 4,
    LuSVNCommitActionModification = 8,
    LuSVNCommitActionPropertyModification = 16,
};

/// The names of the set bits in the order of the enumeration, joined with "|"
/// ("LuSVNCommitActionAdd|LuSVNCommitActionModification" for 9); bits beyond
/// the enumeration are not named. "LuSVNCommitActionNone" when no named bit
/// is set.
TESSERA_EXPORT std::string LuSVNStringForCommitActions(std::int32_t actions);

class TESSERA_EXPORT LuSVNCommitItem {
public:
    /// No path, URL or copy source; revision LuSVNInvalidRevision, node kind 3
    /// (unknown), no actions, not locked.
    LuSVNCommitItem() = default;

    /// The item of a Subversion commit record: path (a local path) and URL
    /// when present, revision, copy source (the copy-from URL at the copy-from
    /// revision, when there is a copy-from URL) and node kind as they are; the
    /// state flags give the actions (add, delete, text modifications as
    /// modification, copy, property modifications) and the lock token sets
    /// isLocked. A URL text that LuSVNURL::URLWithString refuses is
    /// percent-escaped first (LuSVNURL::URLEncodeString). Raises "Invalid
    /// parameter not satisfying: item != NULL" for a null record.
    static LuSVNCommitItem commitItemForSVNCommitItem(const svn_client_commit_item3_t* item);
    /// The same from the record of backends older than 1.5.
    static LuSVNCommitItem commitItemForSVNCommitItem(const svn_client_commit_item2_t* item);

    /// What a commit of the item with this working-copy status would do;
    /// none when it would commit nothing. From the text status: added gives
    /// add and copy with a copy source, else add and modification (and
    /// property modification when the item has properties); deleted gives
    /// delete; replaced add, delete and modification; modified or merged
    /// modification. A changed property status (added, deleted, replaced,
    /// modified, merged) adds property modification. The copy source is the
    /// status's copyFromURL at copyFromRevision; path, URL, revision, kind
    /// and lock stay as after construction. Raises "Invalid parameter not
    /// satisfying: status != nil" for null.
    static std::optional<LuSVNCommitItem> commitItemForStatus(const std::shared_ptr<const LuSVNStatus>& status);
    /// commitItemForStatus of the node's status (a node without status reads
    /// as LuSVNStatus::status()), completed from the node: kind 2 for a
    /// directory node, else 1; locked when the node has a lock; path,
    /// revision and URL. Raises "Invalid parameter not satisfying: node !=
    /// nil" for null.
    static std::optional<LuSVNCommitItem> commitItemForNode(const std::shared_ptr<const LuSVNNode>& node);

    const LuSVNPath::Path& path() const { return path_; }
    void setPath(LuSVNPath::Path path) { path_ = std::move(path); }
    const LuSVNURL::URLPath& URL() const { return url_; }
    void setURL(LuSVNURL::URLPath url) { url_ = std::move(url); }
    std::int32_t revision() const { return revision_; }
    void setRevision(std::int32_t revision) { revision_ = revision; }
    const std::shared_ptr<const LuSVNPathWithRevision>& copySource() const { return copySource_; }
    void setCopySource(std::shared_ptr<const LuSVNPathWithRevision> copySource) { copySource_ = std::move(copySource); }
    /// Subversion's node kind: 0 none, 1 file, 2 directory, 3 unknown.
    std::int32_t nodeKind() const { return nodeKind_; }
    void setNodeKind(std::int32_t nodeKind) { nodeKind_ = nodeKind; }
    /// LuSVNCommitAction bits.
    std::int32_t actions() const { return actions_; }
    void setActions(std::int32_t actions) { actions_ = actions; }
    bool isLocked() const { return isLocked_; }
    void setIsLocked(bool isLocked) { isLocked_ = isLocked; }

    /// "{ <LuSVNCommitItem: 0x...> path: <path>, url: <url>, revision: <n>,
    /// actions: <LuSVNStringForCommitActions>, nodeKind: <n>, locked: YES|NO,
    /// copySource: <description> }", with "(null)" for what is absent.
    std::string description() const;

private:
    LuSVNPath::Path path_;
    LuSVNURL::URLPath url_;
    std::int32_t revision_ = LuSVNInvalidRevision;
    std::shared_ptr<const LuSVNPathWithRevision> copySource_;
    std::int32_t nodeKind_ = 3;
    std::int32_t actions_ = LuSVNCommitActionNone;
    bool isLocked_ = false;
};
