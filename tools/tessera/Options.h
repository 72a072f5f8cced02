// Options as svn spells them, for the commands to declare on their parsers.
//
// The parser takes svn's forms: combined short flags (-vu), a value after "="
// or as the next argument (--depth=empty, --depth empty, -r 5:7, -r5:7), the
// last of repeated options, and "--" ending the options. Arguments that are
// not options, such as targets with peg revisions (PATH@REV), are handed over
// as they are.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// The arguments after the program's name, reversed as CLI::App::parse
/// takes them. "--name=" gives an option of one of the program's commands
/// that takes a value the empty value, as in svn, where the parser alone
/// would take the next argument for it; for a flag it is refused
/// (CLI::ArgumentMismatch), as the parser refuses "--verbose=x".
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

/// svn's usage error unless the command got between least and most arguments.
void checkArgumentCount(const CLI::App& command, const std::vector<std::string>& arguments, std::size_t least,
                        std::size_t most);

/// --depth ARG: one of svn's depth words, handed to store; another word is
/// svn's error E205000 "'<word>' is not a valid depth; try ...".
CLI::Option* addDepthOption(CLI::App& command, std::function<void(const std::string&)> store);

/// --config-dir ARG, a global option. A path naming something other than a
/// directory gets svn's warning W000020, and the command goes on without it
/// (with the user's own configuration area).
CLI::Option* addConfigDirOption(CLI::App& command, std::optional<std::string>& directory);
