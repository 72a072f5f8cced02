// A revision range of merge tracking information, with its "inheritable"
// flag: whether the merge applies to the descendants of the path too.
// Subversion writes a range that is not inheritable with a trailing "*"
// ("/trunk:5-7*").
#pragma once

#include <tessera/LuSVNRevisionRange.h>

class TESSERA_EXPORT LuSVNMergeRevisionRange : public LuSVNRevisionRange {
public:
    using LuSVNRevisionRange::LuSVNRevisionRange;

    static std::shared_ptr<LuSVNMergeRevisionRange> all();
    static std::shared_ptr<LuSVNMergeRevisionRange> from(Revision first, Revision last);
    static std::shared_ptr<LuSVNMergeRevisionRange> from(Revision first);
    static std::shared_ptr<LuSVNMergeRevisionRange> to(Revision last);

    /// A new merge range with the same bounds and flag.
    std::shared_ptr<LuSVNRevisionRange> copy() const override;

    /// False unless set.
    bool isInheritable() const { return inheritable_; }
    void setInheritable(bool inheritable) { inheritable_ = inheritable; }

private:
    bool inheritable_ = false;
};
