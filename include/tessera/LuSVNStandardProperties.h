// The standard properties of a property map (property name to value), and the
// end-of-line styles. The setters change the map given as first argument.
//
// The end-of-line constants are the values of Subversion's "svn:eol-style"
// property. LuSVNEndOfLineDefault is the empty text and stands for no explicit
// style: the file keeps the line ends it has.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNStrings.h>

inline constexpr std::string_view LuSVNEndOfLineNative = "native";
inline constexpr std::string_view LuSVNEndOfLineLF = "LF";
inline constexpr std::string_view LuSVNEndOfLineCR = "CR";
inline constexpr std::string_view LuSVNEndOfLineCRLF = "CRLF";
inline constexpr std::string_view LuSVNEndOfLineDefault = "";

/// Properties of one node: property name to value (text or binary data).
using LuSVNPropertyMap = std::map<std::string, LuSVNPropertyValue>;

class TESSERA_EXPORT LuSVNStandardProperties {
public:
    LuSVNStandardProperties() = delete;

    /// True stores "*" under "svn:executable"; false removes that key.
    static void setExecutable(LuSVNPropertyMap& properties, bool executable);

    /// True stores "*" under "svn:needs-lock"; false removes that key.
    static void setNeedsLock(LuSVNPropertyMap& properties, bool needsLock);

    /// Stores the style under "svn:eol-style" (LuSVNPropertyEOLStyle). The
    /// style must be one of the five end-of-line constants; any other text
    /// raises "Invalid parameter not satisfying: style is LuSVNEndOfLineLF,
    /// LuSVNEndOfLineCR, LuSVNEndOfLineCRLF, LuSVNEndOfLineNative or
    /// LuSVNEndOfLineDefault".
    static void setEOLStyle(LuSVNPropertyMap& properties, std::string_view style);
};
