#include <tessera/LuSVNStrings.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"

namespace {

// Decodes one code point at `index`, advancing it; nullopt for a malformed
// sequence (overlong forms, surrogates and values past U+10FFFF included).
std::optional<char32_t> decodeUTF8(std::string_view text, std::size_t& index)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(index);
    std::size_t length;
    char32_t value;
    char32_t minimum;
    if (lead < 0x80) {
        ++index;
        return lead;
    } else if ((lead & 0xE0) == 0xC0) {
        length = 2, value = lead & 0x1F, minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, value = lead & 0x0F, minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, value = lead & 0x07, minimum = 0x10000;
    } else {
        return std::nullopt;
    }
    if (index + length > text.size())
        return std::nullopt;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(index + i) & 0xC0) != 0x80)
            return std::nullopt;
        value = (value << 6) | (byte(index + i) & 0x3F);
    }
    if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
        return std::nullopt;
    index += length;
    return value;
}

// White space and line ends as Unicode has them.
bool isWhiteSpaceOrLineEnd(char32_t c)
{
    return c == 0x20 || (c >= 0x09 && c <= 0x0D) || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
           c == 0x3000;
}

}  // namespace

bool LuSVNIsValidUTF8(std::string_view bytes)
{
    for (std::size_t index = 0; index < bytes.size();)
        if (!decodeUTF8(bytes, index))
            return false;
    return true;
}

LuSVNPropertyValue LuSVNObjectFromSVNString(const svn_string_t* string)
{
    LUSVN_PARAMETER_ASSERT(string != nullptr, "string != nil");
    const std::string_view bytes(string->data, string->len);
    if (LuSVNIsValidUTF8(bytes))
        return std::string(bytes);
    return LuSVNData(string->data, string->len);
}

svn_string_t* LuSVNStringFromObject(const LuSVNPropertyValue& value, apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    if (const auto* text = std::get_if<std::string>(&value))
        return LuSVNSVNStringUsingPool(*text, pool);
    const auto& data = std::get<LuSVNData>(value);
    return LuSVNEntry<22>()(reinterpret_cast<const char*>(data.data()), data.size(), pool);
}

std::optional<std::string> LuSVNStringWithSVNString(const svn_string_t* string)
{
    LUSVN_PARAMETER_ASSERT(string != nullptr, "string != nil");
    const std::string_view bytes(string->data, string->len);
    if (!LuSVNIsValidUTF8(bytes))
        return std::nullopt;
    return std::string(bytes);
}

svn_string_t* LuSVNSVNStringUsingPool(const std::string& text, apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    // Through the counted form: text may hold NUL characters.
    return LuSVNEntry<22>()(text.data(), text.size(), pool);
}

std::string LuSVNTrim(const std::string& text)
{
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t next = begin;
        const auto c = decodeUTF8(text, next);
        if (!c || !isWhiteSpaceOrLineEnd(*c))
            break;
        begin = next;
    }
    std::size_t end = text.size();
    while (end > begin) {
        std::size_t start = end - 1;
        while (start > begin && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80)
            --start;
        std::size_t next = start;
        const auto c = decodeUTF8(text, next);
        if (!c || next != end || !isWhiteSpaceOrLineEnd(*c))
            break;
        end = start;
    }
    if (begin == 0 && end == text.size())
        return text;
    return text.substr(begin, end - begin);
}

std::string LuSVNStringByURLEncodingSpaces(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (char c : text) {
        if (c == ' ')
            result += "%20";
        else
            result += c;
    }
    return result;
}

std::string LuSVNStringByReplacingCharactersInSet(std::string_view text, std::string_view characterSet,
                                                  std::string_view replacement)
{
    std::u32string set;
    for (std::size_t index = 0; index < characterSet.size();) {
        const std::size_t start = index;
        const auto c = decodeUTF8(characterSet, index);
        if (!c) {
            index = start + 1;
            continue;
        }
        set.push_back(*c);
    }
    std::string result;
    result.reserve(text.size());
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t start = index;
        const auto c = decodeUTF8(text, index);
        if (!c) {
            index = start + 1;  // a malformed byte is kept as it is
            result += text[start];
            continue;
        }
        if (set.find(*c) != std::u32string::npos)
            result += replacement;
        else
            result.append(text.substr(start, index - start));
    }
    return result;
}
