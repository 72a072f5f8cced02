// Options with an operative and a peg revision: the base of the check-out, export
// and switch options (see LuSVNOptions.h for the conventions of the family).
//
//   field      kind                      default
//   revision   revision spec             LuSVNRevisionSpec::UNSPECIFIED()
//
// Description: "{ <LuSVNOptionsWithRevision: 0x...> revision: UNSPECIFIED@UNSPECIFIED}".
#pragma once

#include <memory>

#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNRevisionSpec.h>

class TESSERA_EXPORT LuSVNOptionsWithRevision : public LuSVNOptions {
public:
    using RevisionSpec = std::shared_ptr<const LuSVNRevisionSpec>;

    LuSVNOptionsWithRevision();
    static LuSVNOptionsWithRevision defaults() { return {}; }

    const RevisionSpec& revision() const { return revision_; }
    /// Raises "Invalid parameter not satisfying: revision != nil" for null.
    void setRevision(RevisionSpec revision);

    std::string description() const override;

protected:
    /// For subclasses whose default revision differs.
    explicit LuSVNOptionsWithRevision(RevisionSpec defaultRevision);

private:
    RevisionSpec revision_;
};
