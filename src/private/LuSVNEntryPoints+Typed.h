// Typed access to the current backend's entry points.
//
//   LuSVNEntry<19>()(nullptr, nullptr)
//   LuSVNExtensionEntry<0>()(...)       // slot 0 of the extension table
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
#include "LuSVNExtensionEntryPointList.h"
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

template <int N>
struct LuSVNExtensionSlot;

#define LUSVN_DECLARE_EXTENSION_SLOT(number, function, major, minor)          \
    template <>                                                             \
    struct LuSVNExtensionSlot<number> {                                     \
        using Type = decltype(&::function);                                 \
        static constexpr const char* name = #function;                      \
    };
LUSVN_EXTENSION_ENTRY_POINT_LIST(LUSVN_DECLARE_EXTENSION_SLOT)
#undef LUSVN_DECLARE_EXTENSION_SLOT

/// The raw slot of the current backend, or raises when the backend lacks it.
TESSERA_EXPORT LuSVNEntryPoint LuSVNCurrentEntryPoint(int number, const char* name);

/// Whether the current backend fills the slot (for the documented fallbacks).
TESSERA_EXPORT bool LuSVNCurrentHasEntryPoint(int number);

/// The raw extension slot of the current backend, or raises when it lacks it.
TESSERA_EXPORT LuSVNEntryPoint LuSVNCurrentExtensionEntryPoint(int number, const char* name);

/// Whether the current backend fills the extension slot; the operations that
/// use one fall back to the main table's older form, or refuse, when not.
TESSERA_EXPORT bool LuSVNCurrentHasExtensionEntryPoint(int number);

}  // namespace tessera_private

template <int N>
inline typename tessera_private::LuSVNSlot<N>::Type LuSVNEntry()
{
    using Slot = tessera_private::LuSVNSlot<N>;
    return reinterpret_cast<typename Slot::Type>(tessera_private::LuSVNCurrentEntryPoint(N, Slot::name));
}

template <int N>
inline typename tessera_private::LuSVNExtensionSlot<N>::Type LuSVNExtensionEntry()
{
    using Slot = tessera_private::LuSVNExtensionSlot<N>;
    return reinterpret_cast<typename Slot::Type>(tessera_private::LuSVNCurrentExtensionEntryPoint(N, Slot::name));
}
