#include <tessera/LuSVNCopyOptions.h>

#include <utility>

#include "LuSVNAssert.h"

LuSVNCopyOptions::LuSVNCopyOptions() : revision_(LuSVNRevision::UNSPECIFIED()) {}

void LuSVNCopyOptions::setRevision(Revision revision)
{
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    revision_ = std::move(revision);
}

std::string LuSVNCopyOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " revision: " + revision_->description() + " }";
}
