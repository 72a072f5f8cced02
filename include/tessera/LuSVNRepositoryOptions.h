// Options of creating a repository (LuSVNRepository): the base of the
// file-system and Berkeley DB options (see LuSVNOptions.h for the conventions
// of the family). Creating a repository takes one of the two subclasses; this
// class alone names no back end.
//
//   field           kind           default
//   compatibility   LuSVNVersion   LuSVNVersion::defaultVersion() (1.6)
//
// The oldest Subversion release that must be able to read the repository;
// the repository gets the formats `svnadmin create --compatible-version`
// gives (FSFS format 4 for 1.6 and 1.7, 6 for 1.8, 7 for 1.9). Subversion is
// told (addLuSVNOptionsTo), as svnadmin tells it,
//   compatibility below 1.4   "pre-1.4-compatible" = "1"
//   below 1.5                 "pre-1.5-compatible" = "1"
//   below 1.6                 "pre-1.6-compatible" = "1"
//   below 1.8                 "pre-1.8-compatible" = "1"
//   always                    "compatible-version" = "<major>.<minor>"
// Like svnadmin, a compatibility below 1.0 raises LuSVNException "Cannot
// create pre-1.0-compatible repositories", one above the backend's release
// "Cannot guarantee compatibility beyond the current running version
// (<release>)" (both LuSVNUnsupportedFeatureException, status 200007). An
// FSFS repository for 1.0 is refused by Subversion itself.
//
// Description: "{ <LuSVNRepositoryOptions: 0x...> compatibility: 1.6 }".
#pragma once

#include <utility>

#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNVersion.h>

struct apr_hash_t;
struct apr_pool_t;

class TESSERA_EXPORT LuSVNRepositoryOptions : public LuSVNOptions {
public:
    static LuSVNRepositoryOptions defaults() { return {}; }

    const LuSVNVersion& compatibility() const { return compatibility_; }
    void setCompatibility(LuSVNVersion compatibility) { compatibility_ = std::move(compatibility); }

    /// Stores this object's settings into Subversion's file-system
    /// configuration table (a hash of NUL-terminated texts, as
    /// svn_repos_create takes it) through the backend on top of the calling
    /// thread's stack. Texts that are not static are copied into the pool
    /// (the table's own), so the table may outlive this object. A null table
    /// raises "Invalid parameter not satisfying: hash != NULL", a null pool
    /// "... pool != NULL"; a compatibility the backend cannot give, the
    /// exceptions above, before anything is stored.
    virtual void addLuSVNOptionsTo(apr_hash_t* hash, apr_pool_t* pool) const;

    std::string description() const override;

private:
    LuSVNVersion compatibility_ = LuSVNVersion::defaultVersion();
};
