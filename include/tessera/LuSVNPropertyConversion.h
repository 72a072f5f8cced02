// Conversions between the texts of Subversion's standard properties and
// lists: property names, "svn:ignore" pattern lists, "svn:keywords" lists and
// quoting. Texts are UTF-8; none of these calls a backend.
//
// These are operations of strings and of lists of strings, gathered as static
// members: an operation of a string takes that string as its first argument.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <tessera/LuSVNExport.h>

class TESSERA_EXPORT LuSVNPropertyConversion {
public:
    LuSVNPropertyConversion() = delete;

    /// Whether the name may name a property: its first character is a letter,
    /// ":" or "_", and every character a letter, a digit, "-", ".", ":" or "_".
    /// Letters are the ASCII ones of either case ("SVN:Ignore" is valid); the
    /// empty name is not valid.
    static bool isValidPropertyName(std::string_view name);

    /// The patterns of an "svn:ignore" value: the text split at each newline,
    /// carriage return, tab and vertical tab, each piece trimmed of white space
    /// and line ends (as LuSVNTrim), the empty pieces left out, in order.
    static std::vector<std::string> ignoreListValue(std::string_view text);

    /// The "svn:ignore" value of a pattern list: the non-empty patterns, each
    /// distinct one once where it first occurs, joined with "\n" ("" for an
    /// empty list).
    static std::string stringFromIgnoreList(const std::vector<std::string>& patterns);

    /// The keywords of an "svn:keywords" value: the text split at every single
    /// blank, empty pieces kept ("" gives one empty keyword), so that
    /// stringFromKeywordList gives the text back.
    static std::vector<std::string> keywordListValue(std::string_view text);

    /// The keywords joined with one blank between each two.
    static std::string stringFromKeywordList(const std::vector<std::string>& keywords);

    /// The text as it is when it holds no white space or line end (Unicode's
    /// White_Space characters), else the text in double quotes. Quotes inside
    /// are not escaped.
    static std::string quotedString(std::string_view text);
};
