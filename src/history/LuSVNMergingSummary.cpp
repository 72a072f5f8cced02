#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNMergingSummary.h>

#include <utility>

LuSVNMergingSummary::LuSVNMergingSummary(bool needsReintegration, Location youngestCommonAncestor, Location base,
                                         Location right, Location target,
                                         std::shared_ptr<const LuSVNURL> repositoryRootURL)
    : needsReintegration_(needsReintegration),
      youngestCommonAncestor_(std::move(youngestCommonAncestor)),
      base_(std::move(base)),
      right_(std::move(right)),
      target_(std::move(target)),
      repositoryRootURL_(std::move(repositoryRootURL))
{
}

std::string LuSVNMergingSummary::repositoryPathOf(const Location& location) const
{
    const std::string root = repositoryRootURL_->URLDecodedString();
    const std::string url = location.url->URLDecodedString();
    if (url == root)
        return "";
    if (url.compare(0, root.size(), root) != 0 || url.size() <= root.size() || url[root.size()] != '/')
        throw LuSVNInvalidArgumentException("'" + location.url->string() + "' is not in the repository at '" +
                                            repositoryRootURL_->string() + "'");
    return url.substr(root.size() + 1);
}
