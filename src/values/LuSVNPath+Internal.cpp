#include "LuSVNPath+Internal.h"

namespace tessera_private {

namespace {

std::string_view withoutTrailingSlashes(std::string_view text)
{
    while (!text.empty() && text.back() == '/')
        text.remove_suffix(1);
    return text;
}

// What RFC 3986 lets stand in a path, but ";", which Subversion escapes too:
// URLs made here read as Subversion's own.
bool isKeptInURLs(unsigned char c)
{
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))
        return true;
    return std::string_view("-_.~!$&'()*+,=:@/").find(static_cast<char>(c)) != std::string_view::npos;
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

}  // namespace

std::string LuSVNLastPathComponent(std::string_view text)
{
    if (text.empty())
        return {};
    const std::string_view trimmed = withoutTrailingSlashes(text);
    if (trimmed.empty())
        return "/";
    return std::string(trimmed.substr(trimmed.rfind('/') + 1));
}

std::string LuSVNDeletingLastPathComponent(std::string_view text)
{
    if (text.empty())
        return {};
    const std::string_view trimmed = withoutTrailingSlashes(text);
    const std::size_t slash = trimmed.rfind('/');
    if (trimmed.empty() || slash == 0)
        return "/";
    if (slash == std::string_view::npos)
        return {};
    const std::string_view head = withoutTrailingSlashes(trimmed.substr(0, slash));
    return head.empty() ? "/" : std::string(head);
}

std::string LuSVNAppendingPathComponent(std::string_view text, std::string_view component)
{
    if (text.empty())
        return std::string(component);
    if (component.empty())
        return std::string(text);
    std::string result(text);
    const bool slashAtEnd = text.back() == '/';
    const bool slashAtStart = component.front() == '/';
    if (slashAtEnd && slashAtStart)
        component.remove_prefix(1);
    else if (!slashAtEnd && !slashAtStart)
        result += '/';
    result += component;
    return result;
}

std::string LuSVNAddPercentEscapes(std::string_view text)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (isKeptInURLs(byte)) {
            result += c;
        } else {
            result += '%';
            result += digits[byte >> 4];
            result += digits[byte & 0xF];
        }
    }
    return result;
}

std::string LuSVNReplacePercentEscapes(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 && hexValue(text[i + 2]) >= 0) {
            result += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

}  // namespace tessera_private
