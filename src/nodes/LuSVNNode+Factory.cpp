#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNFile.h>
#include <tessera/LuSVNNode.h>

#include "LuSVNAssert.h"

std::shared_ptr<LuSVNNode> LuSVNNode::nodeAtPath(const Path& path, const Revision& revision, bool fetchLock,
                                                 const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    if (isDirectoryAtPath(path, revision, context))
        return LuSVNDirectory::directoryAtPath(path, revision, context);
    return LuSVNFile::fileAtPath(path, revision, fetchLock, context);
}

std::shared_ptr<LuSVNNode> LuSVNNode::nodeAtPath(const Path& path, const Revision& revision, const Context& context)
{
    return nodeAtPath(path, revision, true, context);
}
