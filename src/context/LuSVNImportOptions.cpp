#include <tessera/LuSVNImportOptions.h>

std::string LuSVNImportOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " recursive: " + std::to_string(recursive_) +
           ", matchIgnorePatterns: " + std::to_string(matchIgnorePatterns_) + " }";
}
