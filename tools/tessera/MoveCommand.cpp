// tessera move SRC... DST: moves in a working copy or repository, as svn
// move.
#include <CLI/CLI.hpp>

#include "Command.h"
#include "CopyMove.h"
#include "Options.h"

namespace {

const TesseraCommand moveCommand(
    {"move",
     {"mv", "rename", "ren"},
     "Move (rename) an item in a working copy or repository.",
     "move SRC... DST",
     "SRC and DST can both be working copy (WC) paths or URLs:\n"
     "  WC  -> WC:  move an item in a working copy, as a local change to\n"
     "              be committed later (with or without further changes)\n"
     "  URL -> URL: move an item in the repository directly, immediately\n"
     "              creating a new revision in the repository\n"
     "All the SRCs must be of the same type. If DST is an existing directory,\n"
     "the sources will be added as children of DST. When moving multiple\n"
     "sources, DST must be an existing directory."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<TesseraCopyMoveSettings>();
        addFlag(command, "--force", settings->force, "force operation to run");
        addCopyMoveOptions(command, *settings);
        return [&command, settings] { return copyOrMove(command, *settings, false); };
    });

}  // namespace
