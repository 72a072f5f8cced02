// The exceptions that authentication providers raise while Subversion asks
// them for credentials.
//
// A provider's exception must not unwind through Subversion, and Subversion
// gives the operation nothing but an error back. So the trampoline keeps the
// exception, per thread, together with the error it returned for it; after
// the backend call, the operation looks for that error in the chain it got:
//
//   svn_error_t* error = LuSVNEntry<56>()(..., context, frame.pool());
//   LuSVNThrowIfError(LuSVNRethrowProviderException(error));
//
// When Subversion swallowed the error, the exception is dropped with it.
#pragma once

#include <exception>

#include <tessera/LuSVNExport.h>

#include "LuSVNSubversion.h"

namespace tessera_private {

/// Keeps a provider's exception for the operation, with the error that the
/// trampoline returns in its place (replacing what was kept before).
void LuSVNKeepProviderException(std::exception_ptr exception, const svn_error_t* error);

/// The kept exception when the error chain holds the error kept with it,
/// else null. Either way nothing stays kept.
TESSERA_EXPORT std::exception_ptr LuSVNTakeProviderException(const svn_error_t* error);

/// When the error chain stands for a provider's exception: frees the chain
/// (entry point 30) and rethrows that exception. Otherwise returns the error
/// unchanged.
TESSERA_EXPORT svn_error_t* LuSVNRethrowProviderException(svn_error_t* error);

}  // namespace tessera_private
