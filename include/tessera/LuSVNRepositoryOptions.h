// Options of creating a repository (LuSVNRepository): the base of the
// file-system and Berkeley DB options (see LuSVNOptions.h for the conventions
// of the family). Creating a repository takes one of the two subclasses; this
// class alone names no back end.
//
//   field           kind           default
//   compatibility   LuSVNVersion   LuSVNVersion::defaultVersion() (1.6)
//
// The oldest Subversion release that must be able to read the repository.
// Subversion is told (addLuSVNOptionsTo) the first that applies of
//   compatibility below 1.4   "pre-1.4-compatible" = "1"
//   below 1.5                 "pre-1.5-compatible" = "1"
//   below 1.6                 "pre-1.6-compatible" = "1"
//   1.6 or later              nothing: the backend's newest format
//
// Description: "{ <LuSVNRepositoryOptions: 0x...> compatibility: 1.6 }".
#pragma once

#include <utility>

#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNVersion.h>

struct apr_hash_t;

class TESSERA_EXPORT LuSVNRepositoryOptions : public LuSVNOptions {
public:
    static LuSVNRepositoryOptions defaults() { return {}; }

    const LuSVNVersion& compatibility() const { return compatibility_; }
    void setCompatibility(LuSVNVersion compatibility) { compatibility_ = std::move(compatibility); }

    /// Stores this object's settings into Subversion's file-system
    /// configuration table (a hash of NUL-terminated texts, as
    /// svn_repos_create takes it) through the backend on top of the calling
    /// thread's stack. Keys and values are static texts, so the table may
    /// outlive this object. A null table raises "Invalid parameter not
    /// satisfying: hash != NULL".
    virtual void addLuSVNOptionsTo(apr_hash_t* hash) const;

    std::string description() const override;

private:
    LuSVNVersion compatibility_ = LuSVNVersion::defaultVersion();
};
