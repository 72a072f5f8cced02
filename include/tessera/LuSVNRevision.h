// A revision: one of Subversion's revision specifiers, or MINE.
//
// Revisions are immutable values shared as std::shared_ptr<const
// LuSVNRevision>. The concrete classes are
//
//   LuSVNNumberedRevision   a revision number (>= 0)            kind 1
//   LuSVNRevisionAtDate     the revision current at a date       kind 2
//   LuSVNRelativeRevision   a symbolic kind with its name        its kind
//     LuSVNHeadRevision     HEAD                                 kind 7
//   LuSVNMineRevision       the working file's own text while
//                           resolving a conflict                 (none)
//
// Subversion's kinds: 0 unspecified, 1 number, 2 date, 3 committed,
// 4 previous, 5 base, 6 working, 7 head. MINE has no Subversion form.
//
//   auto r = LuSVNRevision::revisionFromString("head");    // the shared HEAD
//   auto n = LuSVNRevision::revisionWithNumber(12);
//   n->compare(r);                                          // -1: numbers sort first
//   svn_opt_revision_t record = n->SVNRevision();           // kind 1, number 12
//
// Every revision is archivable with the keyed coders (LuSVNCoder.h).
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNExport.h>

struct svn_opt_revision_t;

/// The invalid revision number: what number() answers for every revision
/// that is not a numbered one.
inline constexpr std::int32_t LuSVNInvalidRevision = -1;

/// The texts revisionFromString accepts, as a set of flags.
enum LuSVNRevisionParseBehavior : std::uint32_t {
    LuSVNParseHead = 1,        ///< "HEAD"
    LuSVNParseBase = 2,        ///< "BASE"
    LuSVNParsePrevious = 4,    ///< "PREV"
    LuSVNParseWorking = 8,     ///< "WORK"
    LuSVNParseCommitted = 16,  ///< "COMMITTED"
    LuSVNParseNumber = 32,     ///< a decimal revision number
    LuSVNParseDate = 64,       ///< a date in one of the locale's date styles
};

class TESSERA_EXPORT LuSVNRevision : public LuSVNCoding {
public:
    using Date = std::chrono::system_clock::time_point;

    ~LuSVNRevision() override;

    // --- Shared instances, made once and never freed ------------------------

    /// A LuSVNHeadRevision: kind 7, "HEAD".
    static std::shared_ptr<const LuSVNRevision> HEAD();
    /// A LuSVNRelativeRevision: kind 4, "PREV".
    static std::shared_ptr<const LuSVNRevision> PREVIOUS();
    /// A LuSVNRelativeRevision: kind 5, "BASE".
    static std::shared_ptr<const LuSVNRevision> BASE();
    /// A LuSVNRelativeRevision: kind 6, "WORK".
    static std::shared_ptr<const LuSVNRevision> WORKING();
    /// A LuSVNRelativeRevision: kind 3, "COMMITTED".
    static std::shared_ptr<const LuSVNRevision> COMMITTED();
    /// A LuSVNRelativeRevision: kind 0, "UNSPECIFIED".
    static std::shared_ptr<const LuSVNRevision> UNSPECIFIED();
    /// The LuSVNMineRevision, ".mine".
    static std::shared_ptr<const LuSVNRevision> MINE();

    // --- Making revisions ---------------------------------------------------

    /// A new plain revision, which is HEAD (a new LuSVNHeadRevision).
    static std::shared_ptr<const LuSVNRevision> revision();

    /// A numbered revision. Raises "Invalid parameter not satisfying:
    /// SVN_IS_VALID_REVNUM(number)" for a negative number.
    static std::shared_ptr<const LuSVNRevision> revisionWithNumber(std::int32_t number);

    /// The revision current at the date.
    static std::shared_ptr<const LuSVNRevision> revisionAtDate(Date date);

    /// revisionFromString with every flag set.
    static std::shared_ptr<const LuSVNRevision> revisionFromString(std::optional<std::string_view> text);

    /// The revision a text names, accepting only the forms whose flags are
    /// set in `behavior`:
    ///  1. nullopt or "" gives UNSPECIFIED, whatever the flags;
    ///  2. "HEAD", "PREV", "BASE", "WORK", "COMMITTED" (tested in this order,
    ///     ignoring ASCII case) give the shared instance; "PREVIOUS",
    ///     "WORKING", "UNSPECIFIED" and ".mine" are not accepted;
    ///  3. a date that parseDateString reads gives a revision at that date
    ///     (dates are tried before numbers);
    ///  4. a decimal 32-bit integer, possibly signed and after leading white
    ///     space, that runs to the very end of the text gives that numbered
    ///     revision ("12", " 12"; not "12 " or "12a"; a number beyond the
    ///     32-bit range is no number). A negative number raises the
    ///     assertion of revisionWithNumber;
    ///  5. anything else gives nullptr.
    static std::shared_ptr<const LuSVNRevision> revisionFromString(std::optional<std::string_view> text,
                                                                   std::uint32_t behavior);

    /// The date a text names in one of the date styles of the user's locale
    /// (short, medium, long, full: LuSVNDateConversion::parseDateString):
    /// midnight of that day in the local time zone, or nullopt.
    static std::optional<Date> parseDateString(std::string_view text);

    /// The revision for a Subversion revision record: kind 0 UNSPECIFIED,
    /// 1 numbered, 2 at the date (microseconds since 1970), 3 COMMITTED,
    /// 4 PREVIOUS, 5 BASE, 6 WORKING, 7 HEAD. Raises
    /// LuSVNInvalidArgumentException "Unrecognised revision kind" for any
    /// other kind, and for a number or date the revision classes cannot hold
    /// (beyond 32 bits, outside the clock's range); "Invalid parameter not
    /// satisfying: date != nil" for time 0, which Subversion reads as no
    /// date; "... svnRevision != NULL" for a null record.
    static std::shared_ptr<const LuSVNRevision> revisionFromSVNRevision(const svn_opt_revision_t* svnRevision);

    // --- Reading --------------------------------------------------------

    /// The revision number; LuSVNInvalidRevision (-1) for all but numbered
    /// revisions.
    virtual std::int32_t number() const;

    /// The date; nullopt for all but dated revisions.
    virtual std::optional<Date> date() const;

    /// True for MINE and for symbolic kinds greater than 2 (HEAD,
    /// COMMITTED, PREV, BASE, WORK); false for numbers, dates and
    /// UNSPECIFIED.
    virtual bool isRelative() const;

    /// Subversion's record for this revision. MINE raises LuSVNException
    /// "Cannot convert from LuSVNMineRevision to svn_opt_revision_t".
    virtual svn_opt_revision_t SVNRevision() const = 0;

    /// -1 when this revision is earlier than `other`, 0 when the same,
    /// 1 when later; a null `other` gives 1. Two numbers compare as numbers
    /// and two dates as instants; a number sorts before a date and both
    /// before the symbolic kinds, which sort unspecified, committed,
    /// previous, base, working, head. Compared from the symbolic side, a
    /// number or date counts as unspecified: UNSPECIFIED and MINE compare
    /// as the same as any number, although 5 is earlier than UNSPECIFIED.
    int compare(const std::shared_ptr<const LuSVNRevision>& other) const;

    /// Numbers equal numbers, kinds equal kinds (HEAD equals any relative
    /// revision of kind 7, whatever its name), dates equal the same instant,
    /// MINE equals MINE. Never equal to null.
    virtual bool isEqual(const std::shared_ptr<const LuSVNRevision>& other) const = 0;

    /// The number, the kind, the date's hash, or the hash of ".mine".
    virtual std::size_t hash() const = 0;

    /// "12", "HEAD", "PREV", "BASE", "WORK", "COMMITTED", "UNSPECIFIED",
    /// ".mine", or the date as ISO 8601 text.
    virtual std::string description() const = 0;

    /// A new instance of the same class with the same values.
    virtual std::shared_ptr<const LuSVNRevision> copy() const = 0;

protected:
    LuSVNRevision() = default;
    LuSVNRevision(const LuSVNRevision&) = default;
    LuSVNRevision& operator=(const LuSVNRevision&) = default;
};
