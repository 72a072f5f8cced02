// The lock of an info record or a listing entry.
#pragma once

#include <memory>
#include <string>

#include <tessera/LuSVNLock.h>

#include "LuSVNSubversion.h"

namespace tessera_private {

/// The record's lock, null for none. A working copy's lock names no path:
/// the node's path stands in, as in the nodes of a status walk.
inline std::shared_ptr<const LuSVNLock> LuSVNRecordLock(const svn_lock_t* lock, const std::string& nodePath)
{
    if (!lock)
        return nullptr;
    if (lock->path)
        return LuSVNLock::lockWithSVNLock(lock);
    svn_lock_t named = *lock;
    named.path = nodePath.c_str();
    return LuSVNLock::lockWithSVNLock(&named);
}

}  // namespace tessera_private
