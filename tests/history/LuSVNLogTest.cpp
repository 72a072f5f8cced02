#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNLogMessageReceiver.h>
#include <tessera/LuSVNLogOptions.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNURL.h>

#include <gtest/gtest.h>

#include <map>
#include <regex>

#include "HistoryFixture.h"

namespace {

using tessera_history_test::HistoryRepository;

std::string unescapeXML(std::string text)
{
    static const std::pair<const char*, const char*> entities[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
    for (const auto& [entity, character] : entities)
        for (auto at = text.find(entity); at != std::string::npos; at = text.find(entity, at + 1))
            text.replace(at, std::string(entity).size(), character);
    return text;
}

// One entry of svn log --xml -v, in the library's terms.
struct Entry {
    long revision;
    std::string author, date, message;
    std::map<std::string, std::string> changes;  // path → changeText
};

std::map<std::string, std::string> attributesOf(const std::string& text)
{
    static const std::regex attribute(R"re(([\w-]+)="([^"]*)")re");
    std::map<std::string, std::string> attributes;
    for (std::sregex_iterator a(text.begin(), text.end(), attribute), end; a != end; ++a)
        attributes[(*a)[1]] = unescapeXML((*a)[2]);
    return attributes;
}

// "A /from:3 dir text=false props=true": action, copy source, kind and the
// modification flags ("?" where not told), from svn's <path> attributes.
std::string clientChangeText(std::map<std::string, std::string> attributes)
{
    std::string change = attributes["action"];
    if (attributes.count("copyfrom-path"))
        change += " " + attributes["copyfrom-path"] + ":" + attributes["copyfrom-rev"];
    const auto flag = [&](const char* name) { return attributes.count(name) ? attributes[name] : "?"; };
    return change + " " + attributes["kind"] + " text=" + flag("text-mods") + " props=" + flag("prop-mods");
}

std::vector<Entry> clientLog(const std::vector<std::string>& arguments)
{
    std::vector<std::string> command = {"log", "--xml", "-v"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const std::string xml = tessera_history_test::svnOrThrow(command);
    static const std::regex entry(R"re(<logentry\s+revision="(\d+)">([\s\S]*?)</logentry>)re");
    static const std::regex path(R"re(<path([^>]*)>([^<]*)</path>)re");
    static const std::regex author("<author>([^<]*)</author>"), date("<date>([^<]*)</date>"),
        message("<msg>([^<]*)</msg>");
    std::vector<Entry> entries;
    for (std::sregex_iterator match(xml.begin(), xml.end(), entry), end; match != end; ++match) {
        const std::string inner = (*match)[2];
        Entry item{std::stol((*match)[1]), {}, {}, {}, {}};
        std::smatch found;
        if (std::regex_search(inner, found, author))
            item.author = unescapeXML(found[1]);
        if (std::regex_search(inner, found, date))
            item.date = found[1];
        if (std::regex_search(inner, found, message))
            item.message = unescapeXML(found[1]);
        for (std::sregex_iterator p(inner.begin(), inner.end(), path); p != end; ++p)
            item.changes[unescapeXML((*p)[2])] = clientChangeText(attributesOf((*p)[1]));
        entries.push_back(item);
    }
    return entries;
}

std::string changeText(const LuSVNLogPathChange& change)
{
    std::string text(1, LuSVNCharFromLogAction(change.action()));
    if (change.copyPath())
        text += " " + *change.copyPath() + ":" + std::to_string(change.copyRevision());
    const auto flag = [](const std::optional<bool>& value) { return value ? *value ? "true" : "false" : "?"; };
    const char* kind = change.nodeKind() == LuSVNNodeKindFile        ? "file"
                       : change.nodeKind() == LuSVNNodeKindDirectory ? "dir"
                                                                      : "";
    return text + " " + kind + " text=" + flag(change.textModified()) +
           " props=" + flag(change.propertiesModified());
}

// The changes of an item, keyed by path.
std::map<std::string, std::string> changesOf(const LuSVNLogItem& item)
{
    std::map<std::string, std::string> changes;
    for (const auto& change : item.changes())
        changes[change->path()] = changeText(*change);
    return changes;
}

void expectAgreement(std::vector<std::shared_ptr<LuSVNLogItem>> items, const std::vector<Entry>& entries,
                     bool withChanges)
{
    // svn leaves out revision 0 when it has no message; the library reports it.
    std::erase_if(items, [](const auto& item) { return item->revision() == 0 && !item->message(); });
    ASSERT_EQ(items.size(), entries.size());
    for (std::size_t index = 0; index < items.size(); ++index) {
        const LuSVNLogItem& item = *items[index];
        const Entry& entry = entries[index];
        SCOPED_TRACE("r" + std::to_string(entry.revision));
        EXPECT_EQ(item.revision(), entry.revision);
        EXPECT_EQ(item.author().value_or(""), entry.author);
        EXPECT_EQ(item.message().value_or(""), entry.message);
        EXPECT_EQ(item.date(), LuSVNDateConversion::dateWithISO8601String(entry.date));
        const std::map<std::string, std::string> none;
        EXPECT_EQ(changesOf(item), withChanges ? entry.changes : none);
    }
}

struct LogCase {
    const char* name;
    std::string target;  // below the repository root
    std::vector<std::string> svnArguments;
    std::function<void(LuSVNLogOptions&)> configure;
};

TEST(LuSVNLogTest, AgreesWithTheClientsLog)
{
    const auto& repository = HistoryRepository::shared();
    const auto range = [](int from, int to) {
        return [=](LuSVNLogOptions& options) {
            options.setFromRevision(LuSVNRevision::revisionWithNumber(from));
            options.setToRevision(LuSVNRevision::revisionWithNumber(to));
        };
    };
    const std::vector<LogCase> cases = {
        {"whole repository", "", {}, [](LuSVNLogOptions&) {}},
        {"across the move", "trunk/moved.txt", {}, [](LuSVNLogOptions&) {}},
        {"stop on copy", "branch", {"--stop-on-copy"},
         [](LuSVNLogOptions& options) { options.setTraverseCopyHistory(false); }},
        {"across the replacement", "trunk/bin.dat", {}, [](LuSVNLogOptions&) {}},
        {"limit", "", {"-l", "2"}, [](LuSVNLogOptions& options) { options.setLimit(2); }},
        {"oldest first", "", {"-r", "2:5"}, range(2, 5)},
        {"non-ASCII file", "trunk/na%C3%AFve-%C3%BC.txt", {}, [](LuSVNLogOptions&) {}},
        {"without paths", "trunk", {}, [](LuSVNLogOptions& options) { options.setDiscoverChangedPaths(false); }},
    };
    for (const auto& logCase : cases) {
        SCOPED_TRACE(logCase.name);
        const std::string url = repository.url() + (logCase.target.empty() ? "" : "/" + logCase.target);
        LuSVNLogOptions options;
        logCase.configure(options);
        auto arguments = logCase.svnArguments;
        arguments.push_back(url);
        const auto items =
            LuSVNNode::readLogForNodeAtPath(LuSVNURL::URLWithString(url), nullptr, options, repository.context());
        expectAgreement(items, clientLog(arguments), options.discoverChangedPaths());
    }
}

TEST(LuSVNLogTest, WorkingCopyPathReadsTheSameHistoryAsItsURL)
{
    const auto& repository = HistoryRepository::shared();
    const auto items = LuSVNNode::readLogForNodeAtPath(LuSVNLocalPath::pathWithString(repository.item("trunk")),
                                                       nullptr, LuSVNLogOptions(), repository.context());
    expectAgreement(items, clientLog({repository.item("trunk")}), true);
}

// Counts the items, cancels or throws at a chosen one, and may leave the
// items to the receiver or not.
class CountingDelegate : public LuSVNLogMessageReceiverDelegate {
public:
    enum Stop { Never, Cancel, Throw };
    CountingDelegate(Stop stop, std::size_t at, bool keeps) : stop_(stop), at_(at), keeps_(keeps) {}

    bool logItemReceived(const std::shared_ptr<LuSVNLogItem>& item) override
    {
        revisions.push_back(item->revision());
        children.push_back(item->children().size());
        if (revisions.size() == at_ && stop_ == Throw)
            throw std::range_error("delegate failed");
        return !(revisions.size() == at_ && stop_ == Cancel);
    }
    bool keepsLogItems() const override { return keeps_; }

    std::vector<std::int32_t> revisions;
    std::vector<std::size_t> children;

private:
    Stop stop_;
    std::size_t at_;
    bool keeps_;
};

TEST(LuSVNLogTest, DelegateSeesEachItemAndCanCancelOrFail)
{
    const auto& repository = HistoryRepository::shared();
    const auto url = LuSVNURL::URLWithString(repository.url());
    const std::vector<std::int32_t> all = {6, 5, 4, 3, 2, 1, 0};
    struct Case {
        const char* name;
        CountingDelegate::Stop stop;
        std::size_t at;
        bool keeps;
        std::vector<std::int32_t> seen;
        std::size_t collected;
    } cases[] = {
        {"collected", CountingDelegate::Never, 0, true, all, all.size()},
        {"consumed by the delegate", CountingDelegate::Never, 0, false, all, 0},
        {"cancelled after three", CountingDelegate::Cancel, 3, true, {6, 5, 4}, 0},
        {"cancelled at the first", CountingDelegate::Cancel, 1, true, {6}, 0},
        {"thrown at the second", CountingDelegate::Throw, 2, true, {6, 5}, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto delegate = std::make_shared<CountingDelegate>(c.stop, c.at, c.keeps);
        const auto read = [&] {
            return LuSVNNode::readLogForNodeAtPath(url, delegate, LuSVNLogOptions(), repository.context());
        };
        switch (c.stop) {
        case CountingDelegate::Never: EXPECT_EQ(read().size(), c.collected); break;
        case CountingDelegate::Cancel: EXPECT_THROW(read(), LuSVNOperationCancelledException); break;
        case CountingDelegate::Throw: EXPECT_THROW(read(), std::range_error); break;
        }
        EXPECT_EQ(delegate->revisions, c.seen);
    }
}

TEST(LuSVNLogTest, ActionsConvertBothWays)
{
    const struct {
        char character;
        LuSVNLogAction action;
        const char* name;
    } cases[] = {{'-', LuSVNLogActionNone, "LuSVNLogActionNone"},
                 {'A', LuSVNLogActionAdded, "LuSVNLogActionAdded"},
                 {'D', LuSVNLogActionDeleted, "LuSVNLogActionDeleted"},
                 {'R', LuSVNLogActionReplaced, "LuSVNLogActionReplaced"},
                 {'M', LuSVNLogActionModified, "LuSVNLogActionModified"},
                 {'O', LuSVNLogActionUnrecognized, "<unrecognized>"}};
    for (const auto& c : cases) {
        EXPECT_EQ(LuSVNCharFromLogAction(c.action), c.character);
        EXPECT_EQ(LuSVNStringFromLogAction(c.action), std::string(1, c.character));
        EXPECT_EQ(LuSVNLogPathChange::stringFromAction(c.action), c.name);
        if (c.action != LuSVNLogActionUnrecognized) {
            EXPECT_EQ(LuSVNLogActionFromChar(c.character), c.action);
            EXPECT_EQ(LuSVNLogActionFromString(std::string(1, c.character) + "xyz"), c.action);
        }
    }
    EXPECT_EQ(LuSVNLogActionFromChar('O'), LuSVNLogActionUnrecognized);
    EXPECT_EQ(LuSVNLogActionFromString(std::nullopt), LuSVNLogActionNone);
    EXPECT_EQ(LuSVNLogActionFromString(""), LuSVNLogActionNone);
    EXPECT_THROW(LuSVNCharFromLogAction(static_cast<LuSVNLogAction>(5)), LuSVNException);
}

TEST(LuSVNLogTest, PathsFollowTheCopyThatAddedThem)
{
    const LuSVNLogPathChange copy("/b", LuSVNLogActionAdded, "/a", 5);
    const LuSVNLogPathChange modified("/b", LuSVNLogActionModified);
    const LuSVNLogPathChange plainAddition("/b", LuSVNLogActionAdded);
    const struct {
        const LuSVNLogPathChange& change;
        std::optional<std::string> path, expected;
    } cases[] = {{copy, "/b/x", "/a/x"},  {copy, "/b", "/a"},           {modified, "/b/x", "/b/x"},
                 {plainAddition, "/b/x", std::nullopt}, {copy, std::nullopt, std::nullopt}};
    for (const auto& c : cases)
        EXPECT_EQ(c.change.adjustPath(c.path), c.expected) << c.change.description();
}

TEST(LuSVNLogTest, ItemFindsChangesOfPathsAndAncestors)
{
    LuSVNLogItem item;
    item.addChange(std::make_shared<LuSVNLogPathChange>("/trunk", LuSVNLogActionAdded, "/branch", 3));
    item.addChange(std::make_shared<LuSVNLogPathChange>("/other/x", LuSVNLogActionModified));
    item.addChange(std::make_shared<LuSVNLogPathChange>("/other/x", LuSVNLogActionDeleted));  // replaces
    EXPECT_EQ(item.changes().size(), 2u);
    EXPECT_EQ(item.deletions().size(), 1u);
    EXPECT_TRUE(item.modifications().empty());
    const struct {
        std::optional<std::string> path;
        const char* found;
    } cases[] = {{"/trunk/a/b", "/trunk"}, {"/trunk", "/trunk"}, {"/other/x/y", "/other/x"},
                 {"/other", nullptr},      {"/", nullptr},       {std::nullopt, nullptr}};
    for (const auto& c : cases) {
        const auto change = item.changeForAncestorOfPath(c.path);
        EXPECT_EQ(change ? change->path() : "", c.found ? c.found : "") << c.path.value_or("(none)");
    }
    LuSVNLogItem copy;
    copy.assignFrom(item);
    copy.removeChangeWithPath("/trunk");
    EXPECT_EQ(item.changes().size(), 2u);
    EXPECT_EQ(copy.changes().size(), 1u);
    EXPECT_EQ(copy.changeForPath("/other/x"), item.changeForPath("/other/x"));
}

TEST(LuSVNLogTest, StringValueListsSortedChangesInTheLogLayout)
{
    using namespace std::chrono;
    LuSVNLogItem item("Message\nline two", 7, sys_days(year(2024) / 2 / 29) + 13h + 5min + 9s, "ann");
    item.addChange(std::make_shared<LuSVNLogPathChange>("/z", LuSVNLogActionModified));
    item.addChange(std::make_shared<LuSVNLogPathChange>("/b", LuSVNLogActionAdded, "/a", 5));
    EXPECT_EQ(item.stringValue(), std::string(72, '-') +
                                      "\nr7 | ann | 2024-02-29 13:05:09 +0000\nChanged paths:\n"
                                      "  A /b (from /a:5)\n  M /z\n\nMessage\nline two\n");
    const LuSVNLogItem empty(std::nullopt, 3, std::nullopt, std::nullopt);
    EXPECT_EQ(empty.stringValue(), std::string(72, '-') + "\nr3 | (null) | (null)\nChanged paths:\n\n(null)\n");
}

TEST(LuSVNLogTest, ReceiverListKeepsOrderAndChecksIndices)
{
    auto receiver = LuSVNLogMessageReceiver::receiver();
    auto first = std::make_shared<LuSVNLogItem>(), second = std::make_shared<LuSVNLogItem>();
    receiver->addLogItem(second);
    receiver->insertObjectInLogItemsAtIndex(first, 0);
    EXPECT_EQ(receiver->logItems(), (LuSVNLogMessageReceiver::Items{first, second}));
    receiver->removeLogItem(first);
    EXPECT_EQ(receiver->logItems(), LuSVNLogMessageReceiver::Items{second});
    tessera_test::expectParameterAssertion([&] { receiver->removeLogItem(first); },
                                           "index >= 0 && index < [logItems count]");
    tessera_test::expectParameterAssertion([&] { receiver->insertObjectInLogItemsAtIndex(first, 2); },
                                           "index >= 0 && index <= [logItems count]");
    tessera_test::expectParameterAssertion([&] { receiver->addLogItem(nullptr); }, "logItem != nil");
    receiver->removeAllLogItems();
    EXPECT_TRUE(receiver->logItems().empty());
}

// A log with its merged revisions as "[r6[r3-]][r5[r4][r3][r2]]..." ("-"
// for a reverse merge) and the changes of every entry in that order.
struct NestedLog {
    std::string structure;
    std::vector<std::map<std::string, std::string>> changes;
};

NestedLog clientNestedLog(const std::string& url)
{
    const std::string xml = tessera_history_test::svnOrThrow({"log", "--xml", "-v", "-g", url});
    static const std::regex token(R"re(<logentry\s+([^>]*)>|</logentry>|<path([^>]*)>([^<]*)</path>)re");
    NestedLog log;
    for (std::sregex_iterator match(xml.begin(), xml.end(), token), end; match != end; ++match) {
        if ((*match)[0] == "</logentry>") {
            log.structure += "]";
        } else if ((*match)[1].matched) {
            auto attributes = attributesOf((*match)[1]);
            log.structure += "[r" + attributes["revision"] + (attributes["reverse-merge"] == "true" ? "-" : "");
            log.changes.emplace_back();
        } else {
            log.changes.back()[unescapeXML((*match)[3])] = clientChangeText(attributesOf((*match)[2]));
        }
    }
    return log;
}

void appendNested(NestedLog& log, const LuSVNLogItem& item)
{
    // svn leaves out revision 0 when it has no message.
    if (item.revision() == 0 && !item.message())
        return;
    log.structure += "[r" + std::to_string(item.revision()) + (item.isSubtractiveMerge() ? "-" : "");
    log.changes.push_back(changesOf(item));
    for (const auto& child : item.children())
        appendNested(log, *child);
    log.structure += "]";
}

TEST(LuSVNLogTest, MergedRevisionsNestBelowTheRevisionsThatMergedThem)
{
    const auto& repository = HistoryRepository::withMerges();
    for (const std::string target : {"/trunk", "/trunk/f.txt", "/branches/b", ""}) {
        SCOPED_TRACE(target);
        LuSVNLogOptions options;
        options.setIncludeMergedRevisions(true);
        const auto items = LuSVNNode::readLogForNodeAtPath(LuSVNURL::URLWithString(repository.url() + target),
                                                           nullptr, options, repository.context());
        NestedLog log;
        for (const auto& item : items)
            appendNested(log, *item);
        const NestedLog expected = clientNestedLog(repository.url() + target);
        EXPECT_EQ(log.structure, expected.structure);
        EXPECT_EQ(log.changes, expected.changes);
    }
    // The structure this repository must give, so that the comparison
    // above compares merges at all.
    LuSVNLogOptions options;
    options.setIncludeMergedRevisions(true);
    NestedLog trunk;
    for (const auto& item : LuSVNNode::readLogForNodeAtPath(LuSVNURL::URLWithString(repository.url() + "/trunk"),
                                                            nullptr, options, repository.context()))
        appendNested(trunk, *item);
    EXPECT_EQ(trunk.structure, "[r6[r3-]][r5[r4][r2]][r1]");
}

TEST(LuSVNLogTest, OlderBackendsTellLessAndRefuseMergedRevisions)
{
    const auto& repository = HistoryRepository::withMerges();
    const auto url = LuSVNURL::URLWithString(repository.url() + "/branches/b/f.txt");
    const struct {
        const char* bundle;
        const char* change;  // of r4 on branches/b/f.txt
        bool mergedRevisions;
    } cases[] = {
        {nullptr, "M file text=true props=true", true},
        {TESSERA_TEST_BUNDLE_1_6_23, "M file text=? props=?", true},
        {TESSERA_TEST_BUNDLE_1_5_9, "M  text=? props=?", false},
        {TESSERA_TEST_BUNDLE_1_4_6, "M  text=? props=?", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bundle ? c.bundle : "newest");
        const auto context = repository.context(c.bundle);
        LuSVNLogOptions options;
        options.setFromRevision(LuSVNRevision::revisionWithNumber(4));
        options.setToRevision(LuSVNRevision::revisionWithNumber(4));
        const auto items = LuSVNNode::readLogForNodeAtPath(url, nullptr, options, context);
        ASSERT_EQ(items.size(), 1u);
        EXPECT_EQ(changesOf(*items.front()),
                  (std::map<std::string, std::string>{{"/branches/b/f.txt", c.change}}));
        options.setIncludeMergedRevisions(true);
        if (c.mergedRevisions)
            EXPECT_EQ(LuSVNNode::readLogForNodeAtPath(url, nullptr, options, context).size(), 1u);
        else
            EXPECT_THROW(LuSVNNode::readLogForNodeAtPath(url, nullptr, options, context),
                         LuSVNInvalidArgumentException);
    }
}

// A delegate hears of an item once its merged revisions have all arrived,
// and cancelling it stops the walk before the next one.
TEST(LuSVNLogTest, DelegateGetsMergesComplete)
{
    const auto& repository = HistoryRepository::withMerges();
    auto delegate = std::make_shared<CountingDelegate>(CountingDelegate::Cancel, 2, true);
    std::vector<std::size_t> children;
    LuSVNLogOptions options;
    options.setIncludeMergedRevisions(true);
    EXPECT_THROW(LuSVNNode::readLogForNodeAtPath(LuSVNURL::URLWithString(repository.url() + "/trunk"), delegate,
                                                 options, repository.context()),
                 LuSVNOperationCancelledException);
    EXPECT_EQ(delegate->revisions, (std::vector<std::int32_t>{6, 5}));
    EXPECT_EQ(delegate->children, (std::vector<std::size_t>{1, 2}));
}

}  // namespace
