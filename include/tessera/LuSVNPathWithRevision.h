// A path together with a revision: a location as it was at that revision.
//
//   auto item = LuSVNPathWithRevision::path(LuSVNPath::pathWithString("/wc/a.c"),
//                                           LuSVNRevision::revisionWithNumber(7));
//   item->description();   // "{ <LuSVNPathWithRevision: 0x...> path: /wc/a.c, revision: 7 }"
//
// An immutable value shared as std::shared_ptr<const LuSVNPathWithRevision>.
#pragma once

#include <memory>
#include <string>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNPath.h>
#include <tessera/LuSVNRevision.h>

class TESSERA_EXPORT LuSVNPathWithRevision {
public:
    /// The revision may be null. Raises "Invalid parameter not satisfying:
    /// thePath != nil" for a null path.
    LuSVNPathWithRevision(LuSVNPath::Path path, std::shared_ptr<const LuSVNRevision> revision);

    /// A new instance; the same as the constructor.
    static std::shared_ptr<const LuSVNPathWithRevision> path(LuSVNPath::Path path,
                                                             std::shared_ptr<const LuSVNRevision> revision);

    const LuSVNPath::Path& path() const { return path_; }
    const std::shared_ptr<const LuSVNRevision>& revision() const { return revision_; }

    /// "{ <LuSVNPathWithRevision: 0x...> path: <path>, revision: <revision> }",
    /// with "(null)" for a null revision.
    std::string description() const;

private:
    LuSVNPath::Path path_;
    std::shared_ptr<const LuSVNRevision> revision_;
};
