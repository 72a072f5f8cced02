// Subversion's merge options (the diff options of a merge) from Tessera's.
#pragma once

#include <tessera/LuSVNExport.h>

#include "LuSVNSubversion.h"

class LuSVNMergeOptions;

namespace tessera_private {

/// An array of strings in the pool, with room for four: "--ignore-all-space"
/// for whitespace behaviour 2, "--ignore-space-change" for 1, then
/// "--ignore-eol-style" when ignoreEOLStyle is set. Raises "Invalid parameter
/// not satisfying: pool != nil" for null.
TESSERA_EXPORT apr_array_header_t* LuSVNArrayForMergeOptions(const LuSVNMergeOptions& options, apr_pool_t* pool);

}  // namespace tessera_private
