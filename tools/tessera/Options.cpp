#include "Options.h"

#include <tessera/LuSVNException.h>
#include <tessera/LuSVNRevisionSpec.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <unistd.h>

#include "Authentication.h"
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

// The option of the program's commands with that name ("-m", "--message").
const CLI::Option* findOption(const CLI::App& program, const std::string& name)
{
    for (const CLI::App* command : program.get_subcommands({}))
        if (const CLI::Option* option = command->get_option_no_throw(name))
            return option;
    return nullptr;
}

bool isValueOption(const CLI::App& program, const std::string& name)
{
    const CLI::Option* option = findOption(program, name);
    return option && option->get_items_expected_max() != 0;
}

// Whether the word ends with an option that takes the next word as its
// value: "--message", "-m", or flags before it ("-qm").
bool takesNextWord(const CLI::App& program, const std::string& word)
{
    if (word.size() > 2 && word.rfind("--", 0) == 0)
        return word.find('=') == std::string::npos && isValueOption(program, word);
    if (word.size() < 2 || word[0] != '-' || word[1] == '-')
        return false;
    for (std::size_t letter = 1; letter < word.size(); ++letter)
        if (isValueOption(program, std::string("-") + word[letter]))
            return letter == word.size() - 1;  // a value option inside takes the rest
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
        } else if (options && i + 1 < argc && argv[i + 1][0] == '-' && argv[i + 1][1] != '\0' &&
                   takesNextWord(program, argument)) {
            // svn takes the next word as the value whatever it looks like;
            // the parser would read it as an option. Joined, it cannot.
            const std::string value = argv[++i];
            arguments.push_back(argument + (argument[1] == '-' ? "=" : "") + value);
        } else {
            arguments.push_back(std::move(argument));
        }
    }
    // svn reads options anywhere: those before the command's name are the
    // command's too.
    std::size_t name = 0;
    while (name < arguments.size() && arguments[name].size() > 1 && arguments[name][0] == '-' && arguments[name] != "--")
        name += takesNextWord(program, arguments[name]) ? 2 : 1;
    if (name > 0 && name < arguments.size() && arguments[name] != "--")
        std::rotate(arguments.begin(), arguments.begin() + static_cast<std::ptrdiff_t>(name),
                    arguments.begin() + static_cast<std::ptrdiff_t>(name) + 1);
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

CLI::Option* addTargetsOption(CLI::App& command, std::optional<std::string>& file)
{
    return addOption(
        command, "--targets", [&file](const std::string& name) { file = name; },
        "pass contents of file ARG as additional args");
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

CLI::Option* addSetDepthOption(CLI::App& command, std::function<void(const std::string&)> store)
{
    return addOption(
        command, "--set-depth",
        [store = std::move(store)](const std::string& word) {
            if (word != "exclude" && word != "empty" && word != "files" && word != "immediates" && word != "infinity")
                LuSVNException::exceptionWithReason("'" + word +
                                                        "' is not a valid depth; try 'exclude', 'empty', 'files', "
                                                        "'immediates', or 'infinity'",
                                                    TesseraArgumentParsingError)
                    ->raise();
            store(word);
        },
        "set new working copy depth to ARG ('exclude',\n'empty', 'files', 'immediates', or 'infinity')");
}

LuSVNDepth depthForWord(const std::string& word)
{
    if (word == "exclude")
        return LuSVNDepthExclude;
    if (word == "empty")
        return LuSVNDepthEmpty;
    if (word == "files")
        return LuSVNDepthFiles;
    if (word == "immediates")
        return LuSVNDepthImmediates;
    return word == "infinity" ? LuSVNDepthInfinity : LuSVNDepthUnknown;
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

bool TesseraGlobalSettings::interactive() const
{
    return !nonInteractive && (forceInteractive || isatty(STDIN_FILENO));
}

TesseraGlobalSettings& tesseraGlobalSettings()
{
    static TesseraGlobalSettings settings;
    return settings;
}

void addGlobalOptions(CLI::App& command, TesseraGlobalSettings& settings)
{
    addOption(
        command, "--username", [&settings](const std::string& name) { settings.username = name; },
        "specify a username ARG")
        ->group(TesseraGlobalOptions);
    addOption(
        command, "--password", [&settings](const std::string& password) { settings.password = password; },
        "specify a password ARG (caution: on many operating\nsystems, other users will be able to see this)")
        ->group(TesseraGlobalOptions);
    addFlag(command, "--password-from-stdin", settings.passwordFromStdin, "read password from stdin")
        ->group(TesseraGlobalOptions);
    addFlag(command, "--no-auth-cache", settings.noAuthCache, "do not cache authentication tokens")
        ->group(TesseraGlobalOptions);
    addFlag(command, "--non-interactive", settings.nonInteractive,
            "do no interactive prompting (default is to prompt\nonly if standard input is a terminal device)")
        ->group(TesseraGlobalOptions);
    addFlag(command, "--force-interactive", settings.forceInteractive,
            "do interactive prompting even if standard input\nis not a terminal device")
        ->group(TesseraGlobalOptions);
    addOption(
        command, "--trust-server-cert-failures",
        [&settings](const std::string& list) { settings.trustFailures = parseTrustFailures(list); },
        "with --non-interactive, accept SSL server\ncertificates with failures; ARG is comma-separated\n"
        "list of 'unknown-ca' (Unknown Authority),\n'cn-mismatch' (Hostname mismatch), 'expired'\n"
        "(Expired certificate), 'not-yet-valid' (Not yet\nvalid certificate) and 'other' (all other not\n"
        "separately classified certificate errors).")
        ->group(TesseraGlobalOptions);
    addConfigDirOption(command, settings.configDir);
    // Every one counts, in their order.
    command
        .add_option_function<std::vector<std::string>>(
            "--config-option",
            [&settings](const std::vector<std::string>& arguments) {
                for (const std::string& argument : arguments)
                    settings.configOptions.push_back(parseConfigOption(argument));
            },
            "set user configuration option in the format:\n    FILE:SECTION:OPTION=[VALUE]\nFor example:\n"
            "    servers:global:http-library=serf")
        ->type_name("ARG")
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->group(TesseraGlobalOptions);
}

TesseraConfigOption parseConfigOption(const std::string& argument)
{
    // FILE, SECTION and OPTION are not empty and OPTION holds no colon; the
    // value is the rest, colons, equal signs and all.
    const auto first = argument.find(':');
    const auto second = first == std::string::npos ? first : argument.find(':', first + 1);
    const auto equals = second == std::string::npos ? second : argument.find('=', second + 1);
    if (first == 0 || second == first + 1 || equals == std::string::npos || equals == second + 1 ||
        argument.find(':', second + 1) < equals)
        LuSVNException::exceptionWithReason("Invalid syntax of argument of --config-option",
                                            TesseraArgumentParsingError)
            ->raise();
    return {argument.substr(0, first), argument.substr(first + 1, second - first - 1),
            argument.substr(second + 1, equals - second - 1), argument.substr(equals + 1)};
}

namespace {

// The number of a regular-expression group, 0 when it did not take part.
int number(const std::ssub_match& group)
{
    return group.matched ? std::stoi(group.str()) : 0;
}

// Microseconds of a fraction given with up to six digits.
long long microseconds(const std::ssub_match& group)
{
    std::string digits = group.matched ? group.str() : "";
    digits.resize(6, '0');
    return std::stoll(digits);
}

// svn's date forms: ISO 8601 extended and basic, svn log's, and a time of
// today; local time unless a zone is given.
std::optional<LuSVNRevision::Date> parseDate(const std::string& text)
{
    static const std::regex extended(
        "(\\d{4})-(\\d{1,2})-(\\d{1,2})(?:[T ](\\d{1,2}):(\\d{2})(?::(\\d{2})(?:\\.(\\d{1,6}))?)?"
        "(?:(Z)|\\s?([+-])(\\d{2}):?(\\d{2})?)?)?");
    static const std::regex basic("(\\d{4})(\\d{2})(\\d{2})(?:T(\\d{2})(\\d{2})(?:(\\d{2})(?:\\.(\\d{1,6}))?)?"
                                  "(?:(Z)|([+-])(\\d{2})(\\d{2})?)?)?");
    static const std::regex timeOfDay("(\\d{1,2}):(\\d{2})(?::(\\d{2})(?:\\.(\\d{1,6}))?)?");
    std::smatch match;
    std::tm parts{};
    long long fraction = 0;
    bool local = true;
    long offset = 0;
    if (std::regex_match(text, match, extended) || std::regex_match(text, match, basic)) {
        parts.tm_year = number(match[1]) - 1900;
        parts.tm_mon = number(match[2]) - 1;
        parts.tm_mday = number(match[3]);
        parts.tm_hour = number(match[4]);
        parts.tm_min = number(match[5]);
        parts.tm_sec = number(match[6]);
        fraction = microseconds(match[7]);
        if (match[8].matched || match[9].matched) {
            local = false;
            offset = (number(match[10]) * 60L + number(match[11])) * 60L * (match[9].str() == "-" ? -1 : 1);
        }
    } else if (std::regex_match(text, match, timeOfDay)) {
        const std::time_t now = std::time(nullptr);
        localtime_r(&now, &parts);
        parts.tm_hour = number(match[1]);
        parts.tm_min = number(match[2]);
        parts.tm_sec = number(match[3]);
        fraction = microseconds(match[4]);
    } else {
        return std::nullopt;
    }
    if (parts.tm_mon < 0 || parts.tm_mon > 11 || parts.tm_mday < 1 || parts.tm_mday > 31 || parts.tm_hour > 23 ||
        parts.tm_min > 59 || parts.tm_sec > 60)
        return std::nullopt;
    parts.tm_isdst = -1;
    const std::time_t seconds = local ? std::mktime(&parts) : timegm(&parts) - offset;
    return std::chrono::system_clock::from_time_t(seconds) + std::chrono::microseconds(fraction);
}

}  // namespace

namespace {

// One revision of svn's revision argument; null for a syntax error.
std::shared_ptr<const LuSVNRevisionSpec> parseOneRevision(const std::string& text)
{
    // Any number of "r"s may lead, as in output pasted back ("r5").
    const std::string word = text.substr(std::min(text.find_first_not_of('r'), text.size()));
    if (!word.empty() && word.front() == '{' && word.back() == '}') {
        const auto date = parseDate(word.substr(1, word.size() - 2));
        return date ? LuSVNRevisionSpec::revisionAtDate(*date) : nullptr;
    }
    if (!word.empty() && std::all_of(word.begin(), word.end(), [](unsigned char c) { return std::isdigit(c); })) {
        const long long revision = std::stoll(word.substr(0, 12));
        return revision > 0x7fffffff ? nullptr : LuSVNRevisionSpec::revisionWithNumber(static_cast<std::int32_t>(revision));
    }
    std::string upper = word;
    std::transform(upper.begin(), upper.end(), upper.begin(), [](unsigned char c) { return std::toupper(c); });
    if (upper == "HEAD")
        return LuSVNRevisionSpec::HEAD();
    if (upper == "BASE")
        return LuSVNRevisionSpec::BASE();
    if (upper == "COMMITTED")
        return LuSVNRevisionSpec::COMMITTED();
    if (upper == "PREV")
        return LuSVNRevisionSpec::PREVIOUS();
    return nullptr;
}

}  // namespace

std::pair<std::shared_ptr<const LuSVNRevisionSpec>, std::shared_ptr<const LuSVNRevisionSpec>> parseRevisionRange(
    const std::string& text)
{
    // A bad half makes the whole text a syntax error; the colon of a range
    // is the first one outside braces (dates hold colons).
    std::size_t colon = std::string::npos;
    for (std::size_t at = 0, depth = 0; at < text.size() && colon == std::string::npos; ++at) {
        depth += text[at] == '{';
        depth -= text[at] == '}' && depth > 0;
        if (text[at] == ':' && depth == 0)
            colon = at;
    }
    const auto revision = parseOneRevision(text.substr(0, colon));
    const auto end = colon == std::string::npos ? nullptr : parseOneRevision(text.substr(colon + 1));
    if (!revision || (colon != std::string::npos && !end))
        throwOptionValueError({{TesseraArgumentParsingError, "Syntax error in revision argument '" + text + "'"}});
    return {revision, end};
}

std::shared_ptr<const LuSVNRevisionSpec> parseRevision(const std::string& text)
{
    auto [revision, end] = parseRevisionRange(text);
    if (end)
        LuSVNException::exceptionWithReason("Revision range is not allowed", 195008)->raise();
    return revision;
}

const char* const revisionOptionHelp =
    "ARG (some commands also take ARG1:ARG2 range)\n"
    "A revision argument can be one of:\n"
    "   NUMBER       revision number\n"
    "   '{' DATE '}' revision at start of the date\n"
    "   'HEAD'       latest in repository\n"
    "   'BASE'       base rev of item's working copy\n"
    "   'COMMITTED'  last commit at or before BASE\n"
    "   'PREV'       revision just before COMMITTED";

CLI::Option* addRevisionOption(CLI::App& command, std::function<void(std::shared_ptr<const LuSVNRevisionSpec>)> store)
{
    return addOption(
        command, "-r,--revision",
        [store = std::move(store)](const std::string& text) { store(parseRevision(text)); },
        revisionOptionHelp);
}

std::vector<std::string> readTargetsFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        const int code = errno;
        LuSVNException::exceptionWithReason("Can't open file '" + path + "': " + std::strerror(code), code)->raise();
    }
    std::vector<std::string> targets;
    std::string line;
    // svn splits at both line ends and trims each piece.
    while (std::getline(file, line, '\n')) {
        std::istringstream pieces(line);
        for (std::string piece; std::getline(pieces, piece, '\r');) {
            const auto first = piece.find_first_not_of(" \t\v\f");
            if (first == std::string::npos)
                continue;
            targets.push_back(piece.substr(first, piece.find_last_not_of(" \t\v\f") - first + 1));
        }
    }
    return targets;
}

LuSVNConflictChoice acceptChoiceForWord(const std::string& word)
{
    static const std::pair<const char*, LuSVNConflictChoice> choices[] = {
        {"postpone", LuSVNConflictChoicePostpone},
        {"p", LuSVNConflictChoicePostpone},
        {"base", LuSVNConflictChoiceBase},
        {"working", LuSVNConflictChoiceMerged},
        {"mine-full", LuSVNConflictChoiceMineFull},
        {"mf", LuSVNConflictChoiceMineFull},
        {"theirs-full", LuSVNConflictChoiceTheirsFull},
        {"tf", LuSVNConflictChoiceTheirsFull},
        {"mine-conflict", LuSVNConflictChoiceMineConflict},
        {"mc", LuSVNConflictChoiceMineConflict},
        {"theirs-conflict", LuSVNConflictChoiceTheirsConflict},
        {"tc", LuSVNConflictChoiceTheirsConflict},
    };
    for (const auto& [name, choice] : choices)
        if (word == name)
            return choice;
    for (const char* interactive : {"edit", "launch"})
        if (word == interactive || word == std::string(1, interactive[0]))
            throwOptionValueError({{TesseraArgumentParsingError,
                                    std::string("--accept=") + interactive + " incompatible with --non-interactive"}});
    throwOptionValueError({{TesseraArgumentParsingError, "'" + word + "' is not a valid --accept value"}});
}
