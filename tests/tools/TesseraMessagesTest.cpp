// Failures printed as svn prints an error chain.
#include <tessera/LuSVNException.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Messages.h"

namespace {

// The exception of a chain given outermost first, as the library builds it
// from Subversion's error.
LuSVNException chain(const std::vector<std::pair<int, std::string>>& links)
{
    std::shared_ptr<LuSVNErrorDictionary> next;
    for (auto link = links.rbegin(); link != links.rend(); ++link) {
        auto dictionary = std::make_shared<LuSVNErrorDictionary>();
        dictionary->status = link->first;
        dictionary->message = link->second;
        dictionary->cause = next;
        next = dictionary;
    }
    return LuSVNException(*next->message, *next);
}

std::string printed(const LuSVNException& failure)
{
    testing::internal::CaptureStderr();
    printError(failure);
    return testing::internal::GetCapturedStderr();
}

TEST(TesseraMessages, ErrorChainAsSvnPrintsIt)
{
    // Two composed failures: Subversion gives each joint the message-less
    // code 200042, which svn shows once.
    EXPECT_EQ(printed(chain({{155009, "Failed to run the WC DB work queue associated with '/wc'"},
                             {200042, "Additional errors:"},
                             {2, "Can't open file '/wc/a': No such file or directory"},
                             {200042, "Additional errors:"},
                             {13, "Can't open file '/wc/b': Permission denied"}})),
              "tessera: E155009: Failed to run the WC DB work queue associated with '/wc'\n"
              "tessera: E200042: Additional errors:\n"
              "tessera: E000002: Can't open file '/wc/a': No such file or directory\n"
              "tessera: E000013: Can't open file '/wc/b': Permission denied\n");

    EXPECT_EQ(printed(chain({{170013, "Unable to connect to a repository at URL 'file:///r'"},
                             {180001, "Unable to open repository 'file:///r'"}})),
              "tessera: E170013: Unable to connect to a repository at URL 'file:///r'\n"
              "tessera: E180001: Unable to open repository 'file:///r'\n");

    // The library's own failures carry the general status.
    EXPECT_EQ(printed(LuSVNException("Failed to initialize locales")),
              "tessera: E020014: Failed to initialize locales\n");
}

TEST(TesseraMessages, WarningAndUsageError)
{
    testing::internal::CaptureStderr();
    printWarning(20, "Can't open file '/etc/hostname/servers': Not a directory");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tessera: warning: W000020: Can't open file '/etc/hostname/servers': Not a directory\n");

    try {
        throwUsageError("wc", TesseraInsufficientArgumentsError, "Not enough arguments provided");
    } catch (const LuSVNException& failure) {
        EXPECT_EQ(printed(failure), "tessera: E205001: Try 'tessera help wc' for more information\n"
                                    "tessera: E205001: Not enough arguments provided\n");
    }
}

}  // namespace
