#include <tessera/LuSVNPathWithRevision.h>

#include "LuSVNAssert.h"
#include "LuSVNObjectDescription.h"

LuSVNPathWithRevision::LuSVNPathWithRevision(LuSVNPath::Path path, std::shared_ptr<const LuSVNRevision> revision)
    : path_(std::move(path)), revision_(std::move(revision))
{
    LUSVN_PARAMETER_ASSERT(path_ != nullptr, "thePath != nil");
}

std::shared_ptr<const LuSVNPathWithRevision> LuSVNPathWithRevision::path(LuSVNPath::Path path,
                                                                         std::shared_ptr<const LuSVNRevision> revision)
{
    return std::make_shared<const LuSVNPathWithRevision>(std::move(path), std::move(revision));
}

std::string LuSVNPathWithRevision::description() const
{
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNPathWithRevision", this) +
           " path: " + path_->description() + ", revision: " + (revision_ ? revision_->description() : "(null)") +
           " }";
}
