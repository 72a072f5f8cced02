// Revisions, revision specs and paths with revisions: parsing, order, equality, the conversion to
// and from Subversion's revision record, archiving.
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNHeadRevision.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNMineRevision.h>
#include <tessera/LuSVNMutableRevisionSpec.h>
#include <tessera/LuSVNNumberedRevision.h>
#include <tessera/LuSVNPathWithRevision.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRelativeRevision.h>
#include <tessera/LuSVNRevisionAtDate.h>

#include <gtest/gtest.h>

#include <cstring>
#include <typeinfo>

#include "LuSVNSubversion.h"
#include "TesseraTestSupport.h"

namespace {

using Revision = std::shared_ptr<const LuSVNRevision>;
using namespace std::chrono;

constexpr std::uint32_t everything = 127;

Revision number(std::int32_t value)
{
    return LuSVNRevision::revisionWithNumber(value);
}

// An instant with microseconds, as Subversion's times have them.
Revision dated(std::int64_t microsecondsSince1970)
{
    return LuSVNRevision::revisionAtDate(LuSVNRevision::Date(microseconds(microsecondsSince1970)));
}

Revision relative(std::uint32_t kind, const char* name)
{
    return std::make_shared<const LuSVNRelativeRevision>(kind, name);
}

template <class T>
std::shared_ptr<T> archived(const LuSVNCoding& object)
{
    return LuSVNKeyedUnarchiver::unarchiveObjectOfClass<T>(LuSVNKeyedArchiver::archivedDataWithRootObject(object));
}

TEST(LuSVNRevision, ParsesNamesAndNumbersByBehavior)
{
    struct Case {
        std::optional<std::string> text;
        std::uint32_t behavior;
        Revision expected;  // null: no revision
    };
    const Case cases[] = {
        {"HEAD", everything, LuSVNRevision::HEAD()},
        {"head", everything, LuSVNRevision::HEAD()},
        {"Head", LuSVNParseHead, LuSVNRevision::HEAD()},
        {"prev", LuSVNParsePrevious, LuSVNRevision::PREVIOUS()},
        {"Base", LuSVNParseBase, LuSVNRevision::BASE()},
        {"WORK", LuSVNParseWorking, LuSVNRevision::WORKING()},
        {"committed", LuSVNParseCommitted, LuSVNRevision::COMMITTED()},
        {"", 0, LuSVNRevision::UNSPECIFIED()},
        {std::nullopt, 0, LuSVNRevision::UNSPECIFIED()},
        {"12", everything, number(12)},
        {" 12", LuSVNParseNumber, number(12)},
        {"+7", LuSVNParseNumber, number(7)},
        {"-0", LuSVNParseNumber, number(0)},
        {"2147483647", LuSVNParseNumber, number(2147483647)},
        // Each name needs its own flag.
        {"HEAD", everything & ~LuSVNParseHead, nullptr},
        {"BASE", LuSVNParseHead | LuSVNParsePrevious | LuSVNParseWorking, nullptr},
        {"12", everything & ~LuSVNParseNumber, nullptr},
        // Neither names of other instances nor loose numbers.
        {"PREVIOUS", everything, nullptr},
        {"WORKING", everything, nullptr},
        {"UNSPECIFIED", everything, nullptr},
        {".mine", everything, nullptr},
        {"HEAD ", everything, nullptr},
        {"12a", everything, nullptr},
        {"12 ", everything, nullptr},
        {"1 2", everything, nullptr},
        {"+", everything, nullptr},
        {" ", everything, nullptr},
        {"2147483648", everything, nullptr},
        {std::string("12\0", 3), everything, nullptr},
    };
    for (const Case& c : cases) {
        const std::string label = c.text ? "\"" + *c.text + "\"" : "nullopt";
        const Revision parsed = LuSVNRevision::revisionFromString(c.text, c.behavior);
        if (!c.expected) {
            EXPECT_EQ(parsed, nullptr) << label << " gave " << parsed->description();
            continue;
        }
        ASSERT_NE(parsed, nullptr) << label;
        EXPECT_TRUE(parsed->isEqual(c.expected)) << label << " gave " << parsed->description();
        EXPECT_EQ(typeid(*parsed), typeid(*c.expected)) << label;
    }
    EXPECT_EQ(LuSVNRevision::revisionFromString("head"), LuSVNRevision::HEAD()) << "the shared instance itself";
    EXPECT_TRUE(LuSVNRevision::revisionFromString("42")->isEqual(number(42))) << "all flags by default";
}

TEST(LuSVNRevision, NegativeNumberFailsTheNumberAssertion)
{
    tessera_test::expectParameterAssertion([] { LuSVNRevision::revisionFromString("-3"); },
                                           "SVN_IS_VALID_REVNUM(number)");
    tessera_test::expectParameterAssertion([] { LuSVNRevision::revisionWithNumber(-1); },
                                           "SVN_IS_VALID_REVNUM(number)");
    tessera_test::expectParameterAssertion([] { LuSVNNumberedRevision(-7); }, "SVN_IS_VALID_REVNUM(number)");
}

TEST(LuSVNRevision, ParsesDatesOnlyWithTheDateFlag)
{
    const auto date = LuSVNRevision::parseDateString("May 4, 2010");
    if (!date)
        GTEST_SKIP() << "the user's locale does not read English month names";
    const Revision parsed = LuSVNRevision::revisionFromString("May 4, 2010", LuSVNParseDate);
    ASSERT_NE(parsed, nullptr);
    EXPECT_EQ(typeid(*parsed), typeid(LuSVNRevisionAtDate));
    EXPECT_EQ(parsed->date(), date);
    EXPECT_EQ(LuSVNRevision::revisionFromString("May 4, 2010", everything & ~LuSVNParseDate), nullptr);
}

TEST(LuSVNRevision, AnswersNumberDateAndRelativeness)
{
    const auto instant = LuSVNRevision::Date(microseconds(1273000000123456));
    struct Case {
        Revision revision;
        std::int32_t number;
        std::optional<LuSVNRevision::Date> date;
        bool isRelative;
        const char* description;
    };
    const Case cases[] = {
        {number(0), 0, std::nullopt, false, "0"},
        {number(12), 12, std::nullopt, false, "12"},
        {LuSVNRevision::revisionAtDate(instant), LuSVNInvalidRevision, instant, false, nullptr},
        {LuSVNRevision::UNSPECIFIED(), LuSVNInvalidRevision, std::nullopt, false, "UNSPECIFIED"},
        {LuSVNRevision::COMMITTED(), LuSVNInvalidRevision, std::nullopt, true, "COMMITTED"},
        {LuSVNRevision::PREVIOUS(), LuSVNInvalidRevision, std::nullopt, true, "PREV"},
        {LuSVNRevision::BASE(), LuSVNInvalidRevision, std::nullopt, true, "BASE"},
        {LuSVNRevision::WORKING(), LuSVNInvalidRevision, std::nullopt, true, "WORK"},
        {LuSVNRevision::HEAD(), LuSVNInvalidRevision, std::nullopt, true, "HEAD"},
        {LuSVNRevision::MINE(), LuSVNInvalidRevision, std::nullopt, true, ".mine"},
        {relative(svn_opt_revision_number, "odd"), LuSVNInvalidRevision, std::nullopt, false, "odd"},
        {relative(svn_opt_revision_date, "odder"), LuSVNInvalidRevision, std::nullopt, false, "odder"},
        {LuSVNRevision::revision(), LuSVNInvalidRevision, std::nullopt, true, "HEAD"},
    };
    for (const Case& c : cases) {
        const std::string label = c.revision->description();
        EXPECT_EQ(c.revision->number(), c.number) << label;
        EXPECT_EQ(c.revision->date(), c.date) << label;
        EXPECT_EQ(c.revision->isRelative(), c.isRelative) << label;
        if (c.description) {
            EXPECT_EQ(c.revision->description(), c.description);
        }
    }
    EXPECT_EQ(LuSVNRevision::revisionAtDate(instant)->description(), LuSVNDateConversion::ISO8601StringValue(instant));
    EXPECT_EQ(typeid(*LuSVNRevision::revision()), typeid(LuSVNHeadRevision));
    EXPECT_NE(LuSVNRevision::revision(), LuSVNRevision::revision()) << "a new instance each time";
    EXPECT_EQ(LuSVNRevision::PREVIOUS(), LuSVNRevision::PREVIOUS()) << "made once";
}

TEST(LuSVNRevision, EqualityFollowsNumberKindDateOrMine)
{
    struct Case {
        Revision a, b;
        bool equal;
    };
    const Case cases[] = {
        {number(5), number(5), true},
        {number(5), number(6), false},
        {LuSVNRevision::HEAD(), relative(svn_opt_revision_head, "anything"), true},
        {relative(svn_opt_revision_base, "x"), LuSVNRevision::BASE(), true},
        {LuSVNRevision::BASE(), LuSVNRevision::WORKING(), false},
        {LuSVNRevision::UNSPECIFIED(), number(0), false},
        {dated(1000001), dated(1000001), true},
        {dated(1000001), dated(1000002), false},
        {dated(0), LuSVNRevision::UNSPECIFIED(), false},
        {LuSVNRevision::MINE(), std::make_shared<const LuSVNMineRevision>(), true},
        {LuSVNRevision::MINE(), relative(svn_opt_revision_unspecified, ".mine"), false},
    };
    for (const Case& c : cases) {
        const std::string label = c.a->description() + " / " + c.b->description();
        EXPECT_EQ(c.a->isEqual(c.b), c.equal) << label;
        EXPECT_EQ(c.b->isEqual(c.a), c.equal) << label;
        if (c.equal) {
            EXPECT_EQ(c.a->hash(), c.b->hash()) << label;
        }
    }
    for (const Revision& revision : {number(1), dated(1), LuSVNRevision::HEAD(), LuSVNRevision::MINE()}) {
        EXPECT_FALSE(revision->isEqual(nullptr)) << revision->description();
        const Revision copy = revision->copy();
        EXPECT_NE(copy, revision);
        EXPECT_TRUE(copy->isEqual(revision)) << revision->description();
        EXPECT_EQ(typeid(*copy), typeid(*revision));
    }
    EXPECT_EQ(number(17)->hash(), 17u);
    EXPECT_EQ(LuSVNRevision::BASE()->hash(), std::size_t(svn_opt_revision_base));
}

TEST(LuSVNRevision, ComparesNumbersDatesThenKinds)
{
    const Revision head = LuSVNRevision::HEAD();
    const Revision unspecified = LuSVNRevision::UNSPECIFIED();
    struct Case {
        Revision a, b;
        int order;
    };
    const Case cases[] = {
        {number(5), number(7), -1},
        {number(7), number(5), 1},
        {number(5), number(5), 0},
        {number(5), head, -1},
        {head, number(5), 1},
        {unspecified, number(5), 0},
        {number(5), unspecified, -1},
        {LuSVNRevision::MINE(), number(5), 0},
        {dated(10), dated(20), -1},
        {dated(20), dated(10), 1},
        {dated(10), number(5), 1},
        {number(5), dated(10), -1},
        {dated(10), head, -1},
        {head, dated(10), 1},
        {dated(10), unspecified, -1},
        {unspecified, LuSVNRevision::COMMITTED(), -1},
        {LuSVNRevision::COMMITTED(), LuSVNRevision::PREVIOUS(), -1},
        {LuSVNRevision::PREVIOUS(), LuSVNRevision::BASE(), -1},
        {LuSVNRevision::BASE(), LuSVNRevision::WORKING(), -1},
        {LuSVNRevision::WORKING(), head, -1},
        {head, relative(svn_opt_revision_head, "other"), 0},
        {LuSVNRevision::MINE(), unspecified, 0},
        {LuSVNRevision::MINE(), head, -1},
        {number(0), nullptr, 1},
        {head, nullptr, 1},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.a->compare(c.b), c.order) << c.a->description() << " vs " << (c.b ? c.b->description() : "null");
}

TEST(LuSVNRevision, ConvertsToAndFromSubversionRecords)
{
    const Revision revisions[] = {
        number(0),         number(2147483647),     dated(1273000000123456),  dated(-86400000000),
        LuSVNRevision::UNSPECIFIED(), LuSVNRevision::COMMITTED(), LuSVNRevision::PREVIOUS(),
        LuSVNRevision::BASE(), LuSVNRevision::WORKING(), LuSVNRevision::HEAD(),
    };
    for (const Revision& revision : revisions) {
        const svn_opt_revision_t record = revision->SVNRevision();
        const Revision back = LuSVNRevision::revisionFromSVNRevision(&record);
        EXPECT_TRUE(back->isEqual(revision)) << revision->description() << " came back as " << back->description();
        EXPECT_EQ(typeid(*back), typeid(*revision)) << revision->description();
    }
    const svn_opt_revision_t numbered = number(42)->SVNRevision();
    EXPECT_EQ(numbered.kind, svn_opt_revision_number);
    EXPECT_EQ(numbered.value.number, 42);
    const svn_opt_revision_t atDate = dated(1273000000123456)->SVNRevision();
    EXPECT_EQ(atDate.kind, svn_opt_revision_date);
    EXPECT_EQ(atDate.value.date, 1273000000123456);
    EXPECT_EQ(LuSVNRevision::HEAD()->SVNRevision().kind, svn_opt_revision_head);
    EXPECT_EQ(relative(svn_opt_revision_working, "mine")->SVNRevision().kind, svn_opt_revision_working);
    // Nanoseconds below Subversion's microseconds are dropped, rounding down.
    const auto instant = LuSVNRevision::Date(nanoseconds(-1500));
    EXPECT_EQ(LuSVNRevision::revisionAtDate(instant)->SVNRevision().value.date, -2);
}

TEST(LuSVNRevision, RefusesRecordsAndRevisionsWithoutCounterpart)
{
    const auto recordOfKind = [](unsigned kind) {
        svn_opt_revision_t record{};
        std::memcpy(&record.kind, &kind, sizeof kind);
        return record;
    };
    for (const unsigned kind : {8u, 99u, 0xFFFFFFFFu}) {
        const svn_opt_revision_t record = recordOfKind(kind);
        try {
            LuSVNRevision::revisionFromSVNRevision(&record);
            ADD_FAILURE() << "kind " << kind << " accepted";
        } catch (const LuSVNInvalidArgumentException& e) {
            EXPECT_STREQ(e.what(), "Unrecognised revision kind");
        }
    }
    svn_opt_revision_t record = recordOfKind(svn_opt_revision_number);
    record.value.number = 2147483648L;
    EXPECT_THROW(LuSVNRevision::revisionFromSVNRevision(&record), LuSVNInvalidArgumentException);
    record.value.number = -1;
    EXPECT_THROW(LuSVNRevision::revisionFromSVNRevision(&record), LuSVNInvalidArgumentException);
    record = recordOfKind(svn_opt_revision_date);
    record.value.date = 0;
    tessera_test::expectParameterAssertion([&] { LuSVNRevision::revisionFromSVNRevision(&record); }, "date != nil");
    record.value.date = std::numeric_limits<std::int64_t>::max();
    EXPECT_THROW(LuSVNRevision::revisionFromSVNRevision(&record), LuSVNInvalidArgumentException);
    tessera_test::expectParameterAssertion([] { LuSVNRevision::revisionFromSVNRevision(nullptr); },
                                           "svnRevision != NULL");

    try {
        LuSVNRevision::MINE()->SVNRevision();
        ADD_FAILURE() << "MINE converted";
    } catch (const LuSVNException& e) {
        EXPECT_EQ(e.reason(), "Cannot convert from LuSVNMineRevision to svn_opt_revision_t");
    }
    EXPECT_THROW(relative(8, "beyond head")->SVNRevision(), LuSVNInvalidArgumentException);
}

TEST(LuSVNRevision, ArchivesEveryClass)
{
    const Revision revisions[] = {
        number(0), number(123456), LuSVNRevision::revisionAtDate(LuSVNRevision::Date(nanoseconds(1273000000123456789))),
        relative(svn_opt_revision_base, "my base"), LuSVNRevision::HEAD(), LuSVNRevision::MINE(),
    };
    for (const Revision& revision : revisions) {
        const auto back = archived<LuSVNRevision>(*revision);
        EXPECT_TRUE(back->isEqual(revision)) << revision->description();
        EXPECT_EQ(typeid(*back), typeid(*revision)) << revision->description();
        EXPECT_EQ(back->description(), revision->description());
    }
    EXPECT_EQ(LuSVNKeyedArchiver::archivedDataWithRootObject(*number(12)),
              R"({"$class":"LuSVNNumberedRevision","number":12})");
    EXPECT_EQ(LuSVNKeyedArchiver::archivedDataWithRootObject(*LuSVNRevision::PREVIOUS()),
              R"({"$class":"LuSVNRelativeRevision","kind":4,"description":"PREV"})");
    EXPECT_EQ(LuSVNKeyedArchiver::archivedDataWithRootObject(*LuSVNRevision::MINE()),
              R"({"$class":"LuSVNMineRevision"})");
}

TEST(LuSVNRevision, RefusesMalformedArchives)
{
    for (const char* archive : {
             R"({"$class":"LuSVNNumberedRevision","number":-1})",
             R"({"$class":"LuSVNNumberedRevision","number":2147483648})",
             R"({"$class":"LuSVNRelativeRevision","kind":-1,"description":"x"})",
             R"({"$class":"LuSVNRelativeRevision","kind":5})",
             R"({"$class":"LuSVNRevisionAtDate"})",
             R"({"$class":"LuSVNRevisionSpec","operativeRevision":{"$class":"LuSVNHeadRevision"}})",
             R"({"$class":"LuSVNRevisionSpec","operativeRevision":{"$class":"LuSVNHeadRevision"},
                 "pegRevision":{"$class":"LuSVNRevisionSpec"}})",
         })
        EXPECT_THROW(LuSVNKeyedUnarchiver::unarchiveObjectWithData(archive), LuSVNInvalidArgumentException)
            << archive;
}

// A coder that is not keyed, which every archivable class must refuse.
class UnkeyedCoder final : public LuSVNCoder {
public:
    bool allowsKeyedCoding() const override { return false; }
};

TEST(LuSVNRevision, RefusesCodersThatAreNotKeyed)
{
    const std::shared_ptr<const LuSVNCoding> objects[] = {
        number(1), dated(1), relative(svn_opt_revision_base, "BASE"), LuSVNRevision::HEAD(), LuSVNRevision::MINE(),
        LuSVNRevisionSpec::HEAD(), LuSVNMutableRevisionSpec::revisionWithNumber(1),
    };
    for (const auto& object : objects) {
        UnkeyedCoder coder;
        try {
            object->encodeWithCoder(coder);
            ADD_FAILURE() << object->archiveClassName() << " encoded";
        } catch (const LuSVNInvalidArgumentException& e) {
            EXPECT_STREQ(e.what(), "Keyed archiver required") << object->archiveClassName();
        }
        try {
            LuSVNArchivableClassDecoder(object->archiveClassName())(coder);
            ADD_FAILURE() << object->archiveClassName() << " decoded";
        } catch (const LuSVNInvalidArgumentException& e) {
            EXPECT_STREQ(e.what(), "Keyed unarchiver required") << object->archiveClassName();
        }
    }
}

TEST(LuSVNRevisionSpec, KeyRevisionIsThePegWhenTheOperativeIsUnspecified)
{
    struct Case {
        std::shared_ptr<const LuSVNRevisionSpec> spec;
        std::int32_t number;
        bool isRelative;
        const char* description;
    };
    const auto when = LuSVNRevision::Date(seconds(1273000000));
    const Case cases[] = {
        {LuSVNRevisionSpec::pegRevisionWithNumber(12), 12, false, "UNSPECIFIED@12"},
        {LuSVNRevisionSpec::revisionWithNumber(12), 12, false, "12@UNSPECIFIED"},
        {LuSVNRevisionSpec::revisionWithRevision(number(12), LuSVNRevision::HEAD()), 12, false, "12@HEAD"},
        {LuSVNRevisionSpec::revisionWithRevision(LuSVNRevision::BASE(), number(3)), -1, true, "BASE@3"},
        {LuSVNRevisionSpec::pegRevisionWithRevision(LuSVNRevision::MINE()), -1, true, "UNSPECIFIED@.mine"},
        {LuSVNRevisionSpec::HEAD(), -1, true, "HEAD@UNSPECIFIED"},
        {LuSVNRevisionSpec::PREVIOUS(), -1, true, "PREV@UNSPECIFIED"},
        {LuSVNRevisionSpec::UNSPECIFIED(), -1, false, "UNSPECIFIED@UNSPECIFIED"},
        {LuSVNMutableRevisionSpec::MINE(), -1, true, ".mine@UNSPECIFIED"},
        {std::make_shared<const LuSVNRevisionSpec>(LuSVNRevision::WORKING()), -1, true, "WORK@UNSPECIFIED"},
        {LuSVNMutableRevisionSpec::pegRevisionWithNumber(4), 4, false, "UNSPECIFIED@4"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.spec->number(), c.number) << c.description;
        EXPECT_EQ(c.spec->isRelative(), c.isRelative) << c.description;
        EXPECT_EQ(c.spec->description(), c.description);
    }
    EXPECT_EQ(LuSVNRevisionSpec::pegRevisionAtDate(when)->date(), when);
    EXPECT_EQ(LuSVNRevisionSpec::revisionAtDate(when)->date(), when);
    const auto unspecifiedCopy =
        LuSVNRevisionSpec::revisionWithRevision(LuSVNRevision::UNSPECIFIED()->copy(), number(8));
    EXPECT_EQ(unspecifiedCopy->keyRevision(), unspecifiedCopy->pegRevision()) << "UNSPECIFIED by equality";
    const auto headAtFive = LuSVNRevisionSpec::revisionWithRevision(LuSVNRevision::HEAD(), number(5));
    EXPECT_EQ(headAtFive->keyRevision(), headAtFive->operativeRevision());
}

TEST(LuSVNRevisionSpec, CopiesAreImmutableOrMutableAsAsked)
{
    const auto spec = LuSVNMutableRevisionSpec::revisionWithNumber(5);
    EXPECT_EQ(typeid(*spec), typeid(LuSVNMutableRevisionSpec));
    spec->setPegRevision(LuSVNRevision::HEAD());
    EXPECT_EQ(spec->description(), "5@HEAD");

    const auto frozen = spec->copy();
    EXPECT_EQ(typeid(*frozen), typeid(LuSVNRevisionSpec));
    EXPECT_TRUE(frozen->isEqual(spec));
    EXPECT_TRUE(spec->isEqual(frozen));
    EXPECT_EQ(frozen->hash(), spec->hash());
    EXPECT_EQ(spec->hash(), number(5)->hash() ^ LuSVNRevision::HEAD()->hash());

    const auto thawed = frozen->mutableCopy();
    thawed->setOperativeRevision(LuSVNRevision::BASE());
    EXPECT_EQ(thawed->description(), "BASE@HEAD");
    EXPECT_EQ(frozen->description(), "5@HEAD") << "the copy is independent";
    EXPECT_FALSE(thawed->isEqual(frozen));
    EXPECT_FALSE(frozen->isEqual(nullptr));

    EXPECT_EQ(typeid(*LuSVNMutableRevisionSpec::pegRevisionAtDate(LuSVNRevision::Date())),
              typeid(LuSVNMutableRevisionSpec));
}

TEST(LuSVNRevisionSpec, RefusesNullRevisions)
{
    tessera_test::expectParameterAssertion([] { LuSVNRevisionSpec spec(nullptr); }, "theOperativeRevision != nil");
    tessera_test::expectParameterAssertion([] { LuSVNRevisionSpec spec(LuSVNRevision::HEAD(), nullptr); },
                                           "thePegRevision != nil");
    const auto spec = LuSVNMutableRevisionSpec::revisionWithNumber(5);
    tessera_test::expectParameterAssertion([&] { spec->setOperativeRevision(nullptr); },
                                           "theOperativeRevision != nil");
    tessera_test::expectParameterAssertion([&] { spec->setPegRevision(nullptr); }, "thePegRevision != nil");
    EXPECT_EQ(spec->description(), "5@UNSPECIFIED");
}

TEST(LuSVNRevisionSpec, ArchivesKeepingClassAndRevisions)
{
    const auto spec = LuSVNRevisionSpec::revisionWithRevision(number(9), dated(1273000000123456));
    const auto back = archived<LuSVNRevisionSpec>(*spec);
    EXPECT_EQ(typeid(*back), typeid(LuSVNRevisionSpec));
    EXPECT_TRUE(back->isEqual(spec));

    const auto mutableSpec =
        LuSVNMutableRevisionSpec::revisionWithRevision(LuSVNRevision::MINE(), LuSVNRevision::HEAD());
    const auto mutableBack = archived<LuSVNRevisionSpec>(*mutableSpec);
    EXPECT_EQ(typeid(*mutableBack), typeid(LuSVNMutableRevisionSpec));
    EXPECT_TRUE(mutableBack->isEqual(mutableSpec));
    EXPECT_EQ(LuSVNKeyedArchiver::archivedDataWithRootObject(*LuSVNRevisionSpec::revisionWithNumber(3)),
              R"({"$class":"LuSVNRevisionSpec","operativeRevision":{"$class":"LuSVNNumberedRevision","number":3},)"
              R"("pegRevision":{"$class":"LuSVNRelativeRevision","kind":0,"description":"UNSPECIFIED"}})");
}

TEST(LuSVNPathWithRevision, PairsAPathWithAnOptionalRevision)
{
    const auto path = LuSVNPath::pathWithString("/wc/a.c");
    const auto item = LuSVNPathWithRevision::path(path, number(7));
    EXPECT_EQ(item->path(), path);
    EXPECT_TRUE(item->revision()->isEqual(number(7)));
    const std::string description = item->description();
    EXPECT_EQ(description.rfind("{ <LuSVNPathWithRevision: 0x", 0), 0u) << description;
    EXPECT_NE(description.find("> path: /wc/a.c, revision: 7 }"), std::string::npos) << description;
    EXPECT_NE(LuSVNPathWithRevision(path, nullptr).description().find("revision: (null) }"), std::string::npos);
    tessera_test::expectParameterAssertion([] { LuSVNPathWithRevision(nullptr, LuSVNRevision::HEAD()); },
                                           "thePath != nil");
}

}  // namespace
