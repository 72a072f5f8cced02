#include <tessera/LuSVNConflictVersion.h>

#include "LuSVNAssert.h"
#include "LuSVNSubversion.h"

static const LuSVNArchivableClassRegistrar<LuSVNConflictVersion> registrar("LuSVNConflictVersion");

std::shared_ptr<LuSVNConflictVersion> LuSVNConflictVersion::conflictVersion()
{
    return std::make_shared<LuSVNConflictVersion>();
}

std::shared_ptr<LuSVNConflictVersion> LuSVNConflictVersion::conflictVersionFromStruct(
    const svn_wc_conflict_version_t* version)
{
    LUSVN_PARAMETER_ASSERT(version != nullptr, "version != NULL");
    auto result = conflictVersion();
    if (version->repos_url)
        result->repositoryURL_ = LuSVNURL::URLWithString(version->repos_url);
    result->pegRevision_ = static_cast<std::int32_t>(version->peg_rev);
    if (version->path_in_repos)
        result->repositoryPath_ = version->path_in_repos;
    result->nodeKind_ = version->node_kind;
    return result;
}

std::shared_ptr<LuSVNConflictVersion> LuSVNConflictVersion::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    auto result = conflictVersion();
    result->repositoryURL_ = coder.decodeObjectOfClassForKey<LuSVNURL>("repositoryURL");
    if (coder.containsValueForKey("pegRevision"))
        result->pegRevision_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("pegRevision"));
    result->repositoryPath_ = coder.decodeStringForKey("repositoryPath");
    result->nodeKind_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("nodeKind"));
    return result;
}

std::shared_ptr<LuSVNConflictVersion> LuSVNConflictVersion::copy() const
{
    return std::make_shared<LuSVNConflictVersion>(*this);
}

std::string LuSVNConflictVersion::archiveClassName() const
{
    return "LuSVNConflictVersion";
}

void LuSVNConflictVersion::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeObject(repositoryURL_, "repositoryURL");
    coder.encodeInt64(pegRevision_, "pegRevision");
    coder.encodeString(repositoryPath_, "repositoryPath");
    coder.encodeInt64(nodeKind_, "nodeKind");
}
