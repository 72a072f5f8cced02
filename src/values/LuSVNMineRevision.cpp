#include <tessera/LuSVNException.h>
#include <tessera/LuSVNMineRevision.h>

#include <functional>

#include "LuSVNSubversion.h"

static const LuSVNArchivableClassRegistrar<LuSVNMineRevision> registrar("LuSVNMineRevision");

std::shared_ptr<LuSVNMineRevision> LuSVNMineRevision::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    return std::make_shared<LuSVNMineRevision>();
}

bool LuSVNMineRevision::isRelative() const
{
    return true;
}

svn_opt_revision_t LuSVNMineRevision::SVNRevision() const
{
    throw LuSVNException("Cannot convert from LuSVNMineRevision to svn_opt_revision_t");
}

bool LuSVNMineRevision::isEqual(const std::shared_ptr<const LuSVNRevision>& other) const
{
    return dynamic_cast<const LuSVNMineRevision*>(other.get()) != nullptr;
}

std::size_t LuSVNMineRevision::hash() const
{
    return std::hash<std::string>()(description());
}

std::string LuSVNMineRevision::description() const
{
    return ".mine";
}

std::shared_ptr<const LuSVNRevision> LuSVNMineRevision::copy() const
{
    return std::make_shared<const LuSVNMineRevision>();
}

std::string LuSVNMineRevision::archiveClassName() const
{
    return "LuSVNMineRevision";
}

void LuSVNMineRevision::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
}
