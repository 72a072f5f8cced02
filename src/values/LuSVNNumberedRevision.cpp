#include <tessera/LuSVNNumberedRevision.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <limits>

#include "LuSVNAssert.h"
#include "LuSVNSubversion.h"

static const LuSVNArchivableClassRegistrar<LuSVNNumberedRevision> registrar("LuSVNNumberedRevision");

LuSVNNumberedRevision::LuSVNNumberedRevision(std::int32_t number) : number_(number)
{
    LUSVN_PARAMETER_ASSERT(number >= 0, "SVN_IS_VALID_REVNUM(number)");
}

std::shared_ptr<LuSVNNumberedRevision> LuSVNNumberedRevision::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    const std::int64_t number = coder.decodeInt64ForKey("number");
    if (number < 0 || number > std::numeric_limits<std::int32_t>::max())
        throw LuSVNInvalidArgumentException("Revision number out of range: " + std::to_string(number));
    return std::make_shared<LuSVNNumberedRevision>(static_cast<std::int32_t>(number));
}

svn_opt_revision_t LuSVNNumberedRevision::SVNRevision() const
{
    svn_opt_revision_t revision{};
    revision.kind = svn_opt_revision_number;
    revision.value.number = number_;
    return revision;
}

bool LuSVNNumberedRevision::isEqual(const std::shared_ptr<const LuSVNRevision>& other) const
{
    const auto* numbered = dynamic_cast<const LuSVNNumberedRevision*>(other.get());
    return numbered && numbered->number_ == number_;
}

std::size_t LuSVNNumberedRevision::hash() const
{
    return static_cast<std::size_t>(number_);
}

std::string LuSVNNumberedRevision::description() const
{
    return std::to_string(number_);
}

std::shared_ptr<const LuSVNRevision> LuSVNNumberedRevision::copy() const
{
    return std::make_shared<const LuSVNNumberedRevision>(number_);
}

std::string LuSVNNumberedRevision::archiveClassName() const
{
    return "LuSVNNumberedRevision";
}

void LuSVNNumberedRevision::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeInt64(number_, "number");
}
