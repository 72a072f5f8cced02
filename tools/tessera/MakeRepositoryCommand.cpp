// tessera mkrepo PATH [--compatible-version X.Y]: a new FSFS repository.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <regex>

#include "Command.h"
#include "Messages.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> compatibleVersion;
};

int makeRepository(const Settings& settings)
{
    LuSVNFileSystemOptions options;
    // Without --compatible-version, the newest format the backend writes, as
    // svnadmin create does; the options' own default is an older release.
    options.setCompatibility(settings.compatibleVersion
                                 ? LuSVNVersion::versionWithString(*settings.compatibleVersion)
                                 : LuSVNBundleLoader::sharedInstance()->newestVersion().value_or(LuSVNVersion::defaultVersion()));
    // Absolute, so that the URL names the repository from anywhere.
    const auto absolute = std::filesystem::absolute(settings.arguments.front()).lexically_normal().string();
    const auto repository = LuSVNRepository::createRepositoryAtPath(LuSVNLocalPath::pathWithString(absolute), options);
    std::printf("%s\n", repository->path()->URL()->string().c_str());
    return 0;
}

const TesseraCommand makeRepositoryCommand(
    {"mkrepo",
     {},
     "Create a new, empty repository at PATH.",
     "mkrepo PATH",
     "Creates an FSFS repository and prints its file:// URL. With\n"
     "--compatible-version, releases back to the one named can read it."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addArguments(command, settings->arguments);
        addOption(
            command, "--compatible-version",
            [settings](const std::string& version) {
                // The library's version parser reads anything ("x" as 0.0);
                // only plain releases are meant.
                if (!std::regex_match(version, std::regex("[0-9]+\\.[0-9]+(\\.[0-9]+)?")))
                    LuSVNException::exceptionWithReason("Failed to parse version number string '" + version + "'",
                                                        200037)
                        ->raise();
                settings->compatibleVersion = version;
            },
            "use repository format compatible with Subversion\nversion ARG (\"1.5.5\", \"1.7\", etc.)");
        return [&command, settings] {
            checkArgumentCount(command, settings->arguments, 1, 1);
            return makeRepository(*settings);
        };
    });

}  // namespace
