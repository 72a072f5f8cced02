#include "Notifier.h"

#include <tessera/Tessera.h>

#include <cstdio>
#include <filesystem>

#include "Messages.h"

namespace {

// Subversion's notify actions beyond those the library names, in its order.
enum : std::int32_t {
    UpdateBrokenLock = 69,
    LeftLocalModifications = 73,
    MoveBroken = 75,
    CleanupExternal = 76,
    CommitFinalizing = 79,
    ResolvedText = 80,
    ResolvedProperty = 81,
    ResolvedTree = 82,
};

// Subversion's notify states.
enum : std::int32_t {
    StateMissing = 3,
    StateObstructed = 4,
    StateChanged = 5,
    StateMerged = 6,
    StateConflicted = 7,
    StateSourceMissing = 8,
};

constexpr std::int32_t LockStateUnlocked = 4;
constexpr std::int32_t NodeKindFile = 1;

// svn's code for an external that could not be handled.
constexpr int ExternalsError = 205011;

// What a merge notification's heading says of its revisions, as svn words
// it: Subversion's range excludes its first bound, "r5 through r7" is 4:7,
// and 7:4 reverses r7 through r5; without a range the merge was between two
// repository URLs.
std::string mergeHeading(const LuSVNRevisionRange* range, const std::string& forward, const std::string& reverse,
                         const std::string& withoutRange)
{
    if (!range)
        return withoutRange + " repository URLs";
    const std::int32_t start = range->firstNumber(), end = range->lastNumber();
    const auto r = [](std::int32_t number) { return "r" + std::to_string(number); };
    if (start == end - 1 || start == end)
        return forward + " " + r(end);
    if (start - 1 == end)
        return reverse + " " + r(start);
    if (start < end)
        return forward + " " + r(start + 1) + " through " + r(end);
    return reverse + " " + r(start) + " through " + r(end + 1);
}

}  // namespace

TesseraNotifier::TesseraNotifier() : TesseraNotifier(std::filesystem::current_path().string(), stdout) {}

TesseraNotifier::TesseraNotifier(std::string prefix, std::FILE* stream) : prefix_(std::move(prefix)), stream_(stream)
{
}

void TesseraNotifier::setChangelists(std::optional<std::string> newChangelist,
                                     std::map<std::string, std::string> former)
{
    newChangelist_ = std::move(newChangelist);
    formerChangelists_ = std::move(former);
}

std::string TesseraNotifier::displayPath(const std::string& prefix, const std::string& path)
{
    if (path == prefix)
        return ".";
    const bool rooted = !prefix.empty() && prefix.back() == '/';
    if (path.size() > prefix.size() && path.compare(0, prefix.size(), prefix) == 0 &&
        (rooted || path[prefix.size()] == '/'))
        return path.substr(prefix.size() + (rooted ? 0 : 1));
    return path.empty() ? "." : path;
}

void TesseraNotifier::print(const std::string& line)
{
    if (beforePrinting_)
        beforePrinting_();
    std::fputs(line.c_str(), stream_);
    std::fflush(stream_);
}

void TesseraNotifier::warn(const LuSVNException* error, const std::string& path)
{
    if (beforePrinting_)
        beforePrinting_();
    // Inside an external's section the failure ends it; elsewhere svn names
    // the definition first, then the reason.
    if (inExternal_ == 0)
        printWarning(ExternalsError, "Error handling externals definition for '" + path + "':");
    if (error)
        printWarning(error->status(), error->reason());
    if (inExternal_ > 0) {
        --inExternal_;
        print("\n");
    }
}

void TesseraNotifier::contextNotify(LuSVNContext&, const LuSVNNotification& n)
{
    std::string path;
    if (n.URL())
        path = n.URL()->string();
    else
        path = displayPath(n.pathPrefix().value_or(prefix_), n.path().value_or(""));
    // Conflicts are kept by the item's own path, which resolving them takes.
    const std::string itemPath = n.path().value_or(path);

    const auto columns = [&](char text, char properties, char lock) {
        return std::string{text, properties, lock, ' ', ' '} + path + "\n";
    };
    switch (n.action()) {
    case LuSVNNotifyActionSkip:
        ++skippedPaths_;
        if (n.contentState() == StateMissing)
            print("Skipped missing target: '" + path + "'\n");
        else if (n.contentState() == StateSourceMissing)
            print("Skipped target: '" + path + "' -- copy-source is missing\n");
        else if (n.contentState() == StateObstructed)
            print("Skipped '" + path + "' -- obstructed by unversioned node\n");
        else
            print("Skipped '" + path + "'\n");
        break;
    case LuSVNNotifyActionUpdateSkipObstruction:
        ++skippedPaths_;
        print("Skipped '" + path + "' -- An obstructing working copy was found\n");
        break;
    case LuSVNNotifyActionUpdateSkipWorkingOnly:
        ++skippedPaths_;
        print("Skipped '" + path + "' -- Has no versioned parent\n");
        break;
    case LuSVNNotifyActionUpdateSkipAccessDenied:
        ++skippedPaths_;
        print("Skipped '" + path + "' -- Access denied\n");
        break;
    case LuSVNNotifyActionSkipConflicted:
        ++skippedPaths_;
        print("Skipped '" + path + "' -- Node remains in conflict\n");
        break;
    case LuSVNNotifyActionUpdateDelete:
    case LuSVNNotifyActionExclude:
        receivedSomeChange_ = true;
        print("D    " + path + "\n");
        break;
    case UpdateBrokenLock:
        print("B    " + path + "\n");
        break;
    case LuSVNNotifyActionUpdateExternalRemoved:
        receivedSomeChange_ = true;
        if (n.error() && !n.error()->reason().empty())
            print("Removed external '" + path + "': " + n.error()->reason() + "\n");
        else
            print("Removed external '" + path + "'\n");
        break;
    case LeftLocalModifications:
        print("Left local modifications as '" + path + "'\n");
        break;
    case LuSVNNotifyActionUpdateReplace:
        receivedSomeChange_ = true;
        print("R    " + path + "\n");
        break;
    case LuSVNNotifyActionUpdateAdd:
        receivedSomeChange_ = true;
        if (n.contentState() == StateConflicted) {
            textConflicts_.insert(itemPath);
            print("C    " + path + "\n");
        } else {
            print("A    " + path + "\n");
        }
        break;
    case LuSVNNotifyActionPropertyAdded:
    case LuSVNNotifyActionPropertyModified:
        print("property '" + n.propertyName().value_or("") + "' set on '" + path + "'\n");
        break;
    case LuSVNNotifyActionPropertyDeleted:
        print("property '" + n.propertyName().value_or("") + "' deleted from '" + path + "'.\n");
        break;
    case LuSVNNotifyActionPropertyDeletedNonExistent:
        print("Attempting to delete nonexistent property '" + n.propertyName().value_or("") + "' on '" + path +
              "'\n");
        break;
    case LuSVNNotifyActionExists: {
        receivedSomeChange_ = true;
        char text = 'E', properties = ' ';
        if (n.contentState() == StateConflicted) {
            textConflicts_.insert(itemPath);
            text = 'C';
        }
        if (n.propertyState() == StateConflicted) {
            propertyConflicts_.insert(itemPath);
            properties = 'C';
        } else if (n.propertyState() == StateMerged) {
            properties = 'G';
        }
        print(columns(text, properties, ' '));
        break;
    }
    case LuSVNNotifyActionRestore:
        print("Restored '" + path + "'\n");
        break;
    case LuSVNNotifyActionRevert:
        print("Reverted '" + path + "'\n");
        break;
    case LuSVNNotifyActionFailedRevert:
        print("Failed to revert '" + path + "' -- try updating instead.\n");
        break;
    case LuSVNNotifyActionResolved: {
        const auto kind = conflictKinds_.find(n.path().value_or(""));
        if (kind == conflictKinds_.end())
            print("Resolved conflicted state of '" + path + "'\n");
        else if (kind->second == ConflictKind::Text)
            print("Merge conflicts in '" + path + "' marked as resolved.\n");
        else
            print("Tree conflict at '" + path + "' marked as resolved.\n");
        break;
    }
    case ResolvedText:
        print("Merge conflicts in '" + path + "' marked as resolved.\n");
        break;
    case ResolvedProperty:
        print("Conflict in property '" + n.propertyName().value_or("") + "' at '" + path + "' marked as resolved.\n");
        break;
    case ResolvedTree:
        print("Tree conflict at '" + path + "' marked as resolved.\n");
        break;
    case LuSVNNotifyActionAdd:
        print("A         " + path + "\n");
        break;
    case LuSVNNotifyActionDelete:
        receivedSomeChange_ = true;
        print("D         " + path + "\n");
        break;
    case LuSVNNotifyActionUpdateUpdate:
    case LuSVNNotifyActionMergeRecordInfo: {
        char text = ' ', properties = ' ';
        if (n.contentState() == StateConflicted) {
            textConflicts_.insert(itemPath);
            text = 'C';
        } else if (n.nodeKind() == NodeKindFile) {
            text = n.contentState() == StateMerged ? 'G' : n.contentState() == StateChanged ? 'U' : ' ';
        }
        if (n.propertyState() == StateConflicted) {
            propertyConflicts_.insert(itemPath);
            properties = 'C';
        } else if (n.propertyState() == StateMerged) {
            properties = 'G';
        } else if (n.propertyState() == StateChanged) {
            properties = 'U';
        }
        const char lock = n.lockState() == LockStateUnlocked ? 'B' : ' ';
        receivedSomeChange_ = receivedSomeChange_ || text != ' ' || properties != ' ';
        if (text != ' ' || properties != ' ' || lock != ' ')
            print(columns(text, properties, lock));
        break;
    }
    case LuSVNNotifyActionUpdateExternal:
        ++inExternal_;
        print("\nFetching external item into '" + path + "':\n");
        break;
    case LuSVNNotifyActionFailedExternal:
        externalsError_ = true;
        warn(n.error().get(), path);
        break;
    case LuSVNNotifyActionUpdateStarted:
        if (inExternal_ == 0 && !checkout_)
            print("Updating '" + path + "':\n");
        break;
    case LuSVNNotifyActionUpdateCompleted: {
        const std::string revision = std::to_string(n.revision());
        const bool external = inExternal_ > 0;
        if (export_ && n.revision() == LuSVNInvalidRevision)
            print(external ? "External export complete.\n" : "Export complete.\n");
        else if (export_)
            print((external ? "Exported external at revision " : "Exported revision ") + revision + ".\n");
        else if (n.revision() == LuSVNInvalidRevision)
            print(checkout_ ? (external ? "External checkout complete.\n" : "Checkout complete.\n")
                            : (external ? "External update complete.\n" : "Update complete.\n"));
        else if (checkout_)
            print((external ? "Checked out external at revision " : "Checked out revision ") + revision + ".\n");
        else if (receivedSomeChange_)
            print((external ? "Updated external to revision " : "Updated to revision ") + revision + ".\n");
        else
            print((external ? "External at revision " : "At revision ") + revision + ".\n");
        if (!checkout_)
            receivedSomeChange_ = false;
        if (external) {
            --inExternal_;
            print("\n");
        }
        break;
    }
    case LuSVNNotifyActionCommitModified:
        print("Sending        " + path + "\n");
        break;
    case LuSVNNotifyActionCommitAdded:
        print("Adding         " + path + "\n");
        break;
    case LuSVNNotifyActionCommitCopied:
        print("Adding copy of        " + path + "\n");
        break;
    case LuSVNNotifyActionCommitDeleted:
        print("Deleting       " + path + "\n");
        break;
    case LuSVNNotifyActionCommitReplaced:
        print("Replacing      " + path + "\n");
        break;
    case LuSVNNotifyActionCommitCopiedReplaced:
        print("Replacing copy of     " + path + "\n");
        break;
    case LuSVNNotifyActionCommitPostfixTXDelta:
        print(sentFirstDelta_ ? "." : "Transmitting file data .");
        sentFirstDelta_ = true;
        break;
    case CommitFinalizing:
        print(sentFirstDelta_ ? "done\nCommitting transaction...\n" : "Committing transaction...\n");
        break;
    case LuSVNNotifyActionChangeListSet:
        print("A [" + newChangelist_.value_or("") + "] " + path + "\n");
        break;
    case LuSVNNotifyActionChangeListClear:
    case LuSVNNotifyActionChangeListMoved: {
        const auto former = formerChangelists_.find(n.path().value_or(""));
        print("D [" + (former == formerChangelists_.end() ? std::string() : former->second) + "] " + path + "\n");
        break;
    }
    case LuSVNNotifyActionTreeConflict:
        treeConflicts_.insert(itemPath);
        print("   C " + path + "\n");
        break;
    case LuSVNNotifyActionUpdateShadowedAdd:
        receivedSomeChange_ = true;
        print("   A " + path + "\n");
        break;
    case LuSVNNotifyActionUpdateShadowedUpdate:
        receivedSomeChange_ = true;
        print("   U " + path + "\n");
        break;
    case LuSVNNotifyActionUpdateShadowedDelete:
        receivedSomeChange_ = true;
        print("   D " + path + "\n");
        break;
    case LuSVNNotifyActionMergeBegin:
    case LuSVNNotifyActionForeignMergeBegin:
        if (n.action() == LuSVNNotifyActionMergeBegin)
            print("--- " + mergeHeading(n.mergeRange().get(), "Merging", "Reverse-merging", "Merging differences between") +
                  " into '" + path + "':\n");
        else
            print("--- " + mergeHeading(n.mergeRange().get(), "Merging (from foreign repository)",
                                       "Reverse-merging (from foreign repository)",
                                       "Merging (from foreign repository) differences between foreign") +
                  " into '" + path + "':\n");
        break;
    case LuSVNNotifyActionMergeRecordInfoBegin:
        print("--- " + mergeHeading(n.mergeRange().get(), "Recording mergeinfo for merge of",
                                   "Recording mergeinfo for reverse merge of", "Recording mergeinfo for merge between") +
              " into '" + path + "':\n");
        break;
    case LuSVNNotifyActionMergeElideInfo:
        print("--- Eliding mergeinfo from '" + path + "':\n");
        break;
    case LuSVNNotifyActionUpgradedPath:
        print("Upgraded '" + path + "'\n");
        break;
    case LuSVNNotifyActionURLRedirect:
        print("Redirecting to URL '" + path + "':\n");
        break;
    case LuSVNNotifyActionPathNonExistent:
        print("'" + path + "' is not under version control\n");
        break;
    case MoveBroken:
        print("Breaking move with source path '" + path + "'\n");
        break;
    case CleanupExternal:
        print("Performing cleanup on external item at '" + path + "'.\n");
        break;
    case LuSVNNotifyActionLocked:
        print("'" + path + "' locked by user '" + (n.lock() ? n.lock()->owner() : std::string()) + "'.\n");
        break;
    case LuSVNNotifyActionUnlocked:
        print("'" + path + "' unlocked.\n");
        break;
    case LuSVNNotifyActionFailedLock:
    case LuSVNNotifyActionFailedUnlock:
        // The target is skipped; the command's own error comes at the end.
        if (beforePrinting_)
            beforePrinting_();
        if (n.error())
            printWarning(n.error()->status(), n.error()->reason());
        break;
    default:
        // The library's own start and end of operations, and what svn
        // itself does not show.
        break;
    }
}

std::set<std::string> TesseraNotifier::conflictedPaths() const
{
    std::set<std::string> paths = textConflicts_;
    paths.insert(propertyConflicts_.begin(), propertyConflicts_.end());
    paths.insert(treeConflicts_.begin(), treeConflicts_.end());
    return paths;
}

void TesseraNotifier::markResolved(const std::string& path)
{
    resolvedText_ += textConflicts_.erase(path);
    resolvedProperty_ += propertyConflicts_.erase(path);
    resolvedTree_ += treeConflicts_.erase(path);
}

void TesseraNotifier::printConflictSummary() const
{
    if (conflictedPaths().empty() && resolvedText_ + resolvedProperty_ + resolvedTree_ == 0 && skippedPaths_ == 0)
        return;
    std::string out = "Summary of conflicts:\n";
    const auto count = [&out](const char* what, std::size_t remaining, std::size_t resolved) {
        if (resolved > 0)
            out += std::string("  ") + what + ": " + std::to_string(remaining) + " remaining (and " +
                   std::to_string(resolved) + " already resolved)\n";
        else if (remaining > 0)
            out += std::string("  ") + what + ": " + std::to_string(remaining) + "\n";
    };
    count("Text conflicts", textConflicts_.size(), resolvedText_);
    count("Property conflicts", propertyConflicts_.size(), resolvedProperty_);
    count("Tree conflicts", treeConflicts_.size(), resolvedTree_);
    count("Skipped paths", static_cast<std::size_t>(skippedPaths_), 0);
    std::fputs(out.c_str(), stream_);
    std::fflush(stream_);
}
