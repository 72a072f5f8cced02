// Helpers for tests against the real Subversion: temporary directories, the
// svn programs with a private configuration directory, fixtures.
#pragma once

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "TesseraTestBundles.h"

namespace tessera_test {

/// A fresh directory below the system's temporary directory, removed with
/// everything in it when the object goes.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

/// Sets environment variables (null: unset) for its lifetime, then puts back
/// what was there. The C library's time zone follows TZ both ways.
class ScopedEnvironment {
public:
    ScopedEnvironment(std::initializer_list<std::pair<const char*, const char*>> values);
    ~ScopedEnvironment();
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

/// Output and exit status of a command.
struct CommandResult {
    int status;
    std::string output;
};

/// Runs a program with arguments (no shell), standard error merged into the
/// output.
CommandResult run(const std::vector<std::string>& arguments);

/// Runs the svn client with a private configuration directory and no prompts.
CommandResult svn(std::vector<std::string> arguments);

/// Makes an FSFS repository with svnadmin and returns its file:// URL.
std::string makeRepository(const std::string& path);

/// Checks the URL out into the path with the svn client.
void checkout(const std::string& url, const std::string& path);

/// Writes a file, making nothing else.
void writeFile(const std::string& path, const std::string& contents);

/// Expects the call to raise LuSVNInternalInconsistencyException "Invalid
/// parameter not satisfying: <condition>".
void expectParameterAssertion(const std::function<void()>& call, const std::string& condition);

/// Points HOME at a fresh temporary directory for the whole process, so that
/// nothing touches the user's own Subversion configuration.
void isolateHome();

}  // namespace tessera_test
