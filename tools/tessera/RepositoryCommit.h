// What the commands that commit share (commit, and mkdir, delete, copy, move
// and import on URLs): svn's log-message options, svn's words around a
// failed commit, and the commit's last line.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Operation.h"

namespace CLI {
class App;
}

struct TesseraLogMessageOptions {
    std::optional<std::string> message;
    std::optional<std::string> messageFile;
    std::optional<std::string> editorCommand;
    bool forceLog = false;
};

/// Declares -m, -F, --force-log and --editor-cmd, and svn's refusal of -m
/// with -F while the options are read.
void addLogMessageOptions(CLI::App& command, const std::shared_ptr<TesseraLogMessageOptions>& options);

/// The targets as URLs or as working-copy paths; targets of both kinds
/// raise svn's usage error and E200009 "Cannot mix repository and working
/// copy targets".
std::vector<LuSVNNode::Path> repositoryOrWorkingCopyTargets(const CLI::App& command,
                                                            const std::vector<std::string>& arguments);

/// The text of -m, else of the file of -F, as svn reads and checks it:
/// unless --force-log, a -m text naming an existing path raises E205005
/// "The <noun> is a pathname (was -F intended?); ..." and a -F file under
/// version control E205004 "<Noun> file is a versioned file; ...". The noun
/// is "log message" or "lock comment".
std::optional<std::string> givenMessage(const std::optional<std::string>& message,
                                        const std::optional<std::string>& file, bool forceLog,
                                        const std::string& noun);

/// svn's refusal, E205009, of a log message for a change of a working copy.
void refuseLogMessageLocally(const TesseraLogMessageOptions& options);

/// Runs the work with the log message of the options (-m, the file of -F,
/// else the editor, whose file goes to the base directory) and prints
/// "Committed revision N." unless quiet or nothing was committed. A failure
/// is raised in svn's words: "Commit failed (details follow):" before a
/// failure to find the message, and where the editor's text was left.
std::int32_t commitWithLogMessage(TesseraOperation& operation, const TesseraLogMessageOptions& options,
                                  const std::string& baseDirectory, bool quiet,
                                  const std::function<std::int32_t()>& work);
