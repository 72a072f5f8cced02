#include "LuSVNPromptCallbacks.h"

#include <tessera/LuSVNDebug.h>
#include <tessera/LuSVNException.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"

namespace tessera_private {

svn_error_t* LuSVNPromptError(apr_status_t code, const char* message) noexcept
{
    try {
        return LuSVNCreateError(code, message, __FILE__, __LINE__);
    } catch (...) {
        return nullptr;
    }
}

svn_error_t* LuSVNPromptExceptionError(const char* what, std::exception_ptr exception) noexcept
{
    std::string reason = "(unknown exception)";
    try {
        std::rethrow_exception(exception);
    } catch (const std::exception& caught) {
        reason = caught.what();
    } catch (...) {
    }
    LuSVNDebug::logAtLevel(LuSVNLogLevelNormal, "Exception in %s prompt callback:", what);
    LuSVNDebug::logAtLevel(LuSVNLogLevelNormal, "%s", reason.c_str());
    return LuSVNPromptError(LuSVNGenericErrorStatus, "Delegate raised an exception");
}

svn_error_t* LuSVNPlaintextPromptFunc(svn_boolean_t* may_save_plaintext, const char* realmstring, void* baton,
                                      apr_pool_t* pool)
{
    try {
        LUSVN_PARAMETER_ASSERT(may_save_plaintext != nullptr, "may_save_plaintext != NULL");
        LUSVN_PARAMETER_ASSERT(baton != nullptr, "baton != NULL");
        LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
        *may_save_plaintext = TRUE;
        auto& provider = *static_cast<LuSVNAuthenticationProvider*>(baton);
        if (const auto delegate = provider.delegate()) {
            const auto answer = delegate->maySavePlainTextCredentialsForRealm(
                provider, realmstring ? std::optional<std::string>(realmstring) : std::nullopt);
            if (answer == false)
                *may_save_plaintext = FALSE;
        }
        return nullptr;
    } catch (...) {
        return LuSVNPromptExceptionError("plaintext", std::current_exception());
    }
}

}  // namespace tessera_private
