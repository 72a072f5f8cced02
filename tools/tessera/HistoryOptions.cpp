#include "HistoryOptions.h"

#include <tessera/LuSVNException.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "Messages.h"
#include "Options.h"

CLI::Option* addRevisionRangeOption(CLI::App& command, std::optional<std::string>& text)
{
    return addOption(
        command, "-r,--revision", [&text](const std::string& value) { text = value; },
        revisionOptionHelp);
}

CLI::Option* addChangeOption(CLI::App& command, std::optional<std::string>& text)
{
    return addOption(
        command, "-c,--change", [&text](const std::string& value) { text = value; },
        "the change made by revision ARG (like -r ARG-1:ARG)\n"
        "If ARG is negative this is like -r ARG:ARG-1");
}

CLI::Option* addExtensionsOption(CLI::App& command, std::optional<std::string>& text)
{
    return addOption(
        command, "-x,--extensions", [&text](const std::string& value) { text = value; },
        "how lines are compared: -b (--ignore-space-change),\n"
        "-w (--ignore-all-space), --ignore-eol-style");
}

std::int32_t changeNumber(const std::string& text)
{
    const std::string digits = text.substr(!text.empty() && text.front() == '-');
    char* end = nullptr;
    const long change = std::strtol(digits.c_str(), &end, 10);
    if (digits.empty() || *end != '\0' || digits.front() == '-' || digits.front() == '+' || change > 0x7fffffffL)
        raiseArgumentError("Non-numeric change argument (" + text + ") given to -c");
    if (change == 0)
        raiseArgumentError("There is no change 0");
    return static_cast<std::int32_t>(digits.size() == text.size() ? change : -change);
}

LuSVNDiffOptions diffOptionsForExtensions(const std::optional<std::string>& extensions)
{
    LuSVNDiffOptions options;
    std::istringstream words(extensions.value_or(""));
    for (std::string word; words >> word;) {
        if (word == "-b" || word == "--ignore-space-change")
            options.setWhitespaceCompareBehavior(1);  // changes in white space
        else if (word == "-w" || word == "--ignore-all-space")
            options.setWhitespaceCompareBehavior(2);  // all white space
        else if (word == "--ignore-eol-style")
            options.setIgnoreEOLStyle(true);
        else if (word.front() == '-' && word != "-u" && word != "--unified" && word != "-p" &&
                 word != "--show-c-function")
            // The option parser's own words, line break included.
            throwErrorChain({{200016, "Error in options to internal diff"},
                             {200016, word.rfind("--", 0) == 0 ? "invalid option: " + word + "\n"
                                                                : "invalid option character: " + word.substr(1, 1) +
                                                                      "\n"}});
    }
    return options;
}

void raiseArgumentError(const std::string& message)
{
    throwOptionValueError({{TesseraArgumentParsingError, message}});
}

namespace {

void raiseWriteError(const std::string& failure)
{
    // svn's code is the system's error number: E000028 for a full disk.
    const int error = errno;
    LuSVNException::exceptionWithReason(failure + ": " + std::strerror(error), error)->raise();
}

}  // namespace

void writeOutput(const std::string& text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        raiseWriteError("Write error");
}

void flushOutput(const std::string& failure)
{
    if (std::fflush(stdout) != 0)
        raiseWriteError(failure);
}
