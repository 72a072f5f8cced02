#include <tessera/LuSVNRevertOptions.h>

std::string LuSVNRevertOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " depth: " + std::to_string(depth_) + " }";
}
