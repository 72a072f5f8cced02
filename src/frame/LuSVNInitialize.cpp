#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNInitialize.h>

#include <atomic>
#include <clocale>

#include "LuSVNBackendFrame.h"
#include "LuSVNTrace.h"

void LuSVNInitialize()
{
    LuSVNInitializeWithOptions({});
}

void LuSVNInitializeWithOptions(const std::map<std::string, std::string>&)
{
    static std::atomic<bool> initialized{false};
    if (initialized.exchange(true))
        return;
    LUSVN_TRACE("LuSVN", "LuSVNInitializeWithOptions", {"bundleDirectory", LuSVNBundleLoader::defaultBundleDirectory()});
    LuSVNBundleLoader::sharedInstance()->loadBundlesInDirectoryAtPath(LuSVNBundleLoader::defaultBundleDirectory());
    LuSVNInitializeCLocale();
    LuSVNInitializeSubversionConfiguration();
}

void LuSVNInitializeCLocale()
{
    if (std::setlocale(LC_ALL, ""))
        return;
    if (std::setlocale(LC_CTYPE, ""))
        return;
    throw LuSVNException("Failed to initialize locales");
}

void LuSVNInitializeSubversionConfiguration()
{
    auto newest = LuSVNBundleLoader::sharedInstance()->newestBundle();
    if (!newest)
        return;  // no backend, nothing to prepare with
    LuSVNBackendFrame frame(std::move(newest));
    // Start-up goes on whatever this returns; the error is only freed.
    if (svn_error_t* error = LuSVNEntry<37>()(nullptr, frame.pool()))
        LuSVNEntry<30>()(error);
}
