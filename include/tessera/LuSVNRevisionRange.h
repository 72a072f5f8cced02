// A span of history between two revisions.
//
// Each bound is a numbered revision, a dated revision, UNSPECIFIED or HEAD;
// UNSPECIFIED and HEAD leave that end open. A range whose first bound sorts
// after its last (in the order of LuSVNRevision::compare) runs backwards.
//
//   auto range = LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(10),
//                                         LuSVNRevision::revisionWithNumber(5));
//   range->isReverseRange();     // true
//   range->containsNumber(7);    // true
//   range->description();        // "{ 10 - 5 }"
//
// Ranges are shared as std::shared_ptr<LuSVNRevisionRange> and are mutable
// through setFirst and setLast; LuSVNMergeRevisionRange adds a merge range's
// "inheritable" flag.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNRevision.h>

struct apr_pool_t;
struct svn_opt_revision_range_t;

class TESSERA_EXPORT LuSVNRevisionRange {
public:
    using Revision = std::shared_ptr<const LuSVNRevision>;
    using Date = LuSVNRevision::Date;

    /// Both bounds UNSPECIFIED.
    LuSVNRevisionRange();
    /// setFirst(first) then setLast(last), with their assertions.
    LuSVNRevisionRange(Revision first, Revision last);
    virtual ~LuSVNRevisionRange();

    /// Both bounds open (UNSPECIFIED). LuSVNMergeRevisionRange has the same
    /// four factories, making merge ranges.
    static std::shared_ptr<LuSVNRevisionRange> all();
    static std::shared_ptr<LuSVNRevisionRange> from(Revision first, Revision last);
    /// The last bound open.
    static std::shared_ptr<LuSVNRevisionRange> from(Revision first);
    /// The first bound open.
    static std::shared_ptr<LuSVNRevisionRange> to(Revision last);

    /// A new range of the same class with the same bounds (and flag).
    virtual std::shared_ptr<LuSVNRevisionRange> copy() const;

    const Revision& first() const { return first_; }
    const Revision& last() const { return last_; }
    /// Replace a bound. Raises "Invalid parameter not satisfying: value !=
    /// nil" for null, and "... [value number] != LuSVNInvalidRevision ||
    /// [value date] != nil || [value isEqual:[LuSVNRevision UNSPECIFIED]] ==
    /// YES || [value isEqual:[LuSVNRevision HEAD]] == YES" for BASE, WORKING,
    /// COMMITTED, PREV and MINE.
    void setFirst(Revision value);
    void setLast(Revision value);

    /// The bounds' number() and date().
    std::int32_t firstNumber() const;
    std::int32_t lastNumber() const;
    std::optional<Date> firstDate() const;
    std::optional<Date> lastDate() const;

    /// Whether first (last) is neither UNSPECIFIED nor HEAD.
    bool hasLowerBound() const;
    bool hasUpperBound() const;
    /// Whether either bound is a number (a date). A range from a number to
    /// a date is both.
    bool isNumberRange() const;
    bool isDateRange() const;
    /// Whether first compared with last is not later (is later). An open
    /// range is forward unless the revision order says otherwise: HEAD to 5
    /// is reverse.
    bool isForwardRange() const;
    bool isReverseRange() const;

    /// Whether the number lies between the bounds, both inclusive, in the
    /// range's direction; an open end admits everything, a dated bound
    /// nothing. Raises "Invalid parameter not satisfying: number >= 0" for
    /// a negative number.
    bool containsNumber(std::int32_t number) const;
    /// The same for a date, with dated bounds compared as instants; a
    /// numbered bound admits nothing.
    bool containsDate(Date date) const;
    /// containsNumber for a numbered revision, containsDate for a dated one;
    /// any other raises LuSVNInvalidArgumentException "Date or numeric
    /// revision required for range match". Raises "Invalid parameter not
    /// satisfying: revision != nil" for null.
    bool containsRevision(const Revision& revision) const;

    /// A new LuSVNRevisionRange spanning both: the earlier of the first
    /// bounds and the later of the last bounds; an end that either range
    /// leaves open stays open. Raises LuSVNInvalidArgumentException "Ranges
    /// have incompatible types" unless both agree in isNumberRange and
    /// isDateRange; "Invalid parameter not satisfying: range != nil" for null.
    std::shared_ptr<LuSVNRevisionRange> combineWith(const std::shared_ptr<const LuSVNRevisionRange>& range) const;

    /// -1, 0 or 1. A range without a lower bound sorts before one with; then
    /// the first bounds decide; then a range without an upper bound sorts
    /// after one with; then the last bounds decide. Raises as combineWith.
    int compare(const std::shared_ptr<const LuSVNRevisionRange>& range) const;

    /// The first bound's hash XOR the last bound's hash.
    std::size_t hash() const;
    /// True when `other` is a range of any class with equal bounds; the
    /// merge flag takes no part.
    bool isEqual(const std::shared_ptr<const LuSVNRevisionRange>& other) const;
    /// "{ 5 - 10 }", with "*" for an UNSPECIFIED bound: "{ 5 - * }",
    /// "{ * - * }", "{ HEAD - 10 }".
    std::string description() const;

    /// Subversion's record of the range (first as start, last as end),
    /// allocated in the pool through the current backend (entry point 3).
    /// Raises "Invalid parameter not satisfying: pool != nil" for null, and
    /// as LuSVNRevision::SVNRevision for a bound without a Subversion form.
    svn_opt_revision_range_t* SVNRevisionRangeInPool(apr_pool_t* pool) const;

private:
    void requireSameTypes(const LuSVNRevisionRange& range) const;

    Revision first_;
    Revision last_;
};
