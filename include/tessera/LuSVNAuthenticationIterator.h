// The iteration state that object providers hand Subversion between the
// first credentials and each next one. Kept alive by the pool of the first
// request, so Subversion may hold it as long as that pool lives.
#pragma once

#include <cstdint>
#include <memory>

#include <tessera/LuSVNExport.h>

class TESSERA_EXPORT LuSVNAuthenticationIterator {
public:
    /// 0 after the first credentials; incremented before each next request.
    std::int32_t retryCount = 0;
    /// What the provider returned through contextInfo with the first
    /// credentials, handed back with every next request.
    std::shared_ptr<void> context;
};
