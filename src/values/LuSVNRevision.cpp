#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNHeadRevision.h>
#include <tessera/LuSVNMineRevision.h>
#include <tessera/LuSVNNumberedRevision.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRelativeRevision.h>
#include <tessera/LuSVNRevision.h>
#include <tessera/LuSVNRevisionAtDate.h>

#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "LuSVNAssert.h"
#include "LuSVNSharedInstance.h"
#include "LuSVNSubversion.h"

namespace {

using Shared = std::shared_ptr<const LuSVNRevision>;

int ordered(auto a, auto b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

// The kind a revision sorts by when neither a number nor a date decides.
std::uint32_t sortKind(const LuSVNRevision& revision)
{
    if (const auto* relative = dynamic_cast<const LuSVNRelativeRevision*>(&revision))
        return relative->kind();
    return svn_opt_revision_unspecified;
}

bool isASCIISpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool equalsIgnoringASCIICase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i]))
            return false;
    }
    return true;
}

// A signed 32-bit decimal number after optional leading white space, running
// to the end of the text; nullopt otherwise, and for values out of range.
std::optional<std::int32_t> scanWholeInteger(std::string_view text)
{
    std::size_t i = 0;
    while (i < text.size() && isASCIISpace(text[i]))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        negative = text[i++] == '-';
    if (i == text.size())
        return std::nullopt;
    std::int64_t value = 0;
    for (; i < text.size(); ++i) {
        if (text[i] < '0' || text[i] > '9')
            return std::nullopt;
        value = value * 10 + (text[i] - '0');
        if (value > std::int64_t(std::numeric_limits<std::int32_t>::max()) + 1)
            return std::nullopt;
    }
    if (negative)
        value = -value;
    if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return static_cast<std::int32_t>(value);
}

}  // namespace

LuSVNRevision::~LuSVNRevision() = default;

std::shared_ptr<const LuSVNRevision> LuSVNRevision::HEAD()
{
    return tessera_private::LuSVNSharedInstance([] { return std::make_shared<const LuSVNHeadRevision>(); });
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::PREVIOUS()
{
    return tessera_private::LuSVNSharedInstance(
        [] { return std::make_shared<const LuSVNRelativeRevision>(svn_opt_revision_previous, "PREV"); });
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::BASE()
{
    return tessera_private::LuSVNSharedInstance(
        [] { return std::make_shared<const LuSVNRelativeRevision>(svn_opt_revision_base, "BASE"); });
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::WORKING()
{
    return tessera_private::LuSVNSharedInstance(
        [] { return std::make_shared<const LuSVNRelativeRevision>(svn_opt_revision_working, "WORK"); });
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::COMMITTED()
{
    return tessera_private::LuSVNSharedInstance(
        [] { return std::make_shared<const LuSVNRelativeRevision>(svn_opt_revision_committed, "COMMITTED"); });
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::UNSPECIFIED()
{
    return tessera_private::LuSVNSharedInstance(
        [] { return std::make_shared<const LuSVNRelativeRevision>(svn_opt_revision_unspecified, "UNSPECIFIED"); });
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::MINE()
{
    return tessera_private::LuSVNSharedInstance([] { return std::make_shared<const LuSVNMineRevision>(); });
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::revision()
{
    return std::make_shared<const LuSVNHeadRevision>();
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::revisionWithNumber(std::int32_t number)
{
    return std::make_shared<const LuSVNNumberedRevision>(number);
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::revisionAtDate(Date date)
{
    return std::make_shared<const LuSVNRevisionAtDate>(date);
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::revisionFromString(std::optional<std::string_view> text)
{
    return revisionFromString(text, LuSVNParseHead | LuSVNParseBase | LuSVNParsePrevious | LuSVNParseWorking |
                                        LuSVNParseCommitted | LuSVNParseNumber | LuSVNParseDate);
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::revisionFromString(std::optional<std::string_view> text,
                                                                       std::uint32_t behavior)
{
    if (!text || text->empty())
        return UNSPECIFIED();
    // This order is part of the contract: the first accepted name wins.
    const std::pair<std::uint32_t, Shared> names[] = {
        {LuSVNParseHead, HEAD()},       {LuSVNParsePrevious, PREVIOUS()},   {LuSVNParseBase, BASE()},
        {LuSVNParseWorking, WORKING()}, {LuSVNParseCommitted, COMMITTED()},
    };
    for (const auto& [flag, revision] : names)
        if ((behavior & flag) && equalsIgnoringASCIICase(*text, revision->description()))
            return revision;
    if (behavior & LuSVNParseDate)
        if (const auto date = parseDateString(*text))
            return revisionAtDate(*date);
    if (behavior & LuSVNParseNumber)
        if (const auto number = scanWholeInteger(*text))
            return revisionWithNumber(*number);
    return nullptr;
}

std::optional<LuSVNRevision::Date> LuSVNRevision::parseDateString(std::string_view text)
{
    return LuSVNDateConversion::parseDateString(text);
}

std::shared_ptr<const LuSVNRevision> LuSVNRevision::revisionFromSVNRevision(const svn_opt_revision_t* svnRevision)
{
    LUSVN_PARAMETER_ASSERT(svnRevision != nullptr, "svnRevision != NULL");
    // Read the kind as a plain integer: a record may hold a value outside the
    // enumeration, and loading that as the enumeration would be undefined.
    std::underlying_type_t<svn_opt_revision_kind> kind;
    static_assert(sizeof kind == sizeof svnRevision->kind);
    std::memcpy(&kind, &svnRevision->kind, sizeof kind);
    switch (kind) {
    case svn_opt_revision_unspecified:
        return UNSPECIFIED();
    case svn_opt_revision_number:
        if (svnRevision->value.number < 0 || svnRevision->value.number > std::numeric_limits<std::int32_t>::max())
            throw LuSVNInvalidArgumentException("Revision number out of range: " +
                                                std::to_string(svnRevision->value.number));
        return revisionWithNumber(static_cast<std::int32_t>(svnRevision->value.number));
    case svn_opt_revision_date: {
        // Time 0 is no date, as everywhere in Subversion.
        const auto date = LuSVNDateConversion::dateWithAPRTime(svnRevision->value.date);
        LUSVN_PARAMETER_ASSERT(date.has_value(), "date != nil");
        return revisionAtDate(*date);
    }
    case svn_opt_revision_committed:
        return COMMITTED();
    case svn_opt_revision_previous:
        return PREVIOUS();
    case svn_opt_revision_base:
        return BASE();
    case svn_opt_revision_working:
        return WORKING();
    case svn_opt_revision_head:
        return HEAD();
    default:
        throw LuSVNInvalidArgumentException("Unrecognised revision kind");
    }
}

std::int32_t LuSVNRevision::number() const
{
    return LuSVNInvalidRevision;
}

std::optional<LuSVNRevision::Date> LuSVNRevision::date() const
{
    return std::nullopt;
}

bool LuSVNRevision::isRelative() const
{
    return false;
}

int LuSVNRevision::compare(const std::shared_ptr<const LuSVNRevision>& other) const
{
    if (!other)
        return 1;
    const std::int32_t mine = number();
    const std::int32_t theirs = other->number();
    if (mine != LuSVNInvalidRevision && theirs != LuSVNInvalidRevision)
        return ordered(mine, theirs);
    const auto myDate = date();
    const auto theirDate = other->date();
    if (myDate && theirDate)
        return ordered(*myDate, *theirDate);
    if (mine != LuSVNInvalidRevision)
        return -1;
    if (myDate)
        return theirs == LuSVNInvalidRevision ? -1 : 1;
    return ordered(sortKind(*this), sortKind(*other));
}
