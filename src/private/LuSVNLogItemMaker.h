// The log item of one revision that Subversion reports, shared by the plain
// log and the log of a merge.
#pragma once

#include <tessera/LuSVNLogItem.h>

#include <memory>

#include "LuSVNSubversion.h"

namespace tessera_private {

/// Copies everything of the record at once: the pool goes when Subversion's
/// callback returns. changedPaths holds svn_log_changed_path_t values, or is
/// null.
std::shared_ptr<LuSVNLogItem> LuSVNCreateLogItem(apr_hash_t* changedPaths, svn_revnum_t revision, const char* author,
                                                 const char* date, const char* message, apr_pool_t* pool);

/// The text of a revision property of a log entry, or null.
const char* LuSVNLogRevisionProperty(apr_hash_t* properties, const char* name);

}  // namespace tessera_private
