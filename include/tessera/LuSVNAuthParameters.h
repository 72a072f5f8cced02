// Run-time authentication parameters: values that Subversion and the
// providers exchange by name through the authentication baton.
//
// Subversion keeps a parameter as an untyped pointer. The standard parameters
// (names beginning with "svn:auth:", the LuSVNAuthParam constants of
// LuSVNDefinitions.h) have a fixed type that decides their raw form; any
// other name is a custom parameter, whose raw form is a pool-held copy of the
// value itself.
//
//   name                                          type         value
//   svn:auth:config-dir, svn:auth:username,       string       std::string
//   svn:auth:password, svn:auth:server-group,
//   svn:auth:store-plaintext-passwords,
//   svn:auth:store-ssl-client-cert-pp-plaintext
//   svn:auth:dont-store-passwords,                boolean      bool (true: set)
//   svn:auth:dont-store-ssl-client-cert-pp,
//   svn:auth:no-auth-cache,
//   svn:auth:non-interactive
//   svn:auth:ssl:failures                         failure set  std::uint32_t
//   svn:auth:ssl:cert-info                        certificate  LuSVNCertificate
//
// A boolean parameter is either set (true) or absent: converting false gives
// no raw value, so a boolean parameter is cleared with "no value", never with
// false.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include <tessera/LuSVNCertificate.h>
#include <tessera/LuSVNExport.h>

struct apr_hash_t;
struct apr_pool_t;

/// A custom parameter: whether a default password found in the parameters
/// may be stored (a bool). Without the "svn:auth:" prefix, so Subversion
/// passes it along untouched.
inline constexpr std::string_view LuSVNAuthParamDefaultMayStorePassword = "auth:may-store-default-password";

/// The value of a parameter.
using LuSVNAuthParameterValue = std::variant<bool, std::string, std::uint32_t, LuSVNCertificate>;

/// Parameters by name, as providers receive them.
using LuSVNAuthParameters = std::map<std::string, LuSVNAuthParameterValue>;

/// The types of the standard parameters.
enum LuSVNAuthStandardParamType : std::int32_t {
    LuSVNAuthStandardParamTypeUnknown = -1,  ///< not one of the twelve standard names
    LuSVNAuthStandardParamTypeBoolean = 0,
    LuSVNAuthStandardParamTypeString = 1,
    LuSVNAuthStandardParamTypeFailureSet = 2,
    LuSVNAuthStandardParamTypeCertificate = 3,
};

/// Whether the name begins with "svn:auth:" (a prefix test only: an unknown
/// name with the prefix counts as standard, with the type Unknown).
TESSERA_EXPORT bool LuSVNAuthIsStandardParam(std::string_view name);

/// The type of a standard parameter (see the table above), or Unknown.
TESSERA_EXPORT LuSVNAuthStandardParamType LuSVNAuthTypeForStandardParam(std::string_view name);

/// The raw value of a standard parameter, allocated in the pool through the
/// current backend: for a boolean one byte holding 1 (null for false), for a
/// string a NUL-terminated copy, for a failure set four bytes, for a
/// certificate an svn_auth_ssl_server_cert_info_t. Null when the name's type
/// is Unknown or the value is not of the name's type. Raises "Invalid
/// parameter not satisfying: pool != NULL" for a null pool.
TESSERA_EXPORT const void* LuSVNAuthStandardParamValueForObject(std::string_view name,
                                                                const LuSVNAuthParameterValue& value,
                                                                apr_pool_t* pool);

/// The value of a standard parameter's raw form: true for any boolean, the
/// text, the failure set or the certificate; nullopt for the type Unknown.
/// Raises "Invalid parameter not satisfying: value != NULL" for null.
TESSERA_EXPORT std::optional<LuSVNAuthParameterValue> LuSVNAuthStandardParamObjectForValue(std::string_view name,
                                                                                          const void* value);

/// The raw form of a custom parameter: a copy of the value that the pool keeps
/// alive until it is destroyed. Raises "Invalid parameter not satisfying:
/// pool != NULL" for a null pool.
TESSERA_EXPORT const void* LuSVNAuthCustomParamValueForObject(std::string_view name,
                                                              const LuSVNAuthParameterValue& value, apr_pool_t* pool);

/// The value behind a custom parameter's raw form, which must have been made
/// by LuSVNAuthCustomParamValueForObject. Raises "Invalid parameter not
/// satisfying: value != NULL" for null.
TESSERA_EXPORT LuSVNAuthParameterValue LuSVNAuthCustomParamObjectForValue(std::string_view name, const void* value);

/// The standard conversion for names with the "svn:auth:" prefix, else the
/// custom one.
TESSERA_EXPORT const void* LuSVNAuthParamValueForObject(std::string_view name, const LuSVNAuthParameterValue& value,
                                                        apr_pool_t* pool);
TESSERA_EXPORT std::optional<LuSVNAuthParameterValue> LuSVNAuthParamObjectForValue(std::string_view name,
                                                                                  const void* value);

/// Subversion's parameter hash as values by name, for a request of credentials
/// of the given kind ("svn.simple", ...); entries whose value cannot be
/// converted (standard names of unknown type) are left out, and so are the
/// server certificate and its failures except for "svn.ssl.server" requests:
/// outside those Subversion may leave them pointing at memory that is gone.
/// Raises "Invalid parameter not satisfying: parameters != nil" or
/// "... pool != nil".
TESSERA_EXPORT LuSVNAuthParameters LuSVNAuthDictionaryForParams(apr_hash_t* parameters, apr_pool_t* pool,
                                                                std::string_view credentialsKind);
