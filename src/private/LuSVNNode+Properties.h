// The property reads shared by the node operations.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNRevisionSpec.h>

#include "LuSVNSubversion.h"

namespace tessera_private {

/// svn_client_propget2 (entry point 62) of one property on the path at the
/// revision (see LuSVNResolvedRevisions), given to Subversion as `target`, and, with `recurse`, every item below it, inside the
/// caller's frame: each item that has the property with its value, keyed as
/// Subversion keys them (the target's own form for the target). Errors
/// raise as the context raises them.
std::vector<std::pair<std::string, const svn_string_t*>> LuSVNPropertyValues(const std::string& name,
                                                                             const LuSVNPath& path,
                                                                             const char* target,
                                                                             const LuSVNRevisionSpec& revision,
                                                                             bool recurse, LuSVNContext& context,
                                                                             apr_pool_t* pool);

}  // namespace tessera_private
