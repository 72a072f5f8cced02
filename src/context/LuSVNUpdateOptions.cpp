#include <tessera/LuSVNUpdateOptions.h>

std::string LuSVNUpdateOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " depth: " + std::to_string(depth_) +
           ", depthIsSticky: " + std::to_string(depthIsSticky_) + ", processExternals: " +
           std::to_string(processExternals_) + ", allowUnversionedObstructions: " +
           std::to_string(allowUnversionedObstructions_) + " }";
}
