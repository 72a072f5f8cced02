// tessera: the command-line face of the library.
//
//   tessera backends      the loaded backends: version, working-copy format,
//                         filled entry points
//   tessera wc PATH       a working copy's format and the backend chosen for it
#include <tessera/Tessera.h>

#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

namespace {

constexpr const char* usage =
    "usage: tessera <command> [arguments]\n"
    "\n"
    "commands:\n"
    "  backends    list the loaded Subversion backends\n"
    "  wc PATH     show a working copy's format and the backend chosen for it\n"
    "\n"
    "The log level comes from the environment variable TesseraLogLevel\n"
    "(off, normal, debug, verbose).\n";

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
    if (versions.empty()) {
        std::cerr << "tessera: no backend found in " << LuSVNBundleLoader::defaultBundleDirectory() << "\n";
        return 1;
    }
    std::printf("%-12s %-8s %-13s %s\n", "version", "format", "entry points", "bundle");
    for (const auto& version : versions) {
        auto bundle = loader->bundleForVersion(version);
        const auto format = loader->infoDictionaryForBundle(bundle).integerForKey("LuSVNWorkingCopyFormatVersion");
        std::printf("%-12s %-8lld %3d of %-6zu %s\n", version.versionString().c_str(), static_cast<long long>(format),
                    filledSlots(bundle->entryPoints()), LuSVNEntryPointCount, bundle->bundle()->bundlePath().c_str());
    }
    return 0;
}

int describeWorkingCopy(const std::string& path)
{
    const int format = LuSVNNode::formatVersionForWorkingCopyAtPath(path);
    const LuSVNVersion version = LuSVNNode::versionForWorkingCopyAtPath(path);
    auto bundle = LuSVNBundleLoader::sharedInstance()->bundleForVersion(version);
    std::printf("path:    %s\n", path.c_str());
    std::printf("format:  %d\n", format);
    std::printf("release: %s\n", version.versionString().c_str());
    std::printf("backend: %s\n", bundle ? bundle->bundle()->bundlePath().c_str() : "(none)");
    std::printf("admin:   %s\n", LuSVNNode::adminAreaInDirectoryAtPath(path).c_str());
    return 0;
}

void printCauses(const std::optional<LuSVNErrorDictionary>& info)
{
    if (!info)
        return;
    for (auto cause = info->cause; cause; cause = cause->cause)
        if (cause->message)
            std::cerr << "tessera:   " << *cause->message << "\n";
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
        std::fputs(usage, argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    const std::string command = argv[1];
    try {
        LuSVNInitialize();
        if (command == "backends" && argc == 2)
            return listBackends();
        if (command == "wc" && argc == 3)
            return describeWorkingCopy(argv[2]);
        std::fputs(usage, stderr);
        return 2;
    } catch (const LuSVNException& e) {
        std::cerr << "tessera: " << e.reason() << "\n";
        printCauses(e.userInfo());
        return 1;
    } catch (const std::exception& e) {
        std::cerr << "tessera: " << e.what() << "\n";
        return 1;
    }
}
