// The library's diagnostic log.
//
// One line per call on standard error, with a timestamp and the process id.
// The level comes from the environment variable "TesseraLogLevel" ("off",
// "normal", "debug" or "verbose", any case), read once; anything else leaves
// the default, normal. At verbose every public operation that reaches
// Subversion traces its call: "[LuSVNBundleLoader loadBundleAtPath] (path: /x)".
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <tessera/LuSVNExport.h>

enum LuSVNLogLevel : int {
    LuSVNLogLevelOff = 0,
    LuSVNLogLevelNormal = 1,
    LuSVNLogLevelDebug = 2,
    LuSVNLogLevelVerbose = 3,
};

class TESSERA_EXPORT LuSVNDebug {
public:
    /// The process-wide level, read from "TesseraLogLevel" on first use.
    static int logLevel();

    /// The level a value of "TesseraLogLevel" selects (null: normal).
    static int logLevelForString(const char* value);

    /// Writes the formatted line when the current level is at least the given
    /// one; below it nothing is formatted.
    static void logAtLevel(int level, const char* format, ...) __attribute__((format(printf, 2, 3)));
};

/// A single-line excerpt for the log: the text cut to maxLength characters
/// (code points) with "..." appended when longer, then every line feed
/// written as the two characters "\n". nullopt for nullopt.
TESSERA_EXPORT std::optional<std::string> LuSVNDebugSubstring(const std::optional<std::string>& text,
                                                              std::size_t maxLength);
