#include "CommandLine.h"

#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>

#include "Authentication.h"
#include "Command.h"
#include "HistoryOptions.h"
#include "Messages.h"
#include "Options.h"

namespace {

const TesseraCommand* registeredCommand(const CLI::App& command)
{
    for (const TesseraCommand* candidate : TesseraCommand::all())
        if (candidate->info().name == command.get_name())
            return candidate;
    return nullptr;
}

// "-u [--show-updates]", "--depth ARG": how svn names an option in its help
// and in its complaints.
std::string optionDisplay(const CLI::Option& option)
{
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    std::string text = names.empty() ? option.get_name() : names.front();
    if (names.size() > 1) {
        text += " [";
        for (std::size_t n = 1; n < names.size(); ++n)
            text += (n > 1 ? " " : "") + names[n];
        text += "]";
    }
    if (option.get_items_expected_max() != 0)
        text += " ARG";
    return text;
}

void appendOptions(std::string& out, const CLI::App& command, const std::string& heading, bool global)
{
    std::string lines;
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_group().empty() || (option->get_group() == TesseraGlobalOptions) != global)
            continue;
        char name[64];
        std::snprintf(name, sizeof name, "  %-24s : ", optionDisplay(*option).c_str());
        lines += name;
        // Continuation lines of a description line up under its first.
        for (const char c : option->get_description())
            lines += c == '\n' ? "\n" + std::string(29, ' ') : std::string(1, c);
        lines += "\n";
    }
    if (!lines.empty())
        out += "\n" + heading + ":\n" + lines;
}

// The messages of svn's option parser: no code, and a pointer to the help.
int optionError(const std::string& message, const std::string& helpTopic = "")
{
    if (!message.empty())
        std::fprintf(stderr, "%s\n", message.c_str());
    std::fprintf(stderr, "Type 'tessera help%s' for usage.\n", helpTopic.empty() ? "" : (" " + helpTopic).c_str());
    return 1;
}

// The first argument of a command that is an option no declaration took.
int unknownOptionError(const CLI::App& program, const CLI::App& command, const std::string& argument)
{
    const std::string name = argument.substr(0, argument.find('='));
    // svn knows every option of every command, and says when one belongs elsewhere.
    for (const CLI::App* other : program.get_subcommands({}))
        if (const CLI::Option* option = other->get_option_no_throw(name))
            return optionError("Subcommand '" + command.get_name() + "' doesn't accept option '" +
                                   optionDisplay(*option) + "'",
                               command.get_name());
    if (name.size() > 1 && name[1] != '-')
        return optionError("tessera: invalid option character: " + name.substr(1, 1));
    return optionError("tessera: invalid option: " + name);
}

// svn's words for what CLI11 refuses while parsing.
int parseError(const CLI::ParseError& error, int argc, char** argv)
{
    const std::string what = error.what();
    if (const auto at = what.find(" was given a disallowed flag override"); at != std::string::npos) {
        // The flag's name without its dashes; the argument as it was given.
        const std::string name = what.substr(0, at);
        for (int i = 1; i < argc; ++i) {
            const std::string argument = argv[i];
            if (argument.rfind("--" + name + "=", 0) == 0 || argument.rfind("-" + name + "=", 0) == 0)
                return optionError("tessera: erroneous argument: " + argument);
        }
    }
    if (const auto at = what.find(" required "); at != std::string::npos && what.find(" missing") != std::string::npos)
        return optionError("tessera: missing argument: " + what.substr(0, what.find(':')));
    return optionError("tessera: " + what);
}

// Unknown options and surplus arguments that the parser of a command left.
std::optional<int> leftOverError(const CLI::App& program, const CLI::App& command)
{
    for (const std::string& argument : command.remaining()) {
        if (argument == "--")
            continue;
        if (argument.size() > 1 && argument[0] == '-')
            return unknownOptionError(program, command, argument);
        throwUsageError(command.get_name(), TesseraArgumentParsingError, "Too many arguments given");
    }
    return std::nullopt;
}

}  // namespace

std::string commandHelp(const CLI::App& command)
{
    const TesseraCommand::Info& info = registeredCommand(command)->info();
    std::string out = info.name;
    if (!info.aliases.empty()) {
        out += " (";
        for (std::size_t a = 0; a < info.aliases.size(); ++a)
            out += (a ? ", " : "") + info.aliases[a];
        out += ")";
    }
    out += ": " + info.summary + "\n";
    std::istringstream usage(info.usage);
    std::string line;
    for (bool first = true; std::getline(usage, line); first = false)
        out += (first ? "usage: " : "       ") + line + "\n";
    std::istringstream description(info.description);
    if (!info.description.empty())
        out += "\n";
    while (std::getline(description, line))
        out += line.empty() ? "\n" : "  " + line + "\n";
    appendOptions(out, command, "Valid options", false);
    appendOptions(out, command, "Global options", true);
    return out + "\n";
}

std::string programHelp(const CLI::App& program)
{
    std::string out =
        "usage: tessera <subcommand> [options] [args]\n"
        "Tessera command-line client, on the Tessera library's Subversion backends.\n"
        "Type 'tessera help <subcommand>' for help on a specific subcommand.\n"
        "\n"
        "Available subcommands:\n";
    for (const CLI::App* command : program.get_subcommands({})) {
        out += "   " + command->get_name();
        const auto& aliases = command->get_aliases();
        for (std::size_t a = 0; a < aliases.size(); ++a)
            out += (a ? ", " : " (") + aliases[a];
        out += aliases.empty() ? "\n" : ")\n";
    }
    return out +
           "\n"
           "The log level of the library comes from the environment variable\n"
           "TesseraLogLevel (off, normal, debug, verbose).\n";
}

int runTessera(int argc, char** argv)
{
    CLI::App program("tessera", "tessera");
    program.set_help_flag();
    program.allow_extras();
    // One command per run: a later command name is an argument ("help status").
    program.require_subcommand(0, 1);
    bool programHelpWanted = false;
    program.add_flag("-h,--help", programHelpWanted)->group("");

    struct Parsed {
        TesseraCommand::Action action;
        bool helpWanted = false;
    };
    std::map<const CLI::App*, Parsed> commands;  // nodes stay put: the flags point into them
    try {
        for (const TesseraCommand* command : TesseraCommand::all()) {
            CLI::App* parser = program.add_subcommand(command->info().name, command->info().summary);
            for (const std::string& alias : command->info().aliases)
                parser->alias(alias);
            parser->set_help_flag();
            parser->allow_extras();
            Parsed& parsed = commands[parser];
            parser->add_flag("-h,--help", parsed.helpWanted)->group("");
            parsed.action = command->setUp(*parser);
            addGlobalOptions(*parser, tesseraGlobalSettings());
        }
        try {
            program.parse(parserArguments(program, argc, argv));
        } catch (const CLI::ParseError& error) {
            return parseError(error, argc, argv);
        }
        for (const std::string& argument : program.remaining()) {
            if (argument.size() > 1 && argument[0] == '-')
                return optionError("tessera: invalid option: " + argument.substr(0, argument.find('=')));
            std::fprintf(stderr, "Unknown subcommand: '%s'\nType 'tessera help' for usage.\n", argument.c_str());
            return 1;
        }
        const auto chosen = program.get_subcommands();
        if (chosen.empty()) {
            if (!programHelpWanted)
                return optionError("");
            std::fputs(programHelp(program).c_str(), stdout);
            return 0;
        }
        const CLI::App& command = *chosen.front();
        if (const auto error = leftOverError(program, command))
            return *error;
        const Parsed& parsed = commands.at(&command);
        if (parsed.helpWanted || programHelpWanted) {
            std::fputs(commandHelp(command).c_str(), stdout);
            return 0;
        }
        LuSVNInitialize();
        completeAuthenticationSettings(tesseraGlobalSettings());
        try {
            const int status = parsed.action();
            // Output still buffered goes out now, so that a failure to write
            // it is reported as svn reports it instead of lost at exit.
            flushOutput();
            return status;
        } catch (const TesseraOptionValueError&) {
            throw;
        } catch (const LuSVNException& failure) {
            // Bad arguments found while running point to the command's help.
            auto links = errorLinks(failure);
            const int code = links.front().first;
            if ((code != TesseraArgumentParsingError && code != TesseraInsufficientArgumentsError) ||
                links.front().second.rfind("Try 'tessera help", 0) == 0)
                throw;
            links.insert(links.begin(), {code, "Try 'tessera help " + command.get_name() + "' for more information"});
            throwErrorChain(links);
        }
    } catch (const LuSVNException& failure) {
        auto links = errorLinks(failure);
        // A working copy left locked: svn says how to get on.
        if (std::any_of(links.begin(), links.end(), [](const auto& link) { return link.first == 155004; }))
            links.insert(links.begin(),
                         {155004, "Run 'tessera cleanup' to remove locks (type 'tessera help cleanup' for details)"});
        try {
            throwErrorChain(links);
        } catch (const LuSVNException& wrapped) {
            printError(wrapped);
        }
        return 1;
    } catch (const std::exception& failure) {
        std::fflush(stdout);
        std::fprintf(stderr, "tessera: %s\n", failure.what());
        return 1;
    }
}
