// Status records of real working copies, converted by LuSVNStatus and the
// node factory, against what the svn client says of the same working copy.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNFile.h>

#include <gtest/gtest.h>

#include <set>

#include "LuSVNSubversion.h"

#include "StatusFixture.h"

namespace {

using tessera_status_test::StatusFixture;
using Nodes = std::map<std::string, std::shared_ptr<LuSVNNode>>;

class StatusConversion : public ::testing::Test {
protected:
    static void SetUpTestSuite() { fixture = new StatusFixture(); }
    static void TearDownTestSuite()
    {
        delete fixture;
        fixture = nullptr;
    }

    static std::shared_ptr<LuSVNContext> contextFor(const std::shared_ptr<LuSVNBundleProxy>& bundle)
    {
        return LuSVNContext::contextWithBundle(bundle, {}, fixture->configDirectory());
    }
    static std::shared_ptr<LuSVNBundleProxy> bundleAt(const char* path)
    {
        return LuSVNBundleLoader::sharedInstance()->loadBundleAtPath(path);
    }
    static Nodes statusThrough(const std::shared_ptr<LuSVNBundleProxy>& bundle)
    {
        return tessera_status_test::libraryStatus(fixture->workingCopy(), contextFor(bundle));
    }
    static const LuSVNStatus& statusOf(const Nodes& nodes, const std::string& name)
    {
        const auto node = nodes.find(name.empty() ? fixture->workingCopy() : fixture->item(name));
        if (node == nodes.end())
            throw std::runtime_error("no status for " + name);
        return *node->second->status();
    }

    static StatusFixture* fixture;
};

StatusFixture* StatusConversion::fixture = nullptr;

// Every item svn reports is reported, with the same kinds and flags.
void expectAgreement(const Nodes& nodes, const std::map<std::string, tessera_status_test::ClientStatus>& expected,
                     const std::set<std::string>& textKindsDiffering)
{
    std::set<std::string> expectedPaths, reportedPaths;
    for (const auto& [path, status] : expected)
        expectedPaths.insert(path);
    for (const auto& [path, node] : nodes)
        reportedPaths.insert(path);
    EXPECT_EQ(reportedPaths, expectedPaths);
    for (const auto& [path, client] : expected) {
        const auto found = nodes.find(path);
        if (found == nodes.end())
            continue;
        const LuSVNStatus& status = *found->second->status();
        if (!textKindsDiffering.contains(path)) {
            EXPECT_EQ(status.textStatus(), tessera_status_test::kindNamed(client.item)) << path;
        }
        EXPECT_EQ(status.propertyStatus(), tessera_status_test::kindNamed(client.props)) << path;
        EXPECT_EQ(status.isCopied(), client.copied) << path;
        EXPECT_EQ(status.isSwitched(), client.switched) << path;
        EXPECT_EQ(found->second->lock() != nullptr, client.locked) << path;
    }
}

TEST_F(StatusConversion, NewestBackendAgreesWithTheSvnClient)
{
    const Nodes nodes = statusThrough(LuSVNBundleLoader::sharedInstance()->newestBundle());
    expectAgreement(nodes, tessera_status_test::clientStatus(fixture->workingCopy()), {});
}

// The older records have no word for an unversioned tree-conflict victim: it
// reads as none where svn (and the newer interface) says missing.
TEST_F(StatusConversion, OlderInterfacesAgreeWithTheSvnClient)
{
    for (const char* bundle : {TESSERA_TEST_BUNDLE_1_6_23, TESSERA_TEST_BUNDLE_1_5_9, TESSERA_TEST_BUNDLE_1_4_6}) {
        SCOPED_TRACE(bundle);
        const Nodes nodes = statusThrough(bundleAt(bundle));
        expectAgreement(nodes, tessera_status_test::clientStatus(fixture->workingCopy()),
                        {fixture->item("treedel.txt")});
        EXPECT_EQ(statusOf(nodes, "treedel.txt").textStatus(), LuSVNStatusNone);
    }
}

TEST_F(StatusConversion, EntryDetailsAndNodes)
{
    const std::string url = fixture->repositoryURL();
    for (const char* path : {TESSERA_SVN_BUNDLE, TESSERA_TEST_BUNDLE_1_6_23, TESSERA_TEST_BUNDLE_1_4_6}) {
        SCOPED_TRACE(path);
        const auto bundle = bundleAt(path);
        const bool newest = bundle == LuSVNBundleLoader::sharedInstance()->newestBundle();
        const Nodes nodes = statusThrough(bundle);

        const LuSVNStatus& conflict = statusOf(nodes, "conflict.txt");
        EXPECT_EQ(conflict.textStatus(), LuSVNStatusConflicted);
        EXPECT_EQ(conflict.conflictOldVersion(), "conflict.txt.r3");
        EXPECT_EQ(conflict.conflictNewVersion(), "conflict.txt.r4");
        EXPECT_EQ(conflict.conflictWorkingVersion(), "conflict.txt.mine");
        EXPECT_EQ(conflict.conflictOldRevision(), 3);
        EXPECT_EQ(conflict.conflictNewRevision(), 4);
        EXPECT_EQ(statusOf(nodes, "propconflict.txt").propertyRejectFilePath(), "propconflict.txt.prej");

        EXPECT_EQ(statusOf(nodes, "added.txt").schedule(), LuSVNScheduleAdd);
        EXPECT_EQ(statusOf(nodes, "copied.txt").schedule(), LuSVNScheduleAdd);
        EXPECT_EQ(statusOf(nodes, "deleted.txt").schedule(), LuSVNScheduleDelete);
        EXPECT_EQ(statusOf(nodes, "replaced.txt").schedule(), LuSVNScheduleReplace);
        EXPECT_EQ(statusOf(nodes, "normal.txt").schedule(), LuSVNScheduleNormal);
        EXPECT_TRUE(statusOf(nodes, "propmod.txt").hasPropertyModifications());
        EXPECT_TRUE(statusOf(nodes, "propmod.txt").hasProperties());
        EXPECT_FALSE(statusOf(nodes, "normal.txt").hasProperties());
        EXPECT_FALSE(statusOf(nodes, "unversioned.txt").isVersioned());
        EXPECT_TRUE(statusOf(nodes, "unversioned.txt").isAbnormal());
        EXPECT_FALSE(statusOf(nodes, "ignored.o").isAbnormal());
        // The records of 1.7 and later carry no copy source.
        if (newest) {
            EXPECT_EQ(statusOf(nodes, "copied.txt").copyFromURL(), nullptr);
        } else {
            ASSERT_NE(statusOf(nodes, "copied.txt").copyFromURL(), nullptr);
            EXPECT_EQ(statusOf(nodes, "copied.txt").copyFromURL()->string(), url + "/trunk/normal.txt");
            EXPECT_EQ(statusOf(nodes, "copied.txt").copyFromRevision(), 4);
        }

        const auto& normal = nodes.at(fixture->item("normal.txt"));
        EXPECT_NE(std::dynamic_pointer_cast<LuSVNFile>(normal), nullptr);
        EXPECT_EQ(normal->name(), "normal.txt");
        EXPECT_EQ(normal->revision(), 1);
        EXPECT_EQ(normal->size(), 7);
        ASSERT_NE(normal->URL(), nullptr);
        EXPECT_EQ(normal->URL()->string(), url + "/trunk/normal.txt");
        EXPECT_TRUE(normal->author().has_value());
        EXPECT_TRUE(normal->date().has_value());
        for (const char* directory : {"", "sub", "sparse", "ext"})
            EXPECT_TRUE(nodes.at(directory[0] ? fixture->item(directory) : fixture->workingCopy())->isDirectory())
                << directory;
        EXPECT_EQ(nodes.at(fixture->item("sub"))->URL()->string(), url + "/branch/sub");
        EXPECT_FALSE(nodes.at(fixture->item("unversioned.txt"))->isDirectory());
        // The entry, not the disk, decides for versioned items.
        EXPECT_FALSE(nodes.at(fixture->item("obstructed.txt"))->isDirectory());

        const auto& locked = nodes.at(fixture->item("locked.txt"));
        ASSERT_NE(locked->lock(), nullptr);
        EXPECT_TRUE(locked->lock()->token().starts_with("opaquelocktoken:"));
        EXPECT_TRUE(locked->lock()->creationDate().has_value());
        EXPECT_EQ(locked->lockStatus(), LuSVNLockStatusLockedLocally);
    }
}

// What each release's record holds beyond the 1.4 layout.
TEST_F(StatusConversion, FieldsFollowTheBackendVersion)
{
    const Nodes v14 = statusThrough(bundleAt(TESSERA_TEST_BUNDLE_1_4_6));
    const Nodes v15 = statusThrough(bundleAt(TESSERA_TEST_BUNDLE_1_5_9));
    const Nodes v16 = statusThrough(bundleAt(TESSERA_TEST_BUNDLE_1_6_23));
    const Nodes newest = statusThrough(LuSVNBundleLoader::sharedInstance()->newestBundle());
    for (const auto& [path, node] : v14) {
        EXPECT_EQ(node->status()->depth(), LuSVNDepthUnknown) << path;
        EXPECT_EQ(node->status()->pristineTextStatus(), LuSVNStatusNone) << path;
        EXPECT_FALSE(node->status()->isFileExternal()) << path;
        EXPECT_EQ(node->status()->treeConflict(), nullptr) << path;
    }
    for (const auto& [path, node] : v15) {
        EXPECT_EQ(node->status()->pristineTextStatus(), LuSVNStatusNone) << path;
        EXPECT_EQ(node->status()->treeConflict(), nullptr) << path;
    }
    for (const Nodes* nodes : {&v15, &v16, &newest}) {
        EXPECT_EQ(statusOf(*nodes, "sparse").depth(), LuSVNDepthEmpty);
        EXPECT_EQ(statusOf(*nodes, "").depth(), LuSVNDepthInfinity);
    }
    for (const Nodes* nodes : {&v16, &newest}) {
        EXPECT_EQ(statusOf(*nodes, "modified.txt").pristineTextStatus(), LuSVNStatusModified);
        EXPECT_EQ(statusOf(*nodes, "normal.txt").pristineTextStatus(), LuSVNStatusNormal);
        EXPECT_EQ(statusOf(*nodes, "propmod.txt").pristinePropertyStatus(), LuSVNStatusModified);
    }

    // The older record carries the tree conflict's description; the newest
    // backend's gets it from the item's info.
    const auto& tree = statusOf(v16, "treeedit.txt").treeConflict();
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(tree->kind(), svn_wc_conflict_kind_tree);
    EXPECT_EQ(tree->operation(), svn_wc_operation_update);
    EXPECT_EQ(tree->action(), svn_wc_conflict_action_delete);
    EXPECT_EQ(tree->reason(), svn_wc_conflict_reason_edited);
    EXPECT_EQ(tree->nodeKind(), svn_node_file);
    EXPECT_EQ(tree->path()->string(), fixture->item("treeedit.txt"));
    ASSERT_NE(tree->leftVersion(), nullptr);
    ASSERT_NE(tree->rightVersion(), nullptr);
    EXPECT_EQ(tree->leftVersion()->repositoryURL()->string(), fixture->repositoryURL());
    EXPECT_EQ(tree->leftVersion()->repositoryPath(), "trunk/treeedit.txt");
    EXPECT_EQ(tree->leftVersion()->pegRevision(), 3);
    EXPECT_EQ(tree->rightVersion()->pegRevision(), 4);
    EXPECT_NE(statusOf(v16, "treedel.txt").treeConflict(), nullptr);
    const auto& newer = statusOf(newest, "treeedit.txt").treeConflict();
    ASSERT_NE(newer, nullptr);
    EXPECT_EQ(newer->operation(), tree->operation());
    EXPECT_EQ(newer->action(), tree->action());
    EXPECT_EQ(newer->reason(), tree->reason());
    EXPECT_EQ(newer->path()->string(), tree->path()->string());
    EXPECT_EQ(newer->rightVersion()->pegRevision(), tree->rightVersion()->pegRevision());
}

}  // namespace
