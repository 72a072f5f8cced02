// Helpers of the path and URL tests.
#pragma once

#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNURL.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace path_test {

/// The reason of the exception of class E that the body raises; a test
/// failure (and "") when it raises none.
template <class E, class Body>
std::string reasonOf(Body body)
{
    try {
        body();
    } catch (const E& e) {
        return e.what();
    }
    ADD_FAILURE() << "no exception raised";
    return {};
}

inline LuSVNPath::Path local(const std::string& text)
{
    return LuSVNLocalPath::pathWithString(text);
}

inline LuSVNPath::Path url(const std::string& text)
{
    return LuSVNURL::URLWithString(text);
}

/// The text of a path, or nullopt for none, to compare with expected texts.
inline std::optional<std::string> text(const LuSVNPath::Path& path)
{
    return path ? std::optional<std::string>(path->string()) : std::nullopt;
}

/// The home directory the test process runs with (a temporary one).
inline std::string home()
{
    return std::getenv("HOME");
}

}  // namespace path_test
