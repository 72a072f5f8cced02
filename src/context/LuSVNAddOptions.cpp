#include <tessera/LuSVNAddOptions.h>

std::string LuSVNAddOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " recursive: " + std::to_string(recursive_) +
           ", force: " + std::to_string(force_) + ", matchIgnore: " + std::to_string(matchIgnorePatterns_) + " }";
}
