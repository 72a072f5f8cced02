// Tying an object's lifetime to a Subversion pool.
//
// Memory from Subversion lives in pools whose lifetime is one operation. An
// object that Subversion holds through a baton beyond one call is kept alive
// by the pool: LuSVNRetainInPool stores a reference in the pool and releases
// it exactly once, when the pool is cleared or destroyed.
#pragma once

#include <memory>

#include <tessera/LuSVNExport.h>

struct apr_pool_t;

/// Keeps `object` alive at least as long as the pool, through the current
/// backend (entry points 3, 5 and 6). Raises "Invalid parameter not
/// satisfying: pool != nil" for a null pool. Returns the object.
TESSERA_EXPORT std::shared_ptr<void> LuSVNRetainInPool(std::shared_ptr<void> object, apr_pool_t* pool);

/// Typed form of the above.
template <class T>
std::shared_ptr<T> LuSVNRetainInPool(std::shared_ptr<T> object, apr_pool_t* pool)
{
    LuSVNRetainInPool(std::shared_ptr<void>(object), pool);
    return object;
}

/// The pool clean-up that releases one retained reference; returns 0.
extern "C" TESSERA_EXPORT int LuSVNReleaseObject(void* slot);
