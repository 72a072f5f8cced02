// Options of merging (see LuSVNOptions.h for the conventions of the family).
//
//   field                       kind     default
//   depth                       depth    LuSVNDepthInfinity (3)
//   whitespaceCompareBehavior   number   0 (as in LuSVNDiffOptions)
//   ignoreAncestry              flag     false   compare unrelated items as related
//   force                       flag     false   delete modified and unversioned items
//   recordOnly                  flag     false   only record the merge, change no text
//   dryRun                      flag     false   report what would change, change nothing
//   ignoreEOLStyle              flag     false
//
// The description is the generic one: "<LuSVNMergeOptions: 0x...>".
#pragma once

#include <cstdint>

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNMergeOptions : public LuSVNOptions {
public:
    static LuSVNMergeOptions defaults() { return {}; }

    LuSVNDepth depth() const { return depth_; }
    void setDepth(LuSVNDepth depth) { depth_ = depth; }

    std::int32_t whitespaceCompareBehavior() const { return whitespaceCompareBehavior_; }
    void setWhitespaceCompareBehavior(std::int32_t behavior) { whitespaceCompareBehavior_ = behavior; }

    bool ignoreAncestry() const { return ignoreAncestry_; }
    bool force() const { return force_; }
    bool recordOnly() const { return recordOnly_; }
    bool dryRun() const { return dryRun_; }
    bool ignoreEOLStyle() const { return ignoreEOLStyle_; }
    /// Each keeps only the lowest bit of its argument.
    void setIgnoreAncestry(int ignoreAncestry) { ignoreAncestry_ = ignoreAncestry & 1; }
    void setForce(int force) { force_ = force & 1; }
    void setRecordOnly(int recordOnly) { recordOnly_ = recordOnly & 1; }
    void setDryRun(int dryRun) { dryRun_ = dryRun & 1; }
    void setIgnoreEOLStyle(int ignoreEOLStyle) { ignoreEOLStyle_ = ignoreEOLStyle & 1; }

private:
    LuSVNDepth depth_ = LuSVNDepthInfinity;
    std::int32_t whitespaceCompareBehavior_ = 0;
    unsigned ignoreAncestry_ : 1 = 0;
    unsigned force_ : 1 = 0;
    unsigned recordOnly_ : 1 = 0;
    unsigned dryRun_ : 1 = 0;
    unsigned ignoreEOLStyle_ : 1 = 0;
};
