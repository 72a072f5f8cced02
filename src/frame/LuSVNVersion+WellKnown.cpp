#include <tessera/LuSVNVersion.h>

const LuSVNVersion& LuSVNVersion::version1_4()
{
    static const LuSVNVersion version(1, 4, 0, std::string());
    return version;
}

const LuSVNVersion& LuSVNVersion::version1_5()
{
    static const LuSVNVersion version(1, 5, 0, std::string());
    return version;
}

const LuSVNVersion& LuSVNVersion::version1_6()
{
    static const LuSVNVersion version(1, 6, 0, std::string());
    return version;
}

const LuSVNVersion& LuSVNVersion::version1_7()
{
    static const LuSVNVersion version(1, 7, 0, std::string());
    return version;
}

const std::vector<LuSVNVersion>& LuSVNVersion::wellKnownVersions()
{
    static const std::vector<LuSVNVersion> versions{version1_4(), version1_5(), version1_6(), version1_7()};
    return versions;
}

std::vector<LuSVNVersion> LuSVNVersion::fileCompatibilityVersions()
{
    return {version(1, 3), version1_4(), version1_5(), version1_6(), version1_7()};
}

const LuSVNVersion& LuSVNVersion::oldestWellknownVersion()
{
    return version1_4();
}

const LuSVNVersion& LuSVNVersion::newestWellknownVersion()
{
    return version1_7();
}

// Linux has no toolkit release to test as the original platform did; the
// library's own choice is 1.6.
const LuSVNVersion& LuSVNVersion::defaultVersion()
{
    return version1_6();
}
