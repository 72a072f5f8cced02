// The lines svn prints while an operation changes a working copy, from the
// notifications of the context: "A    path", "Updating '.':", "Sending
// path", "Transmitting file data .", "Updated to revision 5.", skipped
// paths, externals, conflicts and their summary. One printer for every
// command; paths are shown relative to the current directory, as svn shows
// them.
//
//   auto notifier = std::make_shared<TesseraNotifier>();
//   context->setNotificationHandler(notifier);
//   LuSVNNode::updateNodes(paths, revision, options, context);
//   notifier->printConflictSummary();
#pragma once

#include <tessera/LuSVNNotificationHandler.h>

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

class TesseraNotifier final : public LuSVNNotificationHandler {
public:
    /// Paths are shown relative to the current directory of the process;
    /// the lines go to standard output.
    TesseraNotifier();
    /// Paths shown relative to the prefix, the lines written to the stream.
    TesseraNotifier(std::string prefix, std::FILE* stream);

    void contextNotify(LuSVNContext& context, const LuSVNNotification& notification) override;

    /// A check-out: its completion reads "Checked out revision N." and it
    /// prints no "Updating" line.
    void markCheckout() { checkout_ = true; }
    /// An export: its completion reads "Exported revision N." or "Export
    /// complete.".
    void markExport() { export_ = true; }

    /// The changelists that notifications of changelist changes name: the
    /// one items are put on, and the ones they were on before (by absolute
    /// path), which the notifications themselves do not carry.
    void setChangelists(std::optional<std::string> newChangelist, std::map<std::string, std::string> former);

    /// What a resolved conflict was, by absolute path: svn resolve names
    /// text and tree conflicts in its own words.
    enum class ConflictKind { Text, Tree };
    void setConflictKinds(std::map<std::string, ConflictKind> kinds) { conflictKinds_ = std::move(kinds); }

    /// Called before each line is printed, so that a progress line on the
    /// same terminal can be taken away first.
    void setBeforePrinting(std::function<void()> beforePrinting) { beforePrinting_ = std::move(beforePrinting); }

    /// Whether an external failed (svn's exit status then says so).
    bool hadExternalsError() const { return externalsError_; }

    /// The items (as the notifications name them) that conflicted in this
    /// operation and are not marked resolved, in path order.
    std::set<std::string> conflictedPaths() const;
    /// Counts the item's conflicts as resolved: the summary then says "0
    /// remaining (and 1 already resolved)".
    void markResolved(const std::string& path);

    /// svn's "Summary of conflicts:" with its counts, when the operation
    /// raised conflicts or skipped paths; nothing otherwise.
    void printConflictSummary() const;

    /// How a notification path is shown: relative to the prefix when at or
    /// below it ("." for the prefix itself), else as it is.
    static std::string displayPath(const std::string& prefix, const std::string& path);

private:
    void print(const std::string& line);
    void warn(const LuSVNException* error, const std::string& path);

    std::string prefix_;
    std::FILE* stream_;
    bool checkout_ = false;
    bool export_ = false;
    bool receivedSomeChange_ = false;
    bool sentFirstDelta_ = false;
    int inExternal_ = 0;
    bool externalsError_ = false;
    std::set<std::string> textConflicts_, propertyConflicts_, treeConflicts_;
    std::size_t resolvedText_ = 0, resolvedProperty_ = 0, resolvedTree_ = 0;
    int skippedPaths_ = 0;
    std::optional<std::string> newChangelist_;
    std::map<std::string, std::string> formerChangelists_;
    std::map<std::string, ConflictKind> conflictKinds_;
    std::function<void()> beforePrinting_;
};
