// A coder without keys, which every archivable class must refuse.
#pragma once

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <gtest/gtest.h>

#include <functional>

namespace tessera_status_test {

class NonKeyedCoder final : public LuSVNCoder {
public:
    bool allowsKeyedCoding() const override { return false; }
};

/// Expects LuSVNInvalidArgumentException with the reason.
inline void expectInvalidArgument(const std::function<void()>& call, const std::string& reason)
{
    try {
        call();
        ADD_FAILURE() << "nothing thrown, expected " << reason;
    } catch (const LuSVNInvalidArgumentException& e) {
        EXPECT_EQ(std::string(e.what()), reason);
    }
}

}  // namespace tessera_status_test
