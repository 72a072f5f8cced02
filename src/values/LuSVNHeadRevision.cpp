#include <tessera/LuSVNHeadRevision.h>

#include "LuSVNSubversion.h"

static const LuSVNArchivableClassRegistrar<LuSVNHeadRevision> registrar("LuSVNHeadRevision");

LuSVNHeadRevision::LuSVNHeadRevision() : LuSVNRelativeRevision(svn_opt_revision_head, "HEAD")
{
}

std::shared_ptr<LuSVNHeadRevision> LuSVNHeadRevision::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    return std::make_shared<LuSVNHeadRevision>();
}

std::shared_ptr<const LuSVNRevision> LuSVNHeadRevision::copy() const
{
    return std::make_shared<const LuSVNHeadRevision>();
}

std::string LuSVNHeadRevision::archiveClassName() const
{
    return "LuSVNHeadRevision";
}
