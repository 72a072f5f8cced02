#include "LuSVNBackendFrame.h"

#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNException.h>

#include "LuSVNBundleTop.h"
#include "LuSVNProviderException.h"

LuSVNBackendFrame::LuSVNBackendFrame(std::shared_ptr<LuSVNBundleProxy> backend)
{
    // A provider exception kept by an earlier operation whose error Subversion
    // swallowed must not be matched against a later error at the same address.
    if (tessera_private::LuSVNBundleStackDepth() == 0)
        tessera_private::LuSVNTakeProviderException(nullptr);
    LuSVNBundlePush(std::move(backend));
    try {
        // Checked here so that the destructor, which must not throw, finds it.
        if (!tessera_private::LuSVNCurrentHasEntryPoint(20))
            tessera_private::LuSVNCurrentEntryPoint(20, tessera_private::LuSVNSlot<20>::name);
        pool_ = LuSVNEntry<19>()(nullptr, nullptr);
    } catch (...) {
        LuSVNBundlePop();
        throw;
    }
}

LuSVNBackendFrame::~LuSVNBackendFrame()
{
    // Looked up again: work in the frame may have pushed and popped.
    reinterpret_cast<tessera_private::LuSVNSlot<20>::Type>(tessera_private::LuSVNBundleTop()->entryPoints()->slots[20])(pool_);
    LuSVNBundlePop();
}

void LuSVNThrowIfError(svn_error_t* error)
{
    if (error)
        LuSVNException::exceptionWithError(tessera_private::LuSVNRethrowProviderException(error))->raise();
}

svn_error_t* LuSVNCreateError(apr_status_t code, const char* message, const char* file, long line)
{
    LuSVNEntry<32>()(file, line);
    return LuSVNEntry<31>()(code, nullptr, message);
}

void LuSVNRethrowPending(std::exception_ptr& pending, svn_error_t* error)
{
    if (pending) {
        if (error)
            LuSVNEntry<30>()(error);
        std::exception_ptr kept = std::move(pending);
        pending = nullptr;
        std::rethrow_exception(kept);
    }
    LuSVNThrowIfError(error);
}
