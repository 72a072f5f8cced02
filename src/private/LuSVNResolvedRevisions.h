// The revisions handed to Subversion for a path, resolved as the svn client
// resolves them: Subversion reads an unspecified revision of a URL as a
// working-copy revision, and some of its functions then take the URL for a
// local path (svn_client_info aborts the process on one).
#pragma once

#include <utility>

#include <tessera/LuSVNPath.h>
#include <tessera/LuSVNRevisionSpec.h>
#include <tessera/LuSVNURL.h>

#include "LuSVNSubversion.h"

namespace tessera_private {

/// The peg and operative revision of a LuSVNRevisionSpec; for a URL an unspecified peg
/// revision is HEAD and an unspecified operative revision the peg revision.
inline std::pair<svn_opt_revision_t, svn_opt_revision_t> LuSVNResolvedRevisions(const LuSVNPath& path,
                                                                                const LuSVNRevisionSpec& revision)
{
    svn_opt_revision_t peg = revision.pegRevision()->SVNRevision();
    svn_opt_revision_t operative = revision.operativeRevision()->SVNRevision();
    if (dynamic_cast<const LuSVNURL*>(&path)) {
        if (peg.kind == svn_opt_revision_unspecified)
            peg = LuSVNRevision::HEAD()->SVNRevision();
        if (operative.kind == svn_opt_revision_unspecified)
            operative = peg;
    }
    return {peg, operative};
}

}  // namespace tessera_private
