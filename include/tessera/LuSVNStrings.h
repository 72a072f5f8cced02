// Conversions between the library's text and Subversion's strings, and small
// text helpers.
//
// Text is UTF-8 std::string. A property value that is not valid UTF-8 is
// binary data (LuSVNData), so property values are LuSVNPropertyValue: either.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include <tessera/LuSVNData.h>
#include <tessera/LuSVNExport.h>

struct apr_pool_t;
struct svn_string_t;

/// A property value: text when its bytes are valid UTF-8, else binary data.
using LuSVNPropertyValue = std::variant<std::string, LuSVNData>;

/// The bytes of a Subversion string as text when they are valid UTF-8, else as
/// binary data. Raises "Invalid parameter not satisfying: string != nil" for null.
TESSERA_EXPORT LuSVNPropertyValue LuSVNObjectFromSVNString(const svn_string_t* string);

/// A Subversion string in the pool made from text (entry point 21) or from
/// binary data (entry point 22) through the current backend.
TESSERA_EXPORT svn_string_t* LuSVNStringFromObject(const LuSVNPropertyValue& value, apr_pool_t* pool);

/// The Subversion string as text, or nullopt when it is not valid UTF-8.
TESSERA_EXPORT std::optional<std::string> LuSVNStringWithSVNString(const svn_string_t* string);

/// The text as a Subversion string in the pool; counted (entry point 22), so
/// that text holding NUL characters is kept whole.
TESSERA_EXPORT svn_string_t* LuSVNSVNStringUsingPool(const std::string& text, apr_pool_t* pool);

/// The text without white space and line ends at either end (Unicode white
/// space included). Returns the text unchanged when there is nothing to trim.
TESSERA_EXPORT std::string LuSVNTrim(const std::string& text);

/// A copy with every blank replaced by "%20"; nothing else is touched.
TESSERA_EXPORT std::string LuSVNStringByURLEncodingSpaces(std::string_view text);

/// A copy in which every character (code point) found in characterSet is
/// replaced by the whole replacement text. Both texts are UTF-8.
TESSERA_EXPORT std::string LuSVNStringByReplacingCharactersInSet(std::string_view text,
                                                                 std::string_view characterSet,
                                                                 std::string_view replacement);

/// Whether the bytes are well-formed UTF-8 (no overlong forms, no surrogates).
TESSERA_EXPORT bool LuSVNIsValidUTF8(std::string_view bytes);
