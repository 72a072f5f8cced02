// Makes the node of one status record (LuSVNNode::nodeAtPath). A walk keeps
// one maker for all its records, so that what neighbouring nodes have in
// common is made once: the parent path that siblings share as their
// location, and the repository root their URLs are made from without parsing
// each URL again.
#pragma once

#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNNode.h>

#include "LuSVNSubversion.h"

class LuSVNStatusNodeMaker {
public:
    /// For the records of the context's backend, which it must have.
    explicit LuSVNStatusNodeMaker(const LuSVNContext& context);

    /// As LuSVNNode::nodeAtPath describes.
    std::shared_ptr<LuSVNNode> nodeAtPath(const LuSVNNode::LocalPath& path, const svn_wc_status2_t* status);

private:
    std::shared_ptr<const LuSVNURL> URLOfEntry(const svn_wc_entry_t& entry);

    LuSVNVersion version_;
    LuSVNPath::Path location_;
    std::shared_ptr<const LuSVNURL> repositoryRoot_;
};
