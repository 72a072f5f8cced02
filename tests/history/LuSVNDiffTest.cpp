#include <tessera/LuSVNDiff.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNStreams.h>
#include <tessera/LuSVNURL.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "HistoryFixture.h"

namespace {

using tessera_history_test::EditedText;
using tessera_history_test::HistoryRepository;
using tessera_history_test::localPath;
using tessera_test::writeFile;

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The sections cover both texts in order without gaps, alternate between
// common and differing runs, and map every kept line to the line it came
// from; every new line lies in a differing run.
void expectSectionsMapLines(const LuSVNDiff& diff, std::size_t originalCount, const EditedText& edited)
{
    std::uint64_t original = 0, modified = 0;
    std::vector<long> mapped(edited.lines.size(), -2);
    LuSVNDiffSectionType previous = LuSVNDiffSectionConflict;
    for (const auto& section : diff.sections()) {
        SCOPED_TRACE(section->description());
        EXPECT_NE(section->type(), previous);
        previous = section->type();
        EXPECT_EQ(section->originalRange().location, original);
        EXPECT_EQ(section->modifiedRange().location, modified);
        for (std::uint64_t line = 0; line < section->modifiedRange().length; ++line)
            mapped.at(modified + line) = section->type() == LuSVNDiffSectionCommon
                                             ? static_cast<long>(original + line)
                                             : -1;
        if (section->type() == LuSVNDiffSectionCommon) {
            EXPECT_EQ(section->originalRange().length, section->modifiedRange().length);
        }
        original = section->originalRange().end();
        modified = section->modifiedRange().end();
    }
    EXPECT_EQ(original, originalCount);
    EXPECT_EQ(modified, edited.lines.size());
    EXPECT_EQ(mapped, edited.origin);
}

// Type and original and modified ranges of each section, a line each.
std::string sectionsText(const LuSVNDiff& diff)
{
    std::string text;
    const auto range = [](const LuSVNLineRange& r) {
        return "{" + std::to_string(r.location) + ", " + std::to_string(r.length) + "}";
    };
    for (const auto& section : diff.sections())
        text += std::to_string(section->type()) + " " + range(section->originalRange()) + " " +
                range(section->modifiedRange()) + "\n";
    return text;
}

TEST(LuSVNDiffTest, SectionsMapEveryLineOfTwoFiles)
{
    const auto& repository = HistoryRepository::shared();
    const auto original = tessera_history_test::numberedLines(13);
    writeFile(repository.scratch("original.txt"), tessera_history_test::joinLines(original));
    for (const auto& c : tessera_history_test::editCases()) {
        SCOPED_TRACE(c.name);
        const auto edited = tessera_history_test::applyEdits(original, c.edits);
        writeFile(repository.scratch("modified.txt"), edited.text());
        const auto diff = LuSVNDiff::compareOriginalFileAtPath(
            localPath(repository.scratch("original.txt")), localPath(repository.scratch("modified.txt")),
            repository.context());
        expectSectionsMapLines(*diff, original.size(), edited);
    }
}

TEST(LuSVNDiffTest, OptionsDecideWhatDiffers)
{
    const auto& repository = HistoryRepository::shared();
    const struct {
        const char* name;
        std::string original, modified;
        std::int32_t whitespace;
        bool ignoreEOLStyle;
        std::string sections;
    } cases[] = {
        {"empty files", "", "", 0, false, ""},
        {"spacing counts", "a b\n", "a  b\n", 0, false, "1 {0, 1} {0, 1}\n"},
        {"spacing ignored", "a b\nc\n", "a  b\nc\n", 1, false, "0 {0, 2} {0, 2}\n"},
        {"spaces counted when only changes are ignored", "ab\n", "a b\n", 1, false, "1 {0, 1} {0, 1}\n"},
        {"all space ignored", "ab\nc\n", "a b\nc\n", 2, false, "0 {0, 2} {0, 2}\n"},
        {"line ends count", "x\r\ny\n", "x\ny\n", 0, false, "1 {0, 1} {0, 1}\n0 {1, 1} {1, 1}\n"},
        {"line ends ignored", "x\r\ny\n", "x\ny\n", 0, true, "0 {0, 2} {0, 2}\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeFile(repository.scratch("o.txt"), c.original);
        writeFile(repository.scratch("m.txt"), c.modified);
        LuSVNDiffOptions options;
        options.setWhitespaceCompareBehavior(c.whitespace);
        options.setIgnoreEOLStyle(c.ignoreEOLStyle);
        const auto diff = LuSVNDiff::compareOriginalFileAtPath(localPath(repository.scratch("o.txt")),
                                                               localPath(repository.scratch("m.txt")), options,
                                                               repository.context());
        EXPECT_EQ(sectionsText(*diff), c.sections);
    }
}

TEST(LuSVNDiffTest, UTF16FilesCompareAsTheirText)
{
    const auto& repository = HistoryRepository::shared();
    tessera_test::TemporaryDirectory temporary;
    tessera_test::ScopedEnvironment environment({{"TMPDIR", temporary.path().c_str()}});
    const std::string original = "one\ntwo\nthree\nfour\n", modified = "one\n2\nthree\nfour\nfive\n";
    writeFile(repository.scratch("u8-o.txt"), original);
    writeFile(repository.scratch("u8-m.txt"), modified);
    const auto expected = LuSVNDiff::compareOriginalFileAtPath(
        localPath(repository.scratch("u8-o.txt")), localPath(repository.scratch("u8-m.txt")), repository.context());
    for (const bool bigEndian : {false, true}) {
        SCOPED_TRACE(bigEndian ? "big-endian" : "little-endian");
        writeFile(repository.scratch("u16-o.txt"), tessera_history_test::utf16(original, bigEndian));
        writeFile(repository.scratch("u16-m.txt"), tessera_history_test::utf16(modified, !bigEndian));
        EXPECT_EQ(LuSVNDiff::encodingOfFile(localPath(repository.scratch("u16-o.txt"))), LuSVNTextEncoding::UTF16);
        const auto diff = LuSVNDiff::compareOriginalFileAtPath(
            localPath(repository.scratch("u16-o.txt")), localPath(repository.scratch("u16-m.txt")),
            repository.context());
        EXPECT_EQ(sectionsText(*diff), sectionsText(*expected));
        EXPECT_TRUE(std::filesystem::is_empty(temporary.path())) << "temporary copies left behind";
    }
    // The first file's copy goes when the second cannot be read.
    EXPECT_THROW(LuSVNDiff::compareOriginalFileAtPath(localPath(repository.scratch("u16-o.txt")),
                                                      localPath(repository.scratch("absent.txt")),
                                                      repository.context()),
                 LuSVNNoSuchEntryException);
    EXPECT_TRUE(std::filesystem::is_empty(temporary.path()));
    // A file shorter than 4 bytes is UTF-8 whatever it begins with.
    writeFile(repository.scratch("short.txt"), "\xFF\xFE" "a");
    EXPECT_EQ(LuSVNDiff::encodingOfFile(localPath(repository.scratch("short.txt"))), LuSVNTextEncoding::UTF8);
}

TEST(LuSVNDiffTest, UTF16FileWithoutRoomForItsCopyIsRefused)
{
    const auto& repository = HistoryRepository::shared();
    writeFile(repository.scratch("u16.txt"), tessera_history_test::utf16("a\nb\n", false));
    writeFile(repository.scratch("u8.txt"), "a\n");
    tessera_test::ScopedEnvironment environment({{"TMPDIR", repository.scratch("no-such-directory").c_str()}});
    try {
        LuSVNDiff::compareOriginalFileAtPath(localPath(repository.scratch("u8.txt")),
                                             localPath(repository.scratch("u16.txt")),
                                             repository.context());
        FAIL() << "no exception";
    } catch (const LuSVNNoSuchEntryException& exception) {
        EXPECT_STREQ(exception.what(), "Failed to generate a temporary file name");
    }
}

// The hunks of a unified diff: everything from the first "@@".
std::string hunks(const std::string& text)
{
    const auto at = text.find("\n@@");
    return at == std::string::npos ? "" : text.substr(at + 1);
}

TEST(LuSVNDiffTest, UnifiedDiffOfTwoFilesHasTheHunksOfSvnDiff)
{
    const auto& repository = HistoryRepository::shared();
    tessera_test::TemporaryDirectory directory;  // a repository of its own: the shared one stays as it is
    const std::string wc = directory / "wc";
    tessera_test::checkout(tessera_test::makeRepository(directory / "repo"), wc);
    const auto original = tessera_history_test::numberedLines(13);
    writeFile(wc + "/f.txt", tessera_history_test::joinLines(original));
    writeFile(directory / "original.txt", tessera_history_test::joinLines(original));
    tessera_history_test::svnOrThrow({"add", "-q", wc + "/f.txt"});
    tessera_history_test::svnOrThrow({"commit", "-q", "-m", "original", wc});
    for (const auto& c : tessera_history_test::editCases()) {
        SCOPED_TRACE(c.name);
        const auto edited = tessera_history_test::applyEdits(original, c.edits);
        writeFile(wc + "/f.txt", edited.text());
        const std::string expected = hunks(tessera_history_test::svnOrThrow({"diff", wc + "/f.txt"}));

        std::ostringstream stream;
        LuSVNDiff::compareOriginalFileAtPath(localPath(directory / "original.txt"), "a", localPath(wc + "/f.txt"), "b",
                                             LuSVNStdOutputStream::streamWithStream(stream),
                                             LuSVNDiffOptions::defaults(), repository.context());
        EXPECT_EQ(hunks(stream.str()), expected);
        if (!expected.empty()) {
            EXPECT_EQ(stream.str().substr(0, 12), "--- a\n+++ b\n");
        }
        LuSVNDiff::compareOriginalFileAtPath(localPath(directory / "original.txt"), "a", localPath(wc + "/f.txt"), "b",
                                             localPath(directory / "out.diff"), LuSVNDiffOptions::defaults(),
                                             repository.context());
        EXPECT_EQ(readFile(directory / "out.diff"), stream.str());
    }
}

TEST(LuSVNDiffTest, LocationsDiffAsSvnDiffPrintsThem)
{
    const auto& repository = HistoryRepository::shared();
    tessera_test::TemporaryDirectory directory;
    const std::string wc = directory / "wc";
    tessera_test::checkout(repository.url(), wc);
    writeFile(wc + "/trunk/moved.txt", "changed\n");
    tessera_history_test::svnOrThrow({"propset", "-q", "colour", "rot", wc + "/trunk/le.txt"});
    const std::string url = repository.url();
    const auto revision = [](std::int32_t number) { return LuSVNRevision::revisionWithNumber(number); };
    const struct {
        const char* name;
        LuSVNPath::Path original;
        std::shared_ptr<const LuSVNRevision> originalRevision;
        LuSVNPath::Path modified;
        std::shared_ptr<const LuSVNRevision> modifiedRevision;
        std::vector<std::string> svnArguments;
        std::int32_t whitespace;
        bool noticeAncestry = true;
        bool diffDeleted = true;
    } cases[] = {
        {"repository revisions", LuSVNURL::URLWithString(url), revision(1), LuSVNURL::URLWithString(url), revision(6),
         {"-r", "1:6", url}, 0},
        {"one file across revisions", LuSVNURL::URLWithString(url + "/trunk/moved.txt"), revision(4),
         LuSVNURL::URLWithString(url + "/trunk/moved.txt"), revision(6), {"-r", "4:6", url + "/trunk/moved.txt"}, 0},
        {"working copy against its base", localPath(wc), LuSVNRevision::BASE(), localPath(wc), LuSVNRevision::WORKING(),
         {wc}, 0},
        {"ignoring space changes", localPath(wc), LuSVNRevision::BASE(), localPath(wc), LuSVNRevision::WORKING(),
         {"-x", "-b", wc}, 1},
        // r5 replaced trunk/bin.dat by a copy of the same bytes from the branch.
        {"a replacement as deletion and addition", LuSVNURL::URLWithString(url + "/trunk"), revision(4),
         LuSVNURL::URLWithString(url + "/trunk"), revision(5), {"--notice-ancestry", "-r", "4:5", url + "/trunk"}, 0},
        {"a replacement compared with what it replaced", LuSVNURL::URLWithString(url + "/trunk"), revision(4),
         LuSVNURL::URLWithString(url + "/trunk"), revision(5), {"-r", "4:5", url + "/trunk"}, 0, false},
        // r4 moved trunk/a.txt away.
        {"deleted files by their header alone", LuSVNURL::URLWithString(url + "/trunk"), revision(3),
         LuSVNURL::URLWithString(url + "/trunk"), revision(4), {"--no-diff-deleted", "-r", "3:4", url + "/trunk"}, 0,
         false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::string> arguments = {"diff"};
        arguments.insert(arguments.end(), c.svnArguments.begin(), c.svnArguments.end());
        LuSVNDiffOptions options;
        options.setWhitespaceCompareBehavior(c.whitespace);
        options.setNoticeAncestry(c.noticeAncestry);
        options.setDiffDeleted(c.diffDeleted);
        LuSVNDiff::compareOriginalAtPath(c.original, c.originalRevision, c.modified, c.modifiedRevision,
                                         localPath(directory / "out.diff"), options, repository.context());
        const std::string expected = tessera_history_test::svnOrThrow(arguments);
        EXPECT_EQ(readFile(directory / "out.diff"), expected);
        EXPECT_NE(fcntl(STDERR_FILENO, F_GETFD), -1) << "the diff closed the process's standard error";
        std::ostringstream stream;
        LuSVNDiff::compareOriginalAtPath(c.original, c.originalRevision, c.modified, c.modifiedRevision, nullptr,
                                         LuSVNStdOutputStream::streamWithStream(stream), options,
                                         repository.context());
        EXPECT_EQ(stream.str(), expected);
    }
    // Headers relative to a directory: svn's absolute ones without it.
    std::ostringstream relative;
    LuSVNDiff::compareOriginalAtPath(localPath(wc), LuSVNRevision::BASE(), localPath(wc), LuSVNRevision::WORKING(),
                                     localPath(wc),
                                     LuSVNStdOutputStream::streamWithStream(relative), LuSVNDiffOptions(),
                                     repository.context());
    std::string expected = tessera_history_test::svnOrThrow({"diff", wc});
    for (auto at = expected.find(wc + "/"); at != std::string::npos; at = expected.find(wc + "/"))
        expected.erase(at, wc.size() + 1);
    EXPECT_EQ(relative.str(), expected);
}

// A stream that refuses every write.
class FailingStream : public LuSVNOutputStream {
public:
    long write(const std::uint8_t*, std::size_t) override { return -1; }
};

TEST(LuSVNDiffTest, StreamFailureReachesTheCaller)
{
    const auto& repository = HistoryRepository::shared();
    const auto url = LuSVNURL::URLWithString(repository.url());
    // Through the copying thread, and (git format) written by Subversion itself.
    for (const bool git : {false, true}) {
        SCOPED_TRACE(git ? "git format" : "plain");
        LuSVNDiffOptions options;
        options.setUseGitDiffFormat(git);
        try {
            LuSVNDiff::compareOriginalAtPath(url, LuSVNRevision::revisionWithNumber(1), url,
                                             LuSVNRevision::revisionWithNumber(6), nullptr,
                                             std::make_shared<FailingStream>(), options, repository.context());
            ADD_FAILURE() << "no exception";
        } catch (const LuSVNException& exception) {
            EXPECT_STREQ(exception.what(), "Unable to write data to output stream");
        }
    }
}

TEST(LuSVNDiffTest, RelativePathsNeedTheNewerInterface)
{
    const auto& repository = HistoryRepository::shared();
    tessera_test::TemporaryDirectory directory;
    const auto url = LuSVNURL::URLWithString(repository.url());
    const auto r1 = LuSVNRevision::revisionWithNumber(1), r2 = LuSVNRevision::revisionWithNumber(2);
    const auto output = localPath(directory / "out.diff");
    try {
        LuSVNDiff::compareOriginalAtPath(url, r1, url, r2, url, output, LuSVNDiffOptions::defaults(),
                                         repository.context(TESSERA_TEST_BUNDLE_1_4_6));
        FAIL() << "no exception";
    } catch (const LuSVNException& exception) {
        EXPECT_STREQ(exception.what(), "relativeToPath requires 1.5 or greater");
    }
    // Without it the older interface writes what the newer one writes.
    LuSVNDiff::compareOriginalAtPath(url, r1, url, r2, output, LuSVNDiffOptions::defaults(),
                                     repository.context(TESSERA_TEST_BUNDLE_1_4_6));
    const std::string older = readFile(directory / "out.diff");
    LuSVNDiff::compareOriginalAtPath(url, r1, url, r2, output, LuSVNDiffOptions::defaults(), repository.context());
    EXPECT_EQ(older, readFile(directory / "out.diff"));
    EXPECT_NE(older, "");
}

// "item props kind path" of each item of svn diff --summarize --xml, the path
// relative to `target` and with %XX escapes of a URL undone.
std::multiset<std::string> svnSummary(const std::vector<std::string>& arguments, const std::string& target)
{
    std::vector<std::string> command = {"diff", "--summarize", "--xml"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const std::string xml = tessera_history_test::svnOrThrow(command);
    std::multiset<std::string> items;
    const std::regex pathElement(R"(<path\s+([^>]*)>([^<]*)</path>)");
    const std::regex attribute(R"re((\w+)="([^"]*)")re");
    for (std::sregex_iterator at(xml.begin(), xml.end(), pathElement), end; at != end; ++at) {
        std::map<std::string, std::string> attributes;
        const std::string list = (*at)[1];
        for (std::sregex_iterator a(list.begin(), list.end(), attribute); a != std::sregex_iterator(); ++a)
            attributes[(*a)[1]] = (*a)[2];
        std::string path;
        const std::string shown = (*at)[2];
        for (std::size_t i = 0; i < shown.size(); ++i) {
            if (shown[i] == '%' && i + 2 < shown.size()) {
                path += static_cast<char>(std::stoi(shown.substr(i + 1, 2), nullptr, 16));
                i += 2;
            } else {
                path += shown[i];
            }
        }
        path = path == target ? "" : path.substr(target.size() + 1);
        items.insert(attributes["item"] + " " + attributes["props"] + " " + attributes["kind"] + " " + path);
    }
    return items;
}

std::string summaryLine(const LuSVNDiffSummary& item)
{
    const char* kinds[] = {"none", "file", "dir", "unknown"};
    return LuSVNDiffSummary::wordFromKind(item.kind()) + " " + (item.propertiesChanged() ? "modified" : "none") +
           " " + kinds[item.nodeKind()] + " " + item.path();
}

TEST(LuSVNDiffTest, SummariesListWhatSvnDiffSummarizeLists)
{
    const auto& repository = HistoryRepository::shared();
    tessera_test::TemporaryDirectory directory;
    const std::string wc = directory / "wc";
    tessera_test::checkout(repository.url(), wc);
    writeFile(wc + "/trunk/moved.txt", "changed\n");
    writeFile(wc + "/trunk/new.txt", "new\n");
    tessera_history_test::svnOrThrow({"add", "-q", wc + "/trunk/new.txt"});
    tessera_history_test::svnOrThrow({"rm", "-q", wc + "/trunk/be.txt"});
    tessera_history_test::svnOrThrow({"propset", "-q", "colour", "rot", wc + "/trunk"});
    const std::string url = repository.url();
    const auto revision = [](std::int32_t number) { return LuSVNRevision::revisionWithNumber(number); };
    const auto at = [](const std::string& location) -> LuSVNPath::Path {
        return location.find("://") != std::string::npos ? LuSVNPath::Path(LuSVNURL::URLWithString(location))
                                                         : LuSVNPath::Path(localPath(location));
    };
    const struct {
        const char* name;
        std::string target;
        std::shared_ptr<const LuSVNRevision> from, to, peg;  // peg set: the peg form
        std::vector<std::string> svnArguments;
        bool noticeAncestry = false;
        bool recursive = true;
    } cases[] = {
        {"repository revisions", url, revision(1), revision(6), nullptr, {"-r", "1:6", url}},
        {"a move and a copy", url + "/trunk", revision(3), revision(4), nullptr, {"-r", "3:4", url + "/trunk"}},
        // r5 replaced trunk/bin.dat by a copy of the same bytes: no change
        // unless ancestry counts.
        {"a replacement as deletion and addition", url + "/trunk", revision(4), revision(5), nullptr,
         {"--notice-ancestry", "-r", "4:5", url + "/trunk"}, true},
        {"the peg form", url + "/trunk", revision(1), revision(2), LuSVNRevision::HEAD(),
         {"-r", "1:2", url + "/trunk@HEAD"}},
        {"local edits, additions, deletions and properties", wc, LuSVNRevision::BASE(), LuSVNRevision::WORKING(),
         nullptr, {wc}},
        {"the files of a directory only", wc + "/trunk", LuSVNRevision::BASE(), LuSVNRevision::WORKING(), nullptr,
         {"--depth", "files", wc + "/trunk"}, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        LuSVNDiffOptions options;
        options.setNoticeAncestry(c.noticeAncestry);
        options.setRecursive(c.recursive);
        std::multiset<std::string> items;
        const auto receive = [&](const LuSVNDiffSummary& item) { items.insert(summaryLine(item)); };
        if (c.peg)
            LuSVNDiff::summarizePath(at(c.target), c.peg, c.from, c.to, options, receive, repository.context());
        else
            LuSVNDiff::summarizeOriginalAtPath(at(c.target), c.from, at(c.target), c.to, options, receive,
                                               repository.context());
        EXPECT_EQ(items, svnSummary(c.svnArguments, c.target));
    }
}

TEST(LuSVNDiffTest, ReceiverExceptionStopsTheSummaryAndReachesTheCaller)
{
    const auto& repository = HistoryRepository::shared();
    const auto url = LuSVNURL::URLWithString(repository.url());
    int calls = 0;
    try {
        LuSVNDiff::summarizeOriginalAtPath(
            url, LuSVNRevision::revisionWithNumber(0), url, LuSVNRevision::revisionWithNumber(6), LuSVNDiffOptions(),
            [&](const LuSVNDiffSummary&) {
                ++calls;
                throw std::range_error("enough");
            },
            repository.context());
        FAIL() << "no exception";
    } catch (const std::range_error& exception) {
        EXPECT_STREQ(exception.what(), "enough");
    }
    EXPECT_EQ(calls, 1);
}

TEST(LuSVNDiffTest, NewerDiffsMatchSvnAndOlderBackendsRefuseThem)
{
    const auto& repository = HistoryRepository::shared();
    tessera_test::TemporaryDirectory directory;
    const std::string wc = directory / "wc";
    tessera_test::checkout(repository.url(), wc);
    tessera_history_test::svnOrThrow({"copy", "-q", wc + "/trunk/moved.txt", wc + "/trunk/copy.txt"});
    writeFile(wc + "/trunk/copy.txt", "changed\n");
    tessera_history_test::svnOrThrow({"propset", "-q", "colour", "rot", wc + "/trunk/le.txt"});
    const auto url = LuSVNURL::URLWithString(repository.url());
    const auto r1 = LuSVNRevision::revisionWithNumber(1), r6 = LuSVNRevision::revisionWithNumber(6);
    const struct {
        const char* name;
        bool git, propertiesOnly, copiesAsAdds, local;
        std::vector<std::string> svnArguments;
    } cases[] = {
        {"git format between revisions", true, false, false, false, {"--git", "-r", "1:6", repository.url()}},
        {"properties only between revisions", false, true, false, false,
         {"--properties-only", "-r", "1:6", repository.url()}},
        {"git format of local changes", true, false, false, true, {"--git", wc}},
        {"copies as additions", false, false, true, true, {"--show-copies-as-adds", wc}},
        {"properties only of local changes", false, true, false, true, {"--properties-only", wc}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        LuSVNDiffOptions options;
        options.setUseGitDiffFormat(c.git);
        options.setPropertiesOnly(c.propertiesOnly);
        options.setShowCopiesAsAdds(c.copiesAsAdds);
        const LuSVNPath::Path path = c.local ? LuSVNPath::Path(localPath(wc)) : LuSVNPath::Path(url);
        const auto from = c.local ? LuSVNRevision::BASE() : r1;
        const auto to = c.local ? LuSVNRevision::WORKING() : r6;
        std::vector<std::string> arguments = {"diff"};
        arguments.insert(arguments.end(), c.svnArguments.begin(), c.svnArguments.end());
        const std::string expected = tessera_history_test::svnOrThrow(arguments);
        std::ostringstream stream;
        LuSVNDiff::compareOriginalAtPath(path, from, path, to, nullptr, LuSVNStdOutputStream::streamWithStream(stream),
                                         options, repository.context());
        EXPECT_EQ(stream.str(), expected);
        LuSVNDiff::compareOriginalAtPath(path, from, path, to, localPath(directory / "out.diff"), options,
                                         repository.context());
        EXPECT_EQ(readFile(directory / "out.diff"), expected);
        try {
            LuSVNDiff::compareOriginalAtPath(path, from, path, to, nullptr,
                                             LuSVNStdOutputStream::streamWithStream(stream), options,
                                             repository.context(TESSERA_TEST_BUNDLE_1_6_23));
            ADD_FAILURE() << "a 1.6 backend wrote the diff";
        } catch (const LuSVNException& exception) {
            EXPECT_STREQ(exception.what(),
                         "Git diffs, properties-only diffs and copies shown as additions require 1.8 or greater");
        }
    }
    // Summaries came with 1.5.
    std::set<std::string> byRelease[2];
    const char* bundles[] = {TESSERA_TEST_BUNDLE_1_5_9, nullptr};
    for (int index = 0; index < 2; ++index)
        LuSVNDiff::summarizeOriginalAtPath(
            url, r1, url, r6, LuSVNDiffOptions(),
            [&](const LuSVNDiffSummary& item) { byRelease[index].insert(summaryLine(item)); },
            repository.context(bundles[index]));
    EXPECT_EQ(byRelease[0], byRelease[1]);
    try {
        LuSVNDiff::summarizePath(url, LuSVNRevision::HEAD(), r1, r6, LuSVNDiffOptions(),
                                 [](const LuSVNDiffSummary&) {}, repository.context(TESSERA_TEST_BUNDLE_1_4_6));
        FAIL() << "a 1.4 backend summarised";
    } catch (const LuSVNException& exception) {
        EXPECT_STREQ(exception.what(), "Diff summaries require 1.5 or greater");
    }
}

TEST(LuSVNDiffTest, PegDiffFollowsTheLocationAsItWasAtThePeg)
{
    const auto& repository = HistoryRepository::shared();
    // trunk/a.txt was moved away in r4: only its peg finds it.
    const std::string file = repository.url() + "/trunk/a.txt";
    const auto r1 = LuSVNRevision::revisionWithNumber(1), r2 = LuSVNRevision::revisionWithNumber(2);
    for (const bool git : {false, true}) {
        SCOPED_TRACE(git ? "git format" : "plain");
        LuSVNDiffOptions options;
        options.setUseGitDiffFormat(git);
        std::vector<std::string> arguments = {"diff", "-r", "1:2", file + "@3"};
        if (git)
            arguments.push_back("--git");
        std::ostringstream stream;
        LuSVNDiff::compareAtPath(LuSVNURL::URLWithString(file), LuSVNRevision::revisionWithNumber(3), r1, r2, nullptr,
                                 LuSVNStdOutputStream::streamWithStream(stream), options, repository.context());
        EXPECT_EQ(stream.str(), tessera_history_test::svnOrThrow(arguments));
        EXPECT_NE(stream.str(), "");
    }
    try {
        std::ostringstream stream;
        LuSVNDiff::compareAtPath(LuSVNURL::URLWithString(file), LuSVNRevision::revisionWithNumber(3), r1, r2, nullptr,
                                 LuSVNStdOutputStream::streamWithStream(stream), LuSVNDiffOptions(),
                                 repository.context(TESSERA_TEST_BUNDLE_1_6_23));
        FAIL() << "a 1.6 backend wrote the diff";
    } catch (const LuSVNException& exception) {
        EXPECT_STREQ(exception.what(), "The peg form of the diff requires 1.8 or greater");
    }
}

TEST(LuSVNDiffTest, CoalescingMergesRunsOfOneType)
{
    auto diff = LuSVNDiff::diff();
    const auto add = [&](LuSVNDiffSectionType type, std::uint64_t original, std::uint64_t modified) {
        diff->addSection(LuSVNDiffSection::sectionOfType(type, {original, 1}, {modified, 2}, {}));
    };
    add(LuSVNDiffSectionDiffModified, 0, 0);
    add(LuSVNDiffSectionDiffModified, 1, 2);
    add(LuSVNDiffSectionCommon, 2, 4);
    add(LuSVNDiffSectionDiffModified, 3, 6);
    add(LuSVNDiffSectionDiffModified, 4, 8);
    add(LuSVNDiffSectionDiffModified, 5, 10);
    diff->coaleseAdjacentSectionsOfType(LuSVNDiffSectionDiffModified);
    ASSERT_EQ(diff->sections().size(), 3u);
    EXPECT_EQ(diff->sections()[0]->originalRange(), (LuSVNLineRange{0, 2}));
    EXPECT_EQ(diff->sections()[0]->modifiedRange(), (LuSVNLineRange{0, 4}));
    EXPECT_EQ(diff->sections()[2]->originalRange(), (LuSVNLineRange{3, 3}));
    EXPECT_EQ(diff->sections()[2]->modifiedRange(), (LuSVNLineRange{6, 6}));
    diff->adjustRangesByOffset(10, -2, 1, 5);
    EXPECT_EQ(diff->sections()[0]->originalRange(), (LuSVNLineRange{0, 2}));
    EXPECT_EQ(diff->sections()[1]->originalRange(), (LuSVNLineRange{12, 1}));
    EXPECT_EQ(diff->sections()[2]->modifiedRange(), (LuSVNLineRange{4, 6}));
    EXPECT_EQ(LuSVNDiffSection::stringFromType(static_cast<LuSVNDiffSectionType>(9)), "Unknown (9)");
}

}  // namespace
