#include <tessera/LuSVNSSLFailures.h>

#include <utility>

namespace {

constexpr std::pair<std::uint32_t, const char*> failureNames[] = {
    {LuSVNSSLFailureNotYetValid, "NotYetValid"},   {LuSVNSSLFailureExpired, "Expired"},
    {LuSVNSSLFailureHostMismatch, "HostMismatch"}, {LuSVNSSLFailureUnknownAuthority, "UnknownAuthority"},
    {LuSVNSSLFailureOther, "Other"},
};

}  // namespace

std::string LuSVNStringFromSSLError(std::uint32_t failures)
{
    if (failures == 0)
        return "None";
    if (failures == 0xFFFFFFFFu)
        return "All";
    std::string text;
    for (const auto& [bit, name] : failureNames) {
        if ((failures & bit) == 0)
            continue;
        if (!text.empty())
            text += ", ";
        text += name;
    }
    return text;
}

std::uint32_t LuSVNSSLErrorsFromFailures(std::uint32_t failures)
{
    std::uint32_t defined = 0;
    for (const auto& entry : failureNames)
        defined |= entry.first;
    return failures & defined;
}
