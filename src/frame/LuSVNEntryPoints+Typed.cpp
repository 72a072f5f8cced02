#include "LuSVNEntryPoints+Typed.h"

#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include "LuSVNBundleTop.h"

LuSVNEntryPoint tessera_private::LuSVNCurrentEntryPoint(int number, const char* name)
{
    const std::shared_ptr<LuSVNBundleProxy>& backend = LuSVNBundleTop();
    if (!backend)
        throw LuSVNException("No Subversion backend is available for this call");
    const LuSVNEntryPoint entry = backend->entryPoints()->slots[number];
    if (!entry)
        throw LuSVNInternalInconsistencyException("Backend " + backend->description() + " lacks entry point " +
                                                  std::to_string(number) + " (" + name + ")");
    return entry;
}

bool tessera_private::LuSVNCurrentHasEntryPoint(int number)
{
    const std::shared_ptr<LuSVNBundleProxy>& backend = LuSVNBundleTop();
    return backend && backend->entryPoints()->slots[number] != nullptr;
}

namespace {

LuSVNEntryPoint LuSVNExtensionSlotOf(LuSVNBundleProxy& backend, int number)
{
    const LuSVNBundleExtensionEntryPoints* extensions = backend.extensionEntryPoints();
    if (!extensions || number < 0 || static_cast<std::size_t>(number) >= extensions->count)
        return nullptr;
    return extensions->slots[number];
}

}  // namespace

LuSVNEntryPoint tessera_private::LuSVNCurrentExtensionEntryPoint(int number, const char* name)
{
    const std::shared_ptr<LuSVNBundleProxy>& backend = LuSVNBundleTop();
    if (!backend)
        throw LuSVNException("No Subversion backend is available for this call");
    const LuSVNEntryPoint entry = LuSVNExtensionSlotOf(*backend, number);
    if (!entry)
        throw LuSVNInternalInconsistencyException("Backend " + backend->description() + " lacks extension entry point " +
                                                  std::to_string(number) + " (" + name + ")");
    return entry;
}

bool tessera_private::LuSVNCurrentHasExtensionEntryPoint(int number)
{
    const std::shared_ptr<LuSVNBundleProxy>& backend = LuSVNBundleTop();
    return backend && LuSVNExtensionSlotOf(*backend, number) != nullptr;
}
