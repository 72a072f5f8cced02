#include <tessera/LuSVNDefaultCredentialsAuthenticationProvider.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNSimpleCredentials.h>

#include "LuSVNAssert.h"

namespace {

template <class T>
const T* parameter(const LuSVNAuthParameters& parameters, std::string_view name)
{
    const auto found = parameters.find(std::string(name));
    return found == parameters.end() ? nullptr : std::get_if<T>(&found->second);
}

}  // namespace

std::shared_ptr<LuSVNDefaultCredentialsAuthenticationProvider>
LuSVNDefaultCredentialsAuthenticationProvider::defaultCredentialsProvider()
{
    return std::make_shared<LuSVNDefaultCredentialsAuthenticationProvider>();
}

const LuSVNCredentialsClass& LuSVNDefaultCredentialsAuthenticationProvider::credentialsClass() const
{
    return LuSVNSimpleCredentials::classObject();
}

std::shared_ptr<LuSVNCredentials> LuSVNDefaultCredentialsAuthenticationProvider::credentialsForRealm(
    const std::optional<std::string>& realm, const LuSVNAuthParameters& parameters, std::shared_ptr<void>&)
{
    LUSVN_PARAMETER_ASSERT(realm.has_value(), "realm != nil");
    const auto* username = parameter<std::string>(parameters, LuSVNAuthParamDefaultUsername);
    const auto* password = parameter<std::string>(parameters, LuSVNAuthParamDefaultPassword);
    if (!username || !password)
        return nullptr;
    auto credentials = LuSVNSimpleCredentials::credentialsWithUsername(*username, *password);
    const auto* maySave = parameter<bool>(parameters, LuSVNAuthParamDefaultMayStorePassword);
    credentials->setMaySave(maySave && *maySave);
    return credentials;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNDefaultCredentialsAuthenticationProvider::copy() const
{
    return std::make_shared<LuSVNDefaultCredentialsAuthenticationProvider>(*this);
}
