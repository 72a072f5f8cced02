#include <tessera/LuSVNRepositoryInfo.h>

#include <utility>

#include "LuSVNAssert.h"
#include "LuSVNObjectDescription.h"

LuSVNRepositoryInfo::LuSVNRepositoryInfo(std::optional<std::string> UUID, LuSVNURL::URLPath rootURL,
                                         std::int32_t revision)
    : UUID_(std::move(UUID)), rootURL_(std::move(rootURL)), revision_(revision)
{
}

std::shared_ptr<const LuSVNRepositoryInfo> LuSVNRepositoryInfo::infoForRepositoryWithUUID(
    std::optional<std::string> UUID, LuSVNURL::URLPath rootURL, std::int32_t revision)
{
    LUSVN_PARAMETER_ASSERT(rootURL != nullptr, "rootURL != nil");
    return std::shared_ptr<const LuSVNRepositoryInfo>(
        new LuSVNRepositoryInfo(std::move(UUID), std::move(rootURL), revision));
}

std::string LuSVNRepositoryInfo::description() const
{
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNRepositoryInfo", this) +
           " UUID: " + UUID_.value_or("(null)") + ", rootURL: " + rootURL_->string() +
           ", revision: " + std::to_string(revision_) + " }";
}
