#include <tessera/LuSVNCommitOptions.h>

std::string LuSVNCommitOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " depth: " + std::to_string(depth_) +
           ", releaseLocks: " + std::to_string(releaseLocks_) + " }";
}
