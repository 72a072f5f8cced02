#include <tessera/LuSVNPatternMatching.h>

#include <tessera/LuSVNBundleLoader.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNBundlePushed.h"
#include "LuSVNTrace.h"

bool LuSVNPatternMatching::matchesPatternInArray(std::string_view text, const std::vector<std::string>& patterns,
                                                 apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != 0");
    if (patterns.empty())
        return false;
    LUSVN_TRACE("LuSVNPatternMatching", "matchesPatternInArray:usingPool", {"string", std::string(text)},
                {"patterns", std::to_string(patterns.size())});
    // The caller owns the pool, so the backend is pushed without a frame.
    tessera_private::LuSVNBundlePushed pushed(LuSVNBundleLoader::sharedInstance()->newestBundle());
    apr_array_header_t* list =
        LuSVNEntry<11>()(pool, static_cast<int>(patterns.size()), static_cast<int>(sizeof(const char*)));
    for (const std::string& pattern : patterns)
        *static_cast<const char**>(LuSVNEntry<12>()(list)) = pattern.c_str();
    return LuSVNEntry<23>()(std::string(text).c_str(), list) != 0;
}
