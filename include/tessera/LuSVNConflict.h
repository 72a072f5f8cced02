// One conflict on a working-copy item: a text, property or tree conflict.
//
//   if (const auto& conflict = status->treeConflict()) {
//       conflict->kind();                         // 2: tree conflict
//       conflict->operation();                    // 1: raised by an update
//       conflict->rightVersion()->pegRevision();  // the incoming revision
//   }
//
// A mutable value shared as std::shared_ptr; copy() makes a new conflict that
// shares the paths and versions. The enumerated fields hold Subversion's own
// numbers as the backend's release defines them, unchanged:
//   node kind  svn_node_kind_t           none 0, file 1, directory 2, unknown 3
//   kind       svn_wc_conflict_kind_t    text 0, property 1, tree 2
//   action     svn_wc_conflict_action_t  what the incoming change did
//   reason     svn_wc_conflict_reason_t  what the working copy had done
//   operation  svn_wc_operation_t        none 0, update 1, switch 2, merge 3
//
// Archived under "path", "nodeKind", "kind", "propertyName", "mimeType",
// "action", "reason", "baseFilePath", "theirFilePath", "myFilePath",
// "mergedFilePath", "operation", "leftVersion", "rightVersion" and "binary".
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNConflictVersion.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNPath.h>

struct svn_wc_conflict_description_t;

class TESSERA_EXPORT LuSVNConflict final : public LuSVNCoding {
public:
    using Path = LuSVNPath::Path;
    using Version = std::shared_ptr<const LuSVNConflictVersion>;

    /// No paths, names or versions; every number 0; not binary.
    LuSVNConflict() = default;

    /// A new conflict with the values of the default constructor.
    static std::shared_ptr<LuSVNConflict> conflict();

    /// A conflict from Subversion's description, taking each field only when
    /// the record has it: the path, node kind, kind, property name, binary
    /// flag, MIME type, action, reason, the four file paths, the operation
    /// and the left and right versions. Paths are made with
    /// LuSVNPath::pathWithString. Raises "Invalid parameter not satisfying:
    /// conflict != NULL" for null.
    static std::shared_ptr<LuSVNConflict> conflictFromStruct(const svn_wc_conflict_description_t* conflict);

    static std::shared_ptr<LuSVNConflict> initWithCoder(LuSVNCoder& coder);

    /// The conflicted item.
    const Path& path() const { return path_; }
    void setPath(Path path) { path_ = std::move(path); }
    std::int32_t nodeKind() const { return nodeKind_; }
    void setNodeKind(std::int32_t kind) { nodeKind_ = kind; }
    std::int32_t kind() const { return kind_; }
    void setKind(std::int32_t kind) { kind_ = kind; }
    /// The property in conflict (property conflicts).
    const std::optional<std::string>& propertyName() const { return propertyName_; }
    void setPropertyName(std::optional<std::string> name) { propertyName_ = std::move(name); }
    const std::optional<std::string>& MIMEType() const { return mimeType_; }
    void setMIMEType(std::optional<std::string> type) { mimeType_ = std::move(type); }
    std::int32_t action() const { return action_; }
    void setAction(std::int32_t action) { action_ = action; }
    std::int32_t reason() const { return reason_; }
    void setReason(std::int32_t reason) { reason_ = reason; }
    /// The common ancestor file.
    const Path& baseFilePath() const { return baseFilePath_; }
    void setBaseFilePath(Path path) { baseFilePath_ = std::move(path); }
    /// The incoming file.
    const Path& theirFilePath() const { return theirFilePath_; }
    void setTheirFilePath(Path path) { theirFilePath_ = std::move(path); }
    /// The local file.
    const Path& myFilePath() const { return myFilePath_; }
    void setMyFilePath(Path path) { myFilePath_ = std::move(path); }
    /// The merge result with conflict markers.
    const Path& mergedFilePath() const { return mergedFilePath_; }
    void setMergedFilePath(Path path) { mergedFilePath_ = std::move(path); }
    std::int32_t operation() const { return operation_; }
    void setOperation(std::int32_t operation) { operation_ = operation; }
    /// The older source side.
    const Version& leftVersion() const { return leftVersion_; }
    void setLeftVersion(Version version) { leftVersion_ = std::move(version); }
    /// The newer source side.
    const Version& rightVersion() const { return rightVersion_; }
    void setRightVersion(Version version) { rightVersion_ = std::move(version); }
    bool isBinary() const { return (flags_ & BinaryFlag) != 0; }
    void setBinary(bool binary) { flags_ = binary ? (flags_ | BinaryFlag) : (flags_ & ~BinaryFlag); }

    /// A new conflict with the same values; paths and versions are shared.
    std::shared_ptr<LuSVNConflict> copy() const;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    static constexpr std::uint32_t BinaryFlag = 1;

    Path path_;
    std::int32_t nodeKind_ = 0;
    std::int32_t kind_ = 0;
    std::optional<std::string> propertyName_;
    std::optional<std::string> mimeType_;
    std::int32_t action_ = 0;
    std::int32_t reason_ = 0;
    Path baseFilePath_;
    Path theirFilePath_;
    Path myFilePath_;
    Path mergedFilePath_;
    std::int32_t operation_ = 0;
    Version leftVersion_;
    Version rightVersion_;
    std::uint32_t flags_ = 0;
};
