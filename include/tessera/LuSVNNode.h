// Nodes: files and directories of working copies and repositories.
//
// A node is the library's object for one file or directory, in a working copy
// (its path is a LuSVNLocalPath) or in a repository (a LuSVNURL). Listings,
// infos, status walks and check-outs answer nodes or vectors of nodes.
//
//   LuSVNNode        the root; also a plain file node
//   LuSVNFile        a file (LuSVNFile.h)
//   LuSVNDirectory   a directory, with the aggregate status of its
//                    descendants (LuSVNDirectory.h)
//
//   auto node = LuSVNNode::nodeAtPath(path, record, context);   // one record of a status walk
//   node->isDirectory();                 // decided by the class alone
//   node->status()->textStatus();        // working-copy nodes of a status walk
//   auto changed = LuSVNNode::arrayWithNodesWithStatusOtherThan(nodes, LuSVNStatusNormal);
//
// Nodes are identity objects: shared as std::shared_ptr, made by the static
// factories, with no equality of their own (look-ups by path compare paths).
// copy() makes a new node of the same class that shares every object but the
// status, which it copies. Archived with the keyed coders under "name",
// "path", "location", "url", "size", "revision", "date", "author", "lock",
// "hasProperties" and "status" (a node without date writes no "date").
//
// File types: the shared-mime-info type names of the freedesktop.org
// database ("text/plain", "inode/directory", "image/png"). An extension or
// MIME type that the database does not know gives a dynamic type,
// "dyn.<tag>" (isDynamicUTI).
//
// The working-copy queries at the end choose a backend for an existing
// working copy; they need no client context.
//
//   int format = LuSVNNode::formatVersionForWorkingCopyAtPath("/home/me/wc");  // 31
//   LuSVNVersion release = LuSVNNode::versionForWorkingCopyAtPath("/home/me/wc");
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNLock.h>
#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNPath.h>
#include <tessera/LuSVNRevisionSpec.h>
#include <tessera/LuSVNStatus.h>
#include <tessera/LuSVNStrings.h>
#include <tessera/LuSVNURL.h>
#include <tessera/LuSVNVersion.h>

class LuSVNAddOptions;
class LuSVNCommitOptions;
class LuSVNContext;
class LuSVNLogItem;
class LuSVNLogMessageReceiverDelegate;
class LuSVNLogOptions;
class LuSVNMergeOptions;
class LuSVNRevisionRange;
class LuSVNResolveOptions;
class LuSVNRevertOptions;
class LuSVNStatusOptions;
class LuSVNSwitchOptions;
class LuSVNUpdateOptions;
struct svn_dirent_t;
struct svn_lock_t;
struct svn_wc_status2_t;

/// Who holds the lock of a working-copy node (lockStatus).
enum LuSVNLockStatus : std::int32_t {
    LuSVNLockStatusUnknown = -1,        ///< no lock here, repository not asked
    LuSVNLockStatusNotLocked = 0,       ///< no lock here nor in the repository
    LuSVNLockStatusLockedElsewhere = 1, ///< the repository has a lock, this working copy none
    LuSVNLockStatusLockedHere = 2,      ///< the working copy holds the repository's lock
    LuSVNLockStatusStolen = 3,          ///< the repository's lock has another token
    LuSVNLockStatusBroken = 4,          ///< the working copy's lock is gone from the repository
    LuSVNLockStatusLockedLocally = 5,   ///< the working copy holds a lock, repository not asked
};

/// Subversion's node kinds (svn_node_kind_t), as kindOfNodeAtPath answers them.
enum LuSVNNodeKind : std::int32_t {
    LuSVNNodeKindNone = 0,
    LuSVNNodeKindFile = 1,
    LuSVNNodeKindDirectory = 2,
    LuSVNNodeKindUnknown = 3,
};

class TESSERA_EXPORT LuSVNNode : public LuSVNCoding {
public:
    using Path = LuSVNPath::Path;
    using LocalPath = std::shared_ptr<const LuSVNLocalPath>;
    using URLPath = std::shared_ptr<const LuSVNURL>;
    using Revision = std::shared_ptr<const LuSVNRevisionSpec>;
    using Context = std::shared_ptr<LuSVNContext>;
    using Date = std::chrono::system_clock::time_point;
    using Nodes = std::vector<std::shared_ptr<LuSVNNode>>;
    using NodesByPath = std::unordered_map<Path, std::shared_ptr<LuSVNNode>, LuSVNPathHash, LuSVNPathEqualTo>;
    using PathSet = std::unordered_set<Path, LuSVNPathHash, LuSVNPathEqualTo>;

    // --- Construction ---------------------------------------------------------

    /// A node with no name, path or objects, size 0, revision
    /// LuSVNInvalidRevision.
    static std::shared_ptr<LuSVNNode> node();
    /// A node for the path: name its denormalised last component, location
    /// its parent; a URL is the node's URL too. Raises "Invalid parameter not
    /// satisfying: path != nil" for null. LuSVNFile and LuSVNDirectory have
    /// the same, making nodes of their class.
    static std::shared_ptr<LuSVNNode> nodeWithPath(const Path& path);
    /// A node from a repository listing: name, path, location (the parent),
    /// URL; size, created revision, time (an APR time, 0 for none), last
    /// author and has-properties from the directory entry; the lock from the
    /// lock record when there is one. The status stays null. Raises "Invalid
    /// parameter not satisfying: dirent != NULL" for a null entry.
    static std::shared_ptr<LuSVNNode> nodeWithName(std::optional<std::string> name, const Path& path,
                                                   const URLPath& url, const svn_dirent_t* dirent,
                                                   const svn_lock_t* lock);

    // --- The node factory -------------------------------------------------------

    /// The node of one record of a status walk (svn_wc_status2_t, as
    /// svn_client_status2 and svn_client_status4 deliver it, or as the status
    /// walk makes it from a record of svn_client_status5): a LuSVNDirectory when the
    /// record's entry is a directory, or, without an entry, when the
    /// out-of-date kind is a directory or the item on disk is one (not
    /// following a symbolic link); else a LuSVNFile. Its status is
    /// LuSVNStatus::statusWithSVNStatus of the record with the context's
    /// backend version; its name the path's last component with control
    /// characters replaced by U+FFFD; from the entry, where there is one: URL,
    /// last-changed revision, date and author, has-properties, the lock of
    /// the working copy (token, owner, comment, creation date) and the size
    /// of the working file (when the entry knows it). A file without that
    /// size is given its size on disk. Raises "Invalid parameter not
    /// satisfying: path != nil" (and "status != NULL", "context != nil").
    static std::shared_ptr<LuSVNNode> nodeAtPath(const LocalPath& path, const svn_wc_status2_t* status,
                                                 const Context& context);

    /// The node of the item at the path alone, with its status as a status
    /// walk with the options would report it (depth empty; the item is
    /// reported even when unmodified). Null when Subversion reports nothing
    /// for the path. A relative path is taken from the current directory;
    /// the node's path is absolute. Raises "Invalid parameter not
    /// satisfying: path != nil" (and "context != nil").
    static std::shared_ptr<LuSVNNode> nodeWithStatusAtPath(const LocalPath& path, const LuSVNStatusOptions& options,
                                                           const Context& context);

    // --- Fields -----------------------------------------------------------------

    /// The last path component as the user sees it.
    const std::optional<std::string>& name() const { return name_; }
    void setName(std::optional<std::string> name) { name_ = std::move(name); }
    const Path& path() const { return path_; }
    void setPath(Path path) { path_ = std::move(path); }
    /// The parent of the path.
    const Path& location() const { return location_; }
    void setLocation(Path location) { location_ = std::move(location); }
    /// The node's repository URL.
    const URLPath& URL() const { return url_; }
    void setURL(URLPath url) { url_ = std::move(url); }
    /// The file size in bytes.
    std::int64_t size() const { return size_; }
    void setSize(std::int64_t size) { size_ = size; }
    /// The last-changed revision.
    std::int32_t revision() const { return revision_; }
    void setRevision(std::int32_t revision) { revision_ = revision; }
    /// The last-changed time.
    const std::optional<Date>& date() const { return date_; }
    void setDate(std::optional<Date> date) { date_ = date; }
    /// The last-changed author.
    const std::optional<std::string>& author() const { return author_; }
    void setAuthor(std::optional<std::string> author) { author_ = std::move(author); }
    /// The node's lock; in a working copy the lock whose token the working
    /// copy holds.
    const std::shared_ptr<const LuSVNLock>& lock() const { return lock_; }
    void setLock(std::shared_ptr<const LuSVNLock> lock) { lock_ = std::move(lock); }
    /// Whether the node has versioned properties.
    bool hasProperties() const { return hasProperties_; }
    void setHasProperties(bool value) { hasProperties_ = value; }
    /// The working-copy status; null for repository nodes.
    const std::shared_ptr<LuSVNStatus>& status() const { return status_; }
    void setStatus(std::shared_ptr<LuSVNStatus> status) { status_ = std::move(status); }

    /// False for LuSVNNode and LuSVNFile, true for LuSVNDirectory.
    virtual bool isDirectory() const;

    // --- Order, copies, archives ----------------------------------------------

    /// -1, 0 or 1, the first step that decides: a null other gives 1; a
    /// directory before a non-directory; the paths (LuSVNPath::compare); the
    /// revisions; the dates (no date first); the sizes; then the statuses: a
    /// node without status before one with, two statuses by last-changed
    /// revision and then text status.
    int compare(const std::shared_ptr<const LuSVNNode>& other) const;

    /// A new node of the same class with the same fields; the status is
    /// copied, every other object shared.
    virtual std::shared_ptr<LuSVNNode> copy() const;

    static std::shared_ptr<LuSVNNode> initWithCoder(LuSVNCoder& coder);
    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

    // --- Working-copy status ------------------------------------------------------
    //
    // A node without status reads as one with a status as LuSVNStatus::status()
    // makes it.

    /// True for an unversioned or ignored item, and for a file scheduled for
    /// deletion that is still on disk.
    bool canBeAdded() const;
    /// Whether the repository text or property status is anything but none
    /// or normal.
    bool hasNewerRevisionInRepository() const;
    /// From the node's lock, the status's repository lock and whether the
    /// repository was asked (its text status is not none); see
    /// LuSVNLockStatus.
    LuSVNLockStatus lockStatus() const;

    // --- Vectors of nodes ---------------------------------------------------------
    //
    // Each keeps the order of the nodes and answers a new vector. Status
    // filters read a node without status as above.

    static std::vector<Path> arrayWithPathsOfNodes(const Nodes& nodes);
    /// Nodes whose text status equals the kind.
    static Nodes arrayWithNodesWithStatus(const Nodes& nodes, LuSVNStatusKind kind);
    static Nodes arrayWithNodesWithStatusOtherThan(const Nodes& nodes, LuSVNStatusKind kind);
    /// Nodes whose repository text status equals the kind.
    static Nodes arrayWithNodesWithRepositoryStatus(const Nodes& nodes, LuSVNStatusKind kind);
    static Nodes arrayWithNodesWithRepositoryStatusOtherThan(const Nodes& nodes, LuSVNStatusKind kind);
    /// Nodes with that text status and that schedule.
    static Nodes arrayWithNodesWithStatus(const Nodes& nodes, LuSVNStatusKind kind, LuSVNSchedule schedule);
    /// Nodes whose text status is one of the first kinds or whose property
    /// status is one of the second.
    static Nodes arrayWithNodesWithTextStatii(const Nodes& nodes, const std::vector<std::uint32_t>& textStatii,
                                              const std::vector<std::uint32_t>& propertyStatii);
    /// Nodes whose out-of-date revision is valid.
    static Nodes arrayWithOutOfDateNodes(const Nodes& nodes);
    /// Nodes below the path. Raises "Invalid parameter not satisfying: path
    /// != nil" for null.
    static Nodes arrayWithDescendentsOfPath(const Nodes& nodes, const Path& path);
    /// arrayWithDescendentsOfPath for each path, one after the other.
    static Nodes arrayWithDescendentsOfPaths(const Nodes& nodes, const std::vector<Path>& paths);
    /// The first node whose path equals the path; null when none does.
    static std::shared_ptr<LuSVNNode> nodeWithPath(const Nodes& nodes, const Path& path);
    /// The first node found for the path's parent, then its parent's, and so
    /// on; never a node of the path itself. Null when none is found.
    static std::shared_ptr<LuSVNNode> nodeWithAncestorOfPath(const Nodes& nodes, const Path& path);
    /// The nodes by path; a later node replaces an earlier one of the same path.
    static NodesByPath dictionaryOfNodesKeyedByPath(const Nodes& nodes);
    /// The smallest revision; LuSVNInvalidRevision when there are no nodes or
    /// none is below 2147483647.
    static std::int32_t earliestRevision(const Nodes& nodes);
    /// The largest revision; LuSVNInvalidRevision when none is above
    /// -2147483648.
    static std::int32_t latestRevision(const Nodes& nodes);

    // --- File types ---------------------------------------------------------------

    /// "inode/directory", "text/plain" and "application/octet-stream", which
    /// also stands for any item.
    static const std::string& directoryType();
    static const std::string& textType();
    static const std::string& dataType();
    static const std::string& itemType();

    /// Whether the type begins with "dyn".
    static bool isDynamicUTI(const std::string& type);
    /// Whether the MIME type begins with "text/".
    static bool isTextMIMEType(const std::string& mimeType);
    /// The database's type for a file-name extension ("png" gives
    /// "image/png"), the item type when the database knows several, or
    /// "dyn.extension:<extension>" when it knows none.
    static std::string preferredTypeForFilenameExtension(const std::string& extension);
    /// The database's type for a MIME type (aliases resolved: "text/xml"
    /// gives "application/xml"), or "dyn.mime-type:<type>" when it does not
    /// know it.
    static std::string preferredTypeForMIMEType(const std::string& mimeType);

    /// The type of a node, `nodeKind` being Subversion's (3 unknown):
    ///  1. a directory kind answers the directory type;
    ///  2. a path with an extension that gives a type of the database (not
    ///     the item type) answers it;
    ///  3. an unknown kind is looked up (repository paths without local
    ///     file through isDirectoryAtPath, others on disk, at `localFile` for
    ///     a repository path): a directory answers the directory type;
    ///  4. the MIME type: for a repository path without local file the text
    ///     type at once; with one, MIMETypeForNodeAtPath of the local file;
    ///     for a working-copy path its "svn:mime-type" at the revision (an
    ///     unversioned or missing item has none), else MIMETypeForNodeAtPath;
    ///  5. no MIME type answers the text type;
    ///  6. a MIME type the database knows answers its type; an unknown one
    ///     answers the text type for "text/...", else its dynamic type.
    /// Raises "Invalid parameter not satisfying: path != nil" (and
    /// "revision != nil", "context != nil").
    static std::string UTIForNodeAtPath(const Path& path, const Revision& revision, const LocalPath& localFile,
                                        std::int32_t nodeKind, const Context& context);
    /// The same without local file and with the kind unknown.
    static std::string UTIForNodeAtPath(const Path& path, const Revision& revision, const Context& context);
    /// Subversion's guess of a file's MIME type (svn_io_detect_mimetype,
    /// entry point 104): "application/octet-stream" for binary files, none for
    /// text. A path without a file on disk is read from its pristine copy
    /// (BASEPathForNodeAtPath). Raises "Invalid parameter not satisfying:
    /// path != nil" (and "context != nil").
    static std::optional<std::string> MIMETypeForNodeAtPath(const LocalPath& path, const Context& context);

    // --- Repository services ----------------------------------------------------

    /// Subversion's kind of the node at the path and revision
    /// (svn_client_info, entry point 54). Raises LuSVNException "Path does
    /// not exist" when Subversion reports nothing, and the assertions
    /// "path != nil", "revision != nil", "context != nil".
    static LuSVNNodeKind kindOfNodeAtPath(const Path& path, const Revision& revision, const Context& context);
    /// Whether kindOfNodeAtPath answers the directory kind.
    static bool isDirectoryAtPath(const Path& path, const Revision& revision, const Context& context);
    /// The repository URL of the node (svn_client_info, entry point 54);
    /// null when Subversion reports none. Raises "Invalid parameter not
    /// satisfying: path != nil" (and "context != nil").
    static URLPath URLForNodeAtPath(const Path& path, const Context& context);

    // --- History --------------------------------------------------------------

    /// The log of the path (a working-copy path or URL) as the options ask,
    /// newest first when fromRevision is the newer end. Each item is handed
    /// to the delegate (may be null) as it arrives; the answer holds the items
    /// the receiver collected. A delegate's cancellation raises the
    /// cancellation as LuSVNException, a delegate's exception is raised as
    /// it is. Raises "Invalid parameter not satisfying: path != nil" (and
    /// "context != nil").
    static std::vector<std::shared_ptr<LuSVNLogItem>> readLogForNodeAtPath(
        const Path& path, const std::shared_ptr<LuSVNLogMessageReceiverDelegate>& delegate,
        const LuSVNLogOptions& options, const Context& context);

    // --- Properties -------------------------------------------------------------

    /// The value of one property of the node (svn_client_propget2, entry
    /// point 62) at the given peg and operative revisions; none when the
    /// node does not have the property. Raises "Invalid parameter not
    /// satisfying: path != nil" (and "revision != nil", "context != nil").
    static std::optional<LuSVNPropertyValue> propertyWithName(const std::string& name, const Path& path,
                                                              const Revision& revision, const Context& context);

    // --- Working copies -----------------------------------------------------------

    /// The path of the node's pristine copy (svn_wc_get_pristine_copy_path,
    /// entry point 103). Raises "Invalid parameter not satisfying: path !=
    /// nil" (and "context != nil").
    static LocalPath BASEPathForNodeAtPath(const LocalPath& path, const Context& context);

    /// The working-copy format of the directory as the backend reads it: 0
    /// when it is not a working copy. A format the backend does not support
    /// is returned, not raised; so is 0 for a format Subversion does not read
    /// at all, and for an administrative area of format 1.7 or later without
    /// its database (Subversion 1.14 crashes on it). Raises
    /// LuSVNNoSuchEntryException when the path does not exist and
    /// LuSVNException for other Subversion errors, its internal assertions
    /// (a damaged wc.db) included.
    static int formatVersionForWorkingCopyAtPath(const std::string& path,
                                                 const std::shared_ptr<LuSVNBundleProxy>& bundle);

    /// The same through the newest loaded backend; when that raises, through
    /// the next older loaded backend, whose answer is final.
    static int formatVersionForWorkingCopyAtPath(const std::string& path);

    /// The release line of the oldest loaded backend that reads the working
    /// copy's format (major and minor only), or the newest loaded version when
    /// none does. Raises LuSVNNotWorkingCopyException "\"name\" is not a
    /// working copy" when the path is not one. A working copy too old or too
    /// new for every loaded backend raises the exception of Subversion's own
    /// error (E155036, which says to upgrade; E155021 as
    /// LuSVNUnsupportedWorkingCopyFormatException), and a damaged one the
    /// exception of the error Subversion reports for it.
    static LuSVNVersion versionForWorkingCopyAtPath(const std::string& path);

    /// The path of the working copy's metadata directory in the directory
    /// (".svn"), through the default backend.
    static std::string adminAreaInDirectoryAtPath(const std::string& path);

    // --- Working-copy operations ---------------------------------------------------
    //
    //   auto revisions = LuSVNNode::updateNodes({path}, LuSVNHeadRevision::headRevision(), options, context);
    //   context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("Fix"));
    //   std::int32_t committed = LuSVNNode::commitChangesToNodes({path}, LuSVNCommitOptions(), context);
    //
    // Each runs one Subversion call in the context's backend, the newer form
    // on backends 1.5 and later, the older one before (which knows no depth
    // but infinity and files: another depth there raises "Incompatible depth
    // argument for 1.4 (LuSVNDepthInfinity and LuSVNDepthFiles supported)";
    // a depth outside unknown..infinity raises "Invalid depth" everywhere).
    // Notifications reach the context's handler chain while it runs, the
    // delegate may cancel it between them (LuSVNOperationCancelledException),
    // and an exception of a handler stops it and reaches the caller. A
    // Subversion error raises its LuSVNException. Each raises "Invalid
    // parameter not satisfying: ..." for a null path, array, URL, revision
    // or context.

    /// Updates the paths to the revision; one result revision per path, in
    /// the order of the paths. From 1.7 on Subversion announces each path
    /// (LuSVNNotifyActionUpdateStarted); before, the update sends
    /// LuSVNNotifyActionLegacyUpdateStarted. Then LuSVNNotifyActionUpdateSucceeded
    /// or ...Failed. A backend answering another number of revisions raises
    /// "Expected resultant revision array with length of N, found M".
    static std::vector<std::int32_t> updateNodes(const std::vector<LocalPath>& nodePaths, const Revision& revision,
                                                 const LuSVNUpdateOptions& options, const Context& context);
    /// Switches the path to the URL at the options' revision; answers the
    /// revision switched to. Sends the Switch Started/Succeeded/Failed
    /// notifications.
    static std::int32_t switchNodeAtPath(const LocalPath& path, const URLPath& toURL,
                                         const LuSVNSwitchOptions& options, const Context& context);
    /// Commits the changes of the paths; answers the committed revision,
    /// LuSVNInvalidRevision when there was nothing to commit or the log
    /// message provider chain gave no message (the commit is then
    /// abandoned). The log message comes from the context's log-message
    /// provider chain, which sees the commit items. Sends the Commit
    /// Started/Succeeded/Failed notifications.
    static std::int32_t commitChangesToNodes(const std::vector<LocalPath>& nodePaths,
                                             const LuSVNCommitOptions& options, const Context& context);
    /// Schedules the path for addition (svn add) to the options' depth,
    /// with the missing parents when addParents is set. Backends before 1.5
    /// add either everything or the item alone: another depth raises
    /// "Invalid depth", addParents LuSVNInvalidArgumentException.
    static void add(const LocalPath& path, const LuSVNAddOptions& options, const Context& context);
    /// The same with the default options.
    static void add(const LocalPath& path, const Context& context);
    /// Reverts the local changes of the paths to the options' depth.
    static void revertNodes(const std::vector<LocalPath>& nodePaths, const LuSVNRevertOptions& options,
                            const Context& context);
    /// Marks the path's conflicts resolved with the options' conflict
    /// choice: merged as svn resolved does (every backend), another choice
    /// through svn_client_resolve (1.5 and later).
    static void resolveNodeAtPath(const LocalPath& path, const LuSVNResolveOptions& options,
                                  const Context& context);
    /// Rewrites the working copy's URLs that begin with the old prefix to
    /// begin with the new one. Prefixes are URL texts as svn relocate takes
    /// them (compared as text). Sends the Relocate Started/Succeeded/Failed
    /// notifications.
    static void relocateNodeAtPath(const LocalPath& path, const std::string& fromPrefix,
                                   const std::string& toPrefix, bool recursive, const Context& context);
    /// Puts the paths into the changelist (1.5 and later).
    static void addNodesToChangelist(const std::vector<LocalPath>& nodePaths, const std::string& changelist,
                                     LuSVNDepth depth, const Context& context);
    /// Takes the paths out of whatever changelist they are in (1.5 and later).
    static void removeNodesFromChangelists(const std::vector<LocalPath>& nodePaths, LuSVNDepth depth,
                                           const Context& context);

    // --- Merging -------------------------------------------------------------------
    //
    //   auto trunk = LuSVNURL::URLWithString("file:///repo/trunk");
    //   LuSVNNode::mergeNodeAtPath(trunk, {LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(4),
    //                                                              LuSVNRevision::revisionWithNumber(7))},
    //                              LuSVNRevision::HEAD(), branchWorkingCopy, LuSVNMergeOptions(), context);
    //
    // Each merges into a working copy as svn merge does, in the context's
    // backend: the newer form on backends 1.5 and later, the older one
    // before, which knows neither record-only merges ("Record only option
    // is not supported on 1.4") nor depths but infinity and files ("Invalid
    // depth"). The options' whitespace behaviour and ignoreEOLStyle reach
    // Subversion as its merge options. Conflicts are postponed: they show in
    // the notifications and in the status afterwards. Subversion's
    // notifications (with their merge ranges) reach the context's handler
    // chain, framed by LuSVNNotifyActionMergeStarted and ...Succeeded or
    // ...Failed for the working-copy path; the delegate may cancel between
    // them. A Subversion error raises its LuSVNException; a null argument
    // raises "Invalid parameter not satisfying: <name> != nil".

    /// A revision of a merge source or target.
    using MergeRevision = std::shared_ptr<const LuSVNRevision>;
    /// The revision ranges of a merge, in the order they are merged.
    using MergeRanges = std::vector<std::shared_ptr<const LuSVNRevisionRange>>;

    /// Applies the differences between path1 at revision1 and path2 at
    /// revision2 (URLs or working-copy paths) to the working copy.
    static void mergeNodeAtPath(const Path& path1, const MergeRevision& revision1, const Path& path2,
                                const MergeRevision& revision2, const LocalPath& workingCopyPath,
                                const LuSVNMergeOptions& options, const Context& context);
    /// Applies the changes of the ranges of the path's history at the peg
    /// revision (a range's first bound exclusive: { 4 - 7 } merges r5 to
    /// r7; { 7 - 4 } reverts them). Backends before 1.5 take one range
    /// only: more raise LuSVNInvalidArgumentException "1.4 only supports a
    /// single revision range", none "Invalid parameter not satisfying:
    /// [revisionRanges count] == 1".
    static void mergeNodeAtPath(const Path& path, const MergeRanges& revisionRanges, const MergeRevision& pegRevision,
                                const LocalPath& workingCopyPath, const LuSVNMergeOptions& options,
                                const Context& context);
    /// Merges a branch back into the working copy of the line it was made
    /// from (svn merge --reintegrate). Raises LuSVNInvalidArgumentException
    /// before anything is touched: "Reintegration merge requires 1.5 or
    /// newer", "Invalid force option: Reintegration merges can't be
    /// forced", "Invalid recordOnly option: Reintegration merges can't
    /// record-only", "Invalid depth: must be LuSVNDepthInfinity or
    /// LuSVNDepthUnknown".
    static void reintegrateMergeNodeAtPath(const Path& path, const MergeRevision& revision,
                                           const LocalPath& workingCopyPath, const LuSVNMergeOptions& options,
                                           const Context& context);
    /// The URLs Subversion suggests merging into the path at the peg
    /// revision: the source of its copy and the sources of its merge info.
    /// Empty on backends before 1.5, which keep no merge info.
    static std::vector<URLPath> suggestMergeSourcesForNodeAtPath(const Path& path, const MergeRevision& pegRevision,
                                                                 const Context& context);
    /// The log of the revisions of mergeSourcePath that are merged into the
    /// path, or (includingRevisions true) still eligible for merging into
    /// it, oldest first, as the receiver made for the delegate collects
    /// them; a delegate answering false stops the log
    /// (LuSVNOperationCancelledException). Backends before 1.5 raise
    /// LuSVNInvalidArgumentException "Reading log for merge requires 1.5 or
    /// newer".
    static std::vector<std::shared_ptr<LuSVNLogItem>> readLogForNodeAtPath(
        const Path& path, const MergeRevision& pegRevision, const Path& mergeSourcePath,
        const MergeRevision& mergeSourcePegRevision, bool includingRevisions,
        const std::shared_ptr<LuSVNLogMessageReceiverDelegate>& delegate, bool discoverChangedPaths,
        const Context& context);

protected:
    LuSVNNode() = default;
    /// Shares every object but the status, which it copies.
    LuSVNNode(const LuSVNNode& other);
    LuSVNNode& operator=(const LuSVNNode&) = delete;

    /// The factories' work, shared by the subclasses.
    void initWithPath(const Path& path);
    void initWithName(std::optional<std::string> name, const Path& path, const URLPath& url,
                      const svn_dirent_t* dirent, const svn_lock_t* lock);
    /// Reads the keys of encodeWithCoder into this node.
    void decodeFields(LuSVNCoder& coder);

private:
    std::optional<std::string> name_;
    Path path_;
    Path location_;
    URLPath url_;
    std::int64_t size_ = 0;
    std::int32_t revision_ = LuSVNInvalidRevision;
    std::optional<Date> date_;
    std::optional<std::string> author_;
    std::shared_ptr<const LuSVNLock> lock_;
    bool hasProperties_ = false;
    std::shared_ptr<LuSVNStatus> status_;
};
