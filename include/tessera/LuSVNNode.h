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

#include <any>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNExternalDefinition.h>
#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNLock.h>
#include <tessera/LuSVNMergingSummary.h>
#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNPath.h>
#include <tessera/LuSVNRevisionSpec.h>
#include <tessera/LuSVNStandardProperties.h>
#include <tessera/LuSVNStatus.h>
#include <tessera/LuSVNStrings.h>
#include <tessera/LuSVNTreeConflictOptions.h>
#include <tessera/LuSVNURL.h>
#include <tessera/LuSVNVersion.h>

class LuSVNAddOptions;
class LuSVNBatchHandler;
class LuSVNCommitItem;
class LuSVNCopyOptions;
class LuSVNDeleteOptions;
class LuSVNImportOptions;
class LuSVNMoveOptions;
class LuSVNCommitOptions;
class LuSVNContext;
class LuSVNLogItem;
class LuSVNLogMessageReceiverDelegate;
class LuSVNLockOptions;
class LuSVNLogOptions;
class LuSVNMergeOptions;
class LuSVNRevisionRange;
class LuSVNResolveOptions;
class LuSVNRevertOptions;
class LuSVNStatusOptions;
class LuSVNSwitchOptions;
class LuSVNUnlockOptions;
class LuSVNUpdateOptions;
struct svn_dirent_t;
struct svn_lock_t;
struct svn_wc_status2_t;
class LuSVNExportOptions;
struct LuSVNInfo;

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

    // --- Nodes of a revision, export ----------------------------------------------
    //
    //   auto node = LuSVNNode::nodeAtPath(url, LuSVNRevisionSpec::HEAD(), context);
    //   LuSVNExportOptions options;
    //   options.setEOLMarkers(LuSVNEndOfLineLF);
    //   std::int32_t exported = LuSVNNode::exportNodeAtPath(url, local, options, context);

    /// The node at the path (a working-copy path or a URL) and revision: a
    /// LuSVNDirectory (LuSVNDirectory::directoryAtPath) when isDirectoryAtPath
    /// says so, else a LuSVNFile (LuSVNFile::fileAtPath, asking the
    /// repository for its lock when `fetchLock` is set). Raises what those
    /// raise, and "Invalid parameter not satisfying: path != nil" (and
    /// "revision != nil", "context != nil").
    static std::shared_ptr<LuSVNNode> nodeAtPath(const Path& path, const Revision& revision, bool fetchLock,
                                                 const Context& context);
    /// nodeAtPath with the lock fetched.
    static std::shared_ptr<LuSVNNode> nodeAtPath(const Path& path, const Revision& revision, const Context& context);

    /// Exports the node (a working-copy path or a URL) at the options'
    /// revision into `toPath` as an unversioned tree, as svn export does:
    /// svn_client_export4 (entry point 52) to the options' depth on backends
    /// 1.5 and later, svn_client_export3 (entry point 51) before, which knows
    /// only depths files and infinity ("Invalid depth" otherwise). An
    /// existing target is overwritten only with overwriteExisting; externals
    /// are exported with processExternals; native-style files get the
    /// options' EOLMarkers when set. Each item exported reaches the context's
    /// handlers as Subversion's notification. Answers the revision exported
    /// (LuSVNInvalidRevision for a working copy's working files). Raises the
    /// LuSVNException of Subversion's error, and "Invalid parameter not
    /// satisfying: path != nil" (and "toPath != nil", "context != nil").
    static std::int32_t exportNodeAtPath(const Path& path, const LocalPath& toPath, const LuSVNExportOptions& options,
                                         const Context& context);

    /// Receives each record of an info report.
    using InfoHandler = std::function<void(const LuSVNInfo& info)>;

    /// Reports what Subversion knows of the node at the path (a
    /// working-copy path or a URL) and revision, and of the nodes below it
    /// to the depth, as svn info does, one LuSVNInfo each to the handler
    /// while Subversion reads: svn_client_info3 (entry point 55) on
    /// backends 1.7 and later, which know every depth, else svn_client_info
    /// (entry point 54), which knows depths empty and infinity only
    /// ("Invalid depth" otherwise). An exception of the handler stops the
    /// report and reaches the caller; a Subversion error raises its
    /// LuSVNException. Raises "Invalid parameter not satisfying: path !=
    /// nil" (and "revision != nil", "handler != nil", "context != nil").
    static void reportInfoForNodeAtPath(const Path& path, const Revision& revision, LuSVNDepth depth,
                                        const InfoHandler& handler, const Context& context);

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

    // Properties of working copies and of repositories. Values that are not
    // UTF-8 text come back as LuSVNData, byte for byte. Setting works on
    // working-copy paths only: Subversion's svn_client_propset2 (entry point
    // 64) refuses URLs ("Setting property on non-local targets needs a base
    // revision"), and the backend table has no revision-property calls.

    /// The values of one property on the path and, when `recursive`, on
    /// every item below it that has it, keyed by the item's path as
    /// Subversion names it (a local path or a URL), in Subversion's path order ("/" first). Raises
    /// "Invalid parameter not satisfying: path != nil" (and "revision !=
    /// nil", "context != nil").
    static std::vector<std::pair<std::string, LuSVNPropertyValue>> propertiesWithName(
        const std::string& name, const Path& path, const Revision& revision, bool recursive,
        const Context& context);

    /// Sets the property on the working-copy item (svn_client_propset2,
    /// entry point 64, not recursive, with Subversion's checks); a null
    /// value deletes it. Raises "Invalid parameter not satisfying: path !=
    /// nil" (and "context != nil").
    static void setProperty(const std::string& name, const std::optional<LuSVNPropertyValue>& value,
                            const LocalPath& path, const Context& context);
    /// The same on the item and, when `recursive`, on everything below it;
    /// `force` skips Subversion's checks of the value (an svn:eol-style on a
    /// binary file, a MIME type it does not know).
    static void setProperty(const std::string& name, const std::optional<LuSVNPropertyValue>& value,
                            const LocalPath& path, bool recursive, bool force, const Context& context);

    /// Every property of the node (svn_client_proplist2, entry point 63);
    /// empty when it has none. Raises "svn_client_proplist2 returned null
    /// array" and "svn_client_proplist2 returned array with null item" for
    /// such answers, and "Invalid parameter not satisfying: path != nil"
    /// (and "revision != nil", "context != nil").
    static LuSVNPropertyMap propertiesForNodeAtPath(const Path& path, const Revision& revision,
                                                    const Context& context);
    /// The properties of the node and, when `recursive`, of every item
    /// below it, keyed by the item's path as Subversion names it, in the
    /// order Subversion reports them (directory entries of a repository
    /// unsorted); an item without properties may be left out.
    static std::vector<std::pair<std::string, LuSVNPropertyMap>> propertiesForNodesAtPath(
        const Path& path, const Revision& revision, bool recursive, const Context& context);

    /// The patterns of the node's "svn:ignore" property (see
    /// LuSVNPropertyConversion::ignoreListValue); empty without it. Raises
    /// "Invalid parameter not satisfying: path != nil" (and "revision !=
    /// nil", "context != nil").
    static std::vector<std::string> ignoredFilenamesForNodeAtPath(const Path& path, const Revision& revision,
                                                                  const Context& context);
    /// Replaces "svn:ignore" with the patterns, one a line, each once
    /// (LuSVNPropertyConversion::stringFromIgnoreList). Raises "Invalid
    /// parameter not satisfying: path != nil" (and "context != nil").
    static void setIgnoredFilenames(const std::vector<std::string>& filenames, const LocalPath& path,
                                    const Context& context);
    /// Appends the pattern as a line of its own to "svn:ignore" unless a
    /// line already holds it; every other byte of the value stays.
    static void addIgnoredFilename(const std::string& pattern, const LocalPath& path, const Context& context);
    /// Removes every line of "svn:ignore" that holds just the pattern
    /// (blanks around it aside); every other byte of the value stays, and a
    /// value left empty deletes the property.
    static void removeIgnoredFilename(const std::string& pattern, const LocalPath& path, const Context& context);

    /// The definitions of the node's "svn:externals" property, in order
    /// (LuSVNExternalDefinition::externalDefinitionListValue); empty
    /// without it. Raises "Invalid parameter not satisfying: path != nil"
    /// (and "revision != nil", "context != nil").
    static std::vector<LuSVNExternalDefinition> externalDefinitionsForNodeAtPath(const Path& path,
                                                                                const Revision& revision,
                                                                                const Context& context);
    /// Appends the definition, printed in its format, as a line of its own
    /// to "svn:externals"; every other byte of the value stays.
    static void addExternalDefinition(const LuSVNExternalDefinition& definition, const LocalPath& path,
                                      const Context& context);
    /// Removes the lines of "svn:externals" whose definition goes into the
    /// target directory; every other byte of the value stays, and a value
    /// left without definitions deletes the property. Raises
    /// LuSVNInvalidExternalsDescriptionException for a value Subversion
    /// cannot parse.
    static void removeExternalDefinition(const std::string& targetDirectory, const LocalPath& path,
                                         const Context& context);

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

    // --- Tree conflicts (LuSVNNode+TreeConflicts), backends 1.10 and later ----------
    //
    //   auto offered = LuSVNNode::treeConflictOptionsForNodeAtPath(local("wc/f"), context);
    //   LuSVNNode::resolveTreeConflictAtPath(local("wc/f"), offered.options[1].id, context);
    //
    // Subversion's own conflict resolution of 1.10, beyond resolveNodeAtPath:
    // it looks in the repository for what the incoming change was (a move
    // made in another working copy is found so) and offers the resolutions
    // that fit, such as moving local edits to where the file went. Backends
    // before 1.10 raise LuSVNUnsupportedFeatureException.

    /// Subversion's description of the path's tree conflict and the options
    /// it offers, found with a look in the repository. A path without tree
    /// conflict raises LuSVNInvalidArgumentException "'<path>' has no tree
    /// conflict".
    static LuSVNTreeConflictOptions treeConflictOptionsForNodeAtPath(const LocalPath& path, const Context& context);
    /// Resolves the path's tree conflict with the offered option of that id
    /// (LuSVNTreeConflictOption::id). An option Subversion does not offer
    /// for the conflict raises Subversion's error.
    static void resolveTreeConflictAtPath(const LocalPath& path, std::int32_t optionId, const Context& context);

    // --- Changes of repositories and working copies -------------------------------
    //
    //   context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("Layout"));
    //   std::int32_t made = LuSVNNode::createDirectoriesAtPaths({url(".../trunk")}, context);
    //   LuSVNNode::moveNodeAtPath(local("wc/a"), local("wc/b"), LuSVNMoveOptions(), context);
    //
    // An operation on URLs commits once and answers the committed revision;
    // its log message comes from the context's log-message provider chain, as
    // a commit's does. On working-copy paths the answer is
    // LuSVNInvalidRevision. Notifications reach the context's handler chain.
    // Each raises "Invalid parameter not satisfying: ..." for a null
    // argument and the LuSVNException of a Subversion error.

    /// Makes the directories, all URLs or all working-copy paths
    /// (svn_client_mkdir3 with the parents on backends 1.5 and later, else
    /// svn_client_mkdir2). A provider chain giving no message raises
    /// LuSVNOperationCancelledException "Operation was cancelled".
    static std::int32_t createDirectoriesAtPaths(const std::vector<Path>& paths, bool makeParents,
                                                 const Context& context);
    /// The same without the parents.
    static std::int32_t createDirectoriesAtPaths(const std::vector<Path>& paths, const Context& context);

    /// Nothing for no paths; URLs when the first path is one (all go to
    /// deleteRepositoryNodesAtURLs), else working-copy paths.
    static std::int32_t deleteNodes(const std::vector<Path>& nodePaths, const LuSVNDeleteOptions& options,
                                    const Context& context);
    /// Deletes the items from the repository in one commit; none when the
    /// provider chain gives no message (LuSVNInvalidRevision).
    static std::int32_t deleteRepositoryNodesAtURLs(const std::vector<URLPath>& nodePaths,
                                                    const LuSVNDeleteOptions& options, const Context& context);
    /// Schedules the items for deletion and removes them from disk. An
    /// unversioned item raises LuSVNUnversionedResourceException "Cannot
    /// delete '<path>' because it is unversioned and force was not
    /// specified" and stays; with force it is removed from disk, and one
    /// the file system refuses to remove raises "Cannot delete '<path>'. The
    /// file may be in use". Nothing is deleted when one path is refused.
    static void deleteWorkingCopyNodesAtPaths(const std::vector<LocalPath>& nodePaths,
                                              const LuSVNDeleteOptions& options, const Context& context);
    /// Makes room at the path for a file moved or copied there from the
    /// local source: a versioned item is deleted from the working copy
    /// (forced), anything else removed from disk; nothing when there is
    /// nothing at the path. A source that is no local path raises
    /// LuSVNInvalidArgumentException "Local source path expected".
    static void deleteNodeAtPath(const LocalPath& path, const Path& source, const Context& context);

    /// Imports the unversioned tree at the path into the repository at the
    /// URL in one commit (svn_client_import2). A provider chain giving no
    /// message raises LuSVNOperationCancelledException "Operation was
    /// cancelled".
    static std::int32_t importNodeAtPath(const LocalPath& path, const URLPath& url,
                                         const LuSVNImportOptions& options, const Context& context);
    /// Imports each path into the URL of the same index, one commit each,
    /// asking the handler (may be null) about each. The log message is asked
    /// once, with commitItemsForImportOfNodes, and used for every commit; no
    /// message raises "Operation was cancelled", a handler's cancel
    /// "Import was canceled by user" (LuSVNOperationCancelledException).
    /// Answers each item's revision, LuSVNInvalidRevision for a skipped one.
    /// Paths and URLs of different counts raise "Invalid parameter not
    /// satisfying: [paths count] == [urls count]".
    static std::vector<std::int32_t> importNodes(const std::vector<LocalPath>& paths, const std::vector<URLPath>& urls,
                                                 const LuSVNImportOptions& options,
                                                 const std::shared_ptr<LuSVNBatchHandler>& handler,
                                                 const std::any& contextInfo, const Context& context);
    /// One added item per pair: the local path with the URL it goes to and
    /// the kind on disk.
    static std::vector<LuSVNCommitItem> commitItemsForImportOfNodes(const std::vector<LocalPath>& paths,
                                                                    const std::vector<URLPath>& urls);

    /// Copies the source (at the options' revision) to the destination
    /// (svn_client_copy3); either may be a working-copy path or a URL. A
    /// destination in a directory that is not under version control raises
    /// LuSVNNotWorkingCopyException "Failed to copy item at '<source>' to
    /// unversioned directory at '<directory>'".
    static std::int32_t copyNodeAtPath(const Path& sourcePath, const Path& destPath, const LuSVNCopyOptions& options,
                                       const Context& context);
    /// Moves the source to the destination (svn_client_move4, forced as the
    /// options say); "Failed to move item at ..." as for copies.
    static std::int32_t moveNodeAtPath(const Path& sourcePath, const Path& destPath, const LuSVNMoveOptions& options,
                                       const Context& context);
    /// Copies (copy true) or moves each source to the destination of the
    /// same index, one operation each, asking the handler (may be null)
    /// about each item and about each existing local destination (see
    /// LuSVNBatchHandler). A log message is asked once when a destination is
    /// a URL, as importNodes does. A handler's cancel raises
    /// LuSVNOperationCancelledException "Operation canceled by user" for
    /// copies, "Move was canceled by user" for moves. Answers each item's
    /// revision.
    static std::vector<std::int32_t> moveNodes(const std::vector<Path>& sourcePaths, const std::vector<Path>& destPaths,
                                               bool copy, const LuSVNMoveOptions& options,
                                               const std::shared_ptr<LuSVNBatchHandler>& handler,
                                               const std::any& contextInfo, const Context& context);
    /// moveNodes of one item; a handler's cancel raises "Move was canceled".
    static std::int32_t moveNodeAtPath(const Path& source, const Path& target, bool copy,
                                       const LuSVNMoveOptions& options,
                                       const std::shared_ptr<LuSVNBatchHandler>& handler,
                                       const std::any& contextInfo, const Context& context);
    /// Per pair the destination as an added copy of the source (the source
    /// at the HEAD revision as copy source), and for a move the source as a
    /// deleted item after it.
    static std::vector<LuSVNCommitItem> commitItemsForMoveOfNodes(const std::vector<Path>& sourcePaths,
                                                                  const std::vector<Path>& destPaths, bool copy);

    /// The message the context's log-message provider chain gives for the
    /// items; the empty string when it gives none or there is no provider.
    static std::string promptForLogMessage(const std::vector<LuSVNCommitItem>& commitItems, const Context& context);

    // --- Locking ------------------------------------------------------------------
    //
    //   LuSVNLockOptions options;
    //   options.setStealLocks(true);                    // take over another user's lock
    //   auto locks = LuSVNNode::lockNodes({path}, "editing", options, context);
    //   node->controllingLock();                         // after a status walk with -u
    //
    // The targets are all working-copy paths or all URLs. Subversion works
    // on every target and reports each one through the context's handler
    // chain: LuSVNNotifyActionLocked (with the new lock) or
    // LuSVNNotifyActionUnlocked, and LuSVNNotifyActionFailedLock or
    // ...FailedUnlock with the error of a target that could not be locked or
    // unlocked (already locked, out of date, no such file). After the call,
    // failed targets raise one LuSVNException, E200009 "One or more locks
    // could not be obtained" (or "... released"), whose causes are the
    // errors of the failed targets one after the other; the other targets
    // keep their new state. An error that stops the whole call (targets of
    // two repositories, a path that is not versioned) raises its own
    // exception. Each raises "Invalid parameter not satisfying: path != nil"
    // for a null path and "... context != nil".

    /// Locks the nodes with the comment (none: no comment) and answers the
    /// locks obtained, in the order Subversion reported them (svn_client_lock,
    /// entry point 57). A comment holding a zero byte raises
    /// LuSVNInvalidArgumentException "Lock comment contains a zero byte"
    /// before anything is locked.
    static std::vector<std::shared_ptr<const LuSVNLock>> lockNodes(const std::vector<Path>& nodePaths,
                                                                   const std::optional<std::string>& comment,
                                                                   const LuSVNLockOptions& options,
                                                                   const Context& context);
    /// Unlocks the nodes (svn_client_unlock, entry point 71); breakLocks
    /// removes locks that others hold, or that this working copy no longer
    /// holds.
    static void unlockNodes(const std::vector<Path>& nodePaths, const LuSVNUnlockOptions& options,
                            const Context& context);
    /// The lock that decides who may commit the node: without status its own
    /// lock; else by lockStatus(): the node's own lock when the working copy
    /// holds one that the repository has, lost or was not asked about
    /// (LockedHere, Broken, LockedLocally), the repository's lock when another
    /// one holds it (LockedElsewhere, Stolen), else none.
    std::shared_ptr<const LuSVNLock> controllingLock() const;

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

    // --- Merging summary -------------------------------------------------------------
    //
    // Where the source and the target stand in merging with each other, as
    // svn mergeinfo draws it: the youngest common ancestor, the base of the
    // next automatic merge, the tip of the source and the target. A path in
    // a working copy stands for its node at the given revision. Needs
    // Subversion 1.8 or newer: older backends raise
    // LuSVNInvalidArgumentException "Merging summary requires 1.8 or newer".

    /// The merging summary of the source at sourceRevision and the target
    /// at targetRevision (URLs or working-copy paths).
    static LuSVNMergingSummary mergingSummaryForNodeAtPath(const Path& sourcePath, const MergeRevision& sourceRevision,
                                                           const Path& targetPath, const MergeRevision& targetRevision,
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
