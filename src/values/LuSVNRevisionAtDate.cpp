#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRevisionAtDate.h>

#include <functional>

#include "LuSVNSubversion.h"

static const LuSVNArchivableClassRegistrar<LuSVNRevisionAtDate> registrar("LuSVNRevisionAtDate");

namespace {
// The clock's own unit: archives keep the instant exactly.
using ArchivedDuration = std::chrono::nanoseconds;
}  // namespace

LuSVNRevisionAtDate::LuSVNRevisionAtDate(Date date) : date_(date)
{
}

std::shared_ptr<LuSVNRevisionAtDate> LuSVNRevisionAtDate::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    if (!coder.containsValueForKey("date"))
        throw LuSVNInvalidArgumentException("Revision at date archived without a date");
    return std::make_shared<LuSVNRevisionAtDate>(Date(ArchivedDuration(coder.decodeInt64ForKey("date"))));
}

svn_opt_revision_t LuSVNRevisionAtDate::SVNRevision() const
{
    svn_opt_revision_t revision{};
    revision.kind = svn_opt_revision_date;
    revision.value.date = std::chrono::floor<std::chrono::microseconds>(date_.time_since_epoch()).count();
    return revision;
}

bool LuSVNRevisionAtDate::isEqual(const std::shared_ptr<const LuSVNRevision>& other) const
{
    const auto* dated = dynamic_cast<const LuSVNRevisionAtDate*>(other.get());
    return dated && dated->date_ == date_;
}

std::size_t LuSVNRevisionAtDate::hash() const
{
    return std::hash<Date::rep>()(date_.time_since_epoch().count());
}

std::string LuSVNRevisionAtDate::description() const
{
    return LuSVNDateConversion::ISO8601StringValue(date_);
}

std::shared_ptr<const LuSVNRevision> LuSVNRevisionAtDate::copy() const
{
    return std::make_shared<const LuSVNRevisionAtDate>(date_);
}

std::string LuSVNRevisionAtDate::archiveClassName() const
{
    return "LuSVNRevisionAtDate";
}

void LuSVNRevisionAtDate::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeInt64(std::chrono::duration_cast<ArchivedDuration>(date_.time_since_epoch()).count(), "date");
}
