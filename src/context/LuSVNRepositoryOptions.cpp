#include <tessera/LuSVNRepositoryOptions.h>

#include "LuSVNAssert.h"
#include "LuSVNEntryPoints+Typed.h"

void LuSVNRepositoryOptions::addLuSVNOptionsTo(apr_hash_t* hash) const
{
    LUSVN_PARAMETER_ASSERT(hash != nullptr, "hash != NULL");
    // One key at most: each older format is a superset of the restrictions below it.
    const char* key = nullptr;
    if (compatibility_.isLessThan(LuSVNVersion::version1_4()))
        key = "pre-1.4-compatible";
    else if (compatibility_.isLessThan(LuSVNVersion::version1_5()))
        key = "pre-1.5-compatible";
    else if (compatibility_.isLessThan(LuSVNVersion::version1_6()))
        key = "pre-1.6-compatible";
    if (key)
        LuSVNEntry<18>()(hash, key, APR_HASH_KEY_STRING, "1");
}

std::string LuSVNRepositoryOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " compatibility: " + compatibility_.description() + " }";
}
