// Structures and strings that Subversion receives in a pool, made through
// the current backend (entry points 3 and 4).
#pragma once

#include <cstring>
#include <optional>
#include <string>

#include "LuSVNEntryPoints+Typed.h"

namespace tessera_private {

/// A zero-filled T in the pool.
template <class T>
T* LuSVNPoolAllocateZeroed(apr_pool_t* pool)
{
    void* memory = LuSVNEntry<3>()(pool, sizeof(T));
    std::memset(memory, 0, sizeof(T));
    return static_cast<T*>(memory);
}

/// A NUL-terminated copy in the pool; null for no text.
inline const char* LuSVNPoolCopyString(const std::optional<std::string>& text, apr_pool_t* pool)
{
    return text ? LuSVNEntry<4>()(pool, text->c_str()) : nullptr;
}

/// The C string as text; nullopt for null.
inline std::optional<std::string> LuSVNOptionalString(const char* text)
{
    return text ? std::optional<std::string>(text) : std::nullopt;
}

}  // namespace tessera_private
