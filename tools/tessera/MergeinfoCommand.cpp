// tessera mergeinfo --show-revs eligible|merged [SOURCE[@REV] [TARGET[@REV]]]:
// the revisions of a merge source already merged into a target, or still
// eligible for merging, one "rN" a line, as svn mergeinfo lists them.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

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
    std::optional<std::string> showRevisions;
    bool recursive = false;
};

// Prints each revision as it arrives; keeps nothing.
class RevisionPrinter final : public LuSVNLogMessageReceiverDelegate {
public:
    bool logItemReceived(const std::shared_ptr<LuSVNLogItem>& item) override
    {
        writeOutput("r" + std::to_string(item->revision()) + "\n");
        return true;
    }
    bool keepsLogItems() const override { return false; }
};

LuSVNNode::Path pathOf(const std::string& text)
{
    return isURL(text) ? LuSVNNode::Path(LuSVNURL::URLWithString(text)) : LuSVNNode::Path(targetPath(text));
}

// The revision a path is read at when none is given: HEAD for a URL, the
// working copy's base for a path in it, as svn reads them.
LuSVNNode::MergeRevision revisionOf(const std::string& path, const std::shared_ptr<const LuSVNRevisionSpec>& peg)
{
    if (peg)
        return peg->keyRevision();
    return isURL(path) ? LuSVNRevision::HEAD() : LuSVNRevision::BASE();
}

int mergeinfo(const CLI::App& command, const Settings& settings)
{
    checkArgumentCount(command, settings.arguments, 0, 2);
    if (!settings.showRevisions)
        raiseArgumentError("Only the --show-revs form of mergeinfo is available");
    const bool eligible = *settings.showRevisions == "eligible";
    if (!eligible && *settings.showRevisions != "merged")
        raiseArgumentError("'" + *settings.showRevisions + "' is not a valid --show-revs value");
    const auto [target, targetPeg] = splitPegRevision(settings.arguments.size() > 1 ? settings.arguments[1] : ".");

    TesseraOperation operation(isURL(target) ? std::string(".") : target, {true, false});
    const auto& context = operation.context();
    const auto targetPath = pathOf(target);
    const auto targetRevision = revisionOf(target, targetPeg);
    // Without a source, the first one Subversion suggests: where the target
    // was copied from, else what was merged into it.
    std::string source;
    std::shared_ptr<const LuSVNRevisionSpec> sourcePeg;
    if (settings.arguments.empty()) {
        const auto suggestions = LuSVNNode::suggestMergeSourcesForNodeAtPath(targetPath, targetRevision, context);
        if (suggestions.empty())
            LuSVNException::exceptionWithReason("Unable to determine merge source for '" + target +
                                                    "' -- please provide an explicit source",
                                                195012)
                ->raise();
        source = suggestions.front()->string();
    } else {
        std::tie(source, sourcePeg) = splitPegRevision(settings.arguments[0]);
    }
    LuSVNNode::readLogForNodeAtPath(targetPath, targetRevision, pathOf(source), revisionOf(source, sourcePeg), eligible,
                                    std::make_shared<RevisionPrinter>(), false, context);
    return 0;
}

const TesseraCommand mergeinfoCommand(
    {"mergeinfo",
     {},
     "Display merge-related information.",
     "mergeinfo --show-revs eligible|merged [SOURCE[@REV] [TARGET[@REV]]]",
     "Lists the revisions of SOURCE merged into TARGET (default '.'), or\n"
     "still eligible for merging into it, one a line, as svn mergeinfo.\n"
     "Without SOURCE, the source Subversion suggests for TARGET."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addOption(
            command, "--show-revs", [settings](const std::string& word) { settings->showRevisions = word; },
            "which revisions to list: merged or eligible");
        addFlag(command, "-R,--recursive", settings->recursive, "descend recursively, same as --depth=infinity");
        addArguments(command, settings->arguments);
        return [&command, settings] { return mergeinfo(command, *settings); };
    });

}  // namespace
