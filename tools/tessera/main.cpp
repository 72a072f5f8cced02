// tessera: the command-line face of the library.
//
//   tessera backends      the loaded backends: version, working-copy format,
//                         filled entry points
//   tessera wc PATH       a working copy's format and the backend chosen for it
//   tessera mkrepo PATH [--compatible-version X.Y]
//                         a new FSFS repository; prints its file:// URL
//   tessera status [options] [PATH...]
//                         the status of working-copy items, as svn prints it
#include <tessera/Tessera.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <regex>
#include <string>

#include "StatusCommand.h"

namespace {

constexpr const char* usage =
    "usage: tessera <command> [arguments]\n"
    "\n"
    "commands:\n"
    "  backends    list the loaded Subversion backends\n"
    "  wc PATH     show a working copy's format and the backend chosen for it\n"
    "  mkrepo PATH [--compatible-version X.Y]\n"
    "              create an FSFS repository and print its file:// URL; with a\n"
    "              release older than 1.6 the repository stays readable by it\n"
    "  status [-v] [-u] [-q] [--no-ignore] [--ignore-externals] [--depth D] [-N]\n"
    "         [--config-dir DIR] [--xml | --json] [--aggregates] [PATH...]\n"
    "              the status of working-copy items, as svn prints it\n"
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

int makeRepository(const std::string& path, const std::optional<std::string>& compatibleVersion)
{
    LuSVNFileSystemOptions options;
    if (compatibleVersion)
        options.setCompatibility(LuSVNVersion::versionWithString(*compatibleVersion));
    // Absolute, so that the URL names the repository from anywhere.
    const auto absolute = std::filesystem::absolute(path).lexically_normal().string();
    const auto repository = LuSVNRepository::createRepositoryAtPath(LuSVNLocalPath::pathWithString(absolute), options);
    std::printf("%s\n", repository->path()->URL()->string().c_str());
    return 0;
}

// "mkrepo PATH [--compatible-version X.Y]", in either order; 2 for bad arguments.
int makeRepositoryCommand(int argc, char** argv)
{
    std::optional<std::string> path, compatibleVersion;
    bool understood = true;
    for (int i = 2; i < argc && understood; ++i) {
        if (std::strcmp(argv[i], "--compatible-version") == 0 && i + 1 < argc && !compatibleVersion)
            compatibleVersion = argv[++i];
        else if (!path && argv[i][0] != '\0' && argv[i][0] != '-')
            path = argv[i];
        else
            understood = false;
    }
    if (!understood || !path) {
        std::fputs(usage, stderr);
        return 2;
    }
    // The version parser reads anything, "x" as 0.0; only plain releases are meant.
    if (compatibleVersion && !std::regex_match(*compatibleVersion, std::regex("[0-9]+\\.[0-9]+(\\.[0-9]+)?"))) {
        std::cerr << "tessera: --compatible-version expects a release such as 1.5, not '" << *compatibleVersion
                  << "'\n";
        return 2;
    }
    return makeRepository(*path, compatibleVersion);
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
        if (command == "mkrepo")
            return makeRepositoryCommand(argc, argv);
        if (command == "status")
            return statusCommand(argc - 2, argv + 2);
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
