// The entry trace of public operations at the verbose level:
//   LUSVN_TRACE("LuSVNBundleLoader", "loadBundleAtPath", {"path", path});
// writes "[LuSVNBundleLoader loadBundleAtPath] (path: /x)". The arguments are
// not evaluated below the verbose level.
#pragma once

#include <tessera/LuSVNDebug.h>

#include <initializer_list>
#include <string>
#include <utility>

namespace tessera_private {
void LuSVNTraceCall(const char* className, const char* operation,
                    std::initializer_list<std::pair<const char*, std::string>> arguments);
}

#define LUSVN_TRACE(className, operation, ...)                                                    \
    do {                                                                                          \
        if (::LuSVNDebug::logLevel() >= ::LuSVNLogLevelVerbose)                                   \
            ::tessera_private::LuSVNTraceCall(className, operation, {__VA_ARGS__});               \
    } while (0)
