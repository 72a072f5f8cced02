// The set of reasons for which an SSL server certificate is not trusted.
//
// Subversion reports a server's failures, and server-trust credentials carry
// the failures they accept, as a 32-bit set of these bits:
//
//   if ((accepted & failures) == failures) ...   // every failure accepted
//   LuSVNStringFromSSLError(LuSVNSSLFailureExpired | LuSVNSSLFailureOther)
//                                                // "Expired, Other"
#pragma once

#include <cstdint>
#include <string>

#include <tessera/LuSVNExport.h>

enum LuSVNSSLFailure : std::uint32_t {
    LuSVNSSLFailureNotYetValid = 0x00000001,
    LuSVNSSLFailureExpired = 0x00000002,
    LuSVNSSLFailureHostMismatch = 0x00000004,
    LuSVNSSLFailureUnknownAuthority = 0x00000008,
    LuSVNSSLFailureOther = 0x40000000,
};

/// "None" for 0, "All" for every bit set (0xFFFFFFFF); otherwise the names of
/// the five defined bits that are set ("NotYetValid", "Expired",
/// "HostMismatch", "UnknownAuthority", "Other"), in bit order, joined by ", ".
/// Bits outside the five are not named, so 0x10 gives "".
TESSERA_EXPORT std::string LuSVNStringFromSSLError(std::uint32_t failures);

/// The failures with every bit cleared but the five defined ones.
TESSERA_EXPORT std::uint32_t LuSVNSSLErrorsFromFailures(std::uint32_t failures);
