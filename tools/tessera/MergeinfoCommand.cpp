// tessera mergeinfo SOURCE[@REV] [TARGET[@REV]]: the diagram of where source
// and target stand in merging with each other, as svn mergeinfo draws it.
// tessera mergeinfo --show-revs eligible|merged [SOURCE[@REV] [TARGET[@REV]]]:
// the revisions of a merge source already merged into a target, or still
// eligible for merging, one "rN" a line, as svn mergeinfo lists them.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
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

// The number left-aligned in a field of eight, as printf's "%-8ld".
std::string revisionField(std::int32_t revision)
{
    std::string text = std::to_string(revision);
    return text.size() < 8 ? text + std::string(8 - text.size(), ' ') : text;
}

// svn mergeinfo's graph: four columns (the ancestor, a spacer, the last full
// merge, the tips), the source's line above the target's, the revisions in
// the two rows above and below. An empty cell is drawn as spaces as wide as
// its column.
std::string mergingDiagram(const LuSVNMergingSummary& summary, bool targetIsWorkingCopy)
{
    const auto& ancestor = summary.youngestCommonAncestor();
    const auto& base = summary.base();
    std::array<std::array<std::string, 4>, 8> cells;
    // Fills a column downwards from the row.
    const auto fill = [&cells](std::size_t column, std::size_t row, std::initializer_list<std::string> texts) {
        for (const auto& text : texts)
            cells[row++][column] = text;
    };
    fill(0, 0, {"  " + revisionField(ancestor.revision) + "  ", "  |         "});
    // Which line the other was made from, if either.
    if (ancestor.url->string() == summary.right().url->string())
        fill(0, 2, {"-------| |--", "   \\        ", "    \\       ", "     --| |--"});
    else if (ancestor.url->string() == summary.target().url->string())
        fill(0, 2, {"     --| |--", "    /       ", "   /        ", "-------| |--"});
    else
        fill(0, 2, {"     --| |--", "... /       ", "    \\       ", "     --| |--"});
    if (base.revision <= ancestor.revision)
        fill(2, 2, {"---------", "         ", "         ", "---------"});
    else if (summary.needsReintegration())
        fill(2, 2, {"---------", "  /      ", " /       ", "---------", "|        ", revisionField(base.revision) + " "});
    else
        fill(2, 0, {revisionField(base.revision) + " ", "|        ", "---------", " \\       ", "  \\      ", "---------"});
    fill(3, 0, {revisionField(summary.right().revision), "|       ", "-       ", "        ", "        ", "-       ",
                "|       ", targetIsWorkingCopy ? "WC      " : revisionField(summary.target().revision)});

    std::array<std::size_t, 4> widths{};
    for (const auto& row : cells)
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    std::string text = "    youngest common ancestor\n"
                       "    |         last full merge\n"
                       "    |         |        tip of branch\n"
                       "    |         |        |         repository path\n"
                       "\n";
    for (std::size_t row = 0; row < cells.size(); ++row) {
        text += "  ";
        for (std::size_t column = 0; column < widths.size(); ++column)
            text += cells[row][column].empty() ? std::string(widths[column], ' ') : cells[row][column];
        if (row == 2)
            text += "  " + summary.repositoryPathOf(summary.right());
        if (row == 5)
            text += "  " + summary.repositoryPathOf(summary.target());
        text += "\n";
    }
    return text;
}

// The summary form: SOURCE is required; its revision defaults to HEAD even
// for a working-copy path, as svn's does.
int mergingSummary(const CLI::App& command, const Settings& settings)
{
    // svn mergeinfo's own wording and code, not the general usage error's.
    if (settings.arguments.empty())
        throwUsageError(command.get_name(), TesseraArgumentParsingError, "Not enough arguments given");
    checkArgumentCount(command, settings.arguments, 1, 2);
    if (settings.recursive)
        throwUsageError(command.get_name(), TesseraArgumentParsingError,
                        "Depth specification options valid only with --show-revs option");
    const auto [source, sourcePeg] = splitPegRevision(settings.arguments[0]);
    const auto [target, targetPeg] = splitPegRevision(settings.arguments.size() > 1 ? settings.arguments[1] : ".");
    TesseraOperation operation(isURL(target) ? std::string(".") : target, {true, false});
    const auto targetRevision = revisionOf(target, targetPeg);
    const bool targetIsWorkingCopy = !isURL(target) && (targetRevision->isEqual(LuSVNRevision::BASE()) ||
                                                        targetRevision->isEqual(LuSVNRevision::WORKING()));
    const auto summary = LuSVNNode::mergingSummaryForNodeAtPath(
        pathOf(source), sourcePeg ? sourcePeg->keyRevision() : LuSVNRevision::HEAD(), pathOf(target), targetRevision,
        operation.context());
    writeOutput(mergingDiagram(summary, targetIsWorkingCopy));
    return 0;
}

int mergeinfo(const CLI::App& command, const Settings& settings)
{
    if (!settings.showRevisions)
        return mergingSummary(command, settings);
    checkArgumentCount(command, settings.arguments, 0, 2);
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
     "mergeinfo SOURCE[@REV] [TARGET[@REV]]\n"
     "       mergeinfo --show-revs eligible|merged [SOURCE[@REV] [TARGET[@REV]]]",
     "Without --show-revs, draws where SOURCE and TARGET (default '.') stand\n"
     "in merging with each other: their youngest common ancestor, the last\n"
     "full merge in either direction and the tips of both, as svn mergeinfo.\n"
     "With it, lists the revisions of SOURCE merged into TARGET, or still\n"
     "eligible for merging into it, one a line; without SOURCE, the source\n"
     "Subversion suggests for TARGET."},
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
