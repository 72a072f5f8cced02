#include <tessera/LuSVNOptionsWithRevision.h>

#include <utility>

#include "LuSVNAssert.h"

LuSVNOptionsWithRevision::LuSVNOptionsWithRevision() : LuSVNOptionsWithRevision(LuSVNRevisionSpec::UNSPECIFIED()) {}

LuSVNOptionsWithRevision::LuSVNOptionsWithRevision(RevisionSpec defaultRevision)
    : revision_(std::move(defaultRevision))
{
}

void LuSVNOptionsWithRevision::setRevision(RevisionSpec revision)
{
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    revision_ = std::move(revision);
}

std::string LuSVNOptionsWithRevision::description() const
{
    return "{ " + LuSVNOptions::description() + " revision: " + revision_->description() + "}";
}
