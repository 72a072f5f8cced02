// Optional dates in keyed archives: the clock's nanoseconds since 1970 as an
// integer, as LuSVNRevisionAtDate keeps its date. No date writes no key, so
// that the instant 1970-01-01T00:00:00Z stays apart from none.
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include <tessera/LuSVNCoder.h>

namespace tessera_private {

using LuSVNCodedDate = std::chrono::system_clock::time_point;

inline void LuSVNEncodeDate(LuSVNCoder& coder, const std::optional<LuSVNCodedDate>& date, std::string_view key)
{
    if (date)
        coder.encodeInt64(std::chrono::duration_cast<std::chrono::nanoseconds>(date->time_since_epoch()).count(), key);
}

inline std::optional<LuSVNCodedDate> LuSVNDecodeDate(LuSVNCoder& coder, std::string_view key)
{
    if (!coder.containsValueForKey(key))
        return std::nullopt;
    return LuSVNCodedDate(std::chrono::duration_cast<LuSVNCodedDate::duration>(
        std::chrono::nanoseconds(coder.decodeInt64ForKey(key))));
}

}  // namespace tessera_private
