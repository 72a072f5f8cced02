// One run of lines in a comparison of files: common to both, or differing.
// Ranges count lines from 0; a side the section does not cover has the range
// (LuSVNNotFound, 0).
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include <tessera/LuSVNExport.h>

/// The location of a range that covers nothing.
inline constexpr std::uint64_t LuSVNNotFound = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());

/// A run of lines: the first (from 0) and how many.
struct LuSVNLineRange {
    std::uint64_t location = LuSVNNotFound;  ///< the first line
    std::uint64_t length = 0;                ///< the number of lines
    /// Location and length equal.
    friend bool operator==(const LuSVNLineRange&, const LuSVNLineRange&) = default;
    /// One past the last line.
    std::uint64_t end() const { return location + length; }
};

/// What a section says about its lines. Two-way comparisons give only Common
/// and DiffModified; the others belong to three-way results.
enum LuSVNDiffSectionType : std::int32_t {
    LuSVNDiffSectionCommon = 0,        ///< the same in both files
    LuSVNDiffSectionDiffModified = 1,  ///< changed in the modified file
    LuSVNDiffSectionDiffLatest = 2,    ///< changed in the latest file
    LuSVNDiffSectionDiffCommon = 3,    ///< changed alike in both
    LuSVNDiffSectionConflict = 4,      ///< changed differently in both
};

/// A run of lines common to two files or differing between them.
class TESSERA_EXPORT LuSVNDiffSection {
public:
    /// Type Common, no ranges.
    static std::shared_ptr<LuSVNDiffSection> section();
    /// A section with all its fields.
    static std::shared_ptr<LuSVNDiffSection> sectionOfType(LuSVNDiffSectionType type, LuSVNLineRange originalRange,
                                                           LuSVNLineRange modifiedRange, LuSVNLineRange latestRange);

    /// See LuSVNDiffSectionType.
    LuSVNDiffSectionType type() const { return type_; }
    /// See type().
    void setType(LuSVNDiffSectionType type) { type_ = type; }
    /// The lines of the original file.
    const LuSVNLineRange& originalRange() const { return originalRange_; }
    /// See originalRange().
    void setOriginalRange(LuSVNLineRange range) { originalRange_ = range; }
    /// The lines of the modified file.
    const LuSVNLineRange& modifiedRange() const { return modifiedRange_; }
    /// See modifiedRange().
    void setModifiedRange(LuSVNLineRange range) { modifiedRange_ = range; }
    /// The lines of the latest file of a three-way comparison.
    const LuSVNLineRange& latestRange() const { return latestRange_; }
    /// See latestRange().
    void setLatestRange(LuSVNLineRange range) { latestRange_ = range; }

    /// "LuSVNDiffSectionCommon", ... or "Unknown (7)".
    static std::string stringFromType(LuSVNDiffSectionType type);
    /// "{ <LuSVNDiffSection: 0x...>, type = LuSVNDiffSectionCommon,
    /// originalRange = {0, 3}, modifiedRange = {0, 3}, latestRange = {...} }".
    std::string description() const;

private:
    LuSVNDiffSectionType type_ = LuSVNDiffSectionCommon;
    LuSVNLineRange originalRange_;
    LuSVNLineRange modifiedRange_;
    LuSVNLineRange latestRange_;
};
