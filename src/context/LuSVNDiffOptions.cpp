#include <tessera/LuSVNDiffOptions.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include "LuSVNAssert.h"
#include "LuSVNEntryPoints+Typed.h"

svn_diff_file_options_t* LuSVNDiffOptions::convertOptions(const LuSVNDiffOptions& options, apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    const std::int32_t behavior = options.whitespaceCompareBehavior();
    if (behavior < svn_diff_file_ignore_space_none || behavior > svn_diff_file_ignore_space_all)
        throw LuSVNInternalInconsistencyException("Unrecognized whitespace compare behavior");
    svn_diff_file_options_t* converted = LuSVNEntry<95>()(pool);
    converted->ignore_space = static_cast<svn_diff_file_ignore_space_t>(behavior);
    converted->ignore_eol_style = options.ignoreEOLStyle() ? 1 : 0;
    return converted;
}
