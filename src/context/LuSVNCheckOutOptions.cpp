#include <tessera/LuSVNCheckOutOptions.h>

LuSVNCheckOutOptions::LuSVNCheckOutOptions() : LuSVNOptionsWithRevision(LuSVNRevisionSpec::HEAD()) {}

std::string LuSVNCheckOutOptions::description() const
{
    // The revision is left out and the double blank kept, as the format has always been.
    return "{ " + LuSVNOptions::description() + ", depth: " + std::to_string(depth_) +
           ",  processExternals: " + std::to_string(processExternals_) +
           ", allowUnversionedObstructions: " + std::to_string(allowUnversionedObstructions_) + "}";
}
