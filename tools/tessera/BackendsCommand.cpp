// tessera backends: the loaded backends, and the bundles that could not be
// loaded with the reason.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <cstdio>

#include "Command.h"
#include "Messages.h"

namespace {

int filledSlots(const LuSVNBundleEntryPoints* table)
{
    int count = 0;
    for (LuSVNEntryPoint slot : table->slots)
        count += slot != nullptr;
    return count;
}

int listBackends()
{
    auto loader = LuSVNBundleLoader::sharedInstance();
    const auto versions = loader->loadedVersions();
    const auto broken = loader->brokenBundles();
    if (!versions.empty() || !broken.empty())
        std::printf("%-12s %-8s %-13s %s\n", "version", "format", "entry points", "bundle");
    for (const auto& version : versions) {
        auto bundle = loader->bundleForVersion(version);
        const auto format = loader->infoDictionaryForBundle(bundle).integerForKey("LuSVNWorkingCopyFormatVersion");
        std::printf("%-12s %-8lld %3d of %-6zu %s\n", version.versionString().c_str(), static_cast<long long>(format),
                    filledSlots(bundle->entryPoints()), LuSVNEntryPointCount, bundle->bundle()->bundlePath().c_str());
    }
    for (const auto& bundle : broken)
        std::printf("%-12s %-8s %-13s %s (%s)\n", "broken", "-", "-", bundle.path.c_str(), bundle.reason.c_str());
    if (versions.empty()) {
        LuSVNException::exceptionWithReason("No backend found in " + LuSVNBundleLoader::defaultBundleDirectory(),
                                            LuSVNGenericErrorStatus)
            ->raise();
    }
    return 0;
}

const TesseraCommand backendsCommand(
    {"backends",
     {},
     "List the Subversion backends.",
     "backends",
     "Lists each loaded backend: its Subversion release, the newest working-copy\n"
     "format it reads, how many entry points it fills and where it lies. Bundles\n"
     "that could not be loaded are listed as broken, with the reason."},
    [](CLI::App&) -> TesseraCommand::Action { return listBackends; });

}  // namespace
