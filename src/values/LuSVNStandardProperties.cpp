#include <tessera/LuSVNStandardProperties.h>

#include <tessera/LuSVNDefinitions.h>

#include "LuSVNAssert.h"

namespace {

void setFlag(LuSVNPropertyMap& properties, std::string_view name, bool flag)
{
    if (flag)
        properties.insert_or_assign(std::string(name), std::string("*"));
    else
        properties.erase(std::string(name));
}

}  // namespace

void LuSVNStandardProperties::setExecutable(LuSVNPropertyMap& properties, bool executable)
{
    setFlag(properties, LuSVNPropertyExecutable, executable);
}

void LuSVNStandardProperties::setNeedsLock(LuSVNPropertyMap& properties, bool needsLock)
{
    setFlag(properties, LuSVNPropertyNeedsLock, needsLock);
}

void LuSVNStandardProperties::setEOLStyle(LuSVNPropertyMap& properties, std::string_view style)
{
    LUSVN_PARAMETER_ASSERT(style == LuSVNEndOfLineLF || style == LuSVNEndOfLineCR || style == LuSVNEndOfLineCRLF ||
                               style == LuSVNEndOfLineNative || style == LuSVNEndOfLineDefault,
                           "style is LuSVNEndOfLineLF, LuSVNEndOfLineCR, LuSVNEndOfLineCRLF, LuSVNEndOfLineNative "
                           "or LuSVNEndOfLineDefault");
    properties.insert_or_assign(std::string(LuSVNPropertyEOLStyle), std::string(style));
}
