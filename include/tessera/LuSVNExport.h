// Symbol visibility of the Tessera library.
//
// The library is built with hidden visibility; only declarations marked
// TESSERA_EXPORT are part of its binary interface.
#pragma once

#if defined(TESSERA_BUILDING_LIBRARY)
#define TESSERA_EXPORT __attribute__((visibility("default")))
#else
#define TESSERA_EXPORT
#endif
