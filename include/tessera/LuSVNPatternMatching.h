// Glob matching of names against patterns such as those of "svn:ignore" and
// "global-ignores", decided by Subversion itself. The name to match is the
// first argument.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <tessera/LuSVNExport.h>

struct apr_pool_t;

class TESSERA_EXPORT LuSVNPatternMatching {
public:
    LuSVNPatternMatching() = delete;

    /// Whether the text matches at least one of the glob patterns ("*", "?",
    /// "[...]" and "\" escapes, as fnmatch without flags). False for an empty
    /// list; otherwise the loader's newest backend decides (entry points 11,
    /// 12 and 23) with its memory taken from the pool. Text and patterns end at
    /// their first NUL character, if any. Raises "Invalid parameter not
    /// satisfying: pool != 0" for a null pool.
    static bool matchesPatternInArray(std::string_view text, const std::vector<std::string>& patterns,
                                      apr_pool_t* pool);
};
