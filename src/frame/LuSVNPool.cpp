#include <tessera/LuSVNPool.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"

std::shared_ptr<void> LuSVNRetainInPool(std::shared_ptr<void> object, apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    // The pool owns one pointer-sized slot; the slot owns one reference.
    auto** slot = static_cast<std::shared_ptr<void>**>(LuSVNEntry<3>()(pool, sizeof(void*)));
    *slot = new std::shared_ptr<void>(object);
    auto cleanupNull = LuSVNEntry<6>();
    LuSVNEntry<5>()(pool, slot, LuSVNReleaseObject, cleanupNull);
    return object;
}

extern "C" int LuSVNReleaseObject(void* slot)
{
    auto** reference = static_cast<std::shared_ptr<void>**>(slot);
    delete *reference;
    *reference = nullptr;
    return 0;
}
