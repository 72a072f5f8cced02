#include <tessera/LuSVNLogOptions.h>

#include <utility>

#include "LuSVNAssert.h"

LuSVNLogOptions::LuSVNLogOptions()
    : pegRevision_(LuSVNRevision::UNSPECIFIED()),
      fromRevision_(LuSVNRevision::HEAD()),
      toRevision_(LuSVNRevision::revisionWithNumber(0))
{
}

void LuSVNLogOptions::setPegRevision(Revision revision)
{
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    pegRevision_ = std::move(revision);
}

void LuSVNLogOptions::setFromRevision(Revision revision)
{
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    fromRevision_ = std::move(revision);
}

void LuSVNLogOptions::setToRevision(Revision revision)
{
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    toRevision_ = std::move(revision);
}

std::string LuSVNLogOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " fromRevision: " + fromRevision_->description() +
           ", toRevision: " + toRevision_->description() + ", pegRevision: " + pegRevision_->description() +
           ", limit: " + std::to_string(limit_) + ", discoverChangedPaths: " + std::to_string(discoverChangedPaths_) +
           ", traverseCopyHistory: " + std::to_string(traverseCopyHistory_) + " }";
}
