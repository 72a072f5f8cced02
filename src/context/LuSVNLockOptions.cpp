#include <tessera/LuSVNLockOptions.h>

std::string LuSVNLockOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " stealLocks: " + std::to_string(stealLocks_) + " }";
}
