#include <tessera/LuSVNExportOptions.h>

std::string LuSVNExportOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " depth: " + std::to_string(depth_) +
           ", processExternals: " + std::to_string(processExternals_) +
           ", overwriteExisting: " + std::to_string(overwriteExisting_) + ", EOLMarkers: " + EOLMarkers_ + " }";
}
