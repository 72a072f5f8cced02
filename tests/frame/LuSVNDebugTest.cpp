// The diagnostic log: levels, excerpts, line format, and the trace of the
// real command-line program.
#include <tessera/LuSVNDebug.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <sstream>
#include <vector>

#include "TesseraTestSupport.h"

namespace {

TEST(Debug, LogLevelForString)
{
    const struct {
        const char* value;
        int level;
    } cases[] = {
        {"off", LuSVNLogLevelOff},         {"OFF", LuSVNLogLevelOff},         {"normal", LuSVNLogLevelNormal},
        {"NORMAL", LuSVNLogLevelNormal},   {"debug", LuSVNLogLevelDebug},     {"Debug", LuSVNLogLevelDebug},
        {"verbose", LuSVNLogLevelVerbose}, {"VERBOSE", LuSVNLogLevelVerbose}, {"VeRbOsE", LuSVNLogLevelVerbose},
        {"2", LuSVNLogLevelNormal},        {"0", LuSVNLogLevelNormal},        {nullptr, LuSVNLogLevelNormal},
        {"", LuSVNLogLevelNormal},         {"verbose ", LuSVNLogLevelNormal}, {"of", LuSVNLogLevelNormal},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNDebug::logLevelForString(c.value), c.level) << (c.value ? c.value : "(null)");
}

TEST(Debug, Substring)
{
    const struct {
        std::optional<std::string> text;
        std::size_t maxLength;
        std::optional<std::string> expected;
    } cases[] = {
        {"a\nb", 10, "a\\nb"},
        {"abcdef", 3, "abc..."},
        {"abc", 3, "abc"},
        {"abc", 0, "..."},
        {"", 5, ""},
        {std::nullopt, 5, std::nullopt},
        {"a\nbcdef", 3, "a\\nb..."},
        {"\n\n\n", 2, "\\n\\n..."},
        // Characters, not bytes: never cut inside a sequence.
        {"\xC3\xA4\xC3\xB6\xC3\xBC", 2, "\xC3\xA4\xC3\xB6..."},
        {"\xC3\xA4\xC3\xB6\xC3\xBC", 3, "\xC3\xA4\xC3\xB6\xC3\xBC"},
        {"\xE6\x97\xA5\xF0\x9F\x8E\x89x", 2, "\xE6\x97\xA5\xF0\x9F\x8E\x89..."},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNDebugSubstring(c.text, c.maxLength), c.expected)
            << testing::PrintToString(c.text) << " " << c.maxLength;
}

TEST(Debug, LevelIsReadOnce)
{
    const int level = LuSVNDebug::logLevel();
    const char* previous = std::getenv("TesseraLogLevel");
    const std::optional<std::string> saved = previous ? std::optional<std::string>(previous) : std::nullopt;
    setenv("TesseraLogLevel", level == LuSVNLogLevelOff ? "verbose" : "off", 1);
    EXPECT_EQ(LuSVNDebug::logLevel(), level);
    if (saved)
        setenv("TesseraLogLevel", saved->c_str(), 1);
    else
        unsetenv("TesseraLogLevel");
}

// What the calls write to this process's standard error.
std::string capturedStandardError(const std::function<void()>& body)
{
    tessera_test::TemporaryDirectory directory;
    const std::string path = directory / "stderr";
    const int saved = dup(STDERR_FILENO);
    FILE* file = std::fopen(path.c_str(), "w");
    dup2(fileno(file), STDERR_FILENO);
    body();
    dup2(saved, STDERR_FILENO);
    close(saved);
    std::fclose(file);
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

TEST(Debug, LogLineFormatAndThreshold)
{
    const std::string written = capturedStandardError([] {
        LuSVNDebug::logAtLevel(LuSVNDebug::logLevel(), "value %d of %s", 42, "the answer");
        if (LuSVNDebug::logLevel() < LuSVNLogLevelVerbose)
            LuSVNDebug::logAtLevel(LuSVNDebug::logLevel() + 1, "above the level");
    });
    const std::regex line(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} frame_test\[)" + std::to_string(getpid()) +
                          R"(\] value 42 of the answer\n)");
    EXPECT_TRUE(std::regex_match(written, line)) << written;
}

// Runs the real command-line program built beside this test program, with
// the level in its environment; standard output and error apart.
struct ProgramRun {
    std::string output;
    std::string errors;
};

ProgramRun runTessera(const char* level)
{
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "tessera";
    EXPECT_TRUE(std::filesystem::exists(program)) << program << " is built by the tessera_cli target";
    tessera_test::TemporaryDirectory directory;
    const std::string errors = directory / "stderr";
    std::vector<std::string> arguments = {"env", "-u", "TesseraLogLevel"};
    if (level)
        arguments.push_back(std::string("TesseraLogLevel=") + level);
    arguments.insert(arguments.end(), {"sh", "-c", "exec \"$0\" backends 2>\"$1\"", program, errors});
    const tessera_test::CommandResult result = tessera_test::run(arguments);
    EXPECT_EQ(result.status, 0) << result.output;
    std::ifstream in(errors);
    return {result.output, std::string(std::istreambuf_iterator<char>(in), {})};
}

TEST(Debug, VerboseProgramTracesEachBundleLoadOnOneLine)
{
    const ProgramRun verbose = runTessera("verbose");

    // The bundles the program reports having loaded.
    std::map<std::string, int> loadedBundles;
    std::istringstream rows(verbose.output);
    std::string row;
    std::getline(rows, row);  // heading
    const std::regex bundleRow(R"(\S+\s+\d+\s+\d+ of \d+\s+(\S.*))");
    for (std::smatch match; std::getline(rows, row);)
        if (std::regex_match(row, match, bundleRow))
            loadedBundles[match[1]] = 0;
    ASSERT_FALSE(loadedBundles.empty()) << verbose.output;

    const std::regex traceLine(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} tessera\[\d+\] )"
                               R"(\[LuSVNBundleLoader loadBundleAtPath\] \(path: (.*)\))");
    std::istringstream lines(verbose.errors);
    std::string line;
    int traces = 0;
    for (std::smatch match; std::getline(lines, line);) {
        if (line.find("[LuSVNBundleLoader loadBundleAtPath] (path: ") == std::string::npos)
            continue;
        ++traces;
        ASSERT_TRUE(std::regex_match(line, match, traceLine)) << line;
        ASSERT_TRUE(loadedBundles.count(match[1])) << line;
        ++loadedBundles[match[1]];
    }
    EXPECT_EQ(traces, static_cast<int>(loadedBundles.size())) << verbose.errors;
    for (const auto& [bundle, count] : loadedBundles)
        EXPECT_EQ(count, 1) << bundle;

    for (const char* quiet : {"off", "normal", static_cast<const char*>(nullptr)}) {
        const ProgramRun run = runTessera(quiet);
        EXPECT_EQ(run.output, verbose.output) << (quiet ? quiet : "(unset)");
        EXPECT_EQ(run.errors.find("[LuSVN"), std::string::npos) << run.errors;
    }
}

}  // namespace
