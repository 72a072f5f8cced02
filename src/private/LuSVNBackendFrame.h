// The one frame of every call into a backend.
//
//   LuSVNBackendFrame frame(context->bundle());
//   LuSVNThrowIfError(LuSVNEntry<99>()(path, &format, frame.pool()));
//
// The constructor pushes the backend and makes a root pool (entry point 19);
// the destructor destroys the pool through the backend then current (entry
// point 20) and pops, on every exit, normal or exceptional. When the pool
// cannot be made the backend is popped again before the exception leaves.
#pragma once

#include <exception>
#include <memory>

#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNExport.h>

#include "LuSVNEntryPoints+Typed.h"

// Exported, though its header is not installed, so that the tests can drive
// Subversion through the same frame as the library.
class TESSERA_EXPORT LuSVNBackendFrame {
public:
    explicit LuSVNBackendFrame(std::shared_ptr<LuSVNBundleProxy> backend);
    ~LuSVNBackendFrame();

    LuSVNBackendFrame(const LuSVNBackendFrame&) = delete;
    LuSVNBackendFrame& operator=(const LuSVNBackendFrame&) = delete;

    apr_pool_t* pool() const { return pool_; }

private:
    apr_pool_t* pool_ = nullptr;
};

namespace tessera_private {
/// How many backends the calling thread has pushed.
std::size_t LuSVNBundleStackDepth();
}  // namespace tessera_private

/// Throws the exception that the error chain maps to (and frees the chain)
/// when the error is not null; when the chain stands for an exception that an
/// authentication provider raised, that exception instead. Must run before the frame pops: the conversion
/// uses the current backend.
TESSERA_EXPORT void LuSVNThrowIfError(svn_error_t* error);

/// A new Subversion error made through the current backend (entry points 32
/// and 31), for callbacks that stop an operation.
TESSERA_EXPORT svn_error_t* LuSVNCreateError(apr_status_t code, const char* message, const char* file, long line);

/// The status of the error a guarded callback returns.
constexpr apr_status_t LuSVNCallbackAbortStatus()
{
    return 200015;
}

/// Runs a callback body handed to Subversion. No C++ exception may unwind
/// through Subversion's C frames: an exception is kept in `pending` and a
/// Subversion error returned instead, so Subversion stops; the operation
/// rethrows the kept exception once the backend call has returned (see
/// LuSVNRethrowPending).
template <class Body>
svn_error_t* LuSVNGuardCallback(std::exception_ptr& pending, Body&& body) noexcept
{
    try {
        return body();
    } catch (...) {
        pending = std::current_exception();
        try {
            return LuSVNCreateError(LuSVNCallbackAbortStatus(), "Operation was cancelled", __FILE__, __LINE__);
        } catch (...) {
            // Without a backend there is no error to return; Subversion reads
            // null as success, which is the lesser harm than unwinding.
            return nullptr;
        }
    }
}

/// After a backend call: a kept callback exception wins over the error the
/// call returned (which then is freed); otherwise the error is thrown as usual.
TESSERA_EXPORT void LuSVNRethrowPending(std::exception_ptr& pending, svn_error_t* error);
