// Conversions between text, binary data and Subversion strings, and the
// text helpers.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNStrings.h>

#include "TesseraTestSupport.h"

#include <gtest/gtest.h>

#include <functional>

#include "LuSVNBackendFrame.h"

namespace {

std::string bytes(std::initializer_list<unsigned char> values)
{
    return std::string(values.begin(), values.end());
}

class SVNStringTest : public testing::Test {
protected:
    svn_string_t* svnString(const std::string& data)
    {
        return LuSVNEntry<22>()(data.data(), data.size(), frame.pool());
    }

    LuSVNBackendFrame frame{LuSVNBundleLoader::sharedInstance()->newestBundle()};
};

TEST_F(SVNStringTest, ValidUTF8IsTextOtherBytesAreData)
{
    const struct {
        std::string data;
        bool isText;
    } cases[] = {
        {"", true},
        {"plain ascii", true},
        {"Gr\xC3\xBC\xC3\x9F" "e \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x8E\x89", true},
        {std::string("nul\0inside", 10), true},
        {bytes({0xFF, 0xFE}), false},
        {bytes({'a', 0xC3}), false},
        {bytes({0xC0, 0x80}), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.data));
        const LuSVNPropertyValue value = LuSVNObjectFromSVNString(svnString(c.data));
        const std::optional<std::string> text = LuSVNStringWithSVNString(svnString(c.data));
        if (c.isText) {
            ASSERT_TRUE(std::holds_alternative<std::string>(value));
            EXPECT_EQ(std::get<std::string>(value), c.data);
            EXPECT_EQ(text, c.data);
        } else {
            ASSERT_TRUE(std::holds_alternative<LuSVNData>(value));
            EXPECT_EQ(std::get<LuSVNData>(value), LuSVNData(c.data.data(), c.data.size()));
            EXPECT_FALSE(text.has_value());
        }
    }
}

TEST_F(SVNStringTest, ObjectsRoundTripThroughSubversionStrings)
{
    const std::string binary = bytes({0xFF, 0xFE, 0x00, 0x01, 0x80});
    const LuSVNPropertyValue values[] = {
        std::string("text"),
        std::string(""),
        std::string("with\0nul", 8),
        std::string("\xE2\x82\xAC 100"),
        LuSVNData(binary.data(), binary.size()),
        LuSVNData(),
    };
    for (const LuSVNPropertyValue& value : values) {
        svn_string_t* string = LuSVNStringFromObject(value, frame.pool());
        ASSERT_NE(string, nullptr);
        const std::string expected = std::holds_alternative<std::string>(value)
                                         ? std::get<std::string>(value)
                                         : std::string(std::get<LuSVNData>(value).data(),
                                                       std::get<LuSVNData>(value).data() +
                                                           std::get<LuSVNData>(value).size());
        EXPECT_EQ(std::string(string->data, string->len), expected);
        // Empty data reads back as empty text: both are valid UTF-8.
        if (std::holds_alternative<LuSVNData>(value) && std::get<LuSVNData>(value).empty())
            EXPECT_EQ(LuSVNObjectFromSVNString(string), LuSVNPropertyValue(std::string()));
        else
            EXPECT_EQ(LuSVNObjectFromSVNString(string), value);
    }
    svn_string_t* text = LuSVNSVNStringUsingPool(std::string("a\0b", 3), frame.pool());
    EXPECT_EQ(std::string(text->data, text->len), std::string("a\0b", 3));
}

TEST_F(SVNStringTest, NullArgumentsAreRefused)
{
    const struct {
        std::function<void()> call;
        const char* condition;
    } cases[] = {
        {[] { LuSVNObjectFromSVNString(nullptr); }, "string != nil"},
        {[] { LuSVNStringWithSVNString(nullptr); }, "string != nil"},
        {[] { LuSVNStringFromObject(std::string("x"), nullptr); }, "pool != nil"},
        {[] { LuSVNSVNStringUsingPool("x", nullptr); }, "pool != nil"},
    };
    for (const auto& c : cases)
        tessera_test::expectParameterAssertion(c.call, c.condition);
}

TEST(Strings, Trim)
{
    const struct {
        std::string text;
        std::string expected;
    } cases[] = {
        {"abc", "abc"},
        {"", ""},
        {"  abc  ", "abc"},
        {"\t\nabc\r\n", "abc"},
        {"a b\tc", "a b\tc"},
        {"\xC2\xA0" "abc\xE3\x80\x80", "abc"},
        {"\xE3\x80\x80 \xC2\xA0x\xC2\xA0y\xC2\xA0", "x\xC2\xA0y"},
        {"\xE2\x80\xA8line\xE2\x80\xA9", "line"},
        {"   ", ""},
        {" \xC2\xA0\n\xE3\x80\x80", ""},
        {"\xC3\xA9t\xC3\xA9", "\xC3\xA9t\xC3\xA9"},
        {" \xC3\xA9 ", "\xC3\xA9"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNTrim(c.text), c.expected) << testing::PrintToString(c.text);
}

TEST(Strings, URLEncodingSpaces)
{
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {
        {"a b", "a%20b"},
        {"no-blanks", "no-blanks"},
        {"", ""},
        {"  ", "%20%20"},
        {" lead and trail ", "%20lead%20and%20trail%20"},
        {"tab\tstays", "tab\tstays"},
        {"%20 already", "%20%20already"},
        {"\xC3\xBC b", "\xC3\xBC%20b"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNStringByURLEncodingSpaces(c.text), c.expected) << c.text;
}

TEST(Strings, ReplacingCharactersInSet)
{
    const struct {
        const char* text;
        const char* set;
        const char* replacement;
        const char* expected;
    } cases[] = {
        {"a/b\\c", "/\\", "-", "a-b-c"},
        {"a\xE2\x80\x93" "b\xE2\x80\x94" "c", "\xE2\x80\x93\xE2\x80\x94", "-", "a-b-c"},
        {"a/b", "/", "\xE2\x86\x92", "a\xE2\x86\x92" "b"},
        {"aXbX", "X", "YY", "aYYbYY"},
        {"\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E", "\xE6\x9C\xAC", "", "\xE6\x97\xA5\xE8\xAA\x9E"},
        {"a\xF0\x9F\x8E\x89" "b", "\xF0\x9F\x8E\x89", "!", "a!b"},
        // A set member sharing a lead byte with the text is still another character.
        {"\xC3\xA9", "\xC3\xA8", "x", "\xC3\xA9"},
        {"unchanged", "", "x", "unchanged"},
        {"", "abc", "x", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNStringByReplacingCharactersInSet(c.text, c.set, c.replacement), c.expected)
            << c.text << " / " << c.set;
}

TEST(Strings, IsValidUTF8)
{
    const struct {
        std::string bytes;
        bool valid;
    } cases[] = {
        {"", true},
        {"ascii", true},
        {bytes({0xC3, 0xA9}), true},
        {bytes({0xE2, 0x82, 0xAC}), true},
        {bytes({0xED, 0x9F, 0xBF}), true},        // U+D7FF, just below the surrogates
        {bytes({0xEE, 0x80, 0x80}), true},        // U+E000, just above
        {bytes({0xF0, 0x9F, 0x8E, 0x89}), true},  // U+1F389
        {bytes({0xF4, 0x8F, 0xBF, 0xBF}), true},  // U+10FFFF
        {bytes({0xC0, 0x80}), false},             // overlong NUL
        {bytes({0xC1, 0xBF}), false},             // overlong 2-byte
        {bytes({0xE0, 0x80, 0x80}), false},       // overlong 3-byte
        {bytes({0xF0, 0x80, 0x80, 0x80}), false}, // overlong 4-byte
        {bytes({0xED, 0xA0, 0x80}), false},       // U+D800
        {bytes({0xED, 0xBF, 0xBF}), false},       // U+DFFF
        {bytes({0xF4, 0x90, 0x80, 0x80}), false}, // U+110000
        {bytes({0xF5, 0x80, 0x80, 0x80}), false},
        {bytes({0xF8, 0x88, 0x80, 0x80, 0x80}), false},
        {bytes({0xFF}), false},
        {bytes({0x80}), false},                   // lone continuation byte
        {bytes({0xC3}), false},                   // truncated
        {bytes({0xE2, 0x82}), false},
        {bytes({0xF0, 0x9F, 0x8E}), false},
        {bytes({'a', 0xC3}), false},
        {bytes({0xC3, 'A'}), false},              // continuation missing
        {bytes({0xE2, 0x82, 0xAC, 0x80}), false}, // one continuation too many
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNIsValidUTF8(c.bytes), c.valid) << testing::PrintToString(c.bytes);
}

}  // namespace
