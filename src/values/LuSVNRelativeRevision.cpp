#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRelativeRevision.h>

#include <limits>

#include "LuSVNSubversion.h"

static const LuSVNArchivableClassRegistrar<LuSVNRelativeRevision> registrar("LuSVNRelativeRevision");

LuSVNRelativeRevision::LuSVNRelativeRevision(std::uint32_t kind, std::string description)
    : kind_(kind), description_(std::move(description))
{
}

std::shared_ptr<LuSVNRelativeRevision> LuSVNRelativeRevision::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    const std::int64_t kind = coder.decodeInt64ForKey("kind");
    if (kind < 0 || kind > std::numeric_limits<std::uint32_t>::max())
        throw LuSVNInvalidArgumentException("Revision kind out of range: " + std::to_string(kind));
    auto description = coder.decodeStringForKey("description");
    if (!description)
        throw LuSVNInvalidArgumentException("Relative revision archived without a description");
    return std::make_shared<LuSVNRelativeRevision>(static_cast<std::uint32_t>(kind), std::move(*description));
}

bool LuSVNRelativeRevision::isRelative() const
{
    return kind_ > svn_opt_revision_date;
}

svn_opt_revision_t LuSVNRelativeRevision::SVNRevision() const
{
    // Subversion's enumeration ends at head; anything beyond has no meaning there.
    if (kind_ > svn_opt_revision_head)
        throw LuSVNInvalidArgumentException("Unrecognised revision kind");
    svn_opt_revision_t revision{};
    revision.kind = static_cast<svn_opt_revision_kind>(kind_);
    return revision;
}

bool LuSVNRelativeRevision::isEqual(const std::shared_ptr<const LuSVNRevision>& other) const
{
    const auto* relative = dynamic_cast<const LuSVNRelativeRevision*>(other.get());
    return relative && relative->kind_ == kind_;
}

std::size_t LuSVNRelativeRevision::hash() const
{
    return kind_;
}

std::string LuSVNRelativeRevision::description() const
{
    return description_;
}

std::shared_ptr<const LuSVNRevision> LuSVNRelativeRevision::copy() const
{
    return std::make_shared<const LuSVNRelativeRevision>(kind_, description_);
}

std::string LuSVNRelativeRevision::archiveClassName() const
{
    return "LuSVNRelativeRevision";
}

void LuSVNRelativeRevision::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeInt64(kind_, "kind");
    coder.encodeString(description_, "description");
}
