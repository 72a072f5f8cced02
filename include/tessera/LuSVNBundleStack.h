// The per-thread stack of backends.
//
// Every call into Subversion goes to the backend on top of the calling
// thread's stack. Operations push their context's backend and pop it on every
// exit; a backend pushed on one thread is invisible to the others.
#pragma once

#include <memory>

#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNExport.h>

/// Pushes a backend (null is accepted: the next entry-point call then fails).
TESSERA_EXPORT void LuSVNBundlePush(std::shared_ptr<LuSVNBundleProxy> proxy);

/// Removes and returns the top backend. Raises LuSVNGenericException
/// "Unbalanced bundle stack pop" when the stack is empty.
TESSERA_EXPORT std::shared_ptr<LuSVNBundleProxy> LuSVNBundlePop();

/// The top backend (a reference of the caller's own, which later pushes and
/// pops leave valid). Raises LuSVNGenericException "Bundle stack is empty"
/// when the stack is empty.
TESSERA_EXPORT std::shared_ptr<LuSVNBundleProxy> LuSVNBundleCurrent();
