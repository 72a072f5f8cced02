// The revision that was current at a date.
//
//   auto r = std::make_shared<const LuSVNRevisionAtDate>(std::chrono::system_clock::now());
//   r->date();          // that instant
//   r->number();        // LuSVNInvalidRevision
//
// Archived under "date", as nanoseconds since 1970-01-01 00:00 UTC.
#pragma once

#include <tessera/LuSVNRevision.h>

class TESSERA_EXPORT LuSVNRevisionAtDate : public LuSVNRevision {
public:
    explicit LuSVNRevisionAtDate(Date date);

    /// Reads "date"; a missing date raises LuSVNInvalidArgumentException.
    static std::shared_ptr<LuSVNRevisionAtDate> initWithCoder(LuSVNCoder& coder);

    std::optional<Date> date() const override { return date_; }
    /// Kind 2 with the date in whole microseconds since 1970 (rounded down).
    svn_opt_revision_t SVNRevision() const override;
    /// True for any dated revision at the same instant.
    bool isEqual(const std::shared_ptr<const LuSVNRevision>& other) const override;
    /// The hash of the date.
    std::size_t hash() const override;
    /// The date as ISO 8601 text.
    std::string description() const override;
    std::shared_ptr<const LuSVNRevision> copy() const override;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    Date date_;
};
