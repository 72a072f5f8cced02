// The pieces of log and blame output shared by the commands: revision
// ranges, svn's two date forms in several time zones, and its XML.
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNRevisionSpec.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include "HistoryOptions.h"
#include "Options.h"
#include "RevisionDates.h"
#include "XMLText.h"

namespace {

using namespace std::chrono;

TEST(TesseraHistoryText, RevisionRanges)
{
    struct Case {
        const char* argument;
        const char* first;
        std::optional<std::string> second;
    };
    const Case cases[] = {
        {"5", "5", std::nullopt},         {"2:4", "2", "4"},        {"HEAD:1", "HEAD", "1"},
        {"r2:BASE", "2", "BASE"},         {"prev:committed", "PREV", "COMMITTED"},
    };
    for (const auto& c : cases) {
        const auto [first, second] = parseRevisionRange(c.argument);
        EXPECT_EQ(first->keyRevision()->description(), c.first) << c.argument;
        EXPECT_EQ(second ? std::optional(second->keyRevision()->description()) : std::nullopt, c.second)
            << c.argument;
    }
    // A colon inside a date is no range.
    const auto [date, none] = parseRevisionRange("{2024-01-02T03:04:05Z}:7");
    EXPECT_EQ(date->date(), sys_days(year(2024) / 1 / 2) + hours(3) + minutes(4) + seconds(5));
    EXPECT_EQ(none->keyRevision()->number(), 7);

    for (const std::string bad : {"1:", ":2", "1:x", "x:1", "1:2:3"}) {
        try {
            parseRevisionRange(bad);
            ADD_FAILURE() << "'" << bad << "' accepted";
        } catch (const LuSVNException& e) {
            EXPECT_EQ(e.status(), 205000) << bad;
            EXPECT_EQ(e.reason(), "Syntax error in revision argument '" + bad + "'");
        }
    }
}

TEST(TesseraHistoryText, Changes)
{
    const std::pair<const char*, std::int32_t> good[] = {{"5", 5}, {"-5", -5}, {"2147483647", 2147483647}};
    for (const auto& [argument, expected] : good)
        EXPECT_EQ(changeNumber(argument), expected) << argument;
    const std::pair<std::string, std::string> bad[] = {
        {"", "Non-numeric change argument () given to -c"},     {"x", "Non-numeric change argument (x) given to -c"},
        {"--5", "Non-numeric change argument (--5) given to -c"}, {"5x", "Non-numeric change argument (5x) given to -c"},
        {"0", "There is no change 0"},                           {"-0", "There is no change 0"},
    };
    for (const auto& [argument, message] : bad) {
        try {
            changeNumber(argument);
            ADD_FAILURE() << "'" << argument << "' accepted";
        } catch (const LuSVNException& e) {
            EXPECT_EQ(e.status(), 205000) << argument;
            EXPECT_EQ(e.reason(), message);
        }
    }
}

TEST(TesseraHistoryText, DiffExtensions)
{
    struct Case {
        const char* extensions;
        std::int32_t whitespace;
        bool eol;
    };
    const Case cases[] = {
        {"", 0, false},  {"-b", 1, false}, {"--ignore-space-change", 1, false}, {"-w", 2, false},
        {"-u -w", 2, false}, {" --ignore-all-space\t-p ", 2, false}, {"--ignore-eol-style -b", 1, true},
    };
    for (const auto& c : cases) {
        const auto options = diffOptionsForExtensions(std::string(c.extensions));
        EXPECT_EQ(options.whitespaceCompareBehavior(), c.whitespace) << c.extensions;
        EXPECT_EQ(options.ignoreEOLStyle(), c.eol) << c.extensions;
    }
    for (const std::string bad : {"-b --context", "-q"}) {
        try {
            diffOptionsForExtensions(bad);
            ADD_FAILURE() << bad << " accepted";
        } catch (const LuSVNException& e) {
            EXPECT_EQ(e.status(), 200016) << bad;
            EXPECT_EQ(e.reason(), "Error in options to internal diff");
        }
    }
}

TEST(TesseraHistoryText, Dates)
{
    const auto instant = sys_days(year(2026) / 11 / 24) + hours(5) + minutes(9) + seconds(18) + microseconds(4567);
    EXPECT_EQ(repositoryDate(instant), "2026-11-24T05:09:18.004567Z");
    EXPECT_EQ(repositoryDate(sys_days(year(1969) / 12 / 31) + hours(23) + microseconds(5)),
              "1969-12-31T23:00:00.000005Z");

    const std::optional<std::string> saved =
        std::getenv("TZ") ? std::optional<std::string>(std::getenv("TZ")) : std::nullopt;
    const std::pair<const char*, const char*> zones[] = {
        {"UTC", "2026-11-24 05:09:18 +0000 (Tue, 24 Nov 2026)"},
        {"Asia/Kolkata", "2026-11-24 10:39:18 +0530 (Tue, 24 Nov 2026)"},
        {"America/St_Johns", "2026-11-24 01:39:18 -0330 (Tue, 24 Nov 2026)"},
        {"Pacific/Kiritimati", "2026-11-24 19:09:18 +1400 (Tue, 24 Nov 2026)"},
        {"America/Los_Angeles", "2026-11-23 21:09:18 -0800 (Mon, 23 Nov 2026)"},
    };
    for (const auto& [zone, expected] : zones) {
        setenv("TZ", zone, 1);
        EXPECT_EQ(humanDate(instant), expected) << zone;
    }
    if (saved)
        setenv("TZ", saved->c_str(), 1);
    else
        unsetenv("TZ");
}

TEST(TesseraHistoryText, XML)
{
    std::string out;
    appendXMLOpenTag(out, "path", {{"action", "A"}, {"copyfrom-path", "/a \"b\" <'c'>&\n\t"}}, true);
    appendXMLData(out, "/x & <y>\r\n\"q\"");
    EXPECT_EQ(out, "<path\n   action=\"A\"\n   copyfrom-path=\"/a &quot;b&quot; &lt;&apos;c&apos;&gt;&amp;&#10;&#9;\">"
                   "/x &amp; &lt;y&gt;&#13;\n\"q\"");

    out.clear();
    appendXMLOpenTag(out, "paths", {});
    appendXMLTaggedData(out, "msg", std::string("bell\a, nul\0, tab\t.", 18));
    EXPECT_EQ(out, "<paths>\n<msg>bell?\\007, nul?\\000, tab\t.</msg>\n");
}

}  // namespace
