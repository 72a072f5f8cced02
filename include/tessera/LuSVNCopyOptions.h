// Options of copying (see LuSVNOptions.h for the conventions of the family).
//
//   field      kind       default
//   revision   revision   LuSVNRevision::UNSPECIFIED()   the source's revision
//
// Description: "{ <LuSVNCopyOptions: 0x...> revision: UNSPECIFIED }".
#pragma once

#include <memory>

#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNRevision.h>

class TESSERA_EXPORT LuSVNCopyOptions : public LuSVNOptions {
public:
    using Revision = std::shared_ptr<const LuSVNRevision>;

    LuSVNCopyOptions();
    static LuSVNCopyOptions defaults() { return {}; }

    const Revision& revision() const { return revision_; }
    /// Raises "Invalid parameter not satisfying: revision != nil" for null.
    void setRevision(Revision revision);

    std::string description() const override;

private:
    Revision revision_;
};
