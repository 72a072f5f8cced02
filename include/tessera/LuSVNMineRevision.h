// MINE: the working file's own text while a conflict is resolved. Subversion
// has no such revision kind, so it cannot be converted to a Subversion record.
// Archived with no keys.
#pragma once

#include <tessera/LuSVNRevision.h>

class TESSERA_EXPORT LuSVNMineRevision : public LuSVNRevision {
public:
    LuSVNMineRevision() = default;

    static std::shared_ptr<LuSVNMineRevision> initWithCoder(LuSVNCoder& coder);

    /// True.
    bool isRelative() const override;
    /// Raises LuSVNException "Cannot convert from LuSVNMineRevision to
    /// svn_opt_revision_t".
    svn_opt_revision_t SVNRevision() const override;
    /// True for any MINE revision.
    bool isEqual(const std::shared_ptr<const LuSVNRevision>& other) const override;
    /// The hash of ".mine".
    std::size_t hash() const override;
    /// ".mine".
    std::string description() const override;
    std::shared_ptr<const LuSVNRevision> copy() const override;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;
};
