#include <tessera/LuSVNAuthParameters.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNPool.h>

#include <memory>
#include <utility>

#include "LuSVNAssert.h"
#include "LuSVNPoolCopies.h"

using namespace tessera_private;

namespace {

constexpr std::string_view standardPrefix = "svn:auth:";

// Sorted by constant name; the lookup takes the first equal name.
constexpr std::pair<std::string_view, LuSVNAuthStandardParamType> standardParameters[] = {
    {LuSVNAuthParamConfigDirectory, LuSVNAuthStandardParamTypeString},
    {LuSVNAuthParamDefaultPassword, LuSVNAuthStandardParamTypeString},
    {LuSVNAuthParamDefaultUsername, LuSVNAuthStandardParamTypeString},
    {LuSVNAuthParamDontStorePasswords, LuSVNAuthStandardParamTypeBoolean},
    {LuSVNAuthParamDontStoreSSLClientCertificatePassphrases, LuSVNAuthStandardParamTypeBoolean},
    {LuSVNAuthParamNoCache, LuSVNAuthStandardParamTypeBoolean},
    {LuSVNAuthParamNonInteractive, LuSVNAuthStandardParamTypeBoolean},
    {LuSVNAuthParamServerGroup, LuSVNAuthStandardParamTypeString},
    {LuSVNAuthParamSSLServerCertificateInfo, LuSVNAuthStandardParamTypeCertificate},
    {LuSVNAuthParamSSLServerFailures, LuSVNAuthStandardParamTypeFailureSet},
    {LuSVNAuthParamStorePlaintextPasswords, LuSVNAuthStandardParamTypeString},
    {LuSVNAuthParamStorePlaintextSSLClientCertificatePassphrases, LuSVNAuthStandardParamTypeString},
};

const void* certificateInfoForCertificate(const LuSVNCertificate& certificate, apr_pool_t* pool)
{
    auto* info = LuSVNPoolAllocateZeroed<svn_auth_ssl_server_cert_info_t>(pool);
    info->hostname = LuSVNPoolCopyString(certificate.hostname(), pool);
    info->fingerprint = LuSVNPoolCopyString(certificate.fingerprint(), pool);
    info->valid_from = LuSVNPoolCopyString(certificate.validFrom(), pool);
    info->valid_until = LuSVNPoolCopyString(certificate.validTo(), pool);
    info->issuer_dname = LuSVNPoolCopyString(certificate.issuer(), pool);
    info->ascii_cert = LuSVNPoolCopyString(certificate.representation(), pool);
    return info;
}

LuSVNCertificate certificateForCertificateInfo(const svn_auth_ssl_server_cert_info_t& info)
{
    const auto text = [](const char* member) { return std::string(member ? member : ""); };
    return LuSVNCertificate(text(info.hostname), text(info.fingerprint), text(info.valid_from), text(info.valid_until),
                            text(info.issuer_dname), text(info.ascii_cert));
}

constexpr std::string_view serverTrustKind = "svn.ssl.server";

}  // namespace

bool LuSVNAuthIsStandardParam(std::string_view name)
{
    return name.starts_with(standardPrefix);
}

LuSVNAuthStandardParamType LuSVNAuthTypeForStandardParam(std::string_view name)
{
    for (const auto& [standardName, type] : standardParameters)
        if (standardName == name)
            return type;
    return LuSVNAuthStandardParamTypeUnknown;
}

const void* LuSVNAuthStandardParamValueForObject(std::string_view name, const LuSVNAuthParameterValue& value,
                                                 apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    switch (LuSVNAuthTypeForStandardParam(name)) {
    case LuSVNAuthStandardParamTypeBoolean: {
        const bool* set = std::get_if<bool>(&value);
        if (!set || !*set)
            return nullptr;
        auto* byte = static_cast<char*>(LuSVNEntry<3>()(pool, 1));
        *byte = 1;
        return byte;
    }
    case LuSVNAuthStandardParamTypeString: {
        const auto* text = std::get_if<std::string>(&value);
        return text ? LuSVNPoolCopyString(*text, pool) : nullptr;
    }
    case LuSVNAuthStandardParamTypeFailureSet: {
        const auto* failures = std::get_if<std::uint32_t>(&value);
        if (!failures)
            return nullptr;
        auto* raw = LuSVNPoolAllocateZeroed<apr_uint32_t>(pool);
        *raw = *failures;
        return raw;
    }
    case LuSVNAuthStandardParamTypeCertificate: {
        const auto* certificate = std::get_if<LuSVNCertificate>(&value);
        return certificate ? certificateInfoForCertificate(*certificate, pool) : nullptr;
    }
    case LuSVNAuthStandardParamTypeUnknown:
        break;
    }
    return nullptr;
}

std::optional<LuSVNAuthParameterValue> LuSVNAuthStandardParamObjectForValue(std::string_view name, const void* value)
{
    LUSVN_PARAMETER_ASSERT(value != nullptr, "value != NULL");
    switch (LuSVNAuthTypeForStandardParam(name)) {
    case LuSVNAuthStandardParamTypeBoolean:
        // Subversion sets booleans to any non-null pointer ("" mostly).
        return true;
    case LuSVNAuthStandardParamTypeString:
        return std::string(static_cast<const char*>(value));
    case LuSVNAuthStandardParamTypeFailureSet:
        return std::uint32_t(*static_cast<const apr_uint32_t*>(value));
    case LuSVNAuthStandardParamTypeCertificate:
        return certificateForCertificateInfo(*static_cast<const svn_auth_ssl_server_cert_info_t*>(value));
    case LuSVNAuthStandardParamTypeUnknown:
        break;
    }
    return std::nullopt;
}

const void* LuSVNAuthCustomParamValueForObject(std::string_view, const LuSVNAuthParameterValue& value,
                                               apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    return LuSVNRetainInPool(std::make_shared<LuSVNAuthParameterValue>(value), pool).get();
}

LuSVNAuthParameterValue LuSVNAuthCustomParamObjectForValue(std::string_view, const void* value)
{
    LUSVN_PARAMETER_ASSERT(value != nullptr, "value != NULL");
    return *static_cast<const LuSVNAuthParameterValue*>(value);
}

const void* LuSVNAuthParamValueForObject(std::string_view name, const LuSVNAuthParameterValue& value, apr_pool_t* pool)
{
    return LuSVNAuthIsStandardParam(name) ? LuSVNAuthStandardParamValueForObject(name, value, pool)
                                          : LuSVNAuthCustomParamValueForObject(name, value, pool);
}

std::optional<LuSVNAuthParameterValue> LuSVNAuthParamObjectForValue(std::string_view name, const void* value)
{
    if (LuSVNAuthIsStandardParam(name))
        return LuSVNAuthStandardParamObjectForValue(name, value);
    return LuSVNAuthCustomParamObjectForValue(name, value);
}

LuSVNAuthParameters LuSVNAuthDictionaryForParams(apr_hash_t* parameters, apr_pool_t* pool,
                                                 std::string_view credentialsKind)
{
    LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != nil");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    LuSVNAuthParameters dictionary;
    for (apr_hash_index_t* entry = LuSVNEntry<14>()(pool, parameters); entry; entry = LuSVNEntry<15>()(entry)) {
        const void* key = nullptr;
        apr_ssize_t keyLength = 0;
        void* value = nullptr;
        LuSVNEntry<16>()(entry, &key, &keyLength, &value);
        std::string name(static_cast<const char*>(key), static_cast<std::size_t>(keyLength));
        // Subversion leaves the failures pointing at a local of its trust
        // question after that question returns; only that question may read it.
        if (credentialsKind != serverTrustKind &&
            (name == LuSVNAuthParamSSLServerFailures || name == LuSVNAuthParamSSLServerCertificateInfo))
            continue;
        if (auto object = LuSVNAuthParamObjectForValue(name, value))
            dictionary.emplace(std::move(name), std::move(*object));
    }
    return dictionary;
}
