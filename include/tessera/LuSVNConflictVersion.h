// One side of a conflict in the repository: where the conflicting change came
// from.
//
//   auto left = LuSVNConflictVersion::conflictVersion();   // peg revision -1
//   left->setRepositoryURL(LuSVNURL::URLWithString("file:///srv/repo"));
//   left->setRepositoryPath("trunk/a.c");
//   left->setPegRevision(12);
//
// A mutable value shared as std::shared_ptr; copy() makes an independent one.
// The node kind is Subversion's svn_node_kind_t as the backend's release
// defines it (none 0, file 1, directory 2, unknown 3), passed through
// unchanged. Archived under "repositoryURL", "pegRevision",
// "repositoryPath" and "nodeKind".
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNRevision.h>
#include <tessera/LuSVNURL.h>

struct svn_wc_conflict_version_t;

class TESSERA_EXPORT LuSVNConflictVersion final : public LuSVNCoding {
public:
    /// No URL, peg revision LuSVNInvalidRevision (-1), no path, node kind 0.
    LuSVNConflictVersion() = default;

    /// A new version with the values of the default constructor.
    static std::shared_ptr<LuSVNConflictVersion> conflictVersion();

    /// A version from Subversion's record: its repository URL (when there is
    /// one), peg revision, path in the repository (when there is one) and
    /// node kind. Raises "Invalid parameter not satisfying: version != NULL"
    /// for null.
    static std::shared_ptr<LuSVNConflictVersion> conflictVersionFromStruct(const svn_wc_conflict_version_t* version);

    /// Reads the keys written by encodeWithCoder; an absent "pegRevision"
    /// reads as LuSVNInvalidRevision.
    static std::shared_ptr<LuSVNConflictVersion> initWithCoder(LuSVNCoder& coder);

    const std::shared_ptr<const LuSVNURL>& repositoryURL() const { return repositoryURL_; }
    void setRepositoryURL(std::shared_ptr<const LuSVNURL> url) { repositoryURL_ = std::move(url); }
    std::int32_t pegRevision() const { return pegRevision_; }
    void setPegRevision(std::int32_t revision) { pegRevision_ = revision; }
    /// The path inside the repository, as Subversion gives it ("trunk/a.c").
    const std::optional<std::string>& repositoryPath() const { return repositoryPath_; }
    void setRepositoryPath(std::optional<std::string> path) { repositoryPath_ = std::move(path); }
    std::int32_t nodeKind() const { return nodeKind_; }
    void setNodeKind(std::int32_t kind) { nodeKind_ = kind; }

    /// A new version with the same values; the URL is shared.
    std::shared_ptr<LuSVNConflictVersion> copy() const;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    std::shared_ptr<const LuSVNURL> repositoryURL_;
    std::int32_t pegRevision_ = LuSVNInvalidRevision;
    std::optional<std::string> repositoryPath_;
    std::int32_t nodeKind_ = 0;
};
