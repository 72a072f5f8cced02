#include <gtest/gtest.h>
#include <tessera/LuSVNVersion.h>

#include <unordered_set>

namespace {

struct Parsed {
    const char* text;
    int major, minor, patch;
    const char* tag;
};

TEST(LuSVNVersion, ParsesNumbersAndTag)
{
    const Parsed cases[] = {
        {"1.6.17", 1, 6, 17, ""},
        {"1.7.0-dev", 1, 7, 0, "dev"},
        {"1.5 (r12345)", 1, 5, 0, "(r12345)"},
        {"", 0, 0, 0, ""},
        {"  1.6\n", 1, 6, 0, ""},
        {"1.6.3 -  rc1 ", 1, 6, 3, "-  rc1"},
        {"1.x.3", 1, 0, 3, ""},
        {"1.6.3.9", 1, 6, 3, ""},
        {"-1.2", 0, 0, 0, "1.2"},
        {"+2.-1.7", 2, 0, 0, "1.7"},
        {"99999999999.1", 2147483647, 1, 0, ""},
    };
    for (const auto& c : cases) {
        const auto v = LuSVNVersion::versionWithString(c.text);
        EXPECT_EQ(v.major(), c.major) << c.text;
        EXPECT_EQ(v.minor(), c.minor) << c.text;
        EXPECT_EQ(v.patch(), c.patch) << c.text;
        EXPECT_EQ(v.tag(), c.tag) << c.text;
    }
}

TEST(LuSVNVersion, PrintsVersionString)
{
    EXPECT_EQ(LuSVNVersion::version(1, 6, 0).versionString(), "1.6");
    EXPECT_EQ(LuSVNVersion::version(1, 6, 3).versionString(), "1.6.3");
    EXPECT_EQ(LuSVNVersion::version(1, 6, 3, "rc1").versionString(), "1.6.3 rc1");
    EXPECT_EQ(LuSVNVersion::version(1, 6, -4).versionString(), "1.6");
    EXPECT_EQ(LuSVNVersion::version(1, 6, 17, "dev").description(), "1.6.17 dev");
}

TEST(LuSVNVersion, PrintedVersionParsesBackEqual)
{
    for (const char* text : {"1.6.17", "1.7.0-dev", "1.5 (r12345)", "0.0.1", "1.14.2 rc 2", "3.0"}) {
        const auto v = LuSVNVersion::versionWithString(text);
        EXPECT_EQ(LuSVNVersion::versionWithString(v.versionString()), v) << text;
    }
}

TEST(LuSVNVersion, OrdersByNumbersThenTag)
{
    const auto v16 = LuSVNVersion::versionWithString("1.6");
    const auto v160 = LuSVNVersion::versionWithString("1.6.0");
    const auto v160dev = LuSVNVersion::versionWithString("1.6.0 dev");
    EXPECT_EQ(v16, v160);
    EXPECT_EQ(v16.hash(), v160.hash());
    EXPECT_TRUE(v160dev.isGreaterThan(v160));
    EXPECT_NE(v160dev, v160);
    EXPECT_TRUE(v16.isLessThan(LuSVNVersion::version(1, 6, 1)));
    EXPECT_TRUE(LuSVNVersion::version(1, 9).isLessThan(LuSVNVersion::version(1, 10)));
    EXPECT_TRUE(LuSVNVersion::version(1, -1).isLessThan(LuSVNVersion::version(1, 0)));
    EXPECT_TRUE(v16.isLessThanOrEqualTo(v160));
    EXPECT_TRUE(v16.isGreaterThanOrEqualTo(v160));
    EXPECT_TRUE(v16.isEqualToVersion(v160));
    EXPECT_EQ(v160dev.compare(v160), 1);
    EXPECT_EQ(v160.compare(v160dev), -1);
    std::unordered_set<LuSVNVersion> set{v16, v160, v160dev};
    EXPECT_EQ(set.size(), 2u);
}

TEST(LuSVNVersion, MatchesPatternsWithWildcards)
{
    struct Match {
        const char* version;
        const char* pattern;
        bool matches;
    };
    const Match cases[] = {
        {"1.6.0", "1.6", true},        {"1.6.17", "1.6", true},     {"1.6.5 dev", "1.6", true},
        {"1.7.0", "1.6", false},       {"1.9.3", "1.0.0", true},    {"2.0.0", "1.0.0", false},
        {"7.3.1 x", "0.0.0", true},    {"1.6.5", "1.6.5", true},    {"1.6.5", "1.6.4", false},
        {"1.6.5 dev", "1.6.5 dev", true}, {"1.6.5", "1.6.5 dev", false}, {"1.6.5 dev", "1.6.5 devel", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNVersion::versionWithString(c.version).matches(LuSVNVersion::versionWithString(c.pattern)),
                  c.matches)
            << c.version << " ~ " << c.pattern;
}

TEST(LuSVNVersion, WellKnownVersions)
{
    const auto& known = LuSVNVersion::wellKnownVersions();
    ASSERT_EQ(known.size(), 4u);
    EXPECT_EQ(known.front(), LuSVNVersion::oldestWellknownVersion());
    EXPECT_EQ(known.back(), LuSVNVersion::newestWellknownVersion());
    EXPECT_EQ(&LuSVNVersion::version1_6(), &LuSVNVersion::version1_6());
    const auto files = LuSVNVersion::fileCompatibilityVersions();
    ASSERT_EQ(files.size(), 5u);
    EXPECT_EQ(files.front().versionString(), "1.3");
    EXPECT_EQ(LuSVNVersion::defaultVersion(), LuSVNVersion::version1_6());

    // Only versions older than the platform default get the plus.
    EXPECT_EQ(LuSVNVersion::version(1, 5).minimumVersionString(), "1.5+");
    EXPECT_EQ(LuSVNVersion::version(1, 5, 9).minimumVersionString(), "1.5.9+");
    EXPECT_EQ(LuSVNVersion::version(1, 6).minimumVersionString(), "1.6");
    EXPECT_EQ(LuSVNVersion::version(1, 7).minimumVersionString(), "1.7");
}

TEST(LuSVNVersion, MajorMinorReadsBackAsFloat)
{
    EXPECT_FLOAT_EQ(LuSVNVersion::version(1, 6, 3).majorMinor(), 1.6f);
    EXPECT_FLOAT_EQ(LuSVNVersion::version(1, 10).majorMinor(), 1.1f);
    EXPECT_EQ(LuSVNVersion::version(1, 6, 3, "x").versionWithMajorAndMinorComponents(), LuSVNVersion::version(1, 6));
}

}  // namespace
