#include <tessera/LuSVNStatusOptions.h>

#include <utility>

#include "LuSVNAssert.h"

LuSVNStatusOptions::LuSVNStatusOptions() : revision_(LuSVNRevision::UNSPECIFIED()) {}

void LuSVNStatusOptions::setRevision(Revision revision)
{
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    revision_ = std::move(revision);
}

std::string LuSVNStatusOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " revision: " + revision_->description() +
           ", recursive: " + std::to_string(recursive_) + ", includeNormalFiles: " +
           std::to_string(includeNormalFiles_) + ", compareAgainstRepository: " +
           std::to_string(compareAgainstRepository_) + ", respectIgnoreProperties: " +
           std::to_string(respectIgnoreProperties_) + ", processExternals: " + std::to_string(processExternals_) +
           ", propagateStatusToAncestor: " + std::to_string(propagateStatusToAncestor_) +
           ", includeConflictVersionFiles: " + std::to_string(includeConflictVersionFiles_) + " }";
}
