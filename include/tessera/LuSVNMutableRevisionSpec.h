// A revision pair (operative and peg) whose revisions can be replaced.
//
//   auto spec = LuSVNMutableRevisionSpec::revisionWithNumber(5);   // 5@UNSPECIFIED
//   spec->setPegRevision(LuSVNRevision::HEAD());                   // 5@HEAD
//   auto frozen = spec->copy();                                    // an immutable spec
//
// Archived like LuSVNRevisionSpec, under its own class name.
#pragma once

#include <tessera/LuSVNRevisionSpec.h>

class TESSERA_EXPORT LuSVNMutableRevisionSpec : public LuSVNRevisionSpec {
public:
    using LuSVNRevisionSpec::LuSVNRevisionSpec;

    static std::shared_ptr<LuSVNMutableRevisionSpec> initWithCoder(LuSVNCoder& coder);

    // The factories of LuSVNRevisionSpec, making mutable specs.
    static std::shared_ptr<LuSVNMutableRevisionSpec> revisionWithNumber(std::int32_t number);
    static std::shared_ptr<LuSVNMutableRevisionSpec> pegRevisionWithNumber(std::int32_t number);
    static std::shared_ptr<LuSVNMutableRevisionSpec> revisionAtDate(LuSVNRevision::Date date);
    static std::shared_ptr<LuSVNMutableRevisionSpec> pegRevisionAtDate(LuSVNRevision::Date date);
    static std::shared_ptr<LuSVNMutableRevisionSpec> revisionWithRevision(Revision revision);
    static std::shared_ptr<LuSVNMutableRevisionSpec> pegRevisionWithRevision(Revision pegRevision);
    static std::shared_ptr<LuSVNMutableRevisionSpec> revisionWithRevision(Revision revision, Revision pegRevision);

    /// Replace one revision. Null raises "Invalid parameter not satisfying:
    /// theOperativeRevision != nil" (or "... thePegRevision != nil"), so that
    /// a spec never holds a null revision.
    void setOperativeRevision(Revision operativeRevision);
    void setPegRevision(Revision pegRevision);

    std::string archiveClassName() const override;
};
