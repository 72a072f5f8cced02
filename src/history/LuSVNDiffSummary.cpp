#include <tessera/LuSVNDiffSummary.h>

#include <svn_client.h>

#include "LuSVNObjectDescription.h"

LuSVNDiffSummary::LuSVNDiffSummary(std::string path, LuSVNDiffSummaryKind kind, bool propertiesChanged,
                                   LuSVNNodeKind nodeKind)
    : path_(std::move(path)), kind_(kind), propertiesChanged_(propertiesChanged), nodeKind_(nodeKind)
{
}

LuSVNDiffSummary LuSVNDiffSummary::summaryWithSVNSummary(const svn_client_diff_summarize_t& summary)
{
    return {summary.path ? summary.path : "", static_cast<LuSVNDiffSummaryKind>(summary.summarize_kind),
            summary.prop_changed != 0, static_cast<LuSVNNodeKind>(summary.node_kind)};
}

std::string LuSVNDiffSummary::wordFromKind(LuSVNDiffSummaryKind kind)
{
    switch (kind) {
    case LuSVNDiffSummaryKindAdded: return "added";
    case LuSVNDiffSummaryKindModified: return "modified";
    case LuSVNDiffSummaryKindDeleted: return "deleted";
    default: return "none";
    }
}

std::string LuSVNDiffSummary::description() const
{
    return "{ " + tessera_private::LuSVNGenericDescription(*this) + ", path: " + path_ + ", kind: " + wordFromKind(kind_) +
           ", props: " + (propertiesChanged_ ? "modified" : "none") + ", nodeKind: " + std::to_string(nodeKind_) +
           " }";
}
