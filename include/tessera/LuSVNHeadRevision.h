// HEAD, the youngest revision of the repository: the relative revision of
// kind 7 named "HEAD". A plain new revision (LuSVNRevision::revision()) is
// one. Archived like any relative revision.
#pragma once

#include <tessera/LuSVNRelativeRevision.h>

class TESSERA_EXPORT LuSVNHeadRevision : public LuSVNRelativeRevision {
public:
    LuSVNHeadRevision();

    /// Always kind 7 and "HEAD", whatever the archive holds.
    static std::shared_ptr<LuSVNHeadRevision> initWithCoder(LuSVNCoder& coder);

    std::shared_ptr<const LuSVNRevision> copy() const override;

    std::string archiveClassName() const override;
};
