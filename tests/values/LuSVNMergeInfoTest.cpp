// Merge info: parsing "svn:mergeinfo" values through the real backend, and
// the queries over paths and ranges.
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNMergeInfo.h>
#include <tessera/LuSVNMergeRevisionRange.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <gtest/gtest.h>

#include <typeinfo>

#include "TesseraTestSupport.h"

namespace {

using Ranges = LuSVNMergeInfo::Ranges;

std::shared_ptr<LuSVNRevisionRange> range(std::int32_t first, std::int32_t last)
{
    return LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(first), LuSVNRevision::revisionWithNumber(last));
}

// "{ 3 - 5 }" for an inheritable range, "{ 3 - 5 }*" for one that is not.
std::string describe(const Ranges& ranges)
{
    std::string text;
    for (const auto& r : ranges) {
        const auto merge = std::dynamic_pointer_cast<LuSVNMergeRevisionRange>(r);
        text += (text.empty() ? "" : " ") + r->description() + (merge && !merge->isInheritable() ? "*" : "");
    }
    return text;
}

TEST(LuSVNMergeInfo, ParsesMergeInfoTexts)
{
    struct Case {
        const char* text;
        std::vector<std::pair<std::string, std::string>> expected;  // path, ranges
    };
    const Case cases[] = {
        {"", {}},
        {"/trunk:3-5", {{"/trunk", "{ 3 - 5 }"}}},
        {"/trunk:1-5,7,9-10*", {{"/trunk", "{ 1 - 5 } { 7 - 7 } { 9 - 10 }*"}}},
        {"/trunk:9,3-5", {{"/trunk", "{ 3 - 5 } { 9 - 9 }"}}},
        {"/trunk:3-5,4-8", {{"/trunk", "{ 3 - 8 }"}}},
        {"/trunk:2147483647", {{"/trunk", "{ 2147483647 - 2147483647 }"}}},
        {"trunk:5", {{"/trunk", "{ 5 - 5 }"}}},
        {":5", {{"/", "{ 5 - 5 }"}}},
        {"/a:b:5", {{"/a:b", "{ 5 - 5 }"}}},
        {"/branches/b:12*\n/trunk:3-7\n", {{"/branches/b", "{ 12 - 12 }*"}, {"/trunk", "{ 3 - 7 }"}}},
        {"/a b/ü:1", {{"/a b/ü", "{ 1 - 1 }"}}},
    };
    for (const Case& c : cases) {
        const auto info = LuSVNMergeInfo::mergeInfoWithString(c.text);
        std::vector<std::string> paths;
        for (const auto& [path, ranges] : c.expected) {
            paths.push_back(path);
            const auto stored = info->revisionRangesForPath(path);
            ASSERT_TRUE(stored) << c.text << ": no " << path;
            EXPECT_EQ(describe(*stored), ranges) << c.text;
            for (const auto& r : *stored)
                EXPECT_EQ(typeid(*r), typeid(LuSVNMergeRevisionRange));
        }
        EXPECT_EQ(info->paths(), paths) << c.text;
    }
}

TEST(LuSVNMergeInfo, ParsesWhatSubversionRecordsForAMerge)
{
    tessera_test::TemporaryDirectory directory;
    const std::string repository = tessera_test::makeRepository(directory / "repo");
    const auto svn = [](std::vector<std::string> arguments) {
        const auto result = tessera_test::svn(std::move(arguments));
        EXPECT_EQ(result.status, 0) << result.output;
        return result.output;
    };
    svn({"mkdir", "-q", "-m", "layout", repository + "/trunk", repository + "/branches"});
    tessera_test::checkout(repository + "/trunk", directory / "trunk");
    tessera_test::writeFile(directory / "trunk/a", "a\n");
    svn({"add", "-q", directory / "trunk/a"});
    svn({"commit", "-q", "-m", "a", directory / "trunk"});
    svn({"copy", "-q", "-m", "branch", repository + "/trunk", repository + "/branches/b"});
    for (const char* line : {"b\n", "c\n"}) {
        tessera_test::writeFile(directory / "trunk/a", line);
        svn({"commit", "-q", "-m", line, directory / "trunk"});
    }
    tessera_test::checkout(repository + "/branches/b", directory / "b");
    svn({"merge", "-q", "^/trunk", directory / "b"});
    const std::string recorded = svn({"propget", "svn:mergeinfo", directory / "b"});
    ASSERT_EQ(recorded, "/trunk:3-5\n");

    const auto info = LuSVNMergeInfo::mergeInfoWithString(recorded);
    EXPECT_EQ(info->paths(), std::vector<std::string>{"/trunk"});
    EXPECT_EQ(describe(info->revisionRanges()), "{ 3 - 5 }");
    EXPECT_TRUE(info->revisionRanges().front()->containsNumber(5));
    EXPECT_FALSE(info->revisionRanges().front()->containsNumber(2)) << "the branch point is not merged";
}

TEST(LuSVNMergeInfo, RefusesTextsSubversionRefuses)
{
    for (const char* text : {"/trunk", "/trunk:", "/trunk:7-5", "/trunk:x", "/trunk:0", "/trunk:5-5", "/trunk:-5",
                             "/trunk:1-3,2-4*", "/trunk:2147483648", "/trunk:99999999999999999999"}) {
        try {
            LuSVNMergeInfo::mergeInfoWithString(text);
            ADD_FAILURE() << text << " accepted";
        } catch (const LuSVNException& e) {
            EXPECT_EQ(e.status(), 200020) << text << ": " << e.reason();
        }
    }
    // Subversion would read only up to the NUL.
    EXPECT_THROW(LuSVNMergeInfo::mergeInfoWithString(std::string("/trunk:3\0/x:4", 13)),
                 LuSVNInvalidArgumentException);
}

TEST(LuSVNMergeInfo, StoresReplacesAndRemovesRangesPerPath)
{
    const auto info = LuSVNMergeInfo::mergeInfo();
    info->setRevisionRanges(std::nullopt, "/absent");
    EXPECT_TRUE(info->paths().empty()) << "removing an absent path changes nothing";
    EXPECT_EQ(info->revisionRangesForPath("/absent"), std::nullopt);

    info->setRevisionRanges(Ranges{range(1, 2), range(5, 6)}, "/b");
    info->setRevisionRanges(Ranges{range(9, 9)}, "/a");
    info->setRevisionRanges(Ranges{}, "/c");
    EXPECT_EQ(info->paths(), (std::vector<std::string>{"/a", "/b", "/c"}));
    EXPECT_EQ(describe(info->revisionRanges()), "{ 9 - 9 } { 1 - 2 } { 5 - 6 }");
    EXPECT_EQ(info->revisionRangesForPath("/c"), Ranges{});

    info->setRevisionRanges(Ranges{range(3, 4)}, "/b");
    EXPECT_EQ(describe(*info->revisionRangesForPath("/b")), "{ 3 - 4 }");
    info->setRevisionRanges(std::nullopt, "/b");
    EXPECT_EQ(info->paths(), (std::vector<std::string>{"/a", "/c"}));

    tessera_test::expectParameterAssertion([&] { info->setRevisionRanges(Ranges{range(1, 1), nullptr}, "/d"); },
                                           "range != nil");
    EXPECT_EQ(info->revisionRangesForPath("/d"), std::nullopt);
}

TEST(LuSVNMergeInfo, FindsPathsOfRanges)
{
    const auto info = LuSVNMergeInfo::mergeInfo();
    EXPECT_EQ(info->mostRecentPath(), std::nullopt);
    info->setRevisionRanges(Ranges{}, "/empty");
    EXPECT_EQ(info->mostRecentPath(), std::nullopt);

    info->setRevisionRanges(Ranges{range(3, 7), range(20, 30)}, "/z");
    info->setRevisionRanges(Ranges{range(3, 7), range(8, 40)}, "/m");
    EXPECT_EQ(info->pathForRevisionRange(range(3, 7)), "/m") << "the first path in key order";
    EXPECT_EQ(info->pathForRevisionRange(range(20, 30)), "/z");
    EXPECT_EQ(info->pathForRevisionRange(LuSVNMergeRevisionRange::from(LuSVNRevision::revisionWithNumber(20),
                                                                       LuSVNRevision::revisionWithNumber(30))),
              "/z")
        << "range equality ignores the class";
    EXPECT_EQ(info->pathForRevisionRange(range(3, 8)), std::nullopt);
    EXPECT_EQ(info->mostRecentPath(), "/z") << "{ 20 - 30 } is the greatest";

    info->setRevisionRanges(Ranges{range(20, 30)}, "/a");
    EXPECT_EQ(info->mostRecentPath(), "/a") << "found again by pathForRevisionRange";

    info->setRevisionRanges(Ranges{LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(20))}, "/open");
    EXPECT_EQ(info->mostRecentPath(), "/open") << "no upper bound sorts last";

    info->setRevisionRanges(Ranges{LuSVNRevisionRange::all()}, "/all");
    try {
        info->mostRecentPath();
        ADD_FAILURE() << "ranges of different types sorted";
    } catch (const LuSVNInvalidArgumentException& e) {
        EXPECT_STREQ(e.what(), "Ranges have incompatible types");
    }
    tessera_test::expectParameterAssertion([&] { info->pathForRevisionRange(nullptr); }, "range != nil");
}

TEST(LuSVNMergeInfo, CopiesShareRangesButNotEntries)
{
    const auto info = LuSVNMergeInfo::mergeInfoWithString("/trunk:3-5");
    const auto copy = info->copy();
    copy->setRevisionRanges(Ranges{range(1, 1)}, "/other");
    EXPECT_EQ(info->paths(), std::vector<std::string>{"/trunk"});
    EXPECT_EQ(copy->revisionRangesForPath("/trunk")->front(), info->revisionRangesForPath("/trunk")->front());

    const std::string description = copy->description();
    EXPECT_EQ(description.rfind("{ <LuSVNMergeInfo: 0x", 0), 0u) << description;
    EXPECT_NE(description.find(">, { /other = ({ 1 - 1 }); /trunk = ({ 3 - 5 }); } }"), std::string::npos)
        << description;
    EXPECT_NE(description, info->description()) << "each its own identity";
}

}  // namespace
