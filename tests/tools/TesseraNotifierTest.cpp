// svn's notification lines, from the notifications an operation sends.
#include <tessera/Tessera.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "Notifier.h"

namespace {

struct Step {
    std::int32_t action;
    std::string path;
    std::int32_t contentState = 1;
    std::int32_t propertyState = 1;
    std::int32_t revision = LuSVNInvalidRevision;
    std::int32_t nodeKind = 1;
    std::int32_t lockState = 1;
    std::shared_ptr<const LuSVNRevisionRange> mergeRange = nullptr;
};

// The handler's context argument; the printer does not look at it.
LuSVNContext& anyContext()
{
    static const auto context = [] {
        LuSVNInitialize();
        return LuSVNContext::context();
    }();
    return *context;
}

// What the notifier prints for the steps, with its summary, its paths shown
// from /wc/sub.
std::string printed(const std::vector<Step>& steps, bool checkout = false, bool exporting = false)
{
    std::FILE* stream = std::tmpfile();
    TesseraNotifier notifier("/wc/sub", stream);
    if (checkout)
        notifier.markCheckout();
    if (exporting)
        notifier.markExport();
    for (const Step& step : steps) {
        LuSVNNotification n(step.action);
        n.setPath(step.path);
        n.setContentState(step.contentState);
        n.setPropertyState(step.propertyState);
        n.setRevision(step.revision);
        n.setNodeKind(step.nodeKind);
        n.setLockState(step.lockState);
        n.setMergeRange(step.mergeRange);
        notifier.contextNotify(anyContext(), n);
    }
    notifier.printConflictSummary();
    std::string text(static_cast<std::size_t>(std::ftell(stream)), '\0');
    std::rewind(stream);
    text.resize(std::fread(text.data(), 1, text.size(), stream));
    std::fclose(stream);
    return text;
}

constexpr std::int32_t Changed = 5, Merged = 6, Conflicted = 7, Missing = 3, Unlocked = 4;

TEST(TesseraNotifier, LinesOfOneStep)
{
    const std::pair<Step, std::string> cases[] = {
        {{LuSVNNotifyActionUpdateAdd, "/wc/sub/a"}, "A    a\n"},
        {{LuSVNNotifyActionUpdateDelete, "/wc/sub/d/e"}, "D    d/e\n"},
        {{LuSVNNotifyActionUpdateReplace, "/wc/sub/r"}, "R    r\n"},
        {{LuSVNNotifyActionUpdateUpdate, "/wc/sub/f", Changed}, "U    f\n"},
        {{LuSVNNotifyActionUpdateUpdate, "/wc/sub/f", Merged, Changed}, "GU   f\n"},
        {{LuSVNNotifyActionUpdateUpdate, "/wc/sub/dir", Changed, 1, -1, 2}, ""},  // a directory's text
        {{LuSVNNotifyActionUpdateUpdate, "/wc/sub/dir", 2, Merged, -1, 2}, " G   dir\n"},
        {{LuSVNNotifyActionUpdateUpdate, "/wc/sub/f", 2, 2, -1, 1, Unlocked}, "  B  f\n"},
        {{LuSVNNotifyActionUpdateUpdate, "/wc/sub/f", 2, 2}, ""},
        {{LuSVNNotifyActionExists, "/wc/sub/e", 1, Merged}, "EG   e\n"},
        {{LuSVNNotifyActionUpdateShadowedAdd, "/wc/sub/s"}, "   A s\n"},
        {{LuSVNNotifyActionUpdateStarted, "/wc/sub"}, "Updating '.':\n"},
        {{LuSVNNotifyActionUpdateStarted, "/elsewhere/x"}, "Updating '/elsewhere/x':\n"},
        {{LuSVNNotifyActionUpdateStarted, "/wc/subway"}, "Updating '/wc/subway':\n"},
        {{LuSVNNotifyActionUpdateCompleted, "/wc/sub", 1, 1, 7}, "At revision 7.\n"},
        {{LuSVNNotifyActionUpdateCompleted, "/wc/sub"}, "Update complete.\n"},
        {{LuSVNNotifyActionAdd, "/wc/sub/new"}, "A         new\n"},
        {{LuSVNNotifyActionDelete, "/wc/sub/old"}, "D         old\n"},
        {{LuSVNNotifyActionRevert, "/wc/sub/f"}, "Reverted 'f'\n"},
        {{LuSVNNotifyActionRestore, "/wc/sub/f"}, "Restored 'f'\n"},
        {{LuSVNNotifyActionResolved, "/wc/sub/f"}, "Resolved conflicted state of 'f'\n"},
        {{LuSVNNotifyActionCommitModified, "/wc/sub/f"}, "Sending        f\n"},
        {{LuSVNNotifyActionCommitAdded, "/wc/sub/f"}, "Adding         f\n"},
        {{LuSVNNotifyActionCommitDeleted, "/wc/sub/f"}, "Deleting       f\n"},
        {{LuSVNNotifyActionCommitReplaced, "/wc/sub/f"}, "Replacing      f\n"},
        {{LuSVNNotifyActionCommitCopied, "/wc/sub/f"}, "Adding copy of        f\n"},
        {{LuSVNNotifyActionCommitCopiedReplaced, "/wc/sub/f"}, "Replacing copy of     f\n"},
        {{LuSVNNotifyActionUpdateExternal, "/wc/sub/ext"}, "\nFetching external item into 'ext':\n"},
        {{LuSVNNotifyActionUpgradedPath, "/wc/sub"}, "Upgraded '.'\n"},
        {{76, "/wc/sub/ext"}, "Performing cleanup on external item at 'ext'.\n"},
        {{LuSVNNotifyActionCheckOutStarted, "/wc/sub"}, ""},
        {{LuSVNNotifyActionUpdateSucceeded, "/wc/sub"}, ""},
    };
    for (const auto& [step, expected] : cases)
        EXPECT_EQ(printed({step}), expected) << LuSVNStringFromNotificationAction(step.action) << " " << step.path;
}

TEST(TesseraNotifier, OperationsAsSvnPrintsThem)
{
    // A check-out names no update and ends with its own words.
    EXPECT_EQ(printed({{LuSVNNotifyActionUpdateStarted, "/wc/sub"},
                       {LuSVNNotifyActionUpdateAdd, "/wc/sub/a"},
                       {LuSVNNotifyActionUpdateCompleted, "/wc/sub", 1, 1, 3}},
                      true),
              "A    a\nChecked out revision 3.\n");
    // An update that changed something says so; the next one starts afresh.
    EXPECT_EQ(printed({{LuSVNNotifyActionUpdateUpdate, "/wc/sub/f", Changed},
                       {LuSVNNotifyActionUpdateCompleted, "/wc/sub", 1, 1, 4},
                       {LuSVNNotifyActionUpdateCompleted, "/wc/sub/g", 1, 1, 4}}),
              "U    f\nUpdated to revision 4.\nAt revision 4.\n");
    // An external's section ends with a blank line, and its changes count
    // as its own: the outer update then reads as unchanged, as in svn.
    EXPECT_EQ(printed({{LuSVNNotifyActionUpdateExternal, "/wc/sub/x"},
                       {LuSVNNotifyActionUpdateStarted, "/wc/sub/x"},
                       {LuSVNNotifyActionUpdateAdd, "/wc/sub/x/a"},
                       {LuSVNNotifyActionUpdateCompleted, "/wc/sub/x", 1, 1, 9},
                       {LuSVNNotifyActionUpdateCompleted, "/wc/sub", 1, 1, 2}}),
              "\nFetching external item into 'x':\nA    x/a\nUpdated external to revision 9.\n\n"
              "At revision 2.\n");
    // An export names the revision exported, or none for working files;
    // its externals alike.
    EXPECT_EQ(printed({{LuSVNNotifyActionUpdateAdd, "/wc/sub/a"},
                       {LuSVNNotifyActionUpdateExternal, "/wc/sub/x"},
                       {LuSVNNotifyActionUpdateCompleted, "/wc/sub/x", 1, 1, 9},
                       {LuSVNNotifyActionUpdateCompleted, "/wc/sub", 1, 1, 3}},
                      false, true),
              "A    a\n\nFetching external item into 'x':\nExported external at revision 9.\n\n"
              "Exported revision 3.\n");
    EXPECT_EQ(printed({{LuSVNNotifyActionUpdateExternal, "/wc/sub/x"},
                       {LuSVNNotifyActionUpdateCompleted, "/wc/sub/x"},
                       {LuSVNNotifyActionUpdateCompleted, "/wc/sub"}},
                      false, true),
              "\nFetching external item into 'x':\nExternal export complete.\n\nExport complete.\n");
    // Commit: the data dots on one line, closed when the transaction starts.
    EXPECT_EQ(printed({{LuSVNNotifyActionCommitModified, "/wc/sub/a"},
                       {LuSVNNotifyActionCommitPostfixTXDelta, "/wc/sub/a"},
                       {LuSVNNotifyActionCommitPostfixTXDelta, "/wc/sub/b"},
                       {79, "/wc/sub"}}),
              "Sending        a\nTransmitting file data ..done\nCommitting transaction...\n");
    EXPECT_EQ(printed({{LuSVNNotifyActionCommitDeleted, "/wc/sub/a"}, {79, "/wc/sub"}}),
              "Deleting       a\nCommitting transaction...\n");
}

TEST(TesseraNotifier, ConflictSummary)
{
    // Each path counts once per kind of conflict.
    EXPECT_EQ(printed({{LuSVNNotifyActionUpdateUpdate, "/wc/sub/f", Conflicted, Conflicted},
                       {LuSVNNotifyActionUpdateUpdate, "/wc/sub/f", Conflicted},
                       {LuSVNNotifyActionUpdateAdd, "/wc/sub/g", Conflicted},
                       {LuSVNNotifyActionTreeConflict, "/wc/sub/t"},
                       {LuSVNNotifyActionSkip, "/wc/sub/m", Missing},
                       {LuSVNNotifyActionSkipConflicted, "/wc/sub/n"}}),
              "CC   f\nC    f\nC    g\n   C t\nSkipped missing target: 'm'\nSkipped 'n' -- Node remains in conflict\n"
              "Summary of conflicts:\n  Text conflicts: 2\n  Property conflicts: 1\n  Tree conflicts: 1\n"
              "  Skipped paths: 2\n");
    EXPECT_EQ(printed({{LuSVNNotifyActionTreeConflict, "/wc/sub/t"}}),
              "   C t\nSummary of conflicts:\n  Tree conflicts: 1\n");
}

TEST(TesseraNotifier, DisplayPaths)
{
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"/wc", "/wc", "."},           {"/wc", "/wc/a/b", "a/b"}, {"/wc", "/wcx/a", "/wcx/a"},
        {"/", "/etc/x", "etc/x"},      {"/wc", "/", "/"},         {"/wc", "rel/a", "rel/a"},
        {"/wc", "", "."},
    };
    for (const auto& [prefix, path, expected] : cases)
        EXPECT_EQ(TesseraNotifier::displayPath(prefix, path), expected) << prefix << " " << path;
}

// Subversion's merge ranges exclude their first revision; svn names the
// revisions merged, or reversed when the range runs backwards.
TEST(TesseraNotifier, MergeHeadingsNameTheRevisionsMerged)
{
    const auto merge = [](std::int32_t action, std::int32_t start, std::int32_t end) {
        return Step{action, "/wc/sub", 1, 1, LuSVNInvalidRevision, 2, 1,
                    start < 0 ? nullptr
                              : LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(start),
                                                         LuSVNRevision::revisionWithNumber(end))};
    };
    const std::pair<Step, std::string> cases[] = {
        {merge(LuSVNNotifyActionMergeBegin, 4, 5), "--- Merging r5 into '.':\n"},
        {merge(LuSVNNotifyActionMergeBegin, 5, 5), "--- Merging r5 into '.':\n"},
        {merge(LuSVNNotifyActionMergeBegin, 4, 7), "--- Merging r5 through r7 into '.':\n"},
        {merge(LuSVNNotifyActionMergeBegin, 6, 5), "--- Reverse-merging r6 into '.':\n"},
        {merge(LuSVNNotifyActionMergeBegin, 7, 4), "--- Reverse-merging r7 through r5 into '.':\n"},
        {merge(LuSVNNotifyActionMergeBegin, -1, -1), "--- Merging differences between repository URLs into '.':\n"},
        {merge(LuSVNNotifyActionForeignMergeBegin, 4, 7),
         "--- Merging (from foreign repository) r5 through r7 into '.':\n"},
        {merge(LuSVNNotifyActionMergeRecordInfoBegin, 4, 5), "--- Recording mergeinfo for merge of r5 into '.':\n"},
        {merge(LuSVNNotifyActionMergeRecordInfoBegin, 7, 4),
         "--- Recording mergeinfo for reverse merge of r7 through r5 into '.':\n"},
        {merge(LuSVNNotifyActionMergeRecordInfoBegin, -1, -1),
         "--- Recording mergeinfo for merge between repository URLs into '.':\n"},
        {merge(LuSVNNotifyActionMergeElideInfo, -1, -1), "--- Eliding mergeinfo from '.':\n"},
    };
    for (const auto& [step, expected] : cases)
        EXPECT_EQ(printed({step}), expected) << LuSVNStringFromNotificationAction(step.action);
}

}  // namespace
