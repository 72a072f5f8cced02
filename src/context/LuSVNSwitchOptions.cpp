#include <tessera/LuSVNSwitchOptions.h>

std::string LuSVNSwitchOptions::description() const
{
    // Neither the revision nor allowUnversionedObstructions is shown, as the format has always been.
    return "{ " + LuSVNOptions::description() + " depth: " + std::to_string(depth_) +
           ", depthIsSticky: " + std::to_string(depthIsSticky_) + ", processExternals: " +
           std::to_string(processExternals_) + "}";
}
