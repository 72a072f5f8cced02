// Errors and warnings on standard error, as svn prints them:
//
//   tessera: E155007: '/home/me/x' is not a working copy
//   tessera: warning: W000020: Can't open file '/etc/hostname/servers': Not a directory
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tessera/LuSVNException.h>

/// svn's code of an error that stands for bad command-line arguments.
inline constexpr int TesseraArgumentParsingError = 205000;
/// svn's code for too few arguments.
inline constexpr int TesseraInsufficientArgumentsError = 205001;

/// The failure and each cause of it, one "tessera: E<code>: <message>" line
/// each. A line that would repeat an earlier one (a message-less link such as
/// "Additional errors:" gets its code's standard text every time) shows once.
void printError(const LuSVNException& failure);

/// The failure and each cause of it as code and message, outermost first.
std::vector<std::pair<int, std::string>> errorLinks(const LuSVNException& failure);

/// "tessera: warning: W<code>: <message>".
void printWarning(int code, const std::string& message);

/// svn's answer to arguments a command cannot take, with the way to its help:
///   tessera: E205001: Try 'tessera help wc' for more information
///   tessera: E205001: Not enough arguments provided
[[noreturn]] void throwUsageError(const std::string& command, int code, const std::string& message);

/// Raises the chain of errors given outermost first, as svn prints an
/// error it wrapped: one line each, in that order.
[[noreturn]] void throwErrorChain(const std::vector<std::pair<int, std::string>>& links);

/// A bad option value ("-r 1:x", "-l x", "-c 0"). svn finds those while it
/// reads its options, before the command runs, so they are printed without
/// the way to the command's help that other argument errors get.
class TesseraOptionValueError : public LuSVNException {
public:
    using LuSVNException::LuSVNException;
};

/// throwErrorChain, as a TesseraOptionValueError.
[[noreturn]] void throwOptionValueError(const std::vector<std::pair<int, std::string>>& links);
