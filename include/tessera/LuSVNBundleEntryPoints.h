// The table of Subversion entry points that a backend hands to Tessera.
//
// Tessera never links Subversion. Every call into Subversion or APR goes
// through the table of the backend on top of the calling thread's backend
// stack (see LuSVNBundleStack.h). The slot numbers are a fixed contract
// between the library and all its backends: a slot keeps its number and its
// signature in every backend. A null slot means that the backend's release
// lacks the function; slots 74 and 101 are unused.
//
// The signature of every slot is the one of the Subversion or APR function
// that the slot is named after, in the release that introduced it; the
// numbering is listed in docs/entry-points.md.
#pragma once

#include <cstddef>

/// One untyped function pointer; cast to the slot's real signature to call it.
using LuSVNEntryPoint = void (*)();

/// Number of slots in every table.
inline constexpr std::size_t LuSVNEntryPointCount = 127;

/// The table itself: read-only once the backend made it, alive for the process.
struct LuSVNBundleEntryPoints {
    LuSVNEntryPoint slots[LuSVNEntryPointCount];
};

/// The second, growable table: functions of newer Subversion releases that
/// the fixed table has no slot for (the merge-history log and blame, diff
/// summaries and git-style diffs, the tree-conflict resolver). A backend hands
/// it over through the optional function LUSVN_BUNDLE_EXTENSIONS_NAME; a
/// backend without that function has none of these. The numbering is as
/// fixed as the main table's, and a slot past `count` reads as null.
struct LuSVNBundleExtensionEntryPoints {
    /// Number of slots the backend's build knew of.
    std::size_t count;
    /// The slots themselves, `count` of them; null where the release lacks the function.
    const LuSVNEntryPoint* slots;
};
