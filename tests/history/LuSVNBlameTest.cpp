#include <tessera/LuSVNBlame.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNDiff.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNURL.h>

#include <gtest/gtest.h>

#include <regex>
#include <sstream>

#include "HistoryFixture.h"

namespace {

using tessera_history_test::HistoryRepository;
using tessera_history_test::localPath;

// Who a line is attributed to.
struct Attribution {
    std::int64_t revision;
    std::string author;
    friend bool operator==(const Attribution&, const Attribution&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Attribution& a)
    {
        return stream << "r" << a.revision << " " << a.author;
    }
};

// svn blame --xml, one attribution per line; the dates by line too.
std::vector<Attribution> clientBlame(const std::vector<std::string>& arguments,
                                     std::vector<std::optional<LuSVNBlameSection::Date>>* dates = nullptr)
{
    std::vector<std::string> command = {"blame", "--xml"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const std::string xml = tessera_history_test::svnOrThrow(command);
    static const std::regex entry(
        R"re(<entry\s+line-number="\d+">\s*<commit\s+revision="(\d+)">\s*<author>([^<]*)</author>\s*<date>([^<]*)</date>)re");
    std::vector<Attribution> lines;
    for (std::sregex_iterator match(xml.begin(), xml.end(), entry), end; match != end; ++match) {
        lines.push_back({std::stol((*match)[1]), (*match)[2]});
        if (dates)
            dates->push_back(LuSVNDateConversion::dateWithISO8601String(std::string((*match)[3])));
    }
    return lines;
}

// The sections as one attribution per line, checking that they follow each
// other without gaps from line 0.
std::vector<Attribution> perLine(const LuSVNBlame& blame)
{
    std::vector<Attribution> lines;
    for (const auto& section : blame.blameSections()) {
        EXPECT_EQ(section->lines().location, lines.size()) << section->description();
        for (std::uint64_t n = 0; n < section->lines().length; ++n)
            lines.push_back({section->revision(), section->author().value_or("")});
    }
    return lines;
}

TEST(LuSVNBlameTest, AgreesWithSvnBlameAndJoinsRunsOfLines)
{
    const auto& repository = HistoryRepository::shared();
    const struct {
        const char* name;
        std::string target;
        std::vector<std::string> svnArguments;
        std::int32_t revision;
        bool pegged;  // the file is gone at HEAD
    } cases[] = {
        {"moved and edited", "trunk/moved.txt", {}, 6, false},
        {"before the move", "trunk/a.txt", {}, 3, true},
        {"non-ASCII", "trunk/na%C3%AFve-%C3%BC.txt", {}, 6, false},
        {"binary type forced", "trunk/le.txt", {"--force"}, 6, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string url = repository.url() + "/" + c.target;
        const auto revision = LuSVNRevision::revisionWithNumber(c.revision);
        const auto blame = c.pegged ? LuSVNBlame::blameForPath(LuSVNURL::URLWithString(url), revision,
                                                               LuSVNRevision::revisionWithNumber(1), revision,
                                                               LuSVNDiffOptions(), repository.context())
                                    : LuSVNBlame::blameForPath(LuSVNURL::URLWithString(url), revision,
                                                               LuSVNDiffOptions(), repository.context());
        auto arguments = c.svnArguments;
        arguments.push_back(url + "@" + std::to_string(c.revision));
        std::vector<std::optional<LuSVNBlameSection::Date>> dates;
        const auto expected = clientBlame(arguments, &dates);
        EXPECT_EQ(perLine(*blame), expected);
        const auto& sections = blame->blameSections();
        for (std::size_t index = 0; index < sections.size(); ++index) {
            EXPECT_EQ(sections[index]->date(), dates.at(sections[index]->lines().location));
            if (index > 0) {
                EXPECT_NE(Attribution({sections[index]->revision(), *sections[index]->author()}),
                          Attribution({sections[index - 1]->revision(), *sections[index - 1]->author()}));
            }
        }
    }
}

TEST(LuSVNBlameTest, LinesJoinSectionsByAuthorAndRevision)
{
    const struct {
        const char* name;
        std::vector<std::pair<const char*, std::int64_t>> lines;
        std::vector<LuSVNLineRange> sections;
    } cases[] = {
        {"empty file", {}, {}},
        {"one author", {{"a", 5}, {"a", 5}, {"a", 5}}, {{0, 3}}},
        {"interrupted run", {{"a", 5}, {"a", 5}, {"a", 5}, {"b", 7}, {"a", 5}, {"a", 5}}, {{0, 3}, {3, 1}, {4, 2}}},
        {"same author, other revision", {{"a", 5}, {"a", 6}}, {{0, 1}, {1, 1}}},
        // No author in revision 0 never opens a section: each such line
        // starts its own, and none of them is closed by the next line.
        {"no author in revision 0", {{nullptr, 0}, {nullptr, 0}, {"a", 1}}, {{0, 0}, {1, 0}, {2, 1}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        LuSVNBlame blame;
        std::int64_t line = 0;
        for (const auto& [author, revision] : c.lines)
            blame.receiveClientBlame(line++, revision, author, nullptr, nullptr);
        // The walk closes the last section when it ends; the one open here
        // still has its length of 0, which the cases leave out.
        std::vector<LuSVNLineRange> ranges;
        for (const auto& section : blame.blameSections())
            ranges.push_back(section->lines());
        if (!ranges.empty() && ranges.back().length == 0)
            ranges.back().length = c.lines.size() - ranges.back().location;
        EXPECT_EQ(ranges, c.sections);
    }
    LuSVNBlame blame;
    blame.receiveClientBlame(0, 1, "a", nullptr, nullptr);
    EXPECT_THROW(blame.receiveClientBlame(2, 1, "a", nullptr, nullptr), LuSVNInvalidArgumentException);
}

TEST(LuSVNBlameTest, LocalEditsLayOverTheCommittedLines)
{
    const auto& repository = HistoryRepository::shared();
    tessera_test::TemporaryDirectory directory;
    const std::string wc = directory / "wc", file = wc + "/moved.txt";
    tessera_test::checkout(repository.url() + "/trunk", wc);
    const auto committed = LuSVNBlame::blameForPath(localPath(file), LuSVNRevision::BASE(), LuSVNDiffOptions(),
                                                    repository.context());
    const auto committedLines = perLine(*committed);
    std::vector<std::string> original;
    std::istringstream text(tessera_history_test::svnOrThrow({"cat", file}));
    for (std::string line; std::getline(text, line);)
        original.push_back(line);
    ASSERT_EQ(committedLines.size(), original.size());
    tessera_test::writeFile(directory / "pristine.txt", tessera_history_test::joinLines(original));

    for (const auto& c : tessera_history_test::editCases()) {
        SCOPED_TRACE(c.name);
        const auto edited = tessera_history_test::applyEdits(original, c.edits);
        tessera_test::writeFile(file, edited.text());
        // Brute force: each line of the working file takes the attribution of
        // the line it came from, new lines the local one.
        std::vector<Attribution> expected;
        for (const long origin : edited.origin)
            expected.push_back(origin < 0 ? Attribution{-1, "me"} : committedLines.at(origin));

        auto blame = std::make_shared<LuSVNBlame>();
        blame->setBlameSections(committed->blameSections());
        const auto diff = LuSVNDiff::compareOriginalFileAtPath(localPath(directory / "pristine.txt"), localPath(file),
                                                               repository.context());
        blame->mergeDiff(*diff, "me", -1, std::nullopt);
        EXPECT_EQ(perLine(*blame), expected);
        for (std::size_t index = 1; index < blame->blameSections().size(); ++index) {
            const auto& previous = *blame->blameSections()[index - 1];
            const auto& current = *blame->blameSections()[index];
            EXPECT_FALSE(previous.revision() == current.revision() && previous.author() == current.author())
                << "adjacent sections of one attribution: " << current.description();
        }
    }
    EXPECT_EQ(perLine(*committed), committedLines);  // the committed blame stays as it was
}

TEST(LuSVNBlameTest, ArchiveKeepsTheSections)
{
    const auto& repository = HistoryRepository::shared();
    const auto blame = LuSVNBlame::blameForPath(LuSVNURL::URLWithString(repository.url() + "/trunk/moved.txt"),
                                                LuSVNRevision::HEAD(), LuSVNDiffOptions(), repository.context());
    const auto copy =
        LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNBlame>(LuSVNKeyedArchiver::archivedDataWithRootObject(*blame));
    ASSERT_EQ(copy->blameSections().size(), blame->blameSections().size());
    for (std::size_t index = 0; index < blame->blameSections().size(); ++index)
        EXPECT_EQ(copy->blameSections()[index]->description(), blame->blameSections()[index]->description());
    EXPECT_EQ(copy->blameSections().front()->date(), blame->blameSections().front()->date());
}

// Each line's origin through merges as "r5 <- r4 carol /branches/b/f.txt".
std::vector<std::string> clientMergedBlame(const std::string& url)
{
    const std::string xml = tessera_history_test::svnOrThrow({"blame", "--xml", "-g", url});
    static const std::regex entry(
        R"re(<commit\s+revision="(\d+)">[\s\S]*?<merged\s+path="([^"]*)">\s*<commit\s+revision="(\d+)">\s*<author>([^<]*)</author>)re");
    std::vector<std::string> lines;
    for (std::sregex_iterator match(xml.begin(), xml.end(), entry), end; match != end; ++match)
        lines.push_back("r" + std::string((*match)[1]) + " <- r" + std::string((*match)[3]) + " " +
                        std::string((*match)[4]) + " " + std::string((*match)[2]));
    return lines;
}

TEST(LuSVNBlameTest, MergedRevisionsGiveEachLineItsOrigin)
{
    const auto& repository = HistoryRepository::withMerges();
    for (const int revision : {5, 6}) {
        SCOPED_TRACE(revision);
        const std::string url = repository.url() + "/trunk/f.txt@" + std::to_string(revision);
        const auto at = LuSVNRevision::revisionWithNumber(revision);
        const auto blame = LuSVNBlame::blameForPath(LuSVNURL::URLWithString(repository.url() + "/trunk/f.txt"), at,
                                                    LuSVNRevision::revisionWithNumber(1), at, LuSVNDiffOptions(),
                                                    repository.context(), true);
        std::vector<std::string> lines;
        for (const auto& section : blame->blameSections()) {
            ASSERT_TRUE(section->mergedOrigin()) << section->description();
            const auto& origin = *section->mergedOrigin();
            for (std::uint64_t n = 0; n < section->lines().length; ++n)
                lines.push_back("r" + std::to_string(section->revision()) + " <- r" +
                                std::to_string(origin.revision) + " " + origin.author.value_or("") + " " +
                                origin.path);
        }
        EXPECT_EQ(lines, clientMergedBlame(url));
    }
    // Lines 2 and 4 of r5 came from the branch and lines 1 and 3 did not:
    // one section each, though lines 2 and 4 share revision and author.
    const auto at5 = LuSVNRevision::revisionWithNumber(5);
    const auto blame = LuSVNBlame::blameForPath(LuSVNURL::URLWithString(repository.url() + "/trunk/f.txt"), at5,
                                                LuSVNRevision::revisionWithNumber(1), at5, LuSVNDiffOptions(),
                                                repository.context(), true);
    std::vector<bool> merged;
    for (const auto& section : blame->blameSections())
        merged.push_back(section->isMerged());
    EXPECT_EQ(merged, (std::vector<bool>{false, true, false, true}));
}

TEST(LuSVNBlameTest, MergedOriginSurvivesArchivingAndBackendsBefore17RefuseIt)
{
    const auto& repository = HistoryRepository::withMerges();
    const auto path = LuSVNURL::URLWithString(repository.url() + "/trunk/f.txt");
    const auto head = LuSVNRevision::revisionWithNumber(6);
    const auto one = LuSVNRevision::revisionWithNumber(1);
    const auto blame =
        LuSVNBlame::blameForPath(path, head, one, head, LuSVNDiffOptions(), repository.context(), true);
    const auto copy = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNBlame>(
        LuSVNKeyedArchiver::archivedDataWithRootObject(*blame));
    ASSERT_EQ(copy->blameSections().size(), blame->blameSections().size());
    for (std::size_t index = 0; index < blame->blameSections().size(); ++index) {
        const auto& original = *blame->blameSections()[index];
        const auto& decoded = *copy->blameSections()[index];
        ASSERT_TRUE(decoded.mergedOrigin());
        EXPECT_EQ(decoded.mergedOrigin(), original.mergedOrigin());
        EXPECT_EQ(decoded.mergedOrigin()->author, original.mergedOrigin()->author);
        EXPECT_EQ(decoded.mergedOrigin()->date, original.mergedOrigin()->date);
    }
    for (const char* bundle : {TESSERA_TEST_BUNDLE_1_6_23, TESSERA_TEST_BUNDLE_1_4_6}) {
        SCOPED_TRACE(bundle);
        const auto context = repository.context(bundle);
        EXPECT_FALSE(LuSVNBlame::blameForPath(path, head, one, head, LuSVNDiffOptions(), context)
                         ->blameSections()
                         .front()
                         ->mergedOrigin());
        EXPECT_THROW(LuSVNBlame::blameForPath(path, head, one, head, LuSVNDiffOptions(), context, true),
                     LuSVNInvalidArgumentException);
    }
}

}  // namespace
