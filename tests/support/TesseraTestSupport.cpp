#include "TesseraTestSupport.h"

#include <gtest/gtest.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace tessera_test {

namespace {

std::string makeTemporaryDirectory()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "tessera-test-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    return std::filesystem::canonical(pattern).string();
}

const TemporaryDirectory& configDirectory()
{
    static const TemporaryDirectory directory;
    return directory;
}

void setOrUnset(const char* name, const char* value)
{
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

}  // namespace

ScopedEnvironment::ScopedEnvironment(std::initializer_list<std::pair<const char*, const char*>> values)
{
    for (const auto& [name, value] : values) {
        const char* old = std::getenv(name);
        saved_.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
        setOrUnset(name, value);
    }
    tzset();
}

ScopedEnvironment::~ScopedEnvironment()
{
    // In reverse, so that a name given twice ends as it was before the first.
    for (auto entry = saved_.rbegin(); entry != saved_.rend(); ++entry)
        setOrUnset(entry->first.c_str(), entry->second ? entry->second->c_str() : nullptr);
    tzset();
}

TemporaryDirectory::TemporaryDirectory() : path_(makeTemporaryDirectory()) {}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

CommandResult run(const std::vector<std::string>& arguments)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
        throw std::runtime_error("pipe failed");
    const pid_t child = fork();
    if (child == 0) {
        dup2(pipeEnds[1], STDOUT_FILENO);
        dup2(pipeEnds[1], STDERR_FILENO);
        close(pipeEnds[0]);
        close(pipeEnds[1]);
        std::vector<char*> argv;
        for (const auto& argument : arguments)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    close(pipeEnds[1]);
    CommandResult result{0, {}};
    char buffer[4096];
    for (ssize_t count; (count = read(pipeEnds[0], buffer, sizeof buffer)) > 0;)
        result.output.append(buffer, static_cast<std::size_t>(count));
    close(pipeEnds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

CommandResult svn(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(),
                     {TESSERA_SVN_PROGRAM, "--config-dir", configDirectory().path(), "--non-interactive"});
    return run(arguments);
}

std::string makeRepository(const std::string& path)
{
    const CommandResult result = run({TESSERA_SVNADMIN_PROGRAM, "create", "--fs-type", "fsfs", path});
    if (result.status != 0)
        throw std::runtime_error("svnadmin create failed: " + result.output);
    return "file://" + path;
}

void checkout(const std::string& url, const std::string& path)
{
    const CommandResult result = svn({"checkout", "-q", url, path});
    if (result.status != 0)
        throw std::runtime_error("svn checkout failed: " + result.output);
}

void writeFile(const std::string& path, const std::string& contents)
{
    std::ofstream(path, std::ios::binary) << contents;
}

void expectParameterAssertion(const std::function<void()>& call, const std::string& condition)
{
    try {
        call();
        ADD_FAILURE() << "nothing thrown, expected the assertion " << condition;
    } catch (const LuSVNInternalInconsistencyException& e) {
        EXPECT_EQ(e.reason(), "Invalid parameter not satisfying: " + condition);
    }
}

void isolateHome()
{
    static const TemporaryDirectory home;
    setenv("HOME", home.path().c_str(), 1);
}

}  // namespace tessera_test
