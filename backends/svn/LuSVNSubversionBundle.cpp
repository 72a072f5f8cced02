// The backend's principal object: the entry-point table of the linked
// Subversion, limited to what the declared release offered.
//
// The build declares the release as TESSERA_BACKEND_SVN_MAJOR/MINOR. It may
// be older than the linked one (the test bundles declare 1.4 to 1.6 on top
// of a current installation); slots of functions introduced later stay null,
// exactly as a backend built against that release would leave them.

#include <tessera/LuSVNBundle.h>

#include "LuSVNEntryPointList.h"
#include "LuSVNExtensionEntryPointList.h"
#include "LuSVNSubversion.h"

#include <apr_general.h>

#include <array>
#include <sstream>

#if !defined(TESSERA_BACKEND_SVN_MAJOR) || !defined(TESSERA_BACKEND_SVN_MINOR)
#error "TESSERA_BACKEND_SVN_MAJOR and TESSERA_BACKEND_SVN_MINOR give the declared release"
#endif

namespace {

constexpr bool LuSVNDeclaredReleaseHas(int sinceMajor, int sinceMinor)
{
    return sinceMajor < TESSERA_BACKEND_SVN_MAJOR ||
           (sinceMajor == TESSERA_BACKEND_SVN_MAJOR && sinceMinor <= TESSERA_BACKEND_SVN_MINOR);
}

// Fills a slot of `slots` when the declared release has its function.
#define LUSVN_FILL_SLOT(slots, slot, function, sinceMajor, sinceMinor)          \
    if constexpr (LuSVNDeclaredReleaseHas(sinceMajor, sinceMinor)) {            \
        slots[slot] = reinterpret_cast<LuSVNEntryPoint>(&::function);           \
    }

LuSVNBundleEntryPoints LuSVNMakeEntryPoints()
{
    LuSVNBundleEntryPoints table{};
#define LUSVN_FILL_MAIN_SLOT(slot, function, sinceMajor, sinceMinor) \
    LUSVN_FILL_SLOT(table.slots, slot, function, sinceMajor, sinceMinor)
    LUSVN_ENTRY_POINT_LIST(LUSVN_FILL_MAIN_SLOT)
#undef LUSVN_FILL_MAIN_SLOT
    return table;
}

std::array<LuSVNEntryPoint, LUSVN_EXTENSION_ENTRY_POINT_COUNT> LuSVNMakeExtensionEntryPoints()
{
    std::array<LuSVNEntryPoint, LUSVN_EXTENSION_ENTRY_POINT_COUNT> slots{};
#define LUSVN_FILL_EXTENSION_SLOT(slot, function, sinceMajor, sinceMinor) \
    LUSVN_FILL_SLOT(slots, slot, function, sinceMajor, sinceMinor)
    LUSVN_EXTENSION_ENTRY_POINT_LIST(LUSVN_FILL_EXTENSION_SLOT)
#undef LUSVN_FILL_EXTENSION_SLOT
    return slots;
}

class LuSVNSubversionBundle final : public LuSVNBundle {
public:
    LuSVNSubversionBundle() : table_(LuSVNMakeEntryPoints())
    {
        std::istringstream patterns(ignoreString_);
        for (std::string pattern; patterns >> pattern;) {
            ignoreList_.push_back(pattern);
        }
    }

    const LuSVNBundleEntryPoints* entryPoints() const override { return &table_; }
    std::string defaultGlobalIgnoreString() const override { return ignoreString_; }
    std::vector<std::string> defaultGlobalIgnoreList() const override { return ignoreList_; }

private:
    const LuSVNBundleEntryPoints table_;
    const std::string ignoreString_ = SVN_CONFIG_DEFAULT_GLOBAL_IGNORES;
    std::vector<std::string> ignoreList_;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) LuSVNBundle* LuSVNBundleCreatePrincipalObject(void)
{
    // APR must be up before any slot is called. Its initialisation is
    // reference counted per process, so every loaded backend does it once;
    // the object is never destroyed, hence no apr_terminate.
    static LuSVNBundle* const principal = []() -> LuSVNBundle* {
        if (apr_initialize() != APR_SUCCESS) {
            return nullptr;
        }
        // Subversion aborts the process on an internal assertion (a damaged
        // wc.db, for one) unless told to return it as an error, which then
        // reaches the application as an exception.
        svn_error_set_malfunction_handler(svn_error_raise_on_malfunction);
        return new LuSVNSubversionBundle;
    }();
    return principal;
}

extern "C" __attribute__((visibility("default"))) const LuSVNBundleExtensionEntryPoints* LuSVNBundleExtensionTable(void)
{
    static const std::array<LuSVNEntryPoint, LUSVN_EXTENSION_ENTRY_POINT_COUNT> slots = LuSVNMakeExtensionEntryPoints();
    static const LuSVNBundleExtensionEntryPoints table{slots.size(), slots.data()};
    return &table;
}
