// Options of the status walk (see LuSVNOptions.h for the conventions of the
// family).
//
//   field                         kind       default
//   revision                      revision   LuSVNRevision::UNSPECIFIED()
//   recursive                     flag       true
//   includeNormalFiles            flag       false   report unmodified items too
//   compareAgainstRepository      flag       false   ask the repository for newer revisions
//   respectIgnoreProperties       flag       true    leave out ignored items
//   processExternals              flag       true
//   propagateStatusToAncestor     flag       false   or each item's status into its ancestors
//   includeConflictVersionFiles   flag       true
//   depthIsSticky                 flag       true    compare against the repository at the walk's depth
//
// Description (on one line): "{ <LuSVNStatusOptions: 0x...> revision: UNSPECIFIED,
// recursive: 1, includeNormalFiles: 0, compareAgainstRepository: 0,
// respectIgnoreProperties: 1, processExternals: 1, propagateStatusToAncestor: 0,
// includeConflictVersionFiles: 1 }".
#pragma once

#include <memory>

#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNRevision.h>

class TESSERA_EXPORT LuSVNStatusOptions : public LuSVNOptions {
public:
    using Revision = std::shared_ptr<const LuSVNRevision>;

    LuSVNStatusOptions();
    static LuSVNStatusOptions defaults() { return {}; }

    const Revision& revision() const { return revision_; }
    /// Raises "Invalid parameter not satisfying: revision != nil" for null.
    void setRevision(Revision revision);

    bool recursive() const { return recursive_; }
    bool includeNormalFiles() const { return includeNormalFiles_; }
    bool compareAgainstRepository() const { return compareAgainstRepository_; }
    bool respectIgnoreProperties() const { return respectIgnoreProperties_; }
    bool processExternals() const { return processExternals_; }
    bool propagateStatusToAncestor() const { return propagateStatusToAncestor_; }
    bool includeConflictVersionFiles() const { return includeConflictVersionFiles_; }
    /// Whether, compared against the repository, the walk's depth stands for
    /// the working copy's own (as an update with a sticky depth would take
    /// it): a sparse directory then reports what lies beyond its depth in the
    /// repository. Backends 1.7 and later; the older interface always keeps
    /// the working copy's depths. The svn client passes false; its description()
    /// text leaves it out.
    bool depthIsSticky() const { return depthIsSticky_; }
    /// Each keeps only the lowest bit of its argument.
    void setRecursive(int recursive) { recursive_ = recursive & 1; }
    void setIncludeNormalFiles(int include) { includeNormalFiles_ = include & 1; }
    void setCompareAgainstRepository(int compare) { compareAgainstRepository_ = compare & 1; }
    void setRespectIgnoreProperties(int respect) { respectIgnoreProperties_ = respect & 1; }
    void setProcessExternals(int processExternals) { processExternals_ = processExternals & 1; }
    void setPropagateStatusToAncestor(int propagate) { propagateStatusToAncestor_ = propagate & 1; }
    void setIncludeConflictVersionFiles(int include) { includeConflictVersionFiles_ = include & 1; }
    /// Whether the walk's depth is sticky against the repository (above).
    void setDepthIsSticky(int sticky) { depthIsSticky_ = sticky & 1; }

    std::string description() const override;

private:
    Revision revision_;
    unsigned recursive_ : 1 = 1;
    unsigned includeNormalFiles_ : 1 = 0;
    unsigned compareAgainstRepository_ : 1 = 0;
    unsigned respectIgnoreProperties_ : 1 = 1;
    unsigned processExternals_ : 1 = 1;
    unsigned propagateStatusToAncestor_ : 1 = 0;
    unsigned includeConflictVersionFiles_ : 1 = 1;
    unsigned depthIsSticky_ : 1 = 1;
};
