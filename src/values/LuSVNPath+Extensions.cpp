#include <tessera/LuSVNPath.h>
#include <tessera/LuSVNURL.h>

#include <unordered_set>

#include "LuSVNAssert.h"

namespace {

// One result per path, in order; a null path is a caller's error.
template <class Transform>
auto mapPaths(const LuSVNPath::Paths& paths, Transform transform)
{
    std::vector<decltype(transform(*paths.front()))> results;
    results.reserve(paths.size());
    for (const LuSVNPath::Path& path : paths) {
        LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
        results.push_back(transform(*path));
    }
    return results;
}

}  // namespace

std::vector<std::string> LuSVNPath::arrayWithStringsOfPaths(const Paths& paths)
{
    return mapPaths(paths, [](const LuSVNPath& path) { return path.string(); });
}

LuSVNPath::Paths LuSVNPath::arrayWithPathsForStrings(const std::vector<std::string>& texts)
{
    Paths paths;
    paths.reserve(texts.size());
    for (const std::string& text : texts)
        paths.push_back(pathWithString(text));
    return paths;
}

std::vector<std::shared_ptr<const LuSVNURL>> LuSVNPath::arrayWithURLsForPaths(const Paths& paths)
{
    return mapPaths(paths, [](const LuSVNPath& path) { return path.URL(); });
}

std::vector<std::string> LuSVNPath::arrayWithLastPathComponents(const Paths& paths)
{
    return mapPaths(paths, [](const LuSVNPath& path) { return path.lastComponent(); });
}

std::vector<std::string> LuSVNPath::arrayWithDenormalizedLastPathComponents(const Paths& paths)
{
    return mapPaths(paths, [](const LuSVNPath& path) { return path.denormalizedLastComponent(); });
}

std::vector<std::shared_ptr<const LuSVNURL>> LuSVNPath::arrayWithUniqueHostURLsOfPaths(const Paths& paths)
{
    std::vector<std::shared_ptr<const LuSVNURL>> hosts;
    std::unordered_set<std::string> seen;
    for (const auto& host : mapPaths(paths, [](const LuSVNPath& path) {
             return LuSVNURL::URLWithString(path.URL()->hostAndScheme());
         })) {
        if (seen.insert(host->string()).second)
            hosts.push_back(host);
    }
    return hosts;
}

LuSVNPath::Paths LuSVNPath::arrayWithCanonicalPaths(const Paths& paths)
{
    return mapPaths(paths, [](const LuSVNPath& path) { return path.canonicalize(); });
}

LuSVNPath::Paths LuSVNPath::arrayWithPathsStrippedOfUsers(const Paths& paths)
{
    return mapPaths(paths, [](const LuSVNPath& path) { return path.stripUser(); });
}
