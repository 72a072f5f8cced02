#include <tessera/LuSVNBerkeleyDBOptions.h>

#include "LuSVNEntryPoints+Typed.h"

void LuSVNBerkeleyDBOptions::addLuSVNOptionsTo(apr_hash_t* hash, apr_pool_t* pool) const
{
    LuSVNRepositoryOptions::addLuSVNOptionsTo(hash, pool);
    LuSVNEntry<18>()(hash, "bdb-txn-nosync", APR_HASH_KEY_STRING, syncAtTransactionCommit_ ? "0" : "1");
    LuSVNEntry<18>()(hash, "bdb-log-autoremove", APR_HASH_KEY_STRING, automaticLogFileRemoval_ ? "1" : "0");
}

std::string LuSVNBerkeleyDBOptions::description() const
{
    return "{ " + LuSVNOptions::description() + ", syncAtTransactionCommit: " +
           std::to_string(syncAtTransactionCommit_) +
           ", automaticLogFileRemoval: " + std::to_string(automaticLogFileRemoval_) + " }";
}
