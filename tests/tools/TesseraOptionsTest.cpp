// The option forms of svn that every tessera command takes: each command line
// of the table parsed by a command declared with the shared helpers.
#include <tessera/LuSVNException.h>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

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
    EXPECT_THROW(parse({"--verbose=yes"}), CLI::ArgumentMismatch);
    EXPECT_THROW(parse({"--verbose=", "wc"}), CLI::ArgumentMismatch);
    EXPECT_THROW(parse({"--depth"}), CLI::ArgumentMismatch);
    EXPECT_THROW(parse({"-r"}), CLI::ArgumentMismatch);
}

}  // namespace
