#include <tessera/LuSVNUsernameCredentials.h>

#include "LuSVNAssert.h"
#include "LuSVNPoolCopies.h"

using namespace tessera_private;

const LuSVNCredentialsClass& LuSVNUsernameCredentials::classObject()
{
    static const auto object =
        LuSVNCredentialsClass::of<LuSVNUsernameCredentials>("LuSVNUsernameCredentials", "svn.username");
    return object;
}

std::shared_ptr<LuSVNUsernameCredentials> LuSVNUsernameCredentials::credentials()
{
    return std::make_shared<LuSVNUsernameCredentials>();
}

std::shared_ptr<LuSVNUsernameCredentials> LuSVNUsernameCredentials::credentialsWithUsername(
    std::optional<std::string> username)
{
    auto creds = credentials();
    creds->setUsername(std::move(username));
    return creds;
}

std::shared_ptr<LuSVNUsernameCredentials> LuSVNUsernameCredentials::credentialsFromStruct(
    const svn_auth_cred_username_t* creds)
{
    LUSVN_PARAMETER_ASSERT(creds != nullptr, "creds != nil");
    auto result = credentialsWithUsername(LuSVNOptionalString(creds->username));
    result->setMaySave(creds->may_save == 1);
    return result;
}

void* LuSVNUsernameCredentials::convertToStructFromPool(apr_pool_t* pool) const
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    auto* creds = LuSVNPoolAllocateZeroed<svn_auth_cred_username_t>(pool);
    creds->username = LuSVNPoolCopyString(username_, pool);
    creds->may_save = maySave();
    return creds;
}

bool LuSVNUsernameCredentials::isEqualToCredentials(const std::shared_ptr<const LuSVNCredentials>& other) const
{
    const auto* username = dynamic_cast<const LuSVNUsernameCredentials*>(other.get());
    return username && username->username_ == username_;
}

std::string LuSVNUsernameCredentials::description() const
{
    return username_ && !username_->empty() ? kind() + " (" + *username_ + ")" : kind();
}

std::shared_ptr<LuSVNCredentials> LuSVNUsernameCredentials::copy() const
{
    return std::make_shared<LuSVNUsernameCredentials>(*this);
}
