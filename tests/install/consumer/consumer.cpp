// Loads the backends installed beside the library and calls Subversion once.
#include <tessera/Tessera.h>

#include <cstdio>

int main()
{
    LuSVNInitialize();
    auto loader = LuSVNBundleLoader::sharedInstance();
    const auto newest = loader->newestVersion();
    if (!newest) {
        std::fprintf(stderr, "no backend in %s\n", LuSVNBundleLoader::defaultBundleDirectory().c_str());
        return 1;
    }
    try {
        LuSVNNode::versionForWorkingCopyAtPath("/");
    } catch (const LuSVNNotWorkingCopyException& e) {
        std::printf("backend %s: %s\n", newest->versionString().c_str(), e.reason().c_str());
        return 0;
    }
    return 1;
}
