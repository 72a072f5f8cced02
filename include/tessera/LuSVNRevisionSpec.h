// An operative revision together with a peg
// revision, the revision in which a path is looked up.
//
//   auto spec = LuSVNRevisionSpec::revisionWithRevision(LuSVNRevision::revisionWithNumber(12),
//                                                       LuSVNRevision::HEAD());
//   spec->description();   // "12@HEAD"
//   spec->number();        // 12, the key revision's number
//
// Specs are immutable and shared as std::shared_ptr<const LuSVNRevisionSpec>;
// LuSVNMutableRevisionSpec adds setters. Neither revision is ever null.
// Archived under "operativeRevision" and "pegRevision".
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNRevision.h>

class LuSVNMutableRevisionSpec;

class TESSERA_EXPORT LuSVNRevisionSpec : public LuSVNCoding {
public:
    using Revision = std::shared_ptr<const LuSVNRevision>;

    /// The revision with the peg UNSPECIFIED. Raises "Invalid parameter not
    /// satisfying: theOperativeRevision != nil" for null.
    explicit LuSVNRevisionSpec(Revision operativeRevision);
    /// Raises "Invalid parameter not satisfying: theOperativeRevision != nil"
    /// or "... thePegRevision != nil" for null.
    LuSVNRevisionSpec(Revision operativeRevision, Revision pegRevision);
    ~LuSVNRevisionSpec() override;

    /// Reads "operativeRevision" and "pegRevision"; a missing one raises
    /// LuSVNInvalidArgumentException.
    static std::shared_ptr<LuSVNRevisionSpec> initWithCoder(LuSVNCoder& coder);

    // --- Shared specs, made once: the like-named revision at peg UNSPECIFIED.
    static std::shared_ptr<const LuSVNRevisionSpec> HEAD();
    static std::shared_ptr<const LuSVNRevisionSpec> WORKING();
    static std::shared_ptr<const LuSVNRevisionSpec> BASE();
    static std::shared_ptr<const LuSVNRevisionSpec> PREVIOUS();
    static std::shared_ptr<const LuSVNRevisionSpec> COMMITTED();
    static std::shared_ptr<const LuSVNRevisionSpec> UNSPECIFIED();
    static std::shared_ptr<const LuSVNRevisionSpec> MINE();

    // --- New specs; LuSVNMutableRevisionSpec has the same, making mutable specs.
    /// The numbered revision at peg UNSPECIFIED (LuSVNRevision::revisionWithNumber asserts).
    static std::shared_ptr<const LuSVNRevisionSpec> revisionWithNumber(std::int32_t number);
    /// UNSPECIFIED at the numbered peg revision.
    static std::shared_ptr<const LuSVNRevisionSpec> pegRevisionWithNumber(std::int32_t number);
    /// The revision at the date, at peg UNSPECIFIED.
    static std::shared_ptr<const LuSVNRevisionSpec> revisionAtDate(LuSVNRevision::Date date);
    /// UNSPECIFIED at the peg revision at the date.
    static std::shared_ptr<const LuSVNRevisionSpec> pegRevisionAtDate(LuSVNRevision::Date date);
    /// The revision at peg UNSPECIFIED.
    static std::shared_ptr<const LuSVNRevisionSpec> revisionWithRevision(Revision revision);
    /// UNSPECIFIED at the peg revision.
    static std::shared_ptr<const LuSVNRevisionSpec> pegRevisionWithRevision(Revision pegRevision);
    /// The revision at the peg revision.
    static std::shared_ptr<const LuSVNRevisionSpec> revisionWithRevision(Revision revision, Revision pegRevision);

    const Revision& operativeRevision() const { return operative_; }
    const Revision& pegRevision() const { return peg_; }

    /// The operative revision, or the peg revision when the operative one is
    /// equal to UNSPECIFIED.
    const Revision& keyRevision() const;
    /// number(), date() and isRelative() of the key revision.
    std::int32_t number() const;
    std::optional<LuSVNRevision::Date> date() const;
    bool isRelative() const;

    /// A new immutable spec with the same revisions, whatever this spec's class.
    std::shared_ptr<const LuSVNRevisionSpec> copy() const;
    /// A new mutable spec with the same revisions.
    std::shared_ptr<LuSVNMutableRevisionSpec> mutableCopy() const;

    /// The operative revision's hash XOR the peg revision's hash.
    std::size_t hash() const;
    /// True when `other` is a spec, mutable or not, with equal operative and
    /// equal peg revisions.
    bool isEqual(const std::shared_ptr<const LuSVNRevisionSpec>& other) const;
    /// "<operative>@<peg>", for example "HEAD@UNSPECIFIED" or "12@HEAD".
    std::string description() const;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

protected:
    Revision operative_;
    Revision peg_;
};
