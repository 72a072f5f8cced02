#include "Options.h"

#include <tessera/LuSVNException.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "Messages.h"

namespace {

// Whether an option of that name takes a value; a flag is refused, the
// parser alone would read "--verbose=" as "--verbose".
bool takesValue(const CLI::App& program, const std::string& name)
{
    for (const CLI::App* command : program.get_subcommands({}))
        if (const CLI::Option* option = command->get_option_no_throw(name)) {
            if (option->get_items_expected_max() == 0)
                throw CLI::ArgumentMismatch::FlagOverride(name.substr(2));
            return true;
        }
    return false;
}

}  // namespace

std::vector<std::string> parserArguments(const CLI::App& program, int argc, char** argv)
{
    std::vector<std::string> arguments;
    bool options = true;
    for (int i = 1; i < argc; ++i) {
        std::string argument = argv[i];
        options = options && argument != "--";
        if (options && argument.size() > 3 && argument.rfind("--", 0) == 0 && argument.back() == '=' &&
            takesValue(program, argument.substr(0, argument.size() - 1))) {
            argument.pop_back();
            arguments.push_back(std::move(argument));
            arguments.emplace_back();
        } else {
            arguments.push_back(std::move(argument));
        }
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

CLI::Option* addFlag(CLI::App& command, const std::string& names, bool& flag, const std::string& description)
{
    return command.add_flag(names, flag, description)->disable_flag_override();
}

CLI::Option* addOption(CLI::App& command, const std::string& names, std::function<void(const std::string&)> store,
                       const std::string& description)
{
    return command
        .add_option_function<std::string>(names, std::move(store), description)
        // Repeated, the last one counts, as in svn.
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

void addArguments(CLI::App& command, std::vector<std::string>& arguments)
{
    command.add_option("arguments", arguments)->group("");
}

void checkArgumentCount(const CLI::App& command, const std::vector<std::string>& arguments, std::size_t least,
                        std::size_t most)
{
    if (arguments.size() < least)
        throwUsageError(command.get_name(), TesseraInsufficientArgumentsError, "Not enough arguments provided");
    if (arguments.size() > most)
        throwUsageError(command.get_name(), TesseraArgumentParsingError, "Too many arguments given");
}

CLI::Option* addDepthOption(CLI::App& command, std::function<void(const std::string&)> store)
{
    return addOption(
        command, "--depth",
        [store = std::move(store)](const std::string& word) {
            if (word != "empty" && word != "files" && word != "immediates" && word != "infinity")
                LuSVNException::exceptionWithReason(
                    "'" + word + "' is not a valid depth; try 'empty', 'files', 'immediates', or 'infinity'",
                    TesseraArgumentParsingError)
                    ->raise();
            store(word);
        },
        "limit operation by depth ARG ('empty', 'files',\n'immediates', or 'infinity')");
}

CLI::Option* addConfigDirOption(CLI::App& command, std::optional<std::string>& directory)
{
    return addOption(
               command, "--config-dir",
               [&directory](const std::string& path) {
                   // svn reads the servers file first, warns about what keeps
                   // it from being opened and goes on without the directory.
                   std::error_code error;
                   if (std::filesystem::exists(path, error) && !std::filesystem::is_directory(path, error)) {
                       printWarning(ENOTDIR, "Can't open file '" + path + "/servers': " + std::strerror(ENOTDIR));
                       directory.reset();
                   } else {
                       directory = path;
                   }
               },
               "read user configuration files from directory ARG")
        ->group(TesseraGlobalOptions);
}
