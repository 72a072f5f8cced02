// tessera help [COMMAND...]: the program's help, or each command's.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

#include "Command.h"
#include "CommandLine.h"
#include "Options.h"

namespace {

int help(const CLI::App& program, const std::vector<std::string>& topics)
{
    if (topics.empty()) {
        std::fputs(programHelp(program).c_str(), stdout);
        return 0;
    }
    for (const std::string& topic : topics) {
        const auto commands = program.get_subcommands({});
        const auto found = std::find_if(commands.begin(), commands.end(),
                                        [&](const CLI::App* command) { return command->check_name(topic); });
        if (found == commands.end())
            std::fprintf(stderr, "\"%s\": unknown command.\n\n", topic.c_str());
        else
            std::fputs(commandHelp(**found).c_str(), stdout);
    }
    return 0;
}

const TesseraCommand helpCommand({"help",
                                  {"?", "h"},
                                  "Describe the usage of this program or its subcommands.",
                                  "help [SUBCOMMAND...]",
                                  ""},
                                 [](CLI::App& command) -> TesseraCommand::Action {
                                     auto topics = std::make_shared<std::vector<std::string>>();
                                     addArguments(command, *topics);
                                     return [&command, topics] { return help(*command.get_parent(), *topics); };
                                 });

}  // namespace
