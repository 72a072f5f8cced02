// Text helpers shared by the path classes: component arithmetic on "/"-
// separated text and the percent-escaping of URLs.
#pragma once

#include <string>
#include <string_view>

#include <tessera/LuSVNExport.h>

namespace tessera_private {

/// The last "/"-separated component; trailing "/" are ignored, a text of
/// nothing but "/" gives "/", the empty text "".
std::string LuSVNLastPathComponent(std::string_view text);

/// The text without its last component and the "/" before it: "/a/b" gives
/// "/a", "/a" and "//" give "/", "a" and "" give "".
std::string LuSVNDeletingLastPathComponent(std::string_view text);

/// The two texts joined with exactly one "/" at the join; an empty side gives
/// the other.
std::string LuSVNAppendingPathComponent(std::string_view text, std::string_view component);

/// Every byte that may not stand in a URL's path as "%XX" (upper-case hex):
/// all but letters, digits, "-_.~!$&'()*+,=:@/", so "?", "#", ";", "%",
/// "[" and "]" are escaped as Subversion escapes them. Exported for the tests.
TESSERA_EXPORT std::string LuSVNAddPercentEscapes(std::string_view text);

/// Each "%XX" with two hex digits as its byte; anything else as it is. Inverts
/// LuSVNAddPercentEscapes exactly. Exported for the tests.
TESSERA_EXPORT std::string LuSVNReplacePercentEscapes(std::string_view text);

}  // namespace tessera_private
