// tessera relocate FROM-PREFIX TO-PREFIX [PATH...] or relocate TO-URL
// [PATH]: a working copy pointed at its repository's new address, as svn
// relocate.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <memory>

#include "Command.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
};

int relocate(const CLI::App& command, const Settings& settings)
{
    const auto& arguments = settings.arguments;
    checkArgumentCount(command, arguments, 1, static_cast<std::size_t>(-1));
    std::string from, to;
    std::vector<std::string> targets;
    if (arguments.size() == 1 || (arguments.size() == 2 && isURL(arguments[0]) && !isURL(arguments[1]))) {
        // TO-URL [PATH]: the old prefix is the working copy's own URL.
        to = arguments[0];
        targets.push_back(arguments.size() == 2 ? arguments[1] : ".");
        TesseraOperation operation(targets.front(), {true, false});
        from = LuSVNNode::URLForNodeAtPath(targetPath(targets.front()), operation.context())->string();
    } else {
        from = arguments[0];
        to = arguments[1];
        targets.assign(arguments.begin() + 2, arguments.end());
        if (targets.empty())
            targets.emplace_back(".");
        if (isURL(from) != isURL(to))
            LuSVNException::exceptionWithReason("'" + from + "' to '" + to + "' is not a valid relocation", 200004)
                ->raise();
    }
    for (const std::string& target : localTargets(targets, std::nullopt, true)) {
        TesseraOperation operation(target, {false, false});
        LuSVNNode::relocateNodeAtPath(targetPath(target), from, to, true, operation.context());
    }
    return 0;
}

const TesseraCommand relocateCommand(
    {"relocate",
     {},
     "Relocate the working copy to point to a different repository root URL.",
     "1. relocate FROM-PREFIX TO-PREFIX [PATH...]\n2. relocate TO-URL [PATH]",
     "Rewrite working copy URL metadata to reflect a syntactic change only.\n"
     "This is used when a repository's root URL changes (such as a scheme\n"
     "or hostname change) but your working copy still reflects the same\n"
     "directory within the same repository."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addArguments(command, settings->arguments);
        return [&command, settings] { return relocate(command, *settings); };
    });

}  // namespace
