#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRevisionRange.h>

#include "LuSVNAssert.h"
#include "LuSVNEntryPoints+Typed.h"

namespace {

using Revision = LuSVNRevisionRange::Revision;

bool isOpen(const Revision& bound)
{
    return bound->isEqual(LuSVNRevision::UNSPECIFIED()) || bound->isEqual(LuSVNRevision::HEAD());
}

void requireBound(const Revision& value)
{
    LUSVN_PARAMETER_ASSERT(value != nullptr, "value != nil");
    LUSVN_PARAMETER_ASSERT(value->number() != LuSVNInvalidRevision || value->date() || isOpen(value),
                           "[value number] != LuSVNInvalidRevision || [value date] != nil || "
                           "[value isEqual:[LuSVNRevision UNSPECIFIED]] == YES || "
                           "[value isEqual:[LuSVNRevision HEAD]] == YES");
}

// Whether a value lies on the inner side of a bound: at or after the lower
// bound, at or before the upper one, mirrored for a reverse range. A bound
// that cannot hold such a value must be open, else nothing lies inside.
template <class Value>
bool withinBound(const std::optional<Value>& bound, const Revision& revision, const Value& value, bool lower,
                 bool forward)
{
    if (!bound)
        return isOpen(revision);
    return lower == forward ? !(value < *bound) : !(*bound < value);
}

std::optional<std::int32_t> validNumber(const Revision& revision)
{
    const std::int32_t number = revision->number();
    return number == LuSVNInvalidRevision ? std::nullopt : std::optional(number);
}

}  // namespace

LuSVNRevisionRange::LuSVNRevisionRange()
    : LuSVNRevisionRange(LuSVNRevision::UNSPECIFIED(), LuSVNRevision::UNSPECIFIED())
{
}

LuSVNRevisionRange::LuSVNRevisionRange(Revision first, Revision last)
{
    setFirst(std::move(first));
    setLast(std::move(last));
}

LuSVNRevisionRange::~LuSVNRevisionRange() = default;

std::shared_ptr<LuSVNRevisionRange> LuSVNRevisionRange::all()
{
    return std::make_shared<LuSVNRevisionRange>();
}

std::shared_ptr<LuSVNRevisionRange> LuSVNRevisionRange::from(Revision first, Revision last)
{
    return std::make_shared<LuSVNRevisionRange>(std::move(first), std::move(last));
}

std::shared_ptr<LuSVNRevisionRange> LuSVNRevisionRange::from(Revision first)
{
    return from(std::move(first), LuSVNRevision::UNSPECIFIED());
}

std::shared_ptr<LuSVNRevisionRange> LuSVNRevisionRange::to(Revision last)
{
    return from(LuSVNRevision::UNSPECIFIED(), std::move(last));
}

std::shared_ptr<LuSVNRevisionRange> LuSVNRevisionRange::copy() const
{
    return std::make_shared<LuSVNRevisionRange>(*this);
}

void LuSVNRevisionRange::setFirst(Revision value)
{
    requireBound(value);
    first_ = std::move(value);
}

void LuSVNRevisionRange::setLast(Revision value)
{
    requireBound(value);
    last_ = std::move(value);
}

std::int32_t LuSVNRevisionRange::firstNumber() const
{
    return first_->number();
}

std::int32_t LuSVNRevisionRange::lastNumber() const
{
    return last_->number();
}

std::optional<LuSVNRevisionRange::Date> LuSVNRevisionRange::firstDate() const
{
    return first_->date();
}

std::optional<LuSVNRevisionRange::Date> LuSVNRevisionRange::lastDate() const
{
    return last_->date();
}

bool LuSVNRevisionRange::hasLowerBound() const
{
    return !isOpen(first_);
}

bool LuSVNRevisionRange::hasUpperBound() const
{
    return !isOpen(last_);
}

bool LuSVNRevisionRange::isNumberRange() const
{
    return validNumber(first_) || validNumber(last_);
}

bool LuSVNRevisionRange::isDateRange() const
{
    return first_->date() || last_->date();
}

bool LuSVNRevisionRange::isForwardRange() const
{
    return first_->compare(last_) != 1;
}

bool LuSVNRevisionRange::isReverseRange() const
{
    return first_->compare(last_) == 1;
}

bool LuSVNRevisionRange::containsNumber(std::int32_t number) const
{
    LUSVN_PARAMETER_ASSERT(number >= 0, "number >= 0");
    const bool forward = isForwardRange();
    return withinBound(validNumber(first_), first_, number, true, forward) &&
           withinBound(validNumber(last_), last_, number, false, forward);
}

bool LuSVNRevisionRange::containsDate(Date date) const
{
    const bool forward = isForwardRange();
    return withinBound(first_->date(), first_, date, true, forward) &&
           withinBound(last_->date(), last_, date, false, forward);
}

bool LuSVNRevisionRange::containsRevision(const Revision& revision) const
{
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    if (const auto number = validNumber(revision))
        return containsNumber(*number);
    if (const auto date = revision->date())
        return containsDate(*date);
    throw LuSVNInvalidArgumentException("Date or numeric revision required for range match");
}

void LuSVNRevisionRange::requireSameTypes(const LuSVNRevisionRange& range) const
{
    if (isNumberRange() != range.isNumberRange() || isDateRange() != range.isDateRange())
        throw LuSVNInvalidArgumentException("Ranges have incompatible types");
}

std::shared_ptr<LuSVNRevisionRange> LuSVNRevisionRange::combineWith(
    const std::shared_ptr<const LuSVNRevisionRange>& range) const
{
    LUSVN_PARAMETER_ASSERT(range != nullptr, "range != nil");
    requireSameTypes(*range);
    auto combined = all();
    if (hasLowerBound() && range->hasLowerBound())
        combined->setFirst(first_->compare(range->first_) == -1 ? first_ : range->first_);
    if (hasUpperBound() && range->hasUpperBound())
        combined->setLast(last_->compare(range->last_) == 1 ? last_ : range->last_);
    return combined;
}

int LuSVNRevisionRange::compare(const std::shared_ptr<const LuSVNRevisionRange>& range) const
{
    LUSVN_PARAMETER_ASSERT(range != nullptr, "range != nil");
    requireSameTypes(*range);
    if (hasLowerBound() != range->hasLowerBound())
        return hasLowerBound() ? 1 : -1;
    if (const int order = first_->compare(range->first_); order != 0)
        return order;
    if (hasUpperBound() != range->hasUpperBound())
        return hasUpperBound() ? -1 : 1;
    return last_->compare(range->last_);
}

std::size_t LuSVNRevisionRange::hash() const
{
    return first_->hash() ^ last_->hash();
}

bool LuSVNRevisionRange::isEqual(const std::shared_ptr<const LuSVNRevisionRange>& other) const
{
    return other && first_->isEqual(other->first_) && last_->isEqual(other->last_);
}

std::string LuSVNRevisionRange::description() const
{
    const auto text = [](const Revision& bound) {
        return bound->isEqual(LuSVNRevision::UNSPECIFIED()) ? std::string("*") : bound->description();
    };
    return "{ " + text(first_) + " - " + text(last_) + " }";
}

svn_opt_revision_range_t* LuSVNRevisionRange::SVNRevisionRangeInPool(apr_pool_t* pool) const
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    const svn_opt_revision_t start = first_->SVNRevision();
    const svn_opt_revision_t end = last_->SVNRevision();
    auto* record = static_cast<svn_opt_revision_range_t*>(LuSVNEntry<3>()(pool, sizeof(svn_opt_revision_range_t)));
    record->start = start;
    record->end = end;
    return record;
}
