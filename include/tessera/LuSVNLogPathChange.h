// One path changed in a revision, as a log entry lists it, and the actions a
// change can have.
//
//   LuSVNLogPathChange change("/b", LuSVNLogActionAdded, "/a", 5);
//   change.adjustPath("/b/x");             // "/a/x": where /b/x came from
//   LuSVNCharFromLogAction(change.action()); // 'A'
//
// Backends of Subversion 1.6 and newer also report the kind of the changed
// node, and 1.7 and newer whether its text and its properties changed; on
// older backends these stay unknown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNNode.h>

/// What happened to a path in a revision, as Subversion's log reports it.
enum LuSVNLogAction : std::int32_t {
    LuSVNLogActionUnrecognized = -1,  ///< a character the library does not know
    LuSVNLogActionNone = 0,           ///< "-"
    LuSVNLogActionAdded = 1,          ///< "A"
    LuSVNLogActionDeleted = 2,        ///< "D"
    LuSVNLogActionReplaced = 3,       ///< "R"
    LuSVNLogActionModified = 4,       ///< "M"
};

/// '-' → None, 'A', 'D', 'R', 'M' → their actions, anything else → -1.
TESSERA_EXPORT LuSVNLogAction LuSVNLogActionFromChar(char character);
/// The inverse of LuSVNLogActionFromChar, with 'O' for -1; any other value
/// raises LuSVNException "Unrecognized action".
TESSERA_EXPORT char LuSVNCharFromLogAction(LuSVNLogAction action);
/// LuSVNCharFromLogAction as a one-character string.
TESSERA_EXPORT std::string LuSVNStringFromLogAction(LuSVNLogAction action);
/// LuSVNLogActionFromChar of the first character; none or "" gives None.
TESSERA_EXPORT LuSVNLogAction LuSVNLogActionFromString(std::optional<std::string_view> text);

/// One path changed in a revision.
class TESSERA_EXPORT LuSVNLogPathChange {
public:
    /// No path, action None, no copy source.
    LuSVNLogPathChange() = default;
    /// A change without a copy source.
    LuSVNLogPathChange(std::string path, LuSVNLogAction action);
    /// A change whose path was copied from copyPath at copyRevision.
    LuSVNLogPathChange(std::string path, LuSVNLogAction action, std::optional<std::string> copyPath,
                       std::int32_t copyRevision);

    /// The repository path ("/trunk/a").
    const std::string& path() const { return path_; }
    /// See path().
    void setPath(std::string path) { path_ = std::move(path); }
    /// See LuSVNLogAction.
    LuSVNLogAction action() const { return action_; }
    /// See action().
    void setAction(LuSVNLogAction action) { action_ = action; }
    /// The source path of a copy; none for other changes.
    const std::optional<std::string>& copyPath() const { return copyPath_; }
    /// See copyPath().
    void setCopyPath(std::optional<std::string> copyPath) { copyPath_ = std::move(copyPath); }
    /// The revision of the copy source; -1 without one.
    std::int32_t copyRevision() const { return copyRevision_; }
    /// See copyRevision().
    void setCopyRevision(std::int32_t copyRevision) { copyRevision_ = copyRevision; }

    /// The kind of the changed node; LuSVNNodeKindUnknown when the backend
    /// does not tell.
    LuSVNNodeKind nodeKind() const { return nodeKind_; }
    /// See nodeKind().
    void setNodeKind(LuSVNNodeKind nodeKind) { nodeKind_ = nodeKind; }
    /// Whether the file's text changed; none when the backend does not tell.
    const std::optional<bool>& textModified() const { return textModified_; }
    /// See textModified().
    void setTextModified(std::optional<bool> modified) { textModified_ = modified; }
    /// Whether the node's properties changed; none when the backend does not
    /// tell.
    const std::optional<bool>& propertiesModified() const { return propertiesModified_; }
    /// See propertiesModified().
    void setPropertiesModified(std::optional<bool> modified) { propertiesModified_ = modified; }

    /// Follows a path back across the copy that added this change's path: for
    /// an addition, the copy path followed by what of `path` lies beyond this
    /// change's path length (none without a copy path); for other actions the
    /// path unchanged. It does not check that `path` begins with path().
    std::optional<std::string> adjustPath(const std::optional<std::string>& path) const;

    /// "LuSVNLogActionNone", "LuSVNLogActionAdded", ..., or "<unrecognized>".
    static std::string stringFromAction(LuSVNLogAction action);
    /// "{ <LuSVNLogPathChange: 0x...>, action: LuSVNLogActionAdded, path: /b,
    /// copyPath: /a, copyRevision: 5 }", the last two only with a copy path.
    std::string description() const;

private:
    std::string path_;
    LuSVNLogAction action_ = LuSVNLogActionNone;
    std::optional<std::string> copyPath_;
    std::int32_t copyRevision_ = -1;
    LuSVNNodeKind nodeKind_ = LuSVNNodeKindUnknown;
    std::optional<bool> textModified_;
    std::optional<bool> propertiesModified_;
};
