// The node model: construction, order, copies, archives, the status
// accessors and the operations over vectors of nodes.
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNFile.h>
#include <tessera/LuSVNKeyedArchiver.h>

#include <gtest/gtest.h>

#include <typeinfo>

#include "LuSVNSubversion.h"
#include "NonKeyedCoder.h"
#include "TesseraTestSupport.h"

namespace {

using Date = LuSVNNode::Date;
using tessera_test::expectParameterAssertion;

LuSVNPath::Path path(const std::string& text)
{
    return LuSVNPath::pathWithString(text);
}

std::shared_ptr<LuSVNStatus> statusWith(LuSVNStatusKind text, std::int32_t lastChanged = LuSVNInvalidRevision)
{
    auto status = LuSVNStatus::status();
    status->setTextStatus(text);
    status->setLastChangedRevision(lastChanged);
    return status;
}

std::shared_ptr<const LuSVNLock> lockWithToken(const std::string& token)
{
    return LuSVNLock::lockWithPath(path("/trunk/a.c"), token, "alice", std::nullopt, Date(std::chrono::seconds(5)),
                                   std::nullopt);
}

TEST(LuSVNNode, MadeFromPathsAndDirectoryEntries)
{
    const auto url = LuSVNDirectory::nodeWithPath(path("svn://host/repo/a%20b"));
    EXPECT_TRUE(url->isDirectory());
    EXPECT_EQ(url->name(), "a b");
    EXPECT_EQ(url->location()->string(), "svn://host/repo");
    ASSERT_NE(url->URL(), nullptr);
    EXPECT_EQ(url->URL()->string(), "svn://host/repo/a%20b");
    const auto local = LuSVNFile::nodeWithPath(path("/wc/a.c"));
    EXPECT_FALSE(local->isDirectory());
    EXPECT_EQ(local->URL(), nullptr);
    EXPECT_EQ(local->location()->string(), "/wc");
    EXPECT_FALSE(LuSVNNode::nodeWithPath(path("/wc"))->isDirectory());
    expectParameterAssertion([] { LuSVNNode::nodeWithPath(nullptr); }, "path != nil");

    svn_dirent_t dirent{};
    dirent.kind = svn_node_file;
    dirent.size = 42;
    dirent.has_props = 1;
    dirent.created_rev = 7;
    dirent.time = 1'500'000'000'123'456;
    dirent.last_author = "alice";
    svn_lock_t lock{};
    lock.path = "/repo/a.c";
    lock.token = "opaquelocktoken:2";
    lock.owner = "bob";
    lock.creation_date = 1'000'000;
    const auto listed = LuSVNFile::nodeWithName("a.c", path("svn://host/repo/a.c"),
                                                LuSVNURL::URLWithString("svn://host/repo/a.c"), &dirent, &lock);
    EXPECT_EQ(listed->size(), 42);
    EXPECT_EQ(listed->revision(), 7);
    EXPECT_EQ(listed->date(), Date(std::chrono::microseconds(1'500'000'000'123'456)));
    EXPECT_EQ(listed->author(), "alice");
    EXPECT_TRUE(listed->hasProperties());
    EXPECT_EQ(listed->lock()->token(), "opaquelocktoken:2");
    EXPECT_EQ(listed->location()->string(), "svn://host/repo");
    EXPECT_EQ(listed->status(), nullptr);
    dirent.time = 0;
    dirent.last_author = nullptr;
    const auto bare = LuSVNDirectory::nodeWithName("d", path("svn://host/repo/d"), nullptr, &dirent, nullptr);
    EXPECT_FALSE(bare->date().has_value());
    EXPECT_FALSE(bare->author().has_value());
    EXPECT_EQ(bare->lock(), nullptr);
}

TEST(LuSVNNode, OrderDecidedStepByStep)
{
    const auto make = [](bool directory, const std::string& text, std::int32_t revision, std::optional<Date> date,
                         std::int64_t size, std::shared_ptr<LuSVNStatus> status) {
        std::shared_ptr<LuSVNNode> node;
        if (directory)
            node = LuSVNDirectory::nodeWithPath(path(text));
        else
            node = LuSVNFile::nodeWithPath(path(text));
        node->setRevision(revision);
        node->setDate(date);
        node->setSize(size);
        node->setStatus(std::move(status));
        return node;
    };
    const Date early(std::chrono::seconds(1)), late(std::chrono::seconds(2));
    struct Case {
        std::shared_ptr<LuSVNNode> a, b;
        int expected;
        const char* step;
    };
    const Case cases[] = {
        {make(true, "/b", 1, early, 1, nullptr), make(false, "/a", 9, late, 9, nullptr), -1, "directory first"},
        {make(false, "/a", 1, early, 1, nullptr), make(true, "/a", 1, early, 1, nullptr), 1, "directory first"},
        {make(false, "/a", 9, late, 9, nullptr), make(false, "/b", 1, early, 1, nullptr), -1, "path"},
        {make(false, "/a", 3, late, 9, nullptr), make(false, "/a", 5, early, 1, nullptr), -1, "revision"},
        {make(false, "/a", 3, late, 1, nullptr), make(false, "/a", 3, early, 9, nullptr), 1, "date"},
        {make(false, "/a", 3, std::nullopt, 9, nullptr), make(false, "/a", 3, early, 1, nullptr), -1, "no date"},
        {make(false, "/a", 3, early, 10, nullptr), make(false, "/a", 3, early, 20, nullptr), -1, "size"},
        {make(false, "/a", 3, early, -1, nullptr), make(false, "/a", 3, early, 5, nullptr), 1, "size unsigned"},
        {make(false, "/a", 3, early, 1, nullptr), make(false, "/a", 3, early, 1, statusWith(LuSVNStatusNormal)), -1,
         "status only on the other"},
        {make(false, "/a", 3, early, 1, statusWith(LuSVNStatusNormal)), make(false, "/a", 3, early, 1, nullptr), 1,
         "status only on self"},
        {make(false, "/a", 3, early, 1, statusWith(LuSVNStatusModified, 4)),
         make(false, "/a", 3, early, 1, statusWith(LuSVNStatusNormal, 5)), -1, "last-changed revision"},
        {make(false, "/a", 3, early, 1, statusWith(LuSVNStatusModified, 5)),
         make(false, "/a", 3, early, 1, statusWith(LuSVNStatusNormal, 5)), 1, "text status"},
        {make(false, "/a", 3, early, 1, statusWith(LuSVNStatusNormal, 5)),
         make(false, "/a", 3, early, 1, statusWith(LuSVNStatusNormal, 5)), 0, "equal"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.a->compare(c.b), c.expected) << c.step;
    EXPECT_EQ(cases[0].a->compare(nullptr), 1);
}

std::shared_ptr<LuSVNDirectory> fullDirectory()
{
    auto node = LuSVNDirectory::nodeWithPath(path("svn://host/repo/dir"));
    node->setSize(12);
    node->setRevision(34);
    node->setDate(Date(std::chrono::microseconds(56)));
    node->setAuthor("alice");
    node->setLock(lockWithToken("opaquelocktoken:9"));
    node->setHasProperties(true);
    node->setStatus(statusWith(LuSVNStatusAdded, 33));
    node->setAggregateChildStatus(LuSVNStatusModified | LuSVNStatusNormal);
    node->setAggregateRepositoryChildStatus(LuSVNStatusAdded);
    return node;
}

// Factories and copies make nodes of exactly the class asked for, so that
// code dispatching on the dynamic type sees a file as a file.
TEST(LuSVNNode, FactoriesAndCopiesMakeExactlyTheirClass)
{
    const std::shared_ptr<LuSVNNode> nodes[] = {LuSVNNode::node(), LuSVNFile::file(), LuSVNDirectory::directory()};
    const std::type_info* classes[] = {&typeid(LuSVNNode), &typeid(LuSVNFile), &typeid(LuSVNDirectory)};
    for (std::size_t i = 0; i < std::size(nodes); ++i) {
        EXPECT_EQ(typeid(*nodes[i]), *classes[i]) << classes[i]->name();
        EXPECT_EQ(typeid(*nodes[i]->copy()), *classes[i]) << classes[i]->name();
    }
}

TEST(LuSVNNode, CopiesShareAllButTheStatus)
{
    const auto original = fullDirectory();
    const auto copy = original->copy();
    ASSERT_NE(std::dynamic_pointer_cast<LuSVNDirectory>(copy), nullptr);
    const auto& directory = static_cast<const LuSVNDirectory&>(*copy);
    EXPECT_EQ(directory.aggregateChildStatus(), LuSVNStatusModified | LuSVNStatusNormal);
    EXPECT_EQ(directory.aggregateRepositoryChildStatus(), LuSVNStatusAdded);
    EXPECT_EQ(copy->path(), original->path());
    EXPECT_EQ(copy->location(), original->location());
    EXPECT_EQ(copy->URL(), original->URL());
    EXPECT_EQ(copy->lock(), original->lock());
    EXPECT_EQ(copy->name(), original->name());
    EXPECT_EQ(copy->revision(), 34);
    EXPECT_EQ(copy->size(), 12);
    EXPECT_TRUE(copy->hasProperties());
    ASSERT_NE(copy->status(), original->status());
    copy->status()->setTextStatus(LuSVNStatusExternal);
    EXPECT_EQ(original->status()->textStatus(), LuSVNStatusAdded);
    const auto fileCopy = LuSVNFile::file()->copy();
    const auto nodeCopy = LuSVNNode::node()->copy();
    const LuSVNNode& file = *fileCopy;
    const LuSVNNode& node = *nodeCopy;
    EXPECT_EQ(typeid(file), typeid(LuSVNFile));
    EXPECT_EQ(typeid(node), typeid(LuSVNNode));
}

TEST(LuSVNNode, ArchivesKeepClassAndFields)
{
    const auto original = fullDirectory();
    const std::string archive = LuSVNKeyedArchiver::archivedDataWithRootObject(*original);
    EXPECT_NE(archive.find("\"aggregateReposChildStatus\":"), std::string::npos);
    const auto restored = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNDirectory>(archive);
    EXPECT_EQ(restored->name(), "dir");
    EXPECT_EQ(restored->path()->string(), "svn://host/repo/dir");
    EXPECT_EQ(restored->location()->string(), "svn://host/repo");
    EXPECT_EQ(restored->URL()->string(), "svn://host/repo/dir");
    EXPECT_EQ(restored->size(), 12);
    EXPECT_EQ(restored->revision(), 34);
    EXPECT_EQ(restored->date(), Date(std::chrono::microseconds(56)));
    EXPECT_EQ(restored->author(), "alice");
    EXPECT_EQ(restored->lock()->token(), "opaquelocktoken:9");
    EXPECT_TRUE(restored->hasProperties());
    EXPECT_EQ(restored->status()->textStatus(), LuSVNStatusAdded);
    EXPECT_EQ(restored->status()->lastChangedRevision(), 33);
    EXPECT_EQ(restored->aggregateChildStatus(), LuSVNStatusModified | LuSVNStatusNormal);
    EXPECT_EQ(restored->aggregateRepositoryChildStatus(), LuSVNStatusAdded);

    for (const auto& node : {std::shared_ptr<LuSVNNode>(LuSVNFile::nodeWithPath(path("/wc/a.c"))),
                             LuSVNNode::nodeWithPath(path("/wc/b.c"))}) {
        const auto back = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNNode>(
            LuSVNKeyedArchiver::archivedDataWithRootObject(*node));
        const LuSVNNode& restored = *back;
        const LuSVNNode& archived = *node;
        EXPECT_EQ(typeid(restored), typeid(archived));
        EXPECT_EQ(back->path()->string(), node->path()->string());
        EXPECT_EQ(back->revision(), LuSVNInvalidRevision);
        EXPECT_FALSE(back->date().has_value());
        EXPECT_EQ(back->status(), nullptr);
    }

    tessera_status_test::NonKeyedCoder coder;
    tessera_status_test::expectInvalidArgument([&] { original->encodeWithCoder(coder); }, "Keyed archiver required");
    tessera_status_test::expectInvalidArgument([&] { LuSVNDirectory::initWithCoder(coder); },
                                               "Keyed unarchiver required");
    tessera_status_test::expectInvalidArgument([&] { LuSVNNode::initWithCoder(coder); }, "Keyed unarchiver required");
}

TEST(LuSVNNode, LockStatus)
{
    struct Case {
        const char* repositoryToken;
        const char* nodeToken;
        LuSVNStatusKind repositoryText;
        LuSVNLockStatus expected;
    };
    const Case cases[] = {
        {"t1", nullptr, LuSVNStatusNone, LuSVNLockStatusLockedElsewhere},
        {"t1", "t1", LuSVNStatusNone, LuSVNLockStatusLockedHere},
        {"t1", "t2", LuSVNStatusNormal, LuSVNLockStatusStolen},
        {nullptr, "t1", LuSVNStatusNormal, LuSVNLockStatusBroken},
        {nullptr, "t1", LuSVNStatusNone, LuSVNLockStatusLockedLocally},
        {nullptr, nullptr, LuSVNStatusNormal, LuSVNLockStatusNotLocked},
        {nullptr, nullptr, LuSVNStatusNone, LuSVNLockStatusUnknown},
    };
    for (const Case& c : cases) {
        auto node = LuSVNFile::nodeWithPath(path("/wc/a.c"));
        auto status = LuSVNStatus::status();
        status->setRepositoryTextStatus(c.repositoryText);
        if (c.repositoryToken)
            status->setRepositoryLock(lockWithToken(c.repositoryToken));
        if (c.nodeToken)
            node->setLock(lockWithToken(c.nodeToken));
        node->setStatus(status);
        EXPECT_EQ(node->lockStatus(), c.expected) << (&c - cases);
    }
}

TEST(LuSVNNode, CanBeAddedAndNewerInRepository)
{
    tessera_test::TemporaryDirectory directory;
    tessera_test::writeFile(directory / "present", "x");
    const auto make = [&](bool isDirectory, const std::string& name, LuSVNStatusKind text, LuSVNSchedule schedule) {
        std::shared_ptr<LuSVNNode> node;
        if (isDirectory)
            node = LuSVNDirectory::nodeWithPath(path(directory / name));
        else
            node = LuSVNFile::nodeWithPath(path(directory / name));
        node->setStatus(statusWith(text));
        node->status()->setSchedule(schedule);
        return node;
    };
    EXPECT_TRUE(make(false, "x", LuSVNStatusIgnored, LuSVNScheduleNormal)->canBeAdded());
    EXPECT_TRUE(make(true, "x", LuSVNStatusUnversioned, LuSVNScheduleNormal)->canBeAdded());
    EXPECT_FALSE(make(false, "present", LuSVNStatusNormal, LuSVNScheduleNormal)->canBeAdded());
    EXPECT_TRUE(make(false, "present", LuSVNStatusDeleted, LuSVNScheduleDelete)->canBeAdded());
    EXPECT_FALSE(make(false, "gone", LuSVNStatusDeleted, LuSVNScheduleDelete)->canBeAdded());
    EXPECT_FALSE(make(true, "", LuSVNStatusDeleted, LuSVNScheduleDelete)->canBeAdded());
    EXPECT_FALSE(LuSVNFile::nodeWithPath(path(directory / "present"))->canBeAdded());

    for (const auto& [text, property, newer] :
         {std::tuple{LuSVNStatusNone, LuSVNStatusNormal, false}, std::tuple{LuSVNStatusModified, LuSVNStatusNone, true},
          std::tuple{LuSVNStatusNormal, LuSVNStatusDeleted, true}}) {
        auto node = LuSVNFile::nodeWithPath(path("/wc/a.c"));
        node->setStatus(LuSVNStatus::status());
        node->status()->setRepositoryTextStatus(text);
        node->status()->setRepositoryPropertyStatus(property);
        EXPECT_EQ(node->hasNewerRevisionInRepository(), newer) << text << "/" << property;
    }
}

TEST(LuSVNNode, VectorsOfNodes)
{
    const auto node = [](const std::string& text, std::int32_t revision, LuSVNStatusKind textStatus,
                         LuSVNStatusKind propertyStatus, LuSVNSchedule schedule) {
        std::shared_ptr<LuSVNNode> result = LuSVNFile::nodeWithPath(path(text));
        result->setRevision(revision);
        result->setStatus(statusWith(textStatus));
        result->status()->setPropertyStatus(propertyStatus);
        result->status()->setRepositoryTextStatus(propertyStatus);
        result->status()->setSchedule(schedule);
        return result;
    };
    const LuSVNNode::Nodes nodes = {
        node("/wc", 5, LuSVNStatusNormal, LuSVNStatusNone, LuSVNScheduleNormal),
        node("/wc/a", 3, LuSVNStatusModified, LuSVNStatusModified, LuSVNScheduleNormal),
        node("/wc/a/b", 9, LuSVNStatusAdded, LuSVNStatusNone, LuSVNScheduleAdd),
        node("/wc/ab", 4, LuSVNStatusAdded, LuSVNStatusNormal, LuSVNScheduleReplace),
        node("/other", 7, LuSVNStatusNormal, LuSVNStatusNone, LuSVNScheduleNormal),
    };
    nodes[3]->status()->setOutOfDateLastCommitRevision(12);
    const auto paths = [](const LuSVNNode::Nodes& selected) {
        return LuSVNPath::arrayWithStringsOfPaths(LuSVNNode::arrayWithPathsOfNodes(selected));
    };
    using Strings = std::vector<std::string>;
    EXPECT_EQ(paths(nodes), (Strings{"/wc", "/wc/a", "/wc/a/b", "/wc/ab", "/other"}));
    EXPECT_EQ(paths(LuSVNNode::arrayWithNodesWithStatus(nodes, LuSVNStatusAdded)), (Strings{"/wc/a/b", "/wc/ab"}));
    EXPECT_EQ(paths(LuSVNNode::arrayWithNodesWithStatusOtherThan(nodes, LuSVNStatusNormal)),
              (Strings{"/wc/a", "/wc/a/b", "/wc/ab"}));
    EXPECT_EQ(paths(LuSVNNode::arrayWithNodesWithRepositoryStatus(nodes, LuSVNStatusModified)), (Strings{"/wc/a"}));
    EXPECT_EQ(paths(LuSVNNode::arrayWithNodesWithRepositoryStatusOtherThan(nodes, LuSVNStatusNone)),
              (Strings{"/wc/a", "/wc/ab"}));
    EXPECT_EQ(paths(LuSVNNode::arrayWithNodesWithStatus(nodes, LuSVNStatusAdded, LuSVNScheduleReplace)),
              (Strings{"/wc/ab"}));
    EXPECT_EQ(paths(LuSVNNode::arrayWithNodesWithTextStatii(nodes, {LuSVNStatusAdded}, {LuSVNStatusModified})),
              (Strings{"/wc/a", "/wc/a/b", "/wc/ab"}));
    EXPECT_EQ(paths(LuSVNNode::arrayWithOutOfDateNodes(nodes)), (Strings{"/wc/ab"}));
    EXPECT_EQ(paths(LuSVNNode::arrayWithDescendentsOfPath(nodes, path("/wc/a"))), (Strings{"/wc/a/b"}));
    EXPECT_EQ(paths(LuSVNNode::arrayWithDescendentsOfPaths(nodes, {path("/wc/a"), path("/wc")})),
              (Strings{"/wc/a/b", "/wc/a", "/wc/a/b", "/wc/ab"}));
    expectParameterAssertion([&] { LuSVNNode::arrayWithDescendentsOfPath(nodes, nullptr); }, "path != nil");

    EXPECT_EQ(LuSVNNode::nodeWithPath(nodes, path("/wc/ab")), nodes[3]);
    EXPECT_EQ(LuSVNNode::nodeWithPath(nodes, path("/wc/x")), nullptr);
    EXPECT_EQ(LuSVNNode::nodeWithAncestorOfPath(nodes, path("/wc/a/b")), nodes[1]);
    EXPECT_EQ(LuSVNNode::nodeWithAncestorOfPath(nodes, path("/wc/a/b/c/d")), nodes[2]);
    EXPECT_EQ(LuSVNNode::nodeWithAncestorOfPath(nodes, path("/wc")), nullptr);
    EXPECT_EQ(LuSVNNode::nodeWithAncestorOfPath(nodes, path("/")), nullptr);

    auto withDuplicate = nodes;
    withDuplicate.push_back(LuSVNFile::nodeWithPath(path("/wc/a")));
    const auto byPath = LuSVNNode::dictionaryOfNodesKeyedByPath(withDuplicate);
    EXPECT_EQ(byPath.size(), 5u);
    EXPECT_EQ(byPath.at(path("/wc/a")), withDuplicate.back());

    EXPECT_EQ(LuSVNNode::earliestRevision(nodes), 3);
    EXPECT_EQ(LuSVNNode::latestRevision(nodes), 9);
    EXPECT_EQ(LuSVNNode::earliestRevision({}), LuSVNInvalidRevision);
    EXPECT_EQ(LuSVNNode::latestRevision({}), LuSVNInvalidRevision);
    auto extreme = LuSVNFile::nodeWithPath(path("/x"));
    extreme->setRevision(INT32_MAX);
    EXPECT_EQ(LuSVNNode::earliestRevision({extreme}), LuSVNInvalidRevision);
    EXPECT_EQ(LuSVNNode::latestRevision({extreme}), INT32_MAX);
    extreme->setRevision(INT32_MIN);
    EXPECT_EQ(LuSVNNode::latestRevision({extreme}), LuSVNInvalidRevision);

    // Without status a node reads as a fresh status: text none, not out of date.
    const LuSVNNode::Nodes bare = {LuSVNFile::nodeWithPath(path("/bare"))};
    EXPECT_EQ(LuSVNNode::arrayWithNodesWithStatus(bare, LuSVNStatusNone).size(), 1u);
    EXPECT_TRUE(LuSVNNode::arrayWithOutOfDateNodes(bare).empty());
}

}  // namespace
