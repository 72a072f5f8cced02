#include <tessera/LuSVNConflict.h>

#include "LuSVNAssert.h"
#include "LuSVNSubversion.h"

static const LuSVNArchivableClassRegistrar<LuSVNConflict> registrar("LuSVNConflict");

namespace {

LuSVNPath::Path pathOrNull(const char* text)
{
    return text ? LuSVNPath::pathWithString(text) : nullptr;
}

LuSVNConflict::Version versionOrNull(const svn_wc_conflict_version_t* version)
{
    return version ? LuSVNConflictVersion::conflictVersionFromStruct(version) : nullptr;
}

}  // namespace

std::shared_ptr<LuSVNConflict> LuSVNConflict::conflict()
{
    return std::make_shared<LuSVNConflict>();
}

std::shared_ptr<LuSVNConflict> LuSVNConflict::conflictFromStruct(const svn_wc_conflict_description_t* conflict)
{
    LUSVN_PARAMETER_ASSERT(conflict != nullptr, "conflict != NULL");
    auto result = LuSVNConflict::conflict();
    result->path_ = pathOrNull(conflict->path);
    result->nodeKind_ = conflict->node_kind;
    result->kind_ = conflict->kind;
    if (conflict->property_name)
        result->propertyName_ = conflict->property_name;
    result->setBinary(conflict->is_binary != 0);
    if (conflict->mime_type)
        result->mimeType_ = conflict->mime_type;
    result->action_ = conflict->action;
    result->reason_ = conflict->reason;
    result->baseFilePath_ = pathOrNull(conflict->base_file);
    result->theirFilePath_ = pathOrNull(conflict->their_file);
    result->myFilePath_ = pathOrNull(conflict->my_file);
    result->mergedFilePath_ = pathOrNull(conflict->merged_file);
    result->operation_ = conflict->operation;
    result->leftVersion_ = versionOrNull(conflict->src_left_version);
    result->rightVersion_ = versionOrNull(conflict->src_right_version);
    return result;
}

std::shared_ptr<LuSVNConflict> LuSVNConflict::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    auto result = conflict();
    result->path_ = coder.decodeObjectOfClassForKey<LuSVNPath>("path");
    result->nodeKind_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("nodeKind"));
    result->kind_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("kind"));
    result->propertyName_ = coder.decodeStringForKey("propertyName");
    result->mimeType_ = coder.decodeStringForKey("mimeType");
    result->action_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("action"));
    result->reason_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("reason"));
    result->baseFilePath_ = coder.decodeObjectOfClassForKey<LuSVNPath>("baseFilePath");
    result->theirFilePath_ = coder.decodeObjectOfClassForKey<LuSVNPath>("theirFilePath");
    result->myFilePath_ = coder.decodeObjectOfClassForKey<LuSVNPath>("myFilePath");
    result->mergedFilePath_ = coder.decodeObjectOfClassForKey<LuSVNPath>("mergedFilePath");
    result->operation_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("operation"));
    result->leftVersion_ = coder.decodeObjectOfClassForKey<LuSVNConflictVersion>("leftVersion");
    result->rightVersion_ = coder.decodeObjectOfClassForKey<LuSVNConflictVersion>("rightVersion");
    result->setBinary(coder.decodeBoolForKey("binary"));
    return result;
}

std::shared_ptr<LuSVNConflict> LuSVNConflict::copy() const
{
    return std::make_shared<LuSVNConflict>(*this);
}

std::string LuSVNConflict::archiveClassName() const
{
    return "LuSVNConflict";
}

void LuSVNConflict::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeObject(path_, "path");
    coder.encodeInt64(nodeKind_, "nodeKind");
    coder.encodeInt64(kind_, "kind");
    coder.encodeString(propertyName_, "propertyName");
    coder.encodeString(mimeType_, "mimeType");
    coder.encodeInt64(action_, "action");
    coder.encodeInt64(reason_, "reason");
    coder.encodeObject(baseFilePath_, "baseFilePath");
    coder.encodeObject(theirFilePath_, "theirFilePath");
    coder.encodeObject(myFilePath_, "myFilePath");
    coder.encodeObject(mergedFilePath_, "mergedFilePath");
    coder.encodeInt64(operation_, "operation");
    coder.encodeObject(leftVersion_, "leftVersion");
    coder.encodeObject(rightVersion_, "rightVersion");
    coder.encodeBool(isBinary(), "binary");
}
