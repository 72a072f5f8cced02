// What the prompt callbacks handed to Subversion's providers share: their
// baton is the provider object, which the binding in the same pool keeps
// alive, and they ask its delegate.
#pragma once

#include <tessera/LuSVNAuthenticationProvider.h>

#include <exception>
#include <optional>
#include <string>

#include "LuSVNAssert.h"
#include "LuSVNSubversion.h"

namespace tessera_private {

/// Subversion's error for a delegate's answer; never raises (null when no
/// error can be made).
svn_error_t* LuSVNPromptError(apr_status_t code, const char* message) noexcept;

/// Logs the delegate's exception as "Exception in <what> prompt callback:"
/// and its text, and returns 20014 "Delegate raised an exception".
svn_error_t* LuSVNPromptExceptionError(const char* what, std::exception_ptr exception) noexcept;

/// One prompt: asks the delegate of the provider in the baton with new
/// credentials (from make), then hands Subversion their structure. A
/// delegate that does not answer gives "Delegate not installed" (200015), or
/// no credentials and no error when missingIsAnswer; false gives "User
/// cancelled authentication" (200015).
template <class Make, class Ask>
svn_error_t* LuSVNAskDelegate(void** out, void* baton, const char* realm, apr_pool_t* pool, const char* what,
                              bool missingIsAnswer, Make make, Ask ask) noexcept
{
    try {
        LUSVN_PARAMETER_ASSERT(out != nullptr, "creds != NULL");
        LUSVN_PARAMETER_ASSERT(baton != nullptr, "baton != NULL");
        LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
        *out = nullptr;
        auto& provider = *static_cast<LuSVNAuthenticationProvider*>(baton);
        const auto credentials = make();
        const auto delegate = provider.delegate();
        const std::optional<bool> answer =
            delegate ? ask(*delegate, provider, *credentials,
                           realm ? std::optional<std::string>(realm) : std::nullopt, provider.threadRetryCount())
                     : std::nullopt;
        if (!answer)
            return missingIsAnswer ? nullptr : LuSVNPromptError(SVN_ERR_CANCELLED, "Delegate not installed");
        if (!*answer)
            return LuSVNPromptError(SVN_ERR_CANCELLED, "User cancelled authentication");
        *out = credentials->convertToStructFromPool(pool);
        return nullptr;
    } catch (...) {
        return LuSVNPromptExceptionError(what, std::current_exception());
    }
}

/// Subversion's question whether a secret may be stored unencrypted, put to
/// the delegate of the provider in the baton; yes without an answer.
svn_error_t* LuSVNPlaintextPromptFunc(svn_boolean_t* may_save_plaintext, const char* realmstring, void* baton,
                                      apr_pool_t* pool);

}  // namespace tessera_private
