// tessera wc PATH: the working copy that holds PATH (a directory or a file in
// it), its format, the backend chosen for it and its administrative directory.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <memory>

#include "Command.h"
#include "Messages.h"
#include "Options.h"

namespace {

int describeWorkingCopy(const std::string& path)
{
    namespace fs = std::filesystem;
    const fs::path absolute = fs::absolute(path).lexically_normal();
    // A file answers for the working copy of its directory.
    const fs::path directory = fs::is_directory(absolute) ? absolute : absolute.parent_path();
    const int format = fs::exists(absolute) ? LuSVNNode::formatVersionForWorkingCopyAtPath(directory.string()) : 0;
    if (format == 0)
        LuSVNException::exceptionWithReason("'" + absolute.string() + "' is not a working copy", 155007)->raise();
    const LuSVNVersion version = LuSVNNode::versionForWorkingCopyAtPath(directory.string());
    auto bundle = LuSVNBundleLoader::sharedInstance()->bundleForVersion(version);

    // The administrative directory of the directory's working copy: the
    // nearest one up from it (only the root holds one from format 12 on,
    // every directory before).
    const fs::path adminName = fs::path(LuSVNNode::adminAreaInDirectoryAtPath(directory.string())).filename();
    fs::path root = directory;
    while (!fs::is_directory(root / adminName) && root.has_relative_path())
        root = root.parent_path();

    std::printf("path:    %s\n", path.c_str());
    std::printf("format:  %d\n", format);
    std::printf("release: %s\n", version.versionString().c_str());
    std::printf("backend: %s\n", bundle ? bundle->bundle()->bundlePath().c_str() : "(none)");
    std::printf("admin:   %s\n", (root / adminName).c_str());
    return 0;
}

const TesseraCommand workingCopyCommand(
    {"wc",
     {},
     "Describe the working copy that holds PATH.",
     "wc PATH",
     "Prints the working copy's format, the Subversion release chosen to read\n"
     "it, that release's backend and the working copy's administrative\n"
     "directory. PATH is a directory of the working copy or a file in one."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto arguments = std::make_shared<std::vector<std::string>>();
        addArguments(command, *arguments);
        return [&command, arguments] {
            checkArgumentCount(command, *arguments, 1, 1);
            return describeWorkingCopy(arguments->front());
        };
    });

}  // namespace
