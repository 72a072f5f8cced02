#include <tessera/LuSVNPropertyConversion.h>

#include <tessera/LuSVNStrings.h>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <set>

bool LuSVNPropertyConversion::isValidPropertyName(std::string_view name)
{
    constexpr std::string_view firstCharacters = "abcdefghijklmnopqrstuvwxyz:_";
    constexpr std::string_view characters = "abcdefghijklmnopqrstuvwxyz0123456789-.:_";
    if (name.empty())
        return false;
    // Lower-casing ASCII only: a non-ASCII byte is never valid anyway.
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    if (firstCharacters.find(lower(name.front())) == std::string_view::npos)
        return false;
    for (char c : name)
        if (characters.find(lower(c)) == std::string_view::npos)
            return false;
    return true;
}

std::vector<std::string> LuSVNPropertyConversion::ignoreListValue(std::string_view text)
{
    constexpr std::string_view separators("\n\r\t\013", 4);
    std::vector<std::string> patterns;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find_first_of(separators, start);
        if (end == std::string_view::npos)
            end = text.size();
        std::string pattern = LuSVNTrim(std::string(text.substr(start, end - start)));
        if (!pattern.empty())
            patterns.push_back(std::move(pattern));
        start = end + 1;
    }
    return patterns;
}

std::string LuSVNPropertyConversion::stringFromIgnoreList(const std::vector<std::string>& patterns)
{
    std::set<std::string_view> seen;
    std::string text;
    for (const std::string& pattern : patterns) {
        if (pattern.empty() || !seen.insert(pattern).second)
            continue;
        if (!text.empty())
            text += '\n';
        text += pattern;
    }
    return text;
}

std::vector<std::string> LuSVNPropertyConversion::keywordListValue(std::string_view text)
{
    std::vector<std::string> keywords;
    std::size_t start = 0;
    for (std::size_t blank; (blank = text.find(' ', start)) != std::string_view::npos; start = blank + 1)
        keywords.emplace_back(text.substr(start, blank - start));
    keywords.emplace_back(text.substr(start));
    return keywords;
}

std::string LuSVNPropertyConversion::stringFromKeywordList(const std::vector<std::string>& keywords)
{
    std::string text;
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        if (i > 0)
            text += ' ';
        text += keywords[i];
    }
    return text;
}

std::string LuSVNPropertyConversion::quotedString(std::string_view text)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    for (std::size_t index = 0; index < text.size();) {
        UChar32 c;
        U8_NEXT(bytes, index, text.size(), c);
        if (c >= 0 && u_isUWhiteSpace(c))
            return "\"" + std::string(text) + "\"";
    }
    return std::string(text);
}
