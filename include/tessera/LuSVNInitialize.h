// Start-up of the library.
//
// Call LuSVNInitialize() once, from one thread, before anything else: it loads
// every backend of the default bundle directory, sets the C locale from the
// environment and makes sure the user's Subversion configuration area exists.
// Later calls return at once.
#pragma once

#include <map>
#include <string>

#include <tessera/LuSVNExport.h>

/// Starts the library: call it once, from one thread, before making a
/// LuSVNContext or asking LuSVNBundleLoader for a backend. Loads every backend
/// of LuSVNBundleLoader::defaultBundleDirectory() (the directory
/// tessera/backends beside libtessera), sets the C locale from the
/// environment and creates the user's Subversion configuration area when it
/// is missing. Later calls return at once. Until it has run no backend is
/// loaded, so no operation can reach Subversion.
TESSERA_EXPORT void LuSVNInitialize();

/// The same; the options are accepted for future use and not read.
TESSERA_EXPORT void LuSVNInitializeWithOptions(const std::map<std::string, std::string>& options);

/// Sets the process locale for all categories from the environment, else only
/// the character type; raises LuSVNException "Failed to initialize locales"
/// when neither works.
TESSERA_EXPORT void LuSVNInitializeCLocale();

/// Creates the user's Subversion configuration directory and files when
/// missing (through the newest backend). Failures are not reported.
TESSERA_EXPORT void LuSVNInitializeSubversionConfiguration();
