// What log, blame and diff share: their revision options, svn's -x options
// of the line comparison, and writing their output.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <tessera/LuSVNDiffOptions.h>

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// -r ARG or ARG1:ARG2, kept as text for parseRevisionRange once the
/// command knows its target.
CLI::Option* addRevisionRangeOption(CLI::App& command, std::optional<std::string>& text);

/// -x ARG, kept as text for diffOptionsForExtensions.
CLI::Option* addExtensionsOption(CLI::App& command, std::optional<std::string>& text);

/// -c ARG, kept as text for changeNumber.
CLI::Option* addChangeOption(CLI::App& command, std::optional<std::string>& text);

/// The revision of -c N or -N (negative for a reversed change). Raises
/// E205000 "Non-numeric change argument (ARG) given to -c" or "There is no
/// change 0".
std::int32_t changeNumber(const std::string& text);

/// -x ARG as svn's line comparison reads it: -b (--ignore-space-change), -w
/// (--ignore-all-space), --ignore-eol-style; -u and -p change nothing here.
/// Another option raises svn's E200016 "Error in options to internal diff"
/// over "invalid option: --WORD" (or "invalid option character: C").
LuSVNDiffOptions diffOptionsForExtensions(const std::optional<std::string>& extensions);

/// Raises E205000 with the message, svn's error for bad option values
/// (TesseraOptionValueError: no pointer to the command's help).
[[noreturn]] void raiseArgumentError(const std::string& message);

/// Writes the text to standard output; a failed write raises svn's "Write
/// error".
void writeOutput(const std::string& text);

/// Sends what standard output still buffers, raising svn's "Write error:
/// ..." (or another text before the system's reason) when that fails (a full
/// disk, a closed pipe).
void flushOutput(const std::string& failure = "Write error");
