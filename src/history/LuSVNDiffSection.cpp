#include <tessera/LuSVNDiffSection.h>

#include "LuSVNObjectDescription.h"

namespace {

std::string rangeText(const LuSVNLineRange& range)
{
    return "{" + std::to_string(range.location) + ", " + std::to_string(range.length) + "}";
}

}  // namespace

std::shared_ptr<LuSVNDiffSection> LuSVNDiffSection::section()
{
    return std::make_shared<LuSVNDiffSection>();
}

std::shared_ptr<LuSVNDiffSection> LuSVNDiffSection::sectionOfType(LuSVNDiffSectionType type,
                                                                  LuSVNLineRange originalRange,
                                                                  LuSVNLineRange modifiedRange,
                                                                  LuSVNLineRange latestRange)
{
    auto result = section();
    result->type_ = type;
    result->originalRange_ = originalRange;
    result->modifiedRange_ = modifiedRange;
    result->latestRange_ = latestRange;
    return result;
}

std::string LuSVNDiffSection::stringFromType(LuSVNDiffSectionType type)
{
    switch (type) {
    case LuSVNDiffSectionCommon: return "LuSVNDiffSectionCommon";
    case LuSVNDiffSectionDiffModified: return "LuSVNDiffSectionDiffModified";
    case LuSVNDiffSectionDiffLatest: return "LuSVNDiffSectionDiffLatest";
    case LuSVNDiffSectionDiffCommon: return "LuSVNDiffSectionDiffCommon";
    case LuSVNDiffSectionConflict: return "LuSVNDiffSectionConflict";
    }
    return "Unknown (" + std::to_string(static_cast<std::int32_t>(type)) + ")";
}

std::string LuSVNDiffSection::description() const
{
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNDiffSection", this) +
           ", type = " + stringFromType(type_) + ", originalRange = " + rangeText(originalRange_) +
           ", modifiedRange = " + rangeText(modifiedRange_) + ", latestRange = " + rangeText(latestRange_) + " }";
}
