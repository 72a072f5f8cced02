// A working copy with an item of every status kind, made with the svn client,
// and the two readings of it that the status tests compare: the svn client's
// own (svn status --xml) and the library's (records of a backend's status
// function converted with LuSVNStatus and the node factory).
#pragma once

#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNStatusOptions.h>

#include <map>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "TesseraTestSupport.h"

namespace tessera_status_test {

/// Repository "repo" (trunk, branch, lib) and working copy "wc" of trunk with,
/// by file name: normal.txt, modified.txt, propmod.txt, added.txt,
/// copied.txt (added with history), deleted.txt, replaced.txt, missing.txt,
/// obstructed.txt (a directory now), unversioned.txt, ignored.o, locked.txt
/// (locked here), conflict.txt (text), propconflict.txt (property), propdir
/// (property conflict of a directory, dir_conflicts.prej inside it),
/// treeedit.txt (tree: local edit, incoming delete), treedel.txt (tree: local
/// delete, incoming delete), sub (switched to the branch), sparse (depth
/// empty), ext (external of lib). The root has an svn:ignore change. After
/// the working copy was made, revision 5 changed outdated.txt and added
/// incoming.txt, so that both are out of date against the repository.
class StatusFixture {
public:
    StatusFixture();

    std::string workingCopy() const { return directory_ / "wc"; }
    std::string item(const std::string& name) const { return workingCopy() + "/" + name; }
    const std::string& repositoryURL() const { return url_; }
    const std::string& configDirectory() const { return config_.path(); }

private:
    tessera_test::TemporaryDirectory directory_;
    tessera_test::TemporaryDirectory config_;
    std::string url_;
};

/// Repository "repo" (trunk, lib) and working copy "wc" of trunk for the
/// externals and the aggregates: top/a/b/deep.txt (modified), top/a/u.txt
/// (unversioned), top/a/side/s.txt and top/t.txt (normal), top itself with a
/// property change; deep/er/x.txt (normal); externals of lib defined on the
/// root at deep/er/ext (below versioned directories) and at nv/w/ext2 (below
/// directories that only the externals made).
class NestedFixture {
public:
    NestedFixture();

    std::string workingCopy() const { return directory_ / "wc"; }
    std::string item(const std::string& name) const
    {
        return name.empty() ? workingCopy() : workingCopy() + "/" + name;
    }
    const std::string& configDirectory() const { return config_.path(); }

private:
    tessera_test::TemporaryDirectory directory_;
    tessera_test::TemporaryDirectory config_;
    std::string url_;
};

/// Repository "repo" (trunk) and working copy "wc" of it with deleted and
/// replaced trees: d1, d3, d100 and d1000 (directories of that many files,
/// deleted), nested/a (deleted after its subdirectory b), nested/keep/del
/// (deleted inside a kept directory), rep (replaced without history, its file
/// f1 added again) and rh (replaced with a copy of src). Revision 2 changed
/// d3/f1 and rep/f1 as user "second", and d3/f2 is held at revision 1, so that
/// items of one directory differ in their working revision and last change.
class DeletionFixture {
public:
    DeletionFixture();

    std::string workingCopy() const { return directory_ / "wc"; }
    std::string item(const std::string& name) const { return workingCopy() + "/" + name; }
    const std::string& configDirectory() const { return config_.path(); }

private:
    tessera_test::TemporaryDirectory directory_;
    tessera_test::TemporaryDirectory config_;
    std::string url_;
};

/// One item as `svn status --xml` shows it.
struct ClientStatus {
    std::string item;   // "modified", "unversioned", ...
    std::string props;  // "none", "normal", "modified", "conflicted"
    bool copied = false;
    bool switched = false;
    bool treeConflicted = false;
    bool locked = false;  // a lock token in the working copy
    long revision = -1;   // the working revision, -1 where svn shows none
    // With -u: the repository's kinds, "none" where svn shows no repos-status.
    std::string reposItem = "none";
    std::string reposProps = "none";
    // The last change, where svn shows one (with -v).
    long commitRevision = -1;
    std::optional<std::string> commitAuthor;
    std::optional<std::string> commitDate;
    // The other ends of a move, as svn shows them; empty where svn shows none.
    std::string movedFrom;
    std::string movedTo;
};

/// One entry of `svn status --xml`, in svn's order; a path that svn reports
/// twice (an external directory: from its parent, then from inside) gives
/// two entries.
struct ClientEntry {
    std::string path;
    ClientStatus status;
};

/// `svn status --xml` of the path with the further arguments ("-v", "-u",
/// "--depth", "immediates", ...).
std::vector<ClientEntry> clientStatusReport(const std::string& path, const std::vector<std::string>& arguments);

/// `svn status --xml -v --no-ignore` of the path, by absolute path.
std::map<std::string, ClientStatus> clientStatus(const std::string& path);

/// The kind of a status word of svn's XML ("modified" gives LuSVNStatusModified).
LuSVNStatusKind kindNamed(const std::string& name);

/// The nodes of one status run over the whole tree (everything reported,
/// ignored items included), made with LuSVNNode::nodeAtPath from the records
/// of the backend's status function: svn_client_status5 (70) through
/// LuSVNClientStatusToWCStatus for 1.7 and later, svn_client_status4 (69) for
/// 1.6, svn_client_status2 (68) before. By absolute path.
/// `olderCalls`, when given, receives the number of svn_client_status2 calls
/// that the deleted and replaced items cost on 1.7 and later.
std::map<std::string, std::shared_ptr<LuSVNNode>> libraryStatus(const std::string& path,
                                                                const std::shared_ptr<LuSVNContext>& context,
                                                                std::size_t* olderCalls = nullptr);

// --- The status walk against svn's report ---------------------------------------

/// What LuSVNDirectory::statusForNodesInDirectoryAtPath answers.
struct Walk {
    LuSVNNode::Nodes nodes;
    std::shared_ptr<LuSVNDirectory> root;
    std::uint32_t localChanges = 0;
    std::uint32_t remoteChanges = 0;

    /// The node of the path, null when the walk has none.
    std::shared_ptr<LuSVNNode> at(const std::string& path) const;
};

Walk walk(const std::string& path, const LuSVNStatusOptions& options, const std::shared_ptr<LuSVNContext>& context);

/// What LuSVNDirectory::reportStatusForNodesInDirectoryAtPath hands over, in
/// order, and its counts.
Walk stream(const std::string& path, const LuSVNStatusOptions& options, const std::shared_ptr<LuSVNContext>& context);

/// The streamed nodes as the array form keeps them: of a directory handed
/// over twice, the last node only.
LuSVNNode::Nodes keptOnce(const LuSVNNode::Nodes& streamed);

/// The array form and the streaming form of one walk agree: the same nodes
/// (paths, kinds, aggregates) in the same order, after keptOnce, the same
/// root and counts.
void expectStreamAgreesWithArray(const std::string& path, const LuSVNStatusOptions& options,
                                 const std::shared_ptr<LuSVNContext>& context);

/// One path of svn's report and what the walk must make of it.
struct ExpectedItem {
    std::string path;
    std::vector<ClientStatus> reports;  // two for an external directory reported from inside too
    bool external = false;              // the walk gives it text status external

    LuSVNStatusKind text() const;
    /// Text and property kinds of the newer report.
    std::uint32_t localKinds() const;
    /// Repository kinds, none reading as normal.
    std::uint32_t remoteKinds() const;
};

/// svn's entries by path, each where svn reported it last: the walk keeps
/// the newer node of an external directory reported twice, with the
/// external mark. A path svn reports twice, or one of `externals`, is an
/// external directory.
std::vector<ExpectedItem> expectedItems(const std::vector<ClientEntry>& entries,
                                        const std::set<std::string>& externals = {});

/// A repository kind as the walk with compareAgainstRepository gives it.
LuSVNStatusKind repositoryKindNamed(const std::string& name);

// The fields expectAgreement compares, OR-ed.
inline constexpr unsigned KindsField = 1;            // text and property kinds
inline constexpr unsigned FlagsField = 2;            // copied, switched, lock held here
inline constexpr unsigned TreeConflictField = 4;     // a tree conflict description present
inline constexpr unsigned WorkingRevisionField = 8;  // the working revision
inline constexpr unsigned RepositoryField = 16;      // repository kinds, out-of-date revision
inline constexpr unsigned LastChangeField = 32;      // last change: revision, author, date

/// The walk holds the same paths as the expected items, in the same order
/// when `inOrder`, and each node agrees with svn's newer report in the
/// fields. `outOfDate`
/// holds the last commit of each item the repository changed; other files
/// have none.
void expectAgreement(const Walk& walk, const std::vector<ExpectedItem>& expected, unsigned fields, bool inOrder,
                     const std::map<std::string, long>& outOfDate = {});

/// The local change count of the items: abnormal local kinds, the paths in
/// `extraFiles` (conflict files) left out.
std::uint32_t expectedLocalChanges(const std::vector<ExpectedItem>& items, const std::set<std::string>& extraFiles);
std::uint32_t expectedRemoteChanges(const std::vector<ExpectedItem>& items);
/// The OR of the kinds of the abnormal items strictly below the directory
/// (of all of them with `everyItem`).
std::uint32_t expectedAggregate(const std::vector<ExpectedItem>& items, const std::string& directory, bool remote,
                                bool everyItem = false);

/// Each predicate of the directory answers what the aggregate words say.
void expectPredicates(const LuSVNDirectory& directory, std::uint32_t local, std::uint32_t remote);

}  // namespace tessera_status_test
