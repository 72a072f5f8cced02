#include <tessera/LuSVNMoveOptions.h>

std::string LuSVNMoveOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " force: " + std::to_string(force_) + " }";
}
