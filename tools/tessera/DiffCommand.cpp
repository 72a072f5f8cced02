// tessera diff [TARGET...]: the changes of working-copy paths or URLs between
// two revisions as a unified diff, as svn diff prints it. The library's diff
// writes to standard output as Subversion produces the text, so a large
// tree's diff is never held whole.
#include <tessera/LuSVNDiff.h>
#include <tessera/LuSVNDiffOptions.h>
#include <tessera/LuSVNStreams.h>
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "HistoryOptions.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> revision;
    std::optional<std::string> change;
    std::optional<std::string> extensions;
    bool nonRecursive = false;
};

// -c N is the change N-1:N, -c -N its reversal.
std::pair<LuSVNDiff::Revision, LuSVNDiff::Revision> changeRange(std::int32_t change)
{
    const auto from = LuSVNRevision::revisionWithNumber(change > 0 ? change - 1 : -change);
    const auto to = LuSVNRevision::revisionWithNumber(change > 0 ? change : -change - 1);
    return {from, to};
}

int diff(const Settings& settings)
{
    if (settings.revision && settings.change)
        raiseArgumentError("Multiple revision arguments encountered; can't specify -c twice, or both -c and -r");
    LuSVNDiffOptions options = diffOptionsForExtensions(settings.extensions);
    options.setRecursive(!settings.nonRecursive);
    std::vector<std::string> targets = settings.arguments;
    if (targets.empty())
        targets.push_back(".");

    for (const std::string& target : targets) {
        const bool url = isURL(target);
        // Without revisions a working copy's base against its working files;
        // a URL needs them. A single -r N ends at the working files (or HEAD).
        LuSVNDiff::Revision from = LuSVNRevision::BASE();
        LuSVNDiff::Revision to = url ? LuSVNRevision::HEAD() : LuSVNRevision::WORKING();
        if (settings.change) {
            std::tie(from, to) = changeRange(changeNumber(*settings.change));
        } else if (settings.revision) {
            const auto [first, second] = parseRevisionRange(*settings.revision);
            from = first->keyRevision();
            if (second)
                to = second->keyRevision();
        } else if (url) {
            LuSVNException::exceptionWithReason("Not all required revisions are specified", 195002)->raise();
        }
        TesseraOperation operation(url ? target : absoluteTargetPath(target), {true, false});
        const LuSVNNode::Path path = url ? LuSVNNode::Path(LuSVNURL::URLWithString(target))
                                         : LuSVNNode::Path(targetPath(target));
        // Paths in the headers as svn shows them: relative to the current
        // directory.
        const LuSVNNode::Path relativeTo = url ? nullptr : LuSVNNode::Path(targetPath("."));
        std::cout.flush();
        LuSVNDiff::compareOriginalAtPath(path, from, path, to, relativeTo,
                                         LuSVNStdOutputStream::streamWithStream(std::cout), options,
                                         operation.context());
        std::cout.flush();
    }
    return 0;
}

const TesseraCommand diffCommand(
    {"diff",
     {"di"},
     "Display local changes or differences between two revisions.",
     "diff [-c M | -r N[:M]] [TARGET...]",
     "Display the changes made to TARGETs as they are seen in REV between\n"
     "two revisions. TARGETs may be all working copy paths or all URLs.\n"
     "Without -r or -c, the working copy's base text is compared with its\n"
     "working files; a single -r N compares N with the working files (with\n"
     "HEAD for a URL); -c M compares M-1 with M."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionRangeOption(command, settings->revision);
        addChangeOption(command, settings->change);
        addFlag(command, "-N,--non-recursive", settings->nonRecursive, "obsolete; compare the files of the target only");
        addOption(
            command, "-x,--extensions", [settings](const std::string& text) { settings->extensions = text; },
            "how lines are compared: -b (--ignore-space-change),\n"
            "-w (--ignore-all-space), --ignore-eol-style");
        addArguments(command, settings->arguments);
        return [settings] { return diff(*settings); };
    });

}  // namespace
