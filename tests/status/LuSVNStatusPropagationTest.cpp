// The status walk where externals sit below directories the walk does not
// report, and where changes lie several levels below the walked directory.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNUsernameProvider.h>

#include <gtest/gtest.h>

#include <algorithm>

#include "StatusFixture.h"

namespace {

using namespace tessera_status_test;

class StatusPropagation : public ::testing::Test {
protected:
    static void SetUpTestSuite() { fixture = new NestedFixture(); }
    static void TearDownTestSuite()
    {
        delete fixture;
        fixture = nullptr;
    }

    static std::shared_ptr<LuSVNContext> context()
    {
        auto context = LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle(), {},
                                                       fixture->configDirectory());
        context->authenticationStack()->addProvider(std::make_shared<LuSVNUsernameProvider>());
        return context;
    }

    static NestedFixture* fixture;
};

NestedFixture* StatusPropagation::fixture = nullptr;

// Each external directory is external whoever reports it (svn calls the one
// below deep unversioned when walking deep); its parents that the walk does
// not report become placeholders, and a parent reported for real is never
// one. Externals are never counted.
TEST_F(StatusPropagation, ExternalsAndTheirPlaceholders)
{
    struct Case {
        const char* root;
        bool includeNormal, compare;
        std::vector<std::string> svnArguments;
        std::set<std::string> placeholders;
    };
    const std::set<std::string> externals = {fixture->item("deep/er/ext"), fixture->item("nv/w/ext2")};
    for (const Case& c : {
             Case{"", false, false, {}, {"deep", "deep/er"}},
             Case{"", true, false, {"-v"}, {"nv/w"}},
             Case{"", true, true, {"-v", "-u"}, {"nv/w"}},
             Case{"deep", false, false, {}, {"deep/er"}},
             Case{"deep", true, false, {"-v"}, {}},
         }) {
        SCOPED_TRACE(std::string(c.root) + (c.includeNormal ? " -v" : "") + (c.compare ? " -u" : ""));
        LuSVNStatusOptions options;
        options.setIncludeNormalFiles(c.includeNormal);
        options.setCompareAgainstRepository(c.compare);
        const auto expected = expectedItems(clientStatusReport(fixture->item(c.root), c.svnArguments), externals);
        Walk result = walk(fixture->item(c.root), options, context());

        std::set<std::string> reported, placeholders;
        for (const auto& item : expected)
            reported.insert(item.path);
        std::erase_if(result.nodes, [&](const std::shared_ptr<LuSVNNode>& node) {
            if (reported.contains(node->path()->string()))
                return false;
            placeholders.insert(node->path()->string());
            EXPECT_TRUE(node->isDirectory()) << node->path()->string();
            EXPECT_EQ(node->status()->textStatus(), LuSVNStatusExternal) << node->path()->string();
            EXPECT_EQ(node->status()->propertyStatus(), LuSVNStatusNone) << node->path()->string();
            return true;
        });
        std::set<std::string> wanted;
        for (const auto& name : c.placeholders)
            wanted.insert(fixture->item(name));
        EXPECT_EQ(placeholders, wanted);
        const unsigned fields = KindsField | FlagsField | WorkingRevisionField | (c.compare ? RepositoryField : 0);
        expectAgreement(result, expected, fields, !c.compare);
        EXPECT_EQ(result.localChanges, expectedLocalChanges(expected, {}));
        EXPECT_EQ(result.remoteChanges, 0u);
    }
}

// Streamed, an external directory reported from inside too comes twice,
// both times external, and the placeholders leading to an external come just
// before it, nearest first; the array keeps each directory once.
TEST_F(StatusPropagation, StreamHandsOverExternalsTwiceAndPlaceholdersBeforeThem)
{
    const auto external = fixture->item("deep/er/ext");
    const auto pathsOf = [](const Walk& walk) {
        std::vector<std::string> paths;
        for (const auto& node : walk.nodes)
            paths.push_back(node->path()->string());
        return paths;
    };
    LuSVNStatusOptions options;
    const auto changed = pathsOf(stream(fixture->workingCopy(), options, context()));
    const auto first = std::find(changed.begin(), changed.end(), external);
    ASSERT_GE(first - changed.begin(), 2) << ::testing::PrintToString(changed);
    EXPECT_EQ(*(first - 2), fixture->item("deep/er"));
    EXPECT_EQ(*(first - 1), fixture->item("deep"));

    options.setIncludeNormalFiles(true);
    const Walk everything = stream(fixture->workingCopy(), options, context());
    const auto paths = pathsOf(everything);
    EXPECT_EQ(std::count(paths.begin(), paths.end(), external), 2) << ::testing::PrintToString(paths);
    for (const auto& node : everything.nodes) {
        if (node->path()->string() == external) {
            EXPECT_EQ(node->status()->textStatus(), LuSVNStatusExternal);
        }
    }

    for (const bool propagate : {false, true}) {
        for (const bool includeNormal : {false, true}) {
            SCOPED_TRACE(std::string(propagate ? "propagated" : "plain") + (includeNormal ? " -v" : ""));
            options.setPropagateStatusToAncestor(propagate);
            options.setIncludeNormalFiles(includeNormal);
            expectStreamAgreesWithArray(fixture->workingCopy(), options, context());
            expectStreamAgreesWithArray(fixture->item("deep"), options, context());
        }
    }
}

// deep.txt three levels below top marks b, a and top; the unversioned a/u.txt
// marks a and top; top's own property change marks nothing, since nothing
// above the walked directory is touched.
TEST_F(StatusPropagation, ChangesMarkEachAncestorUpToTheRoot)
{
    const std::uint32_t both = LuSVNStatusModified | LuSVNStatusUnversioned;
    for (const bool includeNormal : {true, false}) {
        SCOPED_TRACE(includeNormal ? "with normal files" : "changes only");
        LuSVNStatusOptions options;
        options.setPropagateStatusToAncestor(true);
        options.setIncludeNormalFiles(includeNormal);
        const Walk result = walk(fixture->item("top"), options, context());
        std::map<std::string, std::uint32_t> aggregates;
        for (const auto& node : result.nodes) {
            EXPECT_TRUE(node->path()->string().starts_with(fixture->item("top"))) << node->path()->string();
            if (const auto directory = std::dynamic_pointer_cast<LuSVNDirectory>(node)) {
                aggregates[directory->path()->string()] = directory->aggregateChildStatus();
                EXPECT_EQ(directory->aggregateRepositoryChildStatus(), 0u);
            }
        }
        std::map<std::string, std::uint32_t> wanted = {{fixture->item("top"), both}};
        if (includeNormal) {
            wanted[fixture->item("top/a")] = both;
            wanted[fixture->item("top/a/b")] = LuSVNStatusModified;
            wanted[fixture->item("top/a/side")] = 0;
        }
        EXPECT_EQ(aggregates, wanted);
        EXPECT_EQ(result.localChanges, 3u);  // top, deep.txt, u.txt

        ASSERT_NE(result.root, nullptr);
        EXPECT_EQ(result.root->path()->string(), fixture->item("top"));
        expectPredicates(*result.root, both, 0);
        EXPECT_TRUE(result.root->hasNodesWithStatus(LuSVNStatusAdded | LuSVNStatusUnversioned));
        EXPECT_FALSE(result.root->hasNodesWithStatus(LuSVNStatusAdded | LuSVNStatusNormal));
    }
}

}  // namespace
