// A revision given by its number.
//
//   auto r = std::make_shared<const LuSVNNumberedRevision>(12);
//   r->number();        // 12
//   r->description();   // "12"
//
// Archived under "number".
#pragma once

#include <tessera/LuSVNRevision.h>

class TESSERA_EXPORT LuSVNNumberedRevision : public LuSVNRevision {
public:
    /// Raises "Invalid parameter not satisfying: SVN_IS_VALID_REVNUM(number)"
    /// for a negative number.
    explicit LuSVNNumberedRevision(std::int32_t number);

    /// Reads "number"; a value outside 0 ... 2147483647 raises
    /// LuSVNInvalidArgumentException.
    static std::shared_ptr<LuSVNNumberedRevision> initWithCoder(LuSVNCoder& coder);

    std::int32_t number() const override { return number_; }
    /// Kind 1 with the number.
    svn_opt_revision_t SVNRevision() const override;
    /// True for any numbered revision with the same number.
    bool isEqual(const std::shared_ptr<const LuSVNRevision>& other) const override;
    /// The number.
    std::size_t hash() const override;
    /// The number in decimal.
    std::string description() const override;
    std::shared_ptr<const LuSVNRevision> copy() const override;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    std::int32_t number_;
};
