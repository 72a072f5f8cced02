// tessera copy SRC[@REV]... DST: copies in a working copy or repository, as
// svn copy.
#include <CLI/CLI.hpp>

#include "Command.h"
#include "CopyMove.h"
#include "Options.h"

namespace {

const TesseraCommand copyCommand(
    {"copy",
     {"cp"},
     "Copy files and directories in a working copy or repository.",
     "copy SRC[@REV]... DST",
     "SRC and DST can each be either a working copy (WC) path or URL:\n"
     "  WC  -> WC:   copy and schedule for addition (with history)\n"
     "  WC  -> URL:  immediately commit a copy of WC to URL\n"
     "  URL -> WC:   check out URL into WC, schedule for addition\n"
     "  URL -> URL:  complete server-side copy;  used to branch and tag\n"
     "All the SRCs must be of the same type. If DST is an existing directory,\n"
     "the sources will be added as children of DST. When copying multiple\n"
     "sources, DST must be an existing directory."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<TesseraCopyMoveSettings>();
        addRevisionOption(command, [settings](std::shared_ptr<const LuSVNRevisionSpec> revision) {
            settings->revision = std::move(revision);
        });
        addCopyMoveOptions(command, *settings);
        return [&command, settings] { return copyOrMove(command, *settings, true); };
    });

}  // namespace
