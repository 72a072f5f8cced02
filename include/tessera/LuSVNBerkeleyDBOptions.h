// Options of creating a repository of the Berkeley DB back end (see
// LuSVNRepositoryOptions.h for the inherited compatibility).
//
//   field                     kind      default
//   syncAtTransactionCommit   boolean   true    flush the log at each commit
//   automaticLogFileRemoval   boolean   true    remove log files no longer used
//
// addLuSVNOptionsTo stores the compatibility entries of LuSVNRepositoryOptions,
// then "bdb-txn-nosync" = "0" when syncAtTransactionCommit is set, else "1",
// and "bdb-log-autoremove" = "1" when automaticLogFileRemoval is set, else "0".
//
// Description, without the compatibility:
// "{ <LuSVNBerkeleyDBOptions: 0x...>, syncAtTransactionCommit: 1, automaticLogFileRemoval: 1 }".
#pragma once

#include <tessera/LuSVNRepositoryOptions.h>

class TESSERA_EXPORT LuSVNBerkeleyDBOptions : public LuSVNRepositoryOptions {
public:
    static LuSVNBerkeleyDBOptions defaults() { return {}; }

    bool syncAtTransactionCommit() const { return syncAtTransactionCommit_; }
    bool automaticLogFileRemoval() const { return automaticLogFileRemoval_; }
    void setSyncAtTransactionCommit(bool sync) { syncAtTransactionCommit_ = sync; }
    void setAutomaticLogFileRemoval(bool removal) { automaticLogFileRemoval_ = removal; }

    void addLuSVNOptionsTo(apr_hash_t* hash, apr_pool_t* pool) const override;

    std::string description() const override;

private:
    bool syncAtTransactionCommit_ = true;
    bool automaticLogFileRemoval_ = true;
};
