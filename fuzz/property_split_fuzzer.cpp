// Splitting and joining of "svn:ignore" and "svn:keywords" values, checked
// against themselves (joining a split list and splitting again gives the same
// list), against Subversion's own splitter (entry point 24) and, for the
// patterns found, against Subversion's glob matcher (entry point 23).
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNPatternMatching.h>
#include <tessera/LuSVNPropertyConversion.h>
#include <tessera/LuSVNStrings.h>

#include <algorithm>
#include <set>

#include "LuSVNBackendFrame.h"
#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

namespace {

using Strings = std::vector<std::string>;

constexpr std::string_view ignoreSeparators("\n\r\t\013", 4);

Strings subversionSplit(const std::string& text, const char* separators, bool chopWhiteSpace, apr_pool_t* pool)
{
    const apr_array_header_t* pieces = LuSVNEntry<24>()(text.c_str(), separators, chopWhiteSpace, pool);
    Strings result;
    for (int i = 0; i < pieces->nelts; ++i)
        result.emplace_back(reinterpret_cast<const char* const*>(pieces->elts)[i]);
    return result;
}

Strings distinct(const Strings& list)
{
    std::set<std::string> seen;
    Strings result;
    for (const std::string& item : list)
        if (seen.insert(item).second)
            result.push_back(item);
    return result;
}

void checkIgnoreList(const std::string& text, apr_pool_t* pool)
{
    const Strings patterns = LuSVNPropertyConversion::ignoreListValue(text);
    for (const std::string& pattern : patterns) {
        require(!pattern.empty(), "ignore patterns are not empty");
        require(LuSVNTrim(pattern) == pattern, "ignore patterns are trimmed");
        require(pattern.find_first_of(ignoreSeparators) == std::string::npos, "ignore patterns hold no separator");
    }

    const std::string joined = LuSVNPropertyConversion::stringFromIgnoreList(patterns);
    const Strings again = LuSVNPropertyConversion::ignoreListValue(joined);
    require(again == distinct(patterns), "splitting a joined ignore list gives its distinct patterns");
    require(LuSVNPropertyConversion::stringFromIgnoreList(again) == joined, "joining is stable");

    // Subversion trims ASCII white space only and reads up to a NUL.
    const bool ascii = std::all_of(text.begin(), text.end(),
                                   [](char c) { return c != '\0' && static_cast<unsigned char>(c) < 0x80; });
    if (ascii)
        require(subversionSplit(text, "\n\r\t\013", true, pool) == patterns, "Subversion splits ignore lists alike");

    if (!patterns.empty() && text.find('\0') == std::string::npos) {
        require(LuSVNPatternMatching::matchesPatternInArray(patterns.front(), {"*"}, pool), "\"*\" matches all");
        require(!LuSVNPatternMatching::matchesPatternInArray(patterns.front(), {}, pool), "no pattern matches none");
        for (const std::string& pattern : patterns)
            if (pattern.find_first_of("*?[\\") == std::string::npos)
                require(LuSVNPatternMatching::matchesPatternInArray(pattern, patterns, pool),
                        "a pattern without wildcards matches itself");
    }
}

void checkKeywordList(const std::string& text, apr_pool_t* pool)
{
    const Strings keywords = LuSVNPropertyConversion::keywordListValue(text);
    require(keywords.size() == static_cast<std::size_t>(std::count(text.begin(), text.end(), ' ')) + 1,
            "one keyword more than blanks");
    require(LuSVNPropertyConversion::stringFromKeywordList(keywords) == text, "joining keywords gives the text");
    require(LuSVNPropertyConversion::keywordListValue(LuSVNPropertyConversion::stringFromKeywordList(keywords)) ==
                keywords,
            "splitting joined keywords gives the keywords");

    if (text.find('\0') == std::string::npos) {
        Strings nonEmpty;
        std::copy_if(keywords.begin(), keywords.end(), std::back_inserter(nonEmpty),
                     [](const std::string& keyword) { return !keyword.empty(); });
        require(subversionSplit(text, " ", false, pool) == nonEmpty, "Subversion splits keywords alike");
    }
}

void checkQuoting(const std::string& text)
{
    const std::string quoted = LuSVNPropertyConversion::quotedString(text);
    require(quoted == text || quoted == "\"" + text + "\"", "quoting adds two quotes or nothing");
    if (LuSVNTrim(text) != text)
        require(quoted != text, "text with white space at an end is quoted");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    tessera_fuzz::initializeLibrary();
    const std::string text = tessera_fuzz::textOf(data, size);
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    checkIgnoreList(text, frame.pool());
    checkKeywordList(text, frame.pool());
    checkQuoting(text);
    return 0;
}
