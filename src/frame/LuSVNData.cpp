#include <tessera/LuSVNData.h>

#include "LuSVNAssert.h"

LuSVNData::LuSVNData(const void* bytes, std::size_t length)
{
    LUSVN_PARAMETER_ASSERT(bytes != nullptr || length == 0, "bytes != nil || length == 0");
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    if (length > 0)
        bytes_.assign(first, first + length);
}
