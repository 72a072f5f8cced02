// The status a node's working-copy queries read: a node without status reads
// as one with a status just made (every kind none, no locks, revisions
// invalid).
#pragma once

#include <tessera/LuSVNNode.h>

namespace tessera_private {

inline const LuSVNStatus& LuSVNStatusOfNode(const LuSVNNode& node)
{
    static const LuSVNStatus initial;
    return node.status() ? *node.status() : initial;
}

}  // namespace tessera_private
