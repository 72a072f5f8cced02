// The tessera program: a parser per registered command, svn's help texts and
// svn's answers to arguments it cannot take.
#pragma once

#include <string>

namespace CLI {
class App;
}

/// Parses the arguments, runs the chosen command and reports its failure;
/// the exit status (0, or 1 for any failure, as svn).
int runTessera(int argc, char** argv);

/// svn's help text of one command of the program: its names and summary, the
/// usage, the description, then "Valid options:" and "Global options:".
std::string commandHelp(const CLI::App& command);

/// The program's own help: usage and the list of commands with their aliases.
std::string programHelp(const CLI::App& program);
