#include <tessera/LuSVNResolveOptions.h>

std::string LuSVNResolveOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " recursive: " + std::to_string(recursive_) + " }";
}
