// The option forms of svn that every tessera command takes: each command line
// of the table parsed by a command declared with the shared helpers.
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNRevisionSpec.h>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "Options.h"

namespace {

struct Parsed {
    bool verbose = false;
    bool update = false;
    std::optional<std::string> depth;
    std::optional<std::string> revision;
    std::optional<std::string> message;
    std::vector<std::string> arguments;
    std::vector<std::string> leftOver;  // what no declaration took
};

// Parses "tessera test ARGUMENTS" as the program does: the command's
// unknown options are left over, not refused by the parser.
Parsed parse(std::vector<std::string> arguments)
{
    Parsed parsed;
    CLI::App program("tessera");
    CLI::App* command = program.add_subcommand("test");
    command->allow_extras();
    addFlag(*command, "-v,--verbose", parsed.verbose, "print extra information");
    addFlag(*command, "-u,--show-updates", parsed.update, "display update information");
    addDepthOption(*command, [&](const std::string& word) { parsed.depth = word; });
    addOption(
        *command, "-r,--revision", [&](const std::string& value) { parsed.revision = value; }, "ARG");
    addOption(
        *command, "-m,--message", [&](const std::string& value) { parsed.message = value; }, "ARG");
    addArguments(*command, parsed.arguments);
    arguments.insert(arguments.begin(), {"tessera", "test"});
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    program.parse(parserArguments(program, static_cast<int>(argv.size()), argv.data()));
    for (const std::string& argument : command->remaining())
        if (argument != "--")
            parsed.leftOver.push_back(argument);
    return parsed;
}

using Strings = std::vector<std::string>;

TEST(TesseraOptions, SvnFormsOfOptionsAndArguments)
{
    struct Case {
        Strings commandLine;
        bool verbose, update;
        std::optional<std::string> depth, revision;
        Strings arguments, leftOver;
    };
    const Case cases[] = {
        {{"-vu", "wc"}, true, true, {}, {}, {"wc"}, {}},
        {{"-uv"}, true, true, {}, {}, {}, {}},
        {{"--depth=empty", "a"}, false, false, "empty", {}, {"a"}, {}},
        {{"--depth", "files", "a"}, false, false, "files", {}, {"a"}, {}},
        {{"--depth", "empty", "--depth", "immediates"}, false, false, "immediates", {}, {}, {}},
        {{"-r", "5:7", "url"}, false, false, {}, "5:7", {"url"}, {}},
        {{"-r5:7"}, false, false, {}, "5:7", {}, {}},
        {{"--revision={2024-01-01}:HEAD"}, false, false, {}, "{2024-01-01}:HEAD", {}, {}},
        {{"--revision=", "url"}, false, false, {}, "", {"url"}, {}},
        {{"--", "--revision="}, false, false, {}, {}, {"--revision="}, {}},
        {{"-vr", "PREV"}, true, false, {}, "PREV", {}, {}},
        {{"a@HEAD", "b@12", "c@{2024-01-01}", "d@"},
         false, false, {}, {}, {"a@HEAD", "b@12", "c@{2024-01-01}", "d@"}, {}},
        {{"a", "-v", "b"}, true, false, {}, {}, {"a", "b"}, {}},
        {{"--", "-v", "--depth=empty"}, false, false, {}, {}, {"-v", "--depth=empty"}, {}},
        {{"-v", "--", "-u"}, true, false, {}, {}, {"-u"}, {}},
        {{"--bogus", "a"}, false, false, {}, {}, {"a"}, {"--bogus"}},
        {{"-vZ"}, true, false, {}, {}, {}, {"-Z"}},
    };
    for (const Case& c : cases) {
        std::string line;
        for (const std::string& word : c.commandLine)
            line += " " + word;
        const Parsed parsed = parse(c.commandLine);
        EXPECT_EQ(parsed.verbose, c.verbose) << line;
        EXPECT_EQ(parsed.update, c.update) << line;
        EXPECT_EQ(parsed.depth, c.depth) << line;
        EXPECT_EQ(parsed.revision, c.revision) << line;
        EXPECT_EQ(parsed.arguments, c.arguments) << line;
        EXPECT_EQ(parsed.leftOver, c.leftOver) << line;
    }
}

TEST(TesseraOptions, RefusedAsSvnRefusesThem)
{
    // A depth that is none of svn's words is svn's error, with its code.
    for (const std::string word : {"bogus", "", "Empty"}) {
        try {
            parse({"--depth=" + word, "wc"});
            ADD_FAILURE() << "depth '" << word << "' accepted";
        } catch (const LuSVNException& e) {
            EXPECT_EQ(e.status(), 205000);
            EXPECT_EQ(e.reason(),
                      "'" + word + "' is not a valid depth; try 'empty', 'files', 'immediates', or 'infinity'");
        }
    }
    // A flag takes no value; an option needs one.
    EXPECT_THROW(parse({"-m"}), CLI::ArgumentMismatch);
    EXPECT_THROW(parse({"-v", "--message"}), CLI::ArgumentMismatch);
    EXPECT_THROW(parse({"--verbose=yes"}), CLI::ArgumentMismatch);
    EXPECT_THROW(parse({"--verbose=", "wc"}), CLI::ArgumentMismatch);
    EXPECT_THROW(parse({"--depth"}), CLI::ArgumentMismatch);
    EXPECT_THROW(parse({"-r"}), CLI::ArgumentMismatch);
}

// The word after an option that takes a value is its value, whatever it
// looks like, as in svn; the same word elsewhere is still an option.
TEST(TesseraOptions, ValuesThatLookLikeOptions)
{
    struct Case {
        Strings commandLine;
        std::optional<std::string> message;
        bool verbose;
        Strings arguments;
    };
    const Case cases[] = {
        {{"-m", "-x", "a"}, "-x", false, {"a"}},
        {{"--message", "-v"}, "-v", false, {}},
        {{"-vm", "--depth=empty"}, "--depth=empty", true, {}},
        {{"-m", "-", "-v"}, "-", true, {}},
        {{"-m", "--", "b"}, "--", false, {"b"}},
        {{"--message=-v"}, "-v", false, {}},
        {{"-m-v"}, "-v", false, {}},
        {{"--", "-m", "-v"}, {}, false, {"-m", "-v"}},
        {{"-v", "-m", "plain"}, "plain", true, {}},
    };
    for (const Case& c : cases) {
        std::string line;
        for (const std::string& word : c.commandLine)
            line += " " + word;
        const Parsed parsed = parse(c.commandLine);
        EXPECT_EQ(parsed.message, c.message) << line;
        EXPECT_EQ(parsed.verbose, c.verbose) << line;
        EXPECT_EQ(parsed.arguments, c.arguments) << line;
    }
}

std::string revisionText(const std::string& argument)
{
    const auto revision = parseRevision(argument);
    return revision->operativeRevision()->description() + "@" + revision->pegRevision()->description();
}

TEST(TesseraOptions, RevisionArguments)
{
    const std::pair<std::string, std::string> cases[] = {
        {"5", "5@UNSPECIFIED"},         {"r17", "17@UNSPECIFIED"},  {"rr3", "3@UNSPECIFIED"},
        {"0", "0@UNSPECIFIED"},         {"HEAD", "HEAD@UNSPECIFIED"}, {"head", "HEAD@UNSPECIFIED"},
        {"Base", "BASE@UNSPECIFIED"},   {"committed", "COMMITTED@UNSPECIFIED"},
        {"PREV", "PREV@UNSPECIFIED"},
    };
    for (const auto& [argument, expected] : cases)
        EXPECT_EQ(revisionText(argument), expected) << argument;

    // Dates: UTC with Z or an offset, else local time, as svn reads them.
    using namespace std::chrono;
    const auto utc = [](int year, unsigned month, unsigned day, int hour, int minute, int second) {
        return sys_days(std::chrono::year(year) / month / day) + hours(hour) + minutes(minute) + seconds(second);
    };
    const std::pair<std::string, system_clock::time_point> dates[] = {
        {"{2024-01-02T03:04:05Z}", utc(2024, 1, 2, 3, 4, 5)},
        {"{20240102T030405Z}", utc(2024, 1, 2, 3, 4, 5)},
        {"{2024-01-02T03:04:05.25Z}", utc(2024, 1, 2, 3, 4, 5) + milliseconds(250)},
        {"{2024-01-02T05:04+02:00}", utc(2024, 1, 2, 3, 4, 0)},
        {"{2024-01-02 01:04:05 -0200}", utc(2024, 1, 2, 3, 4, 5)},
    };
    for (const auto& [argument, expected] : dates) {
        const auto date = parseRevision(argument)->date();
        ASSERT_TRUE(date) << argument;
        EXPECT_EQ(*date, expected) << argument;
    }
    std::tm local{};
    local.tm_year = 2024 - 1900;
    local.tm_mon = 0;
    local.tm_mday = 2;
    local.tm_isdst = -1;
    EXPECT_EQ(parseRevision("{2024-01-02}")->date(), system_clock::from_time_t(std::mktime(&local)));

    for (const std::string bad : {"", "xyz", "-1", "5x", "{2024-13-01}", "{yesterday}", "{2024-01-01", "HEADS",
                                  "99999999999", "5:xyz"}) {
        try {
            parseRevision(bad);
            ADD_FAILURE() << "'" << bad << "' accepted";
        } catch (const LuSVNException& e) {
            EXPECT_EQ(e.status(), 205000) << bad;
            EXPECT_EQ(e.reason(), "Syntax error in revision argument '" + bad + "'");
        }
    }
    for (const std::string range : {"1:2", "HEAD:{2024-01-01}", "{2024-01-01}:3"}) {
        try {
            parseRevision(range);
            ADD_FAILURE() << "'" << range << "' accepted";
        } catch (const LuSVNException& e) {
            EXPECT_EQ(e.status(), 195008) << range;
            EXPECT_EQ(e.reason(), "Revision range is not allowed");
        }
    }
}

TEST(TesseraOptions, TargetsFile)
{
    const std::string path = testing::TempDir() + "tessera-targets";
    std::ofstream(path, std::ios::binary) << "a\n  b c \r\n\n\t\nd\re";
    EXPECT_EQ(readTargetsFile(path), (Strings{"a", "b c", "d", "e"}));
    std::remove(path.c_str());
    try {
        readTargetsFile(path);
        ADD_FAILURE() << "a missing targets file read";
    } catch (const LuSVNException& e) {
        EXPECT_EQ(e.status(), 2);
        EXPECT_EQ(e.reason(), "Can't open file '" + path + "': No such file or directory");
    }
}

}  // namespace
