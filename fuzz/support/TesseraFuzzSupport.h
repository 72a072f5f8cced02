// What every fuzz target shares.
//
//   extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
//   {
//       tessera_fuzz::initializeLibrary();   // only for targets that reach a backend
//       ...
//       tessera_fuzz::require(a == b, "a == b");
//       return 0;
//   }
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tessera_fuzz {

/// On the first call: points HOME at a fresh temporary directory (removed at
/// exit), so that Subversion's configuration area is never the user's, and
/// calls LuSVNInitialize(). Later calls return at once.
void initializeLibrary();

/// Aborts with the invariant's text on standard error when it does not hold,
/// so that the fuzzer keeps the input as a crash.
void require(bool holds, const char* invariant);

/// The input as text (any bytes, NUL included).
inline std::string textOf(const std::uint8_t* data, std::size_t size)
{
    return std::string(reinterpret_cast<const char*>(data), size);
}

}  // namespace tessera_fuzz
