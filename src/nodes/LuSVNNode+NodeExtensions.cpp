#include <tessera/LuSVNNode.h>

#include <algorithm>
#include <climits>
#include <functional>

#include "LuSVNAssert.h"
#include "LuSVNNodeStatus.h"

using tessera_private::LuSVNStatusOfNode;

namespace {

using Nodes = LuSVNNode::Nodes;

Nodes nodesWhere(const Nodes& nodes, const std::function<bool(const LuSVNNode&)>& keep)
{
    Nodes result;
    for (const auto& node : nodes)
        if (keep(*node))
            result.push_back(node);
    return result;
}

bool contains(const std::vector<std::uint32_t>& kinds, std::uint32_t kind)
{
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

}  // namespace

std::vector<LuSVNNode::Path> LuSVNNode::arrayWithPathsOfNodes(const Nodes& nodes)
{
    std::vector<Path> paths;
    paths.reserve(nodes.size());
    for (const auto& node : nodes)
        paths.push_back(node->path());
    return paths;
}

LuSVNNode::Nodes LuSVNNode::arrayWithNodesWithStatus(const Nodes& nodes, LuSVNStatusKind kind)
{
    return nodesWhere(nodes, [kind](const LuSVNNode& node) { return LuSVNStatusOfNode(node).textStatus() == kind; });
}

LuSVNNode::Nodes LuSVNNode::arrayWithNodesWithStatusOtherThan(const Nodes& nodes, LuSVNStatusKind kind)
{
    return nodesWhere(nodes, [kind](const LuSVNNode& node) { return LuSVNStatusOfNode(node).textStatus() != kind; });
}

LuSVNNode::Nodes LuSVNNode::arrayWithNodesWithRepositoryStatus(const Nodes& nodes, LuSVNStatusKind kind)
{
    return nodesWhere(nodes, [kind](const LuSVNNode& node) { return LuSVNStatusOfNode(node).repositoryTextStatus() == kind; });
}

LuSVNNode::Nodes LuSVNNode::arrayWithNodesWithRepositoryStatusOtherThan(const Nodes& nodes, LuSVNStatusKind kind)
{
    return nodesWhere(nodes, [kind](const LuSVNNode& node) { return LuSVNStatusOfNode(node).repositoryTextStatus() != kind; });
}

LuSVNNode::Nodes LuSVNNode::arrayWithNodesWithStatus(const Nodes& nodes, LuSVNStatusKind kind,
                                                     LuSVNSchedule schedule)
{
    return nodesWhere(nodes, [kind, schedule](const LuSVNNode& node) {
        return LuSVNStatusOfNode(node).textStatus() == kind && LuSVNStatusOfNode(node).schedule() == schedule;
    });
}

LuSVNNode::Nodes LuSVNNode::arrayWithNodesWithTextStatii(const Nodes& nodes,
                                                         const std::vector<std::uint32_t>& textStatii,
                                                         const std::vector<std::uint32_t>& propertyStatii)
{
    return nodesWhere(nodes, [&](const LuSVNNode& node) {
        return contains(textStatii, LuSVNStatusOfNode(node).textStatus()) ||
               contains(propertyStatii, LuSVNStatusOfNode(node).propertyStatus());
    });
}

LuSVNNode::Nodes LuSVNNode::arrayWithOutOfDateNodes(const Nodes& nodes)
{
    return nodesWhere(nodes, [](const LuSVNNode& node) {
        return LuSVNStatusOfNode(node).outOfDateLastCommitRevision() != LuSVNInvalidRevision;
    });
}

LuSVNNode::Nodes LuSVNNode::arrayWithDescendentsOfPath(const Nodes& nodes, const Path& path)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    return nodesWhere(nodes, [&path](const LuSVNNode& node) {
        return node.path() && node.path()->isDescendentOfPath(path);
    });
}

LuSVNNode::Nodes LuSVNNode::arrayWithDescendentsOfPaths(const Nodes& nodes, const std::vector<Path>& paths)
{
    Nodes result;
    for (const auto& path : paths) {
        const Nodes descendents = arrayWithDescendentsOfPath(nodes, path);
        result.insert(result.end(), descendents.begin(), descendents.end());
    }
    return result;
}

std::shared_ptr<LuSVNNode> LuSVNNode::nodeWithPath(const Nodes& nodes, const Path& path)
{
    for (const auto& node : nodes)
        if (node->path() && node->path()->isEqualToPath(path))
            return node;
    return nullptr;
}

std::shared_ptr<LuSVNNode> LuSVNNode::nodeWithAncestorOfPath(const Nodes& nodes, const Path& path)
{
    for (Path ancestor = path ? path->parent() : nullptr; ancestor; ancestor = ancestor->parent())
        if (auto node = nodeWithPath(nodes, ancestor))
            return node;
    return nullptr;
}

LuSVNNode::NodesByPath LuSVNNode::dictionaryOfNodesKeyedByPath(const Nodes& nodes)
{
    NodesByPath result;
    for (const auto& node : nodes)
        result[node->path()] = node;
    return result;
}

std::int32_t LuSVNNode::earliestRevision(const Nodes& nodes)
{
    std::int32_t earliest = INT32_MAX;
    for (const auto& node : nodes)
        earliest = std::min(earliest, node->revision());
    return earliest == INT32_MAX ? LuSVNInvalidRevision : earliest;
}

std::int32_t LuSVNNode::latestRevision(const Nodes& nodes)
{
    std::int32_t latest = INT32_MIN;
    for (const auto& node : nodes)
        latest = std::max(latest, node->revision());
    return latest == INT32_MIN ? LuSVNInvalidRevision : latest;
}
