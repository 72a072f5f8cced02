// Options of reading the log (see LuSVNOptions.h for the conventions of the
// family).
//
//   field                  kind       default
//   limit                  number     0, no limit: the most entries to read
//   pegRevision            revision   LuSVNRevision::UNSPECIFIED()
//   fromRevision           revision   LuSVNRevision::HEAD()
//   toRevision             revision   revision number 0
//   discoverChangedPaths   boolean    true    list each entry's changed paths
//   traverseCopyHistory    boolean    true    follow copies back to their sources
//   includeMergedRevisions boolean    false   report the revisions merged by each
//                                             entry as its children (Subversion 1.6
//                                             and newer backends)
//
// Description: "{ <LuSVNLogOptions: 0x...> fromRevision: HEAD, toRevision: 0,
// pegRevision: UNSPECIFIED, limit: 0, discoverChangedPaths: 1, traverseCopyHistory: 1 }"
// (on one line).
#pragma once

#include <cstdint>
#include <memory>

#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNRevision.h>

class TESSERA_EXPORT LuSVNLogOptions : public LuSVNOptions {
public:
    using Revision = std::shared_ptr<const LuSVNRevision>;

    LuSVNLogOptions();
    static LuSVNLogOptions defaults() { return {}; }

    std::int32_t limit() const { return limit_; }
    void setLimit(std::int32_t limit) { limit_ = limit; }

    const Revision& pegRevision() const { return pegRevision_; }
    const Revision& fromRevision() const { return fromRevision_; }
    const Revision& toRevision() const { return toRevision_; }
    /// Each raises "Invalid parameter not satisfying: revision != nil" for null.
    void setPegRevision(Revision revision);
    void setFromRevision(Revision revision);
    void setToRevision(Revision revision);

    bool discoverChangedPaths() const { return discoverChangedPaths_; }
    bool traverseCopyHistory() const { return traverseCopyHistory_; }
    void setDiscoverChangedPaths(bool discoverChangedPaths) { discoverChangedPaths_ = discoverChangedPaths; }
    void setTraverseCopyHistory(bool traverseCopyHistory) { traverseCopyHistory_ = traverseCopyHistory; }
    /// Whether each item carries the revisions its merges brought in as its
    /// children (LuSVNLogItem::children). Backends before Subversion 1.6
    /// cannot: the query then raises LuSVNInvalidArgumentException. Not part
    /// of description().
    bool includeMergedRevisions() const { return includeMergedRevisions_; }
    /// See includeMergedRevisions().
    void setIncludeMergedRevisions(bool include) { includeMergedRevisions_ = include; }

    std::string description() const override;

private:
    std::int32_t limit_ = 0;
    Revision pegRevision_;
    Revision fromRevision_;
    Revision toRevision_;
    bool discoverChangedPaths_ = true;
    bool traverseCopyHistory_ = true;
    bool includeMergedRevisions_ = false;
};
