// Typed access to the current backend's entry points.
//
//   LuSVNEntry<19>()(nullptr, nullptr)
//
// takes slot 19 of the backend on top of the calling thread's stack, checks
// that the backend fills it, and casts it to the signature of the function the
// slot is named after. A slot the backend's release lacks raises
// LuSVNInternalInconsistencyException naming the slot and the backend: calling
// a missing function is a programming error in the caller, never a crash.
#pragma once

#include <tessera/LuSVNBundleEntryPoints.h>
#include <tessera/LuSVNExport.h>

#include "LuSVNEntryPointList.h"
#include "LuSVNSubversion.h"

namespace tessera_private {

template <int N>
struct LuSVNSlot;

#define LUSVN_DECLARE_SLOT(number, function, major, minor)                    \
    template <>                                                             \
    struct LuSVNSlot<number> {                                              \
        using Type = decltype(&::function);                                 \
        static constexpr const char* name = #function;                      \
        static constexpr int sinceMajor = major;                            \
        static constexpr int sinceMinor = minor;                            \
    };
LUSVN_ENTRY_POINT_LIST(LUSVN_DECLARE_SLOT)
#undef LUSVN_DECLARE_SLOT

/// The raw slot of the current backend, or raises when the backend lacks it.
TESSERA_EXPORT LuSVNEntryPoint LuSVNCurrentEntryPoint(int number, const char* name);

/// Whether the current backend fills the slot (for the documented fallbacks).
TESSERA_EXPORT bool LuSVNCurrentHasEntryPoint(int number);

}  // namespace tessera_private

template <int N>
inline typename tessera_private::LuSVNSlot<N>::Type LuSVNEntry()
{
    using Slot = tessera_private::LuSVNSlot<N>;
    return reinterpret_cast<typename Slot::Type>(tessera_private::LuSVNCurrentEntryPoint(N, Slot::name));
}
