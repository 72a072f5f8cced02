// A working copy with an item of every status kind, made with the svn client,
// and the two readings of it that the status tests compare: the svn client's
// own (svn status --xml) and the library's (records of a backend's status
// function converted with LuSVNStatus and the node factory).
#pragma once

#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNNode.h>

#include <map>
#include <memory>
#include <string>

#include "TesseraTestSupport.h"

namespace tessera_status_test {

/// Repository "repo" (trunk, branch, lib) and working copy "wc" of trunk with,
/// by file name: normal.txt, modified.txt, propmod.txt, added.txt,
/// copied.txt (added with history), deleted.txt, replaced.txt, missing.txt,
/// obstructed.txt (a directory now), unversioned.txt, ignored.o, locked.txt
/// (locked here), conflict.txt (text), propconflict.txt (property),
/// treeedit.txt (tree: local edit, incoming delete), treedel.txt (tree: local
/// delete, incoming delete), sub (switched to the branch), sparse (depth
/// empty), ext (external of lib). The root has an svn:ignore change.
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

/// One item as `svn status --xml` shows it.
struct ClientStatus {
    std::string item;   // "modified", "unversioned", ...
    std::string props;  // "none", "normal", "modified", "conflicted"
    bool copied = false;
    bool switched = false;
    bool treeConflicted = false;
    bool locked = false;  // a lock token in the working copy
};

/// `svn status --xml -v --no-ignore` of the path, by absolute path.
std::map<std::string, ClientStatus> clientStatus(const std::string& path);

/// The kind of a status word of svn's XML ("modified" gives LuSVNStatusModified).
LuSVNStatusKind kindNamed(const std::string& name);

/// The nodes of one status run over the whole tree (everything reported,
/// ignored items included), made with LuSVNNode::nodeAtPath from the records
/// of the backend's status function: svn_client_status5 (70) through
/// LuSVNClientStatusToWCStatus for 1.7 and later, svn_client_status4 (69) for
/// 1.6, svn_client_status2 (68) before. By absolute path.
std::map<std::string, std::shared_ptr<LuSVNNode>> libraryStatus(const std::string& path,
                                                                const std::shared_ptr<LuSVNContext>& context);

}  // namespace tessera_status_test
