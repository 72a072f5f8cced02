#include <tessera/LuSVNSimpleCredentials.h>

#include "LuSVNAssert.h"
#include "LuSVNPoolCopies.h"

using namespace tessera_private;

const LuSVNCredentialsClass& LuSVNSimpleCredentials::classObject()
{
    static const auto object = LuSVNCredentialsClass::of<LuSVNSimpleCredentials>("LuSVNSimpleCredentials", "svn.simple");
    return object;
}

std::shared_ptr<LuSVNSimpleCredentials> LuSVNSimpleCredentials::credentials()
{
    return std::make_shared<LuSVNSimpleCredentials>();
}

std::shared_ptr<LuSVNSimpleCredentials> LuSVNSimpleCredentials::credentialsWithUsername(
    std::optional<std::string> username, std::optional<std::string> password)
{
    auto creds = credentials();
    creds->setUsername(std::move(username));
    creds->setPassword(std::move(password));
    return creds;
}

std::shared_ptr<LuSVNSimpleCredentials> LuSVNSimpleCredentials::credentialsFromStruct(const svn_auth_cred_simple_t* creds)
{
    LUSVN_PARAMETER_ASSERT(creds != nullptr, "creds != nil");
    auto result = credentialsWithUsername(LuSVNOptionalString(creds->username), LuSVNOptionalString(creds->password));
    result->setMaySave(creds->may_save == 1);
    return result;
}

void* LuSVNSimpleCredentials::convertToStructFromPool(apr_pool_t* pool) const
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    auto* creds = LuSVNPoolAllocateZeroed<svn_auth_cred_simple_t>(pool);
    creds->username = LuSVNPoolCopyString(username_, pool);
    creds->password = LuSVNPoolCopyString(password_, pool);
    creds->may_save = maySave();
    return creds;
}

bool LuSVNSimpleCredentials::isEqualToCredentials(const std::shared_ptr<const LuSVNCredentials>& other) const
{
    const auto* simple = dynamic_cast<const LuSVNSimpleCredentials*>(other.get());
    return simple && simple->username_ == username_ && simple->password_ == password_;
}

std::string LuSVNSimpleCredentials::description() const
{
    const bool hasUsername = username_ && !username_->empty();
    if (hasUsername && password_ && !password_->empty())
        return kind() + " (" + *username_ + ", " + maskedSecret(*password_) + ")";
    if (hasUsername)
        return kind() + " (" + *username_ + ")";
    return kind();
}

std::shared_ptr<LuSVNCredentials> LuSVNSimpleCredentials::copy() const
{
    return std::make_shared<LuSVNSimpleCredentials>(*this);
}
