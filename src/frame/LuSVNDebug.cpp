#include <tessera/LuSVNDebug.h>

#include <strings.h>
#include <unistd.h>

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

int LuSVNDebug::logLevelForString(const char* value)
{
    if (!value)
        return LuSVNLogLevelNormal;
    static const char* const names[] = {"off", "normal", "debug", "verbose"};
    for (int level = 0; level < 4; ++level)
        if (strcasecmp(value, names[level]) == 0)
            return level;
    return LuSVNLogLevelNormal;
}

int LuSVNDebug::logLevel()
{
    static const int level = logLevelForString(std::getenv("TesseraLogLevel"));
    return level;
}

void LuSVNDebug::logAtLevel(int level, const char* format, ...)
{
    if (logLevel() < level)
        return;
    va_list arguments;
    va_start(arguments, format);
    va_list copy;
    va_copy(copy, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string message(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (length > 0)
        std::vsnprintf(message.data(), message.size() + 1, format, arguments);
    va_end(arguments);

    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    char stamp[64];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);
    char prefix[128];
    std::snprintf(prefix, sizeof prefix, "%s.%03lld %s[%d] ", stamp, static_cast<long long>(millis),
                  program_invocation_short_name, static_cast<int>(getpid()));
    // One write per line so that lines of several threads do not interleave.
    const std::string line = prefix + message + "\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
}

std::optional<std::string> LuSVNDebugSubstring(const std::optional<std::string>& text, std::size_t maxLength)
{
    if (!text)
        return std::nullopt;
    std::string result;
    std::size_t characters = 0;
    std::size_t index = 0;
    for (; index < text->size(); ++index) {
        const unsigned char byte = static_cast<unsigned char>((*text)[index]);
        if ((byte & 0xC0) != 0x80) {
            if (characters == maxLength)
                break;
            ++characters;
        }
    }
    result = text->substr(0, index);
    if (index < text->size())
        result += "...";
    std::string escaped;
    escaped.reserve(result.size());
    for (char c : result) {
        if (c == '\n')
            escaped += "\\n";
        else
            escaped += c;
    }
    return escaped;
}

#include "LuSVNTrace.h"

void tessera_private::LuSVNTraceCall(const char* className, const char* operation,
                                     std::initializer_list<std::pair<const char*, std::string>> arguments)
{
    std::string pairs;
    for (const auto& [name, value] : arguments) {
        if (!pairs.empty())
            pairs += ", ";
        pairs += std::string(name) + ": " + LuSVNDebugSubstring(value, 256).value_or("(null)");
    }
    LuSVNDebug::logAtLevel(LuSVNLogLevelVerbose, "[%s %s] (%s)", className, operation, pairs.c_str());
}
