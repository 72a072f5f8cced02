// A symbolic revision: one of Subversion's kinds with its name.
//
// The shared instances (LuSVNRevision::PREVIOUS(), BASE(), WORKING(),
// COMMITTED(), UNSPECIFIED(), and HEAD(), a LuSVNHeadRevision) cover the
// kinds Subversion knows; the name is only for display:
//
//   auto r = std::make_shared<const LuSVNRelativeRevision>(7, "youngest");
//   r->isEqual(LuSVNRevision::HEAD());   // true: the kinds are equal
//
// Archived under "kind" and "description".
#pragma once

#include <tessera/LuSVNRevision.h>

class TESSERA_EXPORT LuSVNRelativeRevision : public LuSVNRevision {
public:
    /// `kind` is Subversion's revision kind (0 ... 7).
    LuSVNRelativeRevision(std::uint32_t kind, std::string description);

    /// Reads "kind" and "description"; a kind beyond 32 bits or a missing
    /// description raises LuSVNInvalidArgumentException.
    static std::shared_ptr<LuSVNRelativeRevision> initWithCoder(LuSVNCoder& coder);

    std::uint32_t kind() const { return kind_; }

    /// True exactly when the kind is greater than 2.
    bool isRelative() const override;
    /// The kind, with no value. A kind above 7 raises
    /// LuSVNInvalidArgumentException "Unrecognised revision kind".
    svn_opt_revision_t SVNRevision() const override;
    /// True for any relative revision (HEAD included) of the same kind.
    bool isEqual(const std::shared_ptr<const LuSVNRevision>& other) const override;
    /// The kind.
    std::size_t hash() const override;
    /// The name given at construction.
    std::string description() const override;
    std::shared_ptr<const LuSVNRevision> copy() const override;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    std::uint32_t kind_;
    std::string description_;
};
