// tessera cat TARGET[@REV]...: the contents of files of working copies or
// repositories on standard output, as svn cat prints them. The contents
// stream through: a file of any size takes no more memory than a small one.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "HistoryOptions.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"
#include "ReadTarget.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    std::shared_ptr<const LuSVNRevisionSpec> revision;
};

// Standard output as the library's stream, through stdio's buffer.
class StandardOutputStream : public LuSVNOutputStream {
public:
    long write(const std::uint8_t* buffer, std::size_t length) override
    {
        if (std::fwrite(buffer, 1, length, stdout) != length)
            return -1;
        return static_cast<long>(length);
    }
};

int cat(const CLI::App& command, const Settings& settings)
{
    std::vector<std::string> targets = settings.arguments;
    if (settings.targetsFile)
        for (const std::string& line : readTargetsFile(*settings.targetsFile))
            targets.push_back(line);
    checkArgumentCount(command, targets, 1, static_cast<std::size_t>(-1));
    TesseraTargetFailures failures(
        false, {{200005, "Could not cat all targets because some targets are not versioned"},
                {195007, "Could not cat all targets because some targets are directories"},
                {160013, "Could not cat all targets because some targets don't exist"},
                {155010, "Could not cat all targets because some targets don't exist"}});
    const auto output = std::make_shared<StandardOutputStream>();
    for (const std::string& argument : targets) {
        const TesseraReadTarget target = readTarget(argument, settings.revision);
        TesseraOperation operation(target.isURL ? target.text : absoluteTargetPath(target.text), {true, false});
        failures.attempt([&] { LuSVNFile::catRevision(target.revision, target.path, output, operation.context()); });
    }
    flushOutput("Can't write to stream");  // svn's cat writes through a stream
    failures.raiseIfAny();
    return 0;
}

const TesseraCommand catCommand(
    {"cat",
     {},
     "Output the content of specified files or URLs.",
     "cat TARGET[@REV]...",
     "If specified, REV determines in which revision the target is first\n"
     "looked up."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionOption(command, [settings](auto revision) { settings->revision = std::move(revision); });
        addTargetsOption(command, settings->targetsFile);
        addArguments(command, settings->arguments);
        return [settings, &command] { return cat(command, *settings); };
    });

}  // namespace
