#include <tessera/LuSVNBlame.h>
#include <tessera/LuSVNDiff.h>

#include <algorithm>

namespace {

bool sameAttribution(const LuSVNBlameSection& first, const LuSVNBlameSection& second)
{
    return first.revision() == second.revision() && first.author() == second.author() &&
           first.date() == second.date() && first.mergedOrigin() == second.mergedOrigin();
}

// Appends the section, or lengthens the last one when it has the same
// attribution and ends where the section begins.
void append(LuSVNBlame::Sections& sections, LuSVNBlame::Section section)
{
    if (!sections.empty()) {
        auto& last = *sections.back();
        if (sameAttribution(last, *section) && last.lines().end() == section->lines().location) {
            last.setLines({last.lines().location, last.lines().length + section->lines().length});
            return;
        }
    }
    sections.push_back(std::move(section));
}

}  // namespace

void LuSVNBlame::setBlameSections(const Sections& sections)
{
    blameSections_ = sections;
}

void LuSVNBlame::mergeDiff(const LuSVNDiff& diff, const std::optional<std::string>& modifiedAuthor,
                           std::int64_t modifiedRevision, const std::optional<Date>& modifiedDate)
{
    Sections merged;
    auto blamed = blameSections_.begin();
    for (const auto& section : diff.sections()) {
        const LuSVNLineRange& modified = section->modifiedRange();
        if (section->type() != LuSVNDiffSectionCommon) {
            if (modified.length > 0)
                append(merged, LuSVNBlameSection::blameSectionWithAuthor(modifiedAuthor, modifiedDate,
                                                                         modifiedRevision, modified));
            continue;
        }
        // Common lines keep their attribution: each blamed section is cut to
        // the run and moved by the run's shift into the modified text.
        const LuSVNLineRange& original = section->originalRange();
        while (blamed != blameSections_.end() && (*blamed)->lines().end() <= original.location)
            ++blamed;
        for (auto overlapping = blamed;
             overlapping != blameSections_.end() && (*overlapping)->lines().location < original.end(); ++overlapping) {
            const auto& lines = (*overlapping)->lines();
            const auto first = std::max(lines.location, original.location);
            const auto end = std::min(lines.end(), original.end());
            if (first < end)
                append(merged, LuSVNBlameSection::blameSectionWithBlameSection(
                                   **overlapping, {first - original.location + modified.location, end - first}));
        }
    }
    blameSections_ = std::move(merged);
}
