#include <tessera/LuSVNDeleteOptions.h>

std::string LuSVNDeleteOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " force: " + std::to_string(force_) + " }";
}
