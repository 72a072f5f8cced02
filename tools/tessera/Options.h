// Options as svn spells them, for the commands to declare on their parsers.
//
// The parser takes svn's forms: combined short flags (-vu), a value after "="
// or as the next argument (--depth=empty, --depth empty, -r 5:7, -r5:7), the
// last of repeated options, and "--" ending the options. Arguments that are
// not options, such as targets with peg revisions (PATH@REV), are handed over
// as they are.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNResolveOptions.h>

class LuSVNRevisionSpec;

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// The arguments after the program's name, reversed as CLI::App::parse
/// takes them. "--name=" gives an option of one of the program's commands
/// that takes a value the empty value, as in svn, where the parser alone
/// would take the next argument for it; for a flag it is refused
/// (CLI::ArgumentMismatch), as the parser refuses "--verbose=x". The word
/// after an option that takes a value is that value even when it starts
/// with "-" (-m "-x"), as in svn. Options before the command's name are
/// moved behind it: svn takes any option there.
std::vector<std::string> parserArguments(const CLI::App& program, int argc, char** argv);

/// The group of options that every command of svn takes ("Global options").
inline constexpr const char* TesseraGlobalOptions = "Global options";

/// A flag such as "-v,--verbose"; a value given to it ("--verbose=x") is an
/// error, as in svn.
CLI::Option* addFlag(CLI::App& command, const std::string& names, bool& flag, const std::string& description);

/// An option with a value ("ARG" in the help), handed to store.
CLI::Option* addOption(CLI::App& command, const std::string& names, std::function<void(const std::string&)> store,
                       const std::string& description);

/// The arguments that are not options, in their order.
void addArguments(CLI::App& command, std::vector<std::string>& arguments);

/// --targets ARG: more targets from the lines of a file (readTargetsFile).
CLI::Option* addTargetsOption(CLI::App& command, std::optional<std::string>& file);

/// svn's usage error unless the command got between least and most arguments.
void checkArgumentCount(const CLI::App& command, const std::vector<std::string>& arguments, std::size_t least,
                        std::size_t most);

/// --depth ARG: one of svn's depth words, handed to store; another word is
/// svn's error E205000 "'<word>' is not a valid depth; try ...".
CLI::Option* addDepthOption(CLI::App& command, std::function<void(const std::string&)> store);

/// --set-depth ARG: svn's depth words and "exclude", handed to store;
/// another word is svn's error E205000.
CLI::Option* addSetDepthOption(CLI::App& command, std::function<void(const std::string&)> store);

/// The library's depth for one of svn's depth words (or "exclude").
LuSVNDepth depthForWord(const std::string& word);

/// --config-dir ARG, a global option. A path naming something other than a
/// directory gets svn's warning W000020, and the command goes on without it
/// (with the user's own configuration area).
CLI::Option* addConfigDirOption(CLI::App& command, std::optional<std::string>& directory);

/// One --config-option FILE:SECTION:OPTION=[VALUE].
struct TesseraConfigOption {
    std::string file;
    std::string section;
    std::string option;
    std::string value;
};

/// The parts of a --config-option argument; another form raises svn's
/// E205000 "Invalid syntax of argument of --config-option".
TesseraConfigOption parseConfigOption(const std::string& argument);

/// What the global options of svn set: one object for the whole run, filled
/// wherever they stand on the command line.
struct TesseraGlobalSettings {
    std::optional<std::string> configDir;
    std::optional<std::string> username;
    std::optional<std::string> password;
    bool passwordFromStdin = false;
    bool noAuthCache = false;
    /// The certificate failures --trust-server-cert-failures accepts.
    std::uint32_t trustFailures = 0;
    std::vector<TesseraConfigOption> configOptions;
    bool nonInteractive = false;
    bool forceInteractive = false;

    /// Whether to prompt: as svn, only when standard input is a terminal,
    /// unless told otherwise.
    bool interactive() const;
};

/// The settings of this run.
TesseraGlobalSettings& tesseraGlobalSettings();

/// Declares the global options (group TesseraGlobalOptions) on a command.
void addGlobalOptions(CLI::App& command, TesseraGlobalSettings& settings);

/// svn's revision argument: a number (any "r" before it is skipped), HEAD,
/// BASE, COMMITTED or PREV in any case, or {DATE} in one of svn's date
/// forms. Anything else raises E205000 "Syntax error in revision argument
/// '<text>'"; a well-formed range (ARG1:ARG2) E195008 "Revision range is not
/// allowed".
std::shared_ptr<const LuSVNRevisionSpec> parseRevision(const std::string& text);

/// svn's revision argument that may be a range: ARG or ARG1:ARG2, each half
/// as parseRevision reads it; the second is null without a colon. A bad half
/// raises parseRevision's syntax error for the whole text.
std::pair<std::shared_ptr<const LuSVNRevisionSpec>, std::shared_ptr<const LuSVNRevisionSpec>> parseRevisionRange(
    const std::string& text);

/// The help of -r: the forms a revision argument takes.
extern const char* const revisionOptionHelp;

/// -r ARG, parsed with parseRevision and handed to store.
CLI::Option* addRevisionOption(CLI::App& command, std::function<void(std::shared_ptr<const LuSVNRevisionSpec>)> store);

/// The targets of a --targets file: one a line, blank lines skipped, lines
/// as they are otherwise. An unreadable file raises svn's error.
std::vector<std::string> readTargetsFile(const std::string& path);

/// svn's --accept ARG: the choice its word or short form names
/// ("theirs-full" or "tf", ...; "postpone" or "p" postpones). "edit" and
/// "launch" ("e", "l") need a person at a terminal, which tessera never asks,
/// and raise svn's non-interactive refusal, E205000 "--accept=edit
/// incompatible with --non-interactive"; any other word raises E205000
/// "'<word>' is not a valid --accept value".
LuSVNConflictChoice acceptChoiceForWord(const std::string& word);
