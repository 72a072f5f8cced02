#include <tessera/LuSVNUnlockOptions.h>

std::string LuSVNUnlockOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " breakLocks: " + std::to_string(breakLocks_) + " }";
}
