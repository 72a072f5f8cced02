// Parameter assertions. They stay on in release builds: a caller's broken
// precondition must end in a clear exception, never in undefined behaviour.
#pragma once

#include <tessera/LuSVNPlatformExceptions.h>

#include <string>

namespace tessera_private {
[[noreturn]] void LuSVNParameterAssertionFailed(const char* condition, const char* file, int line);
}

/// Raises LuSVNInternalInconsistencyException "Invalid parameter not satisfying: <text>"
/// unless the condition holds. The text is the condition as the operation's
/// documentation words it (for example "path != nil").
#define LUSVN_PARAMETER_ASSERT(condition, text)                                                  \
    do {                                                                                         \
        if (!(condition))                                                                        \
            ::tessera_private::LuSVNParameterAssertionFailed(text, __FILE__, __LINE__);          \
    } while (0)
