#include "Messages.h"

#include <tessera/LuSVNException.h>

#include <cstdio>
#include <set>
#include <utility>

namespace {

void printLine(const char* kind, int code, const std::string& message)
{
    std::fprintf(stderr, "tessera: %s%06d: %s\n", kind, code, message.c_str());
}

}  // namespace

void printError(const LuSVNException& failure)
{
    std::fflush(stdout);
    std::set<std::pair<long long, std::string>> printed;
    auto print = [&](long long code, const std::string& message) {
        if (printed.emplace(code, message).second)
            printLine("E", static_cast<int>(code), message);
    };
    for (const auto& [code, message] : errorLinks(failure))
        print(code, message);
}

std::vector<std::pair<int, std::string>> errorLinks(const LuSVNException& failure)
{
    std::vector<std::pair<int, std::string>> links{{static_cast<int>(failure.status()), failure.reason()}};
    if (failure.userInfo())
        for (auto cause = failure.userInfo()->cause; cause; cause = cause->cause)
            links.emplace_back(static_cast<int>(cause->status.value_or(LuSVNGenericErrorStatus)),
                               cause->message.value_or(""));
    return links;
}

void printWarning(int code, const std::string& message)
{
    std::fflush(stdout);
    printLine("warning: W", code, message);
}

void throwUsageError(const std::string& command, int code, const std::string& message)
{
    throwErrorChain({{code, "Try 'tessera help " + command + "' for more information"}, {code, message}});
}

namespace {

LuSVNErrorDictionary errorChain(const std::vector<std::pair<int, std::string>>& links)
{
    std::shared_ptr<LuSVNErrorDictionary> next;
    for (auto link = links.rbegin(); link != links.rend(); ++link) {
        auto dictionary = std::make_shared<LuSVNErrorDictionary>();
        dictionary->status = link->first;
        dictionary->message = link->second;
        dictionary->cause = std::move(next);
        next = std::move(dictionary);
    }
    return *next;
}

}  // namespace

void throwErrorChain(const std::vector<std::pair<int, std::string>>& links)
{
    const LuSVNErrorDictionary chain = errorChain(links);
    throw LuSVNException(*chain.message, chain);
}

void throwOptionValueError(const std::vector<std::pair<int, std::string>>& links)
{
    const LuSVNErrorDictionary chain = errorChain(links);
    throw TesseraOptionValueError(*chain.message, chain);
}
