// The interface that a backend's principal object implements.
//
// A backend is a directory NAME.bundle holding an information file
// (Info.json) and a shared object. The shared object exports one C function,
// LuSVNBundleCreatePrincipalObject, returning the principal object; the
// object is never destroyed and the shared object never unloaded.
//
// Info.json keys:
//   "CFBundleVersion"                 Subversion version of the backend (text)
//   "LuSVNWorkingCopyFormatVersion"   highest working-copy format it reads (integer > 0)
//   "LuSVNBundleExecutable"           file name of the shared object in the bundle
//   "LuSVNBundleInterfaceVersion"     must equal LuSVNBundleInterfaceVersion
#pragma once

#include <string>
#include <vector>

#include <tessera/LuSVNBundleEntryPoints.h>

/// Version of the contract between the library and its backends: the slot
/// table, this interface and the factory. A bundle declaring another version
/// is refused.
inline constexpr int LuSVNBundleInterfaceVersion = 1;

/// Name of the factory function each backend shared object exports.
#define LUSVN_BUNDLE_FACTORY_NAME "LuSVNBundleCreatePrincipalObject"

class LuSVNBundle {
public:
    virtual ~LuSVNBundle() = default;

    /// The backend's entry-point table; valid for the life of the process.
    virtual const LuSVNBundleEntryPoints* entryPoints() const = 0;

    /// The release's default value of the "global-ignores" option.
    virtual std::string defaultGlobalIgnoreString() const = 0;

    /// The same value split into its patterns.
    virtual std::vector<std::string> defaultGlobalIgnoreList() const = 0;
};

/// Signature of the factory exported by a backend.
extern "C" {
typedef LuSVNBundle* (*LuSVNBundleFactory)(void);
}

/// Name of the optional function that hands over the extension table
/// (LuSVNBundleExtensionEntryPoints); backends of older releases lack it.
#define LUSVN_BUNDLE_EXTENSIONS_NAME "LuSVNBundleExtensionTable"

/// Signature of that function.
extern "C" {
typedef const LuSVNBundleExtensionEntryPoints* (*LuSVNBundleExtensionsFunction)(void);
}
