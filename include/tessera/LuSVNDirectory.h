// A directory node of a working copy or a repository (see LuSVNNode.h), with
// the aggregate status of its descendants.
//
//   auto directory = LuSVNDirectory::nodeWithPath(LuSVNLocalPath::pathWithString("/home/me/wc"));
//   directory->setAggregateChildStatus(LuSVNStatusModified | LuSVNStatusNormal);
//   (directory->aggregateChildStatus() & LuSVNStatusModified) != 0;   // something below changed
//
// The aggregates are OR-ed LuSVNStatusKind bits: of the local text and
// property kinds of the descendants, and of their repository kinds. A status
// walk that propagates status to ancestors fills them; they are 0 otherwise.
// Archived like LuSVNNode, then "aggregateChildStatus" and
// "aggregateReposChildStatus".
#pragma once

#include <cstdint>
#include <functional>

#include <tessera/LuSVNCheckOutOptions.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNStatusOptions.h>

class LuSVNRepositoryInfo;

/// A directory node; its class answers the status walk
/// (statusForNodesInDirectoryAtPath) and the externals queries.
class TESSERA_EXPORT LuSVNDirectory : public LuSVNNode {
public:
    /// As LuSVNNode::node, a directory.
    static std::shared_ptr<LuSVNDirectory> directory();
    /// As LuSVNNode::nodeWithPath, a directory.
    static std::shared_ptr<LuSVNDirectory> nodeWithPath(const Path& path);
    /// As LuSVNNode::nodeWithName, a directory.
    static std::shared_ptr<LuSVNDirectory> nodeWithName(std::optional<std::string> name, const Path& path,
                                                        const URLPath& url, const svn_dirent_t* dirent,
                                                        const svn_lock_t* lock);

    /// True.
    bool isDirectory() const override;

    /// The OR of the local text and property kinds of the descendants.
    std::uint32_t aggregateChildStatus() const { return aggregateChildStatus_; }
    void setAggregateChildStatus(std::uint32_t kinds) { aggregateChildStatus_ = kinds; }
    /// The OR of the repository text and property kinds of the descendants.
    std::uint32_t aggregateRepositoryChildStatus() const { return aggregateRepositoryChildStatus_; }
    void setAggregateRepositoryChildStatus(std::uint32_t kinds) { aggregateRepositoryChildStatus_ = kinds; }

    /// A copy with both aggregates.
    std::shared_ptr<LuSVNNode> copy() const override;

    static std::shared_ptr<LuSVNDirectory> initWithCoder(LuSVNCoder& coder);
    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

    // --- Status walk ---------------------------------------------------------------
    //
    //   LuSVNStatusOptions options;
    //   options.setPropagateStatusToAncestor(true);
    //   std::shared_ptr<LuSVNDirectory> root;
    //   std::uint32_t local = 0, remote = 0;
    //   auto nodes = LuSVNDirectory::statusForNodesInDirectoryAtPath(path, options, &root, &local, &remote, context);
    //   if (root->hasModifiedNodes()) ...            // a badge on the folder
    //
    // One Subversion status call (svn_client_status5 on backends 1.7 and
    // later, svn_client_status2 before) over the directory. A relative path
    // is taken from the current directory, as svn takes it (never a raw
    // std::filesystem error: a current directory that is gone raises
    // LuSVNException); every node's path is absolute. The result holds
    // a node per reported item, in the backend's order, each with its status:
    //  - an external directory (a target of an "svn:externals" definition at
    //    or above the path) has text status external, also when it is reported
    //    again from inside;
    //  - with compareAgainstRepository, a repository kind the repository
    //    left unchanged reads as normal, not none;
    //  - the parents of an external directory that the walk did not report
    //    are added as placeholder directories (unversioned, text status
    //    external) up to the first reported directory or the path;
    //  - without includeConflictVersionFiles, the extra files of text and
    //    property conflicts (.mine, .rN, .prej) are left out.
    // With propagateStatusToAncestor the directories' aggregate words hold the
    // OR of their descendants' kinds (quiet kinds included once a changed item
    // brings them). A walk with propagateStatusToAncestor, or with
    // compareAgainstRepository and includeNormalFiles, always covers the
    // whole tree; when the options are not recursive it then answers only the
    // root node, while counts and aggregates still cover everything.
    //
    // The local change count is the number of items whose local text or
    // property kind is abnormal (see LuSVNStatus.h), less the conflicts' extra
    // files; the remote count those with an abnormal repository kind. Each
    // out-argument may be null. A Subversion error raises its LuSVNException
    // and no node is returned. Raises "Invalid parameter not satisfying:
    // path != nil" (and "context != nil").

    using Directories = std::vector<std::shared_ptr<LuSVNDirectory>>;
    /// Status words by the string() of a directory's path.
    using StatiiByPath = std::unordered_map<std::string, std::uint32_t>;

    /// The status walk described above: one node per item that Subversion
    /// reports under `path`, each with its status().
    ///
    /// @param path An absolute path without "." or ".." components, of a
    ///   working-copy directory or file. A directory is walked as deep as the
    ///   options say; a file answers its own node at most. A path that is
    ///   not in a working copy (also one that does not exist) raises
    ///   LuSVNNotWorkingCopyException "'<path>' is not a working copy" and
    ///   leaves the out-arguments alone.
    /// @param options What to report (LuSVNStatusOptions.h); the object is
    ///   only read.
    /// @param directory Receives the node of `path` itself when the walk
    ///   reports it, else null. The root is reported, and then is one of the
    ///   nodes too, when includeNormalFiles is set or it has a change of its
    ///   own; a file target never gives one. May be null.
    /// @param localChangeCount Receives the local change count; may be null.
    /// @param remoteChangeCount Receives the remote change count; may be null.
    /// @param context The context whose backend walks; the nodes keep no
    ///   reference to it and may outlive it.
    /// @return The nodes in the order Subversion reported them: new objects
    ///   owned by the caller.
    static Nodes statusForNodesInDirectoryAtPath(const LocalPath& path, const LuSVNStatusOptions& options,
                                                 std::shared_ptr<LuSVNDirectory>* directory,
                                                 std::uint32_t* localChangeCount, std::uint32_t* remoteChangeCount,
                                                 const Context& context);
    /// The status walk without out-arguments.
    static Nodes statusForNodesInDirectoryAtPath(const LocalPath& path, const LuSVNStatusOptions& options,
                                                 const Context& context);

    // --- Streaming status walk -----------------------------------------------------
    //
    //   LuSVNDirectory::reportStatusForNodesInDirectoryAtPath(path, options,
    //       [&](const std::shared_ptr<LuSVNNode>& node) { print(*node); }, nullptr, nullptr, context);
    //
    // The same walk as statusForNodesInDirectoryAtPath, without a result
    // array: the handler gets each node (with its status, as above) while
    // the backend call runs, on the calling thread, once the item is
    // reported, and in the backend's order (path order, parents before their
    // children, except when compareAgainstRepository lets the repository's
    // answer decide). Nothing is kept for the caller, so a walk of a million
    // items needs no more memory than one of a hundred; the walk itself keeps
    // the path text of each reported directory, of each unversioned item and
    // of each conflict's extra files. Differences with the array form:
    //  - a directory reported twice (an external, once by its parent's walk
    //    with text status external, once by its own walk; a placeholder
    //    reported for real later) reaches the handler twice, as two nodes;
    //    the second keeps the first one's external mark, as in the array;
    //  - placeholders reach the handler just before the external directory
    //    that needs them;
    //  - with propagateStatusToAncestor the aggregate words are set on the
    //    directory nodes (the last one handed for each path) only when the
    //    walk ends: keep the directories you need and read their words after
    //    the call. The walk then keeps those directory nodes for as long;
    //  - without includeConflictVersionFiles, a conflict's extra file is held
    //    back when its conflicted item was reported before it, as it always is
    //    in path order; compared against the repository, one reported
    //    earlier may come through.
    // The counts are those of the array form, written when the walk ends.
    //
    // An exception thrown by the handler stops the walk (on backends before
    // 1.7, Subversion finishes its walk but no further item reaches the
    // handler) and reaches the caller unchanged once the backend call has
    // returned; the counts are then not written. A Subversion error raises
    // its LuSVNException. Raises "Invalid parameter not satisfying: path !=
    // nil" (and "handler != nil", "context != nil").

    /// Receives each node of a streaming walk (see above).
    using NodeHandler = std::function<void(const std::shared_ptr<LuSVNNode>& node)>;

    /// The streaming status walk described above.
    static void reportStatusForNodesInDirectoryAtPath(const LocalPath& path, const LuSVNStatusOptions& options,
                                                      const NodeHandler& handler, std::uint32_t* localChangeCount,
                                                      std::uint32_t* remoteChangeCount, const Context& context);

    /// The status of the directory itself (a relative path taken from the
    /// current directory; its node, with status, URL,
    /// last change, properties flag and the working copy's lock), its
    /// aggregate words holding the OR of every item below it as the options
    /// walk them (no propagation needed). Raises "Invalid parameter not
    /// satisfying: path != nil" (and "context != nil").
    static std::shared_ptr<LuSVNDirectory> statusForDirectoryAtPath(const LocalPath& path,
                                                                    const LuSVNStatusOptions& options,
                                                                    const Context& context);

    /// Sets each directory's aggregate words from the maps (0 where a map has
    /// no entry for its path).
    static void aggregateStatii(const StatiiByPath& statii, const StatiiByPath& reposStatii,
                                const Directories& directories);
    /// Removes from `nodes` the extra files that the conflicted nodes name,
    /// beside each of them: of a text conflict the older, newer and working
    /// files, of a property conflict the reject file.
    static void removeVersionConflictFilesFromArray(Nodes& nodes, const Nodes& conflictedNodes);

    // --- Predicates over the aggregates ---------------------------------------------
    //
    // Meaningful for a directory of a walk with propagateStatusToAncestor, or
    // one from statusForDirectoryAtPath.

    /// Whether the local aggregate has any of the kind bits.
    bool hasNodesWithStatus(std::uint32_t kinds) const;
    bool hasUnversionedNodes() const;
    bool hasModifiedNodes() const;
    bool hasAddedNodes() const;
    bool hasDeletedNodes() const;
    bool hasReplacedNodes() const;
    bool hasMissingNodes() const;
    bool hasConflictedNodes() const;
    /// Whether the repository aggregate has an abnormal bit.
    bool hasNodesChangedInRepository() const;

    // --- Externals -----------------------------------------------------------------

    /// The target directories of the externals definitions ("svn:externals")
    /// on the directory and on every versioned directory below it, each
    /// joined to the directory that defines it, read from the working
    /// properties (svn_client_propget2, entry point 62). Raises "Invalid
    /// parameter not satisfying: path != nil" (and "context != nil").
    static PathSet externalsInDirectoryAtPath(
        const LocalPath& path, const Context& context);

    /// What externalsInDirectoryAtPath answers, and the targets of the
    /// definitions on each parent directory above the path for as long as
    /// it is a working copy, each joined to the directory that defines it:
    /// every external directory that a status walk of the path may meet.
    static PathSet externalsForPath(
        const LocalPath& path, const Context& context);

    // --- Working-copy operations ---------------------------------------------------
    //
    //   LuSVNCheckOutOptions options;
    //   options.setDepth(LuSVNDepthFiles);
    //   std::int32_t revision = LuSVNDirectory::checkoutDirectoryAtURL(url, path, options, context);
    //
    // Each runs one Subversion call in the context's backend. Notifications
    // reach the context's handler chain while it runs, the delegate may
    // cancel it between them (LuSVNOperationCancelledException), and an
    // exception of a handler stops it and reaches the caller. A Subversion
    // error raises its LuSVNException; what was done until then stays done
    // and cleanUpWorkingCopyAtPath (or svn cleanup) repairs the working copy.

    /// Checks the URL out into the path at the options' revision (peg and
    /// operative revision alike); answers the checked-out revision. Backends
    /// before 1.5 take depth infinity or files only ("Incompatible depth
    /// argument for 1.4 (LuSVNDepthInfinity and LuSVNDepthFiles supported)");
    /// a depth outside unknown..infinity raises "Invalid depth". Sends
    /// LuSVNNotifyActionCheckOutStarted, then ...Succeeded or ...Failed.
    /// Raises "Invalid parameter not satisfying: url != nil" (and "path !=
    /// nil", "context != nil").
    static std::int32_t checkoutDirectoryAtURL(const URLPath& url, const LocalPath& path,
                                               const LuSVNCheckOutOptions& options, const Context& context);
    /// Removes the working copy's stale locks and finishes its interrupted
    /// work (svn cleanup). Raises "Invalid parameter not satisfying: path !=
    /// nil" (and "context != nil").
    static void cleanUpWorkingCopyAtPath(const LocalPath& path, const Context& context);
    /// Upgrades the working copy's format to that of the release: 1.7 and
    /// later through a new context on the release's loaded backend
    /// (bundleForVersion) and svn_client_upgrade. A release older than
    /// 1.7 raises LuSVNException: no backend before 1.7 upgrades in place,
    /// and no external script is run on this platform. `force` is kept for
    /// callers of the older form; Subversion's upgrade has no such choice.
    static void upgradeWorkingCopyAtPath(const LocalPath& path, const LuSVNVersion& version, bool force);

    // --- Repository services ---------------------------------------------------------
    //
    //   std::shared_ptr<const LuSVNRepositoryInfo> repository;
    //   auto trunk = LuSVNDirectory::directoryAtPath(url, LuSVNRevisionSpec::HEAD(), &repository, context);
    //   LuSVNDirectory::listNodesAtPath(url, LuSVNRevisionSpec::HEAD(), LuSVNDepthInfinity, false,
    //       [&](const std::shared_ptr<LuSVNNode>& node, const std::string& relativePath) { ... }, context);

    /// The directory at the path (a working-copy path or a URL) and revision
    /// as svn info reports it (svn_client_info, entry point 54): path, name,
    /// URL, last-changed revision, date and author, and the lock its working
    /// copy holds; with `repositoryInfo` (may be null) also the repository's
    /// UUID, root URL and the directory's revision. Raises LuSVNException
    /// "'<path>' does not exist" for a local path that does not exist,
    /// LuSVNNotWorkingCopyException "'<path>' is not a working copy" for one
    /// outside a working copy, LuSVNInternalInconsistencyException "Expected
    /// valid dir from LuSVNInfoFunc" for a file, and "Unable to obtain dir
    /// info from svn for '<path>'. Does URL point to root directory of
    /// pre-1.2 repository?" when Subversion reports nothing, except over
    /// svn+ssh, where the node is made from the path alone. Raises "Invalid
    /// parameter not satisfying: path != nil" (and "revision != nil",
    /// "context != nil").
    static std::shared_ptr<LuSVNDirectory> directoryAtPath(const Path& path, const Revision& revision,
                                                           std::shared_ptr<const LuSVNRepositoryInfo>* repositoryInfo,
                                                           const Context& context);
    /// directoryAtPath without the repository information.
    static std::shared_ptr<LuSVNDirectory> directoryAtPath(const Path& path, const Revision& revision,
                                                           const Context& context);
    /// directoryAtPath, and in `children` one node per entry of the
    /// directory in the repository at that revision (svn_client_list, entry
    /// point 56), as listNodesAtPath makes them, in Subversion's order.
    static std::shared_ptr<LuSVNDirectory> directoryAtPath(const Path& path, const Revision& revision,
                                                           Nodes& children, const Context& context);

    /// Receives each node of a listing and its path relative to the listed
    /// target, as Subversion writes it ("" for the target itself, "sub/a b.c").
    using ListHandler = std::function<void(const std::shared_ptr<LuSVNNode>& node, const std::string& relativePath)>;

    /// Lists the repository below the path (a URL, or a working-copy path
    /// whose repository node is listed) at the revision, as svn list does
    /// (svn_client_list, entry point 56), handing each entry to the handler
    /// while Subversion reads: first the target itself (relative path ""),
    /// then to the depth its entries, a LuSVNDirectory or LuSVNFile each with
    /// path, name, URL (for a URL target), size, last-changed revision, date,
    /// author, properties flag and, with `fetchLocks`, the repository's lock.
    /// Depth empty lists the target alone, files its files, immediates its
    /// entries, infinity (or unknown) everything below it. Nothing is kept:
    /// a listing of a million entries needs no more memory than one of ten.
    /// An exception of the handler stops the listing and reaches the caller.
    /// Depth exclude and values outside Subversion's depths raise "Invalid
    /// depth"; a Subversion error its LuSVNException. Raises "Invalid
    /// parameter not satisfying: path != nil" (and "revision != nil",
    /// "handler != nil", "context != nil").
    static void listNodesAtPath(const Path& path, const Revision& revision, LuSVNDepth depth, bool fetchLocks,
                                const ListHandler& handler, const Context& context);

protected:
    LuSVNDirectory() = default;
    LuSVNDirectory(const LuSVNDirectory&) = default;

private:
    std::uint32_t aggregateChildStatus_ = 0;
    std::uint32_t aggregateRepositoryChildStatus_ = 0;
};
