// Property texts and values: names, ignore and keyword lists, quoting, glob
// matching through the backend, standard property keys, and dates (Subversion's
// date text through the real backend, local and locale-dependent forms).
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPatternMatching.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNPropertyConversion.h>
#include <tessera/LuSVNStandardProperties.h>

#include <gtest/gtest.h>


#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

namespace {

using Date = LuSVNDateConversion::Date;
using Strings = std::vector<std::string>;
using namespace std::chrono;

Date utc(int year, unsigned month, unsigned day, int hour = 0, int minute = 0, int second = 0)
{
    return sys_days{std::chrono::year{year} / month / day} + hours{hour} + minutes{minute} + seconds{second};
}

using tessera_test::ScopedEnvironment;
using tessera_test::expectParameterAssertion;

TEST(LuSVNPropertyConversionTest, PropertyNameValidity)
{
    const struct {
        std::string name;
        bool valid;
    } cases[] = {
        {"SVN:Ignore", true}, {"svn:eol-style", true}, {"_private", true}, {":x", true},
        {"a-b.c:d_e9", true}, {"1abc", false},         {"a b", false},    {"", false},
        {"-a", false},        {".a", false},           {"a/b", false},    {"caf\xC3\xA9", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNPropertyConversion::isValidPropertyName(c.name), c.valid) << '"' << c.name << '"';
}

TEST(LuSVNPropertyConversionTest, IgnoreListSplitsAtLineEndsAndTabsAndTrims)
{
    const struct {
        std::string text;
        Strings patterns;
    } cases[] = {
        {"*.o\r\n\n  *.a  ", {"*.o", "*.a"}},
        {"", {}},
        {"\n\r\t\013", {}},
        {"a\tb\013c\rd", {"a", "b", "c", "d"}},
        {"two words", {"two words"}},        // a blank does not separate
        {"\f x \f\ny", {"x", "y"}},           // form feed is trimmed, not a separator
        {"\xC2\xA0nbsp\xC2\xA0\n", {"nbsp"}},  // Unicode white space is trimmed too
        {"a\nb\na", {"a", "b", "a"}},          // duplicates stay
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNPropertyConversion::ignoreListValue(c.text), c.patterns) << testing::PrintToString(c.text);
}

TEST(LuSVNPropertyConversionTest, IgnoreListJoinsDistinctNonEmptyPatterns)
{
    const struct {
        Strings patterns;
        std::string text;
    } cases[] = {
        {{"a", "", "b", "a"}, "a\nb"},
        {{}, ""},
        {{"", ""}, ""},
        {{"b", "a", "b", "c"}, "b\na\nc"},
    };
    for (const auto& c : cases) {
        const std::string text = LuSVNPropertyConversion::stringFromIgnoreList(c.patterns);
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(LuSVNPropertyConversion::stringFromIgnoreList(LuSVNPropertyConversion::ignoreListValue(text)),
                  text);
    }
}

TEST(LuSVNPropertyConversionTest, KeywordListSplitsAtSingleBlanksAndJoinsBack)
{
    const struct {
        std::string text;
        Strings keywords;
    } cases[] = {
        {"Id Rev Author", {"Id", "Rev", "Author"}},
        {"", {""}},
        {"a  b", {"a", "", "b"}},
        {" a ", {"", "a", ""}},
        {"a\tb\nc", {"a\tb\nc"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(LuSVNPropertyConversion::keywordListValue(c.text), c.keywords) << testing::PrintToString(c.text);
        EXPECT_EQ(LuSVNPropertyConversion::stringFromKeywordList(c.keywords), c.text);
    }
    EXPECT_EQ(LuSVNPropertyConversion::stringFromKeywordList({}), "");
}

TEST(LuSVNPropertyConversionTest, QuotedStringQuotesTextWithWhiteSpace)
{
    const struct {
        std::string text;
        std::string quoted;
    } cases[] = {
        {"plain", "plain"},          {"", ""},
        {"a b", "\"a b\""},          {"line\n", "\"line\n\""},
        {"\ttab", "\"\ttab\""},      {"no\xC2\xA0" "break", "\"no\xC2\xA0" "break\""},
        {"say\"hi\"", "say\"hi\""},  {"caf\xC3\xA9", "caf\xC3\xA9"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNPropertyConversion::quotedString(c.text), c.quoted) << testing::PrintToString(c.text);
}

TEST(LuSVNPatternMatchingTest, SubversionDecidesGlobMatches)
{
    const Strings defaultIgnores =
        LuSVNPropertyConversion::keywordListValue(std::string(LuSVNConfigDefaultGlobalIgnores));
    const struct {
        std::string text;
        Strings patterns;
        bool matches;
    } cases[] = {
        {"main.o", {"*.o"}, true},
        {"main.c", {"*.o", "*.a"}, false},
        {"libx.a", {"*.o", "*.a"}, true},
        {"anything", {}, false},
        {"libx.so.1", defaultIgnores, true},
        {".DS_Store", defaultIgnores, true},
        {"README", defaultIgnores, false},
        {"dir/main.o", {"*.o"}, true},  // no path semantics: "*" crosses "/"
        {"a?c", {"a\\?c"}, true},
        {"abc", {"a\\?c"}, false},
        {"b", {"[a-c]"}, true},
    };
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNPatternMatching::matchesPatternInArray(c.text, c.patterns, frame.pool()), c.matches)
            << c.text << " against " << testing::PrintToString(c.patterns);
    expectParameterAssertion([] { LuSVNPatternMatching::matchesPatternInArray("a", {"*"}, nullptr); }, "pool != 0");
}

TEST(LuSVNStandardPropertiesTest, FlagsStoreAStarOrRemoveTheKey)
{
    LuSVNPropertyMap properties{{"other", std::string("kept")}};
    LuSVNStandardProperties::setExecutable(properties, true);
    LuSVNStandardProperties::setNeedsLock(properties, true);
    EXPECT_EQ(properties, (LuSVNPropertyMap{{"other", std::string("kept")},
                                            {"svn:executable", std::string("*")},
                                            {"svn:needs-lock", std::string("*")}}));
    LuSVNStandardProperties::setExecutable(properties, false);
    LuSVNStandardProperties::setNeedsLock(properties, false);
    LuSVNStandardProperties::setNeedsLock(properties, false);  // removing an absent key is no error
    EXPECT_EQ(properties, (LuSVNPropertyMap{{"other", std::string("kept")}}));
}

TEST(LuSVNStandardPropertiesTest, EndOfLineStyleMustBeOneOfTheConstants)
{
    for (std::string_view style :
         {LuSVNEndOfLineNative, LuSVNEndOfLineLF, LuSVNEndOfLineCR, LuSVNEndOfLineCRLF, LuSVNEndOfLineDefault}) {
        LuSVNPropertyMap properties;
        LuSVNStandardProperties::setEOLStyle(properties, style);
        EXPECT_EQ(properties, (LuSVNPropertyMap{{"svn:eol-style", std::string(style)}}));
    }
    for (const char* style : {"lf", "Native", "\n", "CRLF "}) {
        LuSVNPropertyMap properties;
        expectParameterAssertion([&] { LuSVNStandardProperties::setEOLStyle(properties, style); },
                                 "style is LuSVNEndOfLineLF, LuSVNEndOfLineCR, LuSVNEndOfLineCRLF, "
                                 "LuSVNEndOfLineNative or LuSVNEndOfLineDefault");
        EXPECT_TRUE(properties.empty());
    }
}

TEST(LuSVNDateConversionTest, APRTimesKeepMicroseconds)
{
    EXPECT_EQ(LuSVNDateConversion::dateWithAPRTime(0), std::nullopt);
    expectParameterAssertion([] { LuSVNDateConversion::initWithAPRTime(0); }, "time != 0");
    for (std::int64_t time : {std::int64_t{1272967872123456}, std::int64_t{-1}, std::int64_t{1}}) {
        EXPECT_EQ(LuSVNDateConversion::dateWithAPRTime(time), Date(microseconds(time)));
        EXPECT_EQ(LuSVNDateConversion::initWithAPRTime(time), Date(microseconds(time)));
    }
    // Year 9999 is a valid Subversion time but lies beyond the clock.
    for (std::int64_t time : {std::int64_t{253402300799000000}, INT64_MIN, INT64_MAX})
        EXPECT_THROW(LuSVNDateConversion::dateWithAPRTime(time), LuSVNInvalidArgumentException) << time;
}

TEST(LuSVNDateConversionTest, SubversionDateTextsThroughTheBackend)
{
    const struct {
        std::optional<std::string> text;
        std::optional<Date> date;
    } cases[] = {
        {"2010-05-04T10:11:12.123456Z", utc(2010, 5, 4, 10, 11, 12) + microseconds(123456)},
        {"1999-12-31T23:59:59.000001Z", utc(1999, 12, 31, 23, 59, 59) + microseconds(1)},
        {"1970-01-01T00:00:00.000000Z", std::nullopt},  // APR time 0 is no date
        {std::nullopt, std::nullopt},
    };
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.value_or("(null)"));
        EXPECT_EQ(LuSVNDateConversion::dateWithISO8601String(c.text), c.date);
        EXPECT_EQ(LuSVNDateConversion::dateWithISO8601String(c.text, frame.pool()), c.date);
        EXPECT_EQ(LuSVNDateConversion::dateWithISO8601CString(c.text ? c.text->c_str() : nullptr, frame.pool()),
                  c.date);
    }
    for (const char* text : {"garbage", "", "2010-05-04", "2010-05-04T10:11:12Z", "2010-13-45T10:11:12.000000Z"}) {
        try {
            LuSVNDateConversion::dateWithISO8601String(text);
            ADD_FAILURE() << "no exception for " << text;
        } catch (const LuSVNException& e) {
            EXPECT_EQ(e.status(), 125003) << text;  // SVN_ERR_BAD_DATE
            EXPECT_EQ(e.reason(), "Bogus date") << text;
        }
    }
    EXPECT_THROW(LuSVNDateConversion::dateWithISO8601String("9999-12-31T00:00:00.000000Z"),
                 LuSVNInvalidArgumentException);
    expectParameterAssertion([] { LuSVNDateConversion::dateWithISO8601CString("x", nullptr); }, "pool != nil");
}

TEST(LuSVNDateConversionTest, ISO8601StringValueWritesLocalTimeOrTheDateAlone)
{
    const struct {
        const char* zone;
        Date date;
        std::string text;
    } cases[] = {
        {"UTC0", utc(2010, 5, 4, 10, 11, 12) + microseconds(999999), "2010-05-04T10:11:12"},
        {"UTC0", utc(2010, 5, 4, 10), "2010-05-04"},
        {"UTC0", utc(2010, 5, 4, 0, 30, 15), "2010-05-04"},
        {"UTC0", utc(2010, 5, 4, 10, 11), "2010-05-04"},
        {"UTC0", utc(1969, 12, 31, 23, 59, 59) + microseconds(500000), "1969-12-31T23:59:59"},
        {"XYZ-3", utc(2010, 5, 4, 10, 11, 12), "2010-05-04T13:11:12"},
        {"XYZ-3", utc(2010, 5, 4, 21), "2010-05-05"},  // midnight local time
        {"XYZ+5", utc(2010, 5, 4, 2, 1, 1), "2010-05-03T21:01:01"},
    };
    for (const auto& c : cases) {
        ScopedEnvironment environment{{"TZ", c.zone}};
        EXPECT_EQ(LuSVNDateConversion::ISO8601StringValue(c.date), c.text) << c.zone;
    }
}

TEST(LuSVNDateConversionTest, DatesRoundTripThroughSubversionText)
{
    ScopedEnvironment environment{{"TZ", "UTC0"}};
    for (const std::string text :
         {"2010-05-04T10:11:12", "1999-12-31T23:59:59", "2038-01-19T03:14:08", "1970-01-02T01:01:01"}) {
        // Subversion's text needs the fraction and zone that ours leaves out.
        const std::optional<Date> date = LuSVNDateConversion::dateWithISO8601String(text + ".000000Z");
        ASSERT_TRUE(date.has_value()) << text;
        EXPECT_EQ(LuSVNDateConversion::ISO8601StringValue(*date), text);
        EXPECT_EQ(LuSVNDateConversion::dateWithISO8601String(LuSVNDateConversion::ISO8601StringValue(*date) +
                                                             ".000000Z"),
                  date);
    }
}

TEST(LuSVNDateConversionTest, ParsesDatesInTheUsersLocale)
{
    // The calendar data are ICU's own, so these locales need not be installed.
    const struct {
        const char* lcAll;
        const char* lcTime;
        const char* lang;
        std::string text;
        std::optional<Date> day;
    } cases[] = {
        {"en_US.UTF-8", nullptr, nullptr, "5/4/10", utc(2010, 5, 4)},                 // short
        {"en_US.UTF-8", nullptr, nullptr, "May 4, 2010", utc(2010, 5, 4)},            // medium
        {"en_US.UTF-8", nullptr, nullptr, "January 15, 2009", utc(2009, 1, 15)},      // long
        {"en_US.UTF-8", nullptr, nullptr, "Tuesday, May 4, 2010", utc(2010, 5, 4)},   // full
        {"de_DE.UTF-8", nullptr, nullptr, "04.05.10", utc(2010, 5, 4)},
        {"de_DE.UTF-8", nullptr, nullptr, "04.05.2010", utc(2010, 5, 4)},
        {"de_DE.UTF-8", nullptr, nullptr, "4. Mai 2010", utc(2010, 5, 4)},
        {"de_DE.UTF-8", nullptr, nullptr, "Dienstag, 4. Mai 2010", utc(2010, 5, 4)},
        {"de_DE.UTF-8", nullptr, nullptr, "May 4, 2010", std::nullopt},
        {"C", nullptr, nullptr, "5/4/10", utc(2010, 5, 4)},
        {nullptr, nullptr, nullptr, "5/4/10", utc(2010, 5, 4)},                        // no locale: C
        {nullptr, "de_DE.UTF-8", "en_US.UTF-8", "4. Mai 2010", utc(2010, 5, 4)},       // LC_TIME before LANG
        {"en_US.UTF-8", "de_DE.UTF-8", nullptr, "May 4, 2010", utc(2010, 5, 4)},       // LC_ALL first
        {nullptr, nullptr, "de_DE.UTF-8", "04.05.10", utc(2010, 5, 4)},
        {"en_US.UTF-8", nullptr, nullptr, "2010", std::nullopt},                       // a number is no date
        {"en_US.UTF-8", nullptr, nullptr, "", std::nullopt},
        {"en_US.UTF-8", nullptr, nullptr, "5/4/10 and more", std::nullopt},
        {"en_US.UTF-8", nullptr, nullptr, "13/45/10", std::nullopt},
        {"en_US.UTF-8", nullptr, nullptr, "\xFF\xFE", std::nullopt},
        {"en_US.UTF-8", nullptr, nullptr, "HEAD", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text + " in " + (c.lcAll ? c.lcAll : "-") + "/" + (c.lcTime ? c.lcTime : "-") + "/" +
                     (c.lang ? c.lang : "-"));
        // Three hours east of Greenwich: the answer is midnight local time.
        ScopedEnvironment environment{{"LC_ALL", c.lcAll}, {"LC_TIME", c.lcTime}, {"LANG", c.lang}, {"TZ", "XYZ-3"}};
        const std::optional<Date> expected = c.day ? std::optional<Date>(*c.day - hours(3)) : std::nullopt;
        EXPECT_EQ(LuSVNDateConversion::parseDateString(c.text), expected);
    }
}

}  // namespace
