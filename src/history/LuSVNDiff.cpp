#include <tessera/LuSVNDiff.h>

#include <algorithm>

#include "LuSVNAssert.h"
#include "LuSVNObjectDescription.h"

namespace {

// The smallest range that covers both.
LuSVNLineRange unionOf(const LuSVNLineRange& first, const LuSVNLineRange& second)
{
    const auto location = std::min(first.location, second.location);
    return {location, std::max(first.end(), second.end()) - location};
}

}  // namespace

std::shared_ptr<LuSVNDiff> LuSVNDiff::diff()
{
    return std::make_shared<LuSVNDiff>();
}

void LuSVNDiff::setSections(const Sections& sections)
{
    removeAllSections();
    for (const auto& section : sections)
        addSection(section);
}

void LuSVNDiff::insertObjectInSectionsAtIndex(const Section& section, std::size_t index)
{
    LUSVN_PARAMETER_ASSERT(section != nullptr, "section != nil");
    LUSVN_PARAMETER_ASSERT(index <= sections_.size(), "index >= 0 && index <= [sections count]");
    sections_.insert(sections_.begin() + static_cast<std::ptrdiff_t>(index), section);
}

void LuSVNDiff::removeObjectFromSectionsAtIndex(std::size_t index)
{
    LUSVN_PARAMETER_ASSERT(index < sections_.size(), "index >= 0 && index < [sections count]");
    sections_.erase(sections_.begin() + static_cast<std::ptrdiff_t>(index));
}

void LuSVNDiff::removeSection(const Section& section)
{
    const auto found = std::find(sections_.begin(), sections_.end(), section);
    removeObjectFromSectionsAtIndex(static_cast<std::size_t>(found - sections_.begin()));
}

void LuSVNDiff::removeAllSections()
{
    while (!sections_.empty())
        removeObjectFromSectionsAtIndex(sections_.size() - 1);
}

void LuSVNDiff::adjustRangesByOffset(std::int32_t originalOffset, std::int32_t modifiedOffset, std::size_t first,
                                     std::size_t count)
{
    const std::size_t end = std::min(sections_.size(), first + count);
    for (std::size_t index = first; index < end; ++index) {
        auto& section = *sections_[index];
        auto original = section.originalRange();
        auto modified = section.modifiedRange();
        original.location += static_cast<std::uint64_t>(static_cast<std::int64_t>(originalOffset));
        modified.location += static_cast<std::uint64_t>(static_cast<std::int64_t>(modifiedOffset));
        section.setOriginalRange(original);
        section.setModifiedRange(modified);
    }
}

void LuSVNDiff::coaleseAdjacentSectionsOfType(LuSVNDiffSectionType type)
{
    std::size_t previous = 0;
    for (std::size_t index = 1; index < sections_.size();) {
        auto& kept = *sections_[previous];
        const auto& current = *sections_[index];
        if (kept.type() == type && current.type() == type) {
            kept.setOriginalRange(unionOf(kept.originalRange(), current.originalRange()));
            kept.setModifiedRange(unionOf(kept.modifiedRange(), current.modifiedRange()));
            removeObjectFromSectionsAtIndex(index);
        } else {
            previous = index++;
        }
    }
}

std::string LuSVNDiff::description() const
{
    std::string list = "(";
    for (const auto& section : sections_)
        list += (list.size() > 1 ? ", " : "") + section->description();
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNDiff", this) + ", sections = " + list + ") }";
}

svn_diff_file_options_t* LuSVNDiff::convertOptions(const LuSVNDiffOptions& options, apr_pool_t* pool)
{
    return LuSVNDiffOptions::convertOptions(options, pool);
}
