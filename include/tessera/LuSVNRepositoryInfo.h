// The identity of a repository as a working copy or a URL names it: its
// UUID, its root URL and a revision.
//
//   auto info = LuSVNRepositoryInfo::infoForRepositoryWithUUID(
//       "2d3e...", LuSVNURL::URLWithString("file:///srv/svn/project"), 12);
//   info->description();
//   // "{ <LuSVNRepositoryInfo: 0x...> UUID: 2d3e..., rootURL: file:///srv/svn/project, revision: 12 }"
//
// Immutable, shared as std::shared_ptr<const LuSVNRepositoryInfo>.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNURL.h>

class TESSERA_EXPORT LuSVNRepositoryInfo {
public:
    /// The UUID may be unknown (nullopt). Raises "Invalid parameter not
    /// satisfying: rootURL != nil" for a null URL.
    static std::shared_ptr<const LuSVNRepositoryInfo> infoForRepositoryWithUUID(std::optional<std::string> UUID,
                                                                                LuSVNURL::URLPath rootURL,
                                                                                std::int32_t revision);

    const std::optional<std::string>& UUID() const { return UUID_; }
    const LuSVNURL::URLPath& rootURL() const { return rootURL_; }
    std::int32_t revision() const { return revision_; }

    /// An unknown UUID reads "(null)".
    std::string description() const;

private:
    LuSVNRepositoryInfo(std::optional<std::string> UUID, LuSVNURL::URLPath rootURL, std::int32_t revision);

    std::optional<std::string> UUID_;
    LuSVNURL::URLPath rootURL_;
    std::int32_t revision_;
};
