// What tessera copy and tessera move share: svn's reading of SRC... DST
// (sources of one kind, a destination that is an existing directory taking
// them as children, --parents) and the commit of the URL forms.
#pragma once

#include <tessera/Tessera.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "RepositoryCommit.h"

namespace CLI {
class App;
}

struct TesseraCopyMoveSettings {
    std::vector<std::string> arguments;
    std::shared_ptr<TesseraLogMessageOptions> logMessage = std::make_shared<TesseraLogMessageOptions>();
    std::shared_ptr<const LuSVNRevisionSpec> revision;  ///< copy's -r
    bool quiet = false;
    bool parents = false;
    bool force = false;  ///< move's --force
};

/// Declares the options both commands take.
void addCopyMoveOptions(CLI::App& command, TesseraCopyMoveSettings& settings);

/// Copies (copy true) or moves each source as svn copy or svn move does.
int copyOrMove(const CLI::App& command, const TesseraCopyMoveSettings& settings, bool copy);
