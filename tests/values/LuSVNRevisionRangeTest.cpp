// Revision ranges: bounds, direction, membership, combination, order, and
// Subversion's range record.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNMergeRevisionRange.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRelativeRevision.h>

#include <gtest/gtest.h>

#include <typeinfo>

#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

namespace {

using Revision = std::shared_ptr<const LuSVNRevision>;
using Range = std::shared_ptr<const LuSVNRevisionRange>;
using Date = LuSVNRevision::Date;
using namespace std::chrono;

Revision n(std::int32_t number)
{
    return LuSVNRevision::revisionWithNumber(number);
}

Date day(int d)
{
    return Date(sys_days{year{2010} / 5 / d});
}

Revision on(int d)
{
    return LuSVNRevision::revisionAtDate(day(d));
}

const Revision head = LuSVNRevision::HEAD();
const Revision unspecified = LuSVNRevision::UNSPECIFIED();

Range range(Revision first, Revision last)
{
    return LuSVNRevisionRange::from(std::move(first), std::move(last));
}

TEST(LuSVNRevisionRange, DescribesBoundsAndDirection)
{
    struct Case {
        Range range;
        const char* description;
        bool lower, upper, numbers, dates, forward;
    };
    const Case cases[] = {
        {LuSVNRevisionRange::all(), "{ * - * }", false, false, false, false, true},
        {std::make_shared<LuSVNRevisionRange>(), "{ * - * }", false, false, false, false, true},
        {range(n(5), n(10)), "{ 5 - 10 }", true, true, true, false, true},
        {range(n(10), n(5)), "{ 10 - 5 }", true, true, true, false, false},
        {range(n(7), n(7)), "{ 7 - 7 }", true, true, true, false, true},
        {LuSVNRevisionRange::from(n(5)), "{ 5 - * }", true, false, true, false, true},
        {LuSVNRevisionRange::to(n(5)), "{ * - 5 }", false, true, true, false, true},
        {range(n(5), head), "{ 5 - HEAD }", true, false, true, false, true},
        {range(head, n(10)), "{ HEAD - 10 }", false, true, true, false, false},
        {range(head, unspecified), "{ HEAD - * }", false, false, false, false, false},
        {range(on(4), on(9)), nullptr, true, true, false, true, true},
        {range(on(9), on(4)), nullptr, true, true, false, true, false},
        {range(n(3), on(4)), nullptr, true, true, true, true, true},
        {range(on(4), n(3)), nullptr, true, true, true, true, false},
    };
    for (const Case& c : cases) {
        const std::string label = c.range->description();
        if (c.description) {
            EXPECT_EQ(label, c.description);
        }
        EXPECT_EQ(c.range->hasLowerBound(), c.lower) << label;
        EXPECT_EQ(c.range->hasUpperBound(), c.upper) << label;
        EXPECT_EQ(c.range->isNumberRange(), c.numbers) << label;
        EXPECT_EQ(c.range->isDateRange(), c.dates) << label;
        EXPECT_EQ(c.range->isForwardRange(), c.forward) << label;
        EXPECT_EQ(c.range->isReverseRange(), !c.forward) << label;
    }
    const Range r = range(n(3), on(4));
    EXPECT_EQ(r->firstNumber(), 3);
    EXPECT_EQ(r->lastNumber(), LuSVNInvalidRevision);
    EXPECT_EQ(r->firstDate(), std::nullopt);
    EXPECT_EQ(r->lastDate(), day(4));
}

TEST(LuSVNRevisionRange, ContainsNumbersBetweenItsBoundsInItsDirection)
{
    struct Case {
        Range range;
        std::vector<std::int32_t> inside, outside;
    };
    const Case cases[] = {
        {LuSVNRevisionRange::all(), {0, 1, 1000, 2147483647}, {}},
        {range(n(5), n(10)), {5, 7, 10}, {0, 4, 11}},
        {range(n(10), n(5)), {5, 7, 10}, {4, 11}},
        {range(n(5), head), {5, 1000}, {4}},
        {range(head, n(5)), {5, 1000}, {4, 0}},
        {LuSVNRevisionRange::from(n(5)), {5, 2147483647}, {4}},
        {LuSVNRevisionRange::to(n(5)), {0, 5}, {6}},
        {range(n(5), on(4)), {}, {4, 5, 6}},
        {range(on(4), on(9)), {}, {0, 5}},
    };
    for (const Case& c : cases) {
        for (const std::int32_t number : c.inside)
            EXPECT_TRUE(c.range->containsNumber(number)) << c.range->description() << " " << number;
        for (const std::int32_t number : c.outside)
            EXPECT_FALSE(c.range->containsNumber(number)) << c.range->description() << " " << number;
    }
    tessera_test::expectParameterAssertion([] { LuSVNRevisionRange::all()->containsNumber(-1); }, "number >= 0");
}

TEST(LuSVNRevisionRange, ContainsDatesBetweenItsDatedBounds)
{
    struct Case {
        Range range;
        std::vector<int> inside, outside;
    };
    const Case cases[] = {
        {LuSVNRevisionRange::all(), {1, 31}, {}},
        {range(on(4), on(9)), {4, 6, 9}, {3, 10}},
        {range(on(9), on(4)), {4, 6, 9}, {3, 10}},
        {LuSVNRevisionRange::from(on(4)), {4, 31}, {3}},
        {range(head, on(4)), {4, 31}, {3}},
        {range(on(4), n(100)), {}, {4, 5}},
    };
    for (const Case& c : cases) {
        for (const int d : c.inside)
            EXPECT_TRUE(c.range->containsDate(day(d))) << "May " << d;
        for (const int d : c.outside)
            EXPECT_FALSE(c.range->containsDate(day(d))) << "May " << d;
    }
    const Range dates = range(on(4), on(9));
    EXPECT_FALSE(dates->containsDate(day(9) + nanoseconds(1))) << "bounds are instants";
    EXPECT_TRUE(dates->containsRevision(on(5)));
    EXPECT_FALSE(dates->containsRevision(n(5)));
    EXPECT_TRUE(range(n(1), n(9))->containsRevision(n(5)));
    for (const Revision& symbolic : {head, unspecified, LuSVNRevision::BASE(), LuSVNRevision::MINE()}) {
        try {
            dates->containsRevision(symbolic);
            ADD_FAILURE() << symbolic->description() << " accepted";
        } catch (const LuSVNInvalidArgumentException& e) {
            EXPECT_STREQ(e.what(), "Date or numeric revision required for range match");
        }
    }
    tessera_test::expectParameterAssertion([&] { dates->containsRevision(nullptr); }, "revision != nil");
}

TEST(LuSVNRevisionRange, RefusesBoundsOtherThanNumbersDatesUnspecifiedAndHead)
{
    const std::string boundCondition =
        "[value number] != LuSVNInvalidRevision || [value date] != nil || "
        "[value isEqual:[LuSVNRevision UNSPECIFIED]] == YES || [value isEqual:[LuSVNRevision HEAD]] == YES";
    const auto r = LuSVNRevisionRange::all();
    for (const Revision& bad : {LuSVNRevision::BASE(), LuSVNRevision::WORKING(), LuSVNRevision::COMMITTED(),
                                LuSVNRevision::PREVIOUS(), LuSVNRevision::MINE()}) {
        tessera_test::expectParameterAssertion([&] { r->setFirst(bad); }, boundCondition);
        tessera_test::expectParameterAssertion([&] { r->setLast(bad); }, boundCondition);
        tessera_test::expectParameterAssertion([&] { LuSVNRevisionRange::from(bad); }, boundCondition);
    }
    tessera_test::expectParameterAssertion([&] { r->setFirst(nullptr); }, "value != nil");
    tessera_test::expectParameterAssertion([&] { LuSVNRevisionRange::to(nullptr); }, "value != nil");
    EXPECT_EQ(r->description(), "{ * - * }") << "refused bounds leave the range as it was";
    r->setFirst(std::make_shared<const LuSVNRelativeRevision>(svn_opt_revision_head, "youngest"));
    r->setLast(n(3));
    EXPECT_EQ(r->description(), "{ youngest - 3 }");
}

TEST(LuSVNRevisionRange, CombinesIntoTheSpanOfBoth)
{
    struct Case {
        Range a, b;
        const char* combined;
    };
    const Case cases[] = {
        {range(n(3), n(7)), range(n(5), n(12)), "{ 3 - 12 }"},
        {range(n(5), n(12)), range(n(3), n(7)), "{ 3 - 12 }"},
        {range(n(3), n(7)), LuSVNRevisionRange::from(n(5)), "{ 3 - * }"},
        {LuSVNRevisionRange::to(n(7)), range(n(3), n(9)), "{ * - 9 }"},
        {range(n(3), head), range(n(1), n(2)), "{ 1 - * }"},
        {range(n(7), n(3)), range(n(5), n(4)), "{ 5 - 4 }"},
        {range(on(4), on(6)), range(on(2), on(5)), nullptr},
    };
    for (const Case& c : cases) {
        const auto combined = c.a->combineWith(c.b);
        EXPECT_EQ(typeid(*combined), typeid(LuSVNRevisionRange));
        if (c.combined) {
            EXPECT_EQ(combined->description(), c.combined) << c.a->description() << " + " << c.b->description();
        }
    }
    const auto dates = range(on(4), on(6))->combineWith(range(on(2), on(5)));
    EXPECT_EQ(dates->firstDate(), day(2));
    EXPECT_EQ(dates->lastDate(), day(6));
}

TEST(LuSVNRevisionRange, OrdersByLowerThenUpperBound)
{
    struct Case {
        Range a, b;
        int order;
    };
    const Case cases[] = {
        {range(n(3), n(7)), range(n(5), n(6)), -1},
        {range(n(5), n(6)), range(n(3), n(7)), 1},
        {range(n(3), n(7)), range(n(3), n(9)), -1},
        {range(n(3), n(7)), range(n(3), n(7)), 0},
        {LuSVNRevisionRange::to(n(7)), range(n(1), n(2)), -1},
        {range(n(1), n(2)), LuSVNRevisionRange::to(n(7)), 1},
        {LuSVNRevisionRange::from(n(3)), range(n(3), n(1000)), 1},
        {range(n(3), n(1000)), LuSVNRevisionRange::from(n(3)), -1},
        {range(unspecified, n(3)), range(head, n(3)), -1},
        {range(on(4), on(5)), range(on(4), on(6)), -1},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.a->compare(c.b), c.order) << c.a->description() << " vs " << c.b->description();
}

TEST(LuSVNRevisionRange, RefusesCombiningOrOrderingRangesOfOtherTypes)
{
    const std::pair<Range, Range> mismatched[] = {
        {range(n(3), n(7)), range(on(4), on(6))},
        {range(n(3), n(7)), range(n(3), on(6))},
        {range(n(3), n(7)), LuSVNRevisionRange::all()},
    };
    for (const auto& [a, b] : mismatched) {
        for (const auto& call : std::vector<std::function<void()>>{[&] { a->combineWith(b); }, [&] { a->compare(b); },
                                                                   [&] { b->compare(a); }}) {
            try {
                call();
                ADD_FAILURE() << a->description() << " and " << b->description() << " accepted";
            } catch (const LuSVNInvalidArgumentException& e) {
                EXPECT_STREQ(e.what(), "Ranges have incompatible types");
            }
        }
    }
    tessera_test::expectParameterAssertion([] { LuSVNRevisionRange::all()->combineWith(nullptr); }, "range != nil");
    tessera_test::expectParameterAssertion([] { LuSVNRevisionRange::all()->compare(nullptr); }, "range != nil");
}

TEST(LuSVNRevisionRange, MergeRangesKeepTheirFlagButCompareAsRanges)
{
    const auto merge = LuSVNMergeRevisionRange::from(n(3), n(7));
    EXPECT_FALSE(merge->isInheritable());
    merge->setInheritable(true);
    const auto copy = merge->copy();
    EXPECT_EQ(typeid(*copy), typeid(LuSVNMergeRevisionRange));
    EXPECT_TRUE(std::static_pointer_cast<LuSVNMergeRevisionRange>(copy)->isInheritable());
    copy->setLast(n(9));
    EXPECT_EQ(merge->description(), "{ 3 - 7 }") << "copies are independent";

    const Range plain = range(n(3), n(7));
    EXPECT_TRUE(plain->isEqual(merge));
    EXPECT_TRUE(merge->isEqual(plain));
    EXPECT_EQ(plain->hash(), merge->hash());
    EXPECT_EQ(plain->hash(), n(3)->hash() ^ n(7)->hash());
    EXPECT_FALSE(plain->isEqual(range(n(3), n(8))));
    EXPECT_FALSE(plain->isEqual(nullptr));
    EXPECT_EQ(typeid(*plain->copy()), typeid(LuSVNRevisionRange));

    for (const auto& made : {LuSVNMergeRevisionRange::all(), LuSVNMergeRevisionRange::from(n(1)),
                             LuSVNMergeRevisionRange::to(n(1))})
        EXPECT_EQ(typeid(*made), typeid(LuSVNMergeRevisionRange)) << made->description();
}

TEST(LuSVNRevisionRange, MakesSubversionRangeRecords)
{
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    const svn_opt_revision_range_t* record = range(n(5), head)->SVNRevisionRangeInPool(frame.pool());
    static_assert(sizeof(svn_opt_revision_range_t) == 32);
    EXPECT_EQ(record->start.kind, svn_opt_revision_number);
    EXPECT_EQ(record->start.value.number, 5);
    EXPECT_EQ(record->end.kind, svn_opt_revision_head);
    const svn_opt_revision_range_t* dates = range(on(4), unspecified)->SVNRevisionRangeInPool(frame.pool());
    EXPECT_EQ(dates->start.kind, svn_opt_revision_date);
    EXPECT_EQ(dates->start.value.date, duration_cast<microseconds>(day(4).time_since_epoch()).count());
    EXPECT_EQ(dates->end.kind, svn_opt_revision_unspecified);
    tessera_test::expectParameterAssertion([] { LuSVNRevisionRange::all()->SVNRevisionRangeInPool(nullptr); },
                                           "pool != nil");
}

}  // namespace
