#include "HistoryFixture.h"

#include <tessera/LuSVNAuthenticationStack.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNUsernameProvider.h>

#include <filesystem>
#include <stdexcept>

namespace tessera_history_test {

namespace {

void commit(const std::string& author, const std::string& message, const std::string& path)
{
    svnOrThrow({"commit", "-q", "--username", author, "-m", message, path});
}

}  // namespace

const std::vector<EditCase>& editCases()
{
    static const std::vector<EditCase> cases = {
        {"unchanged", {}},
        {"insert at start", {{0, 0, 2}}},
        {"insert in the middle", {{6, 0, 1}}},
        {"insert at end", {{13, 0, 3}}},
        {"delete at start", {{0, 2, 0}}},
        {"delete in the middle", {{5, 3, 0}}},
        {"delete at end", {{11, 2, 0}}},
        {"change at start", {{0, 1, 1}}},
        {"change in the middle", {{2, 1, 2}}},
        {"change at end", {{12, 1, 2}}},
        {"everywhere", {{0, 1, 2}, {2, 1, 1}, {7, 0, 1}, {9, 1, 0}, {12, 1, 1}}},
        {"everything", {{0, 13, 2}}},
        {"emptied", {{0, 13, 0}}},
    };
    return cases;
}

std::shared_ptr<const LuSVNLocalPath> localPath(const std::string& path)
{
    return LuSVNLocalPath::pathWithString(path);
}

std::vector<std::string> numberedLines(int count)
{
    std::vector<std::string> lines;
    for (int line = 1; line <= count; ++line)
        lines.push_back("line " + std::to_string(line));
    return lines;
}

std::string joinLines(const std::vector<std::string>& lines)
{
    std::string text;
    for (const auto& line : lines)
        text += line + "\n";
    return text;
}

std::string EditedText::text() const
{
    return joinLines(lines);
}

EditedText applyEdits(const std::vector<std::string>& original, const std::vector<Edit>& edits)
{
    EditedText result;
    auto edit = edits.begin();
    int added = 0;
    for (std::size_t line = 0; line <= original.size();) {
        if (edit != edits.end() && edit->at == line) {
            for (std::size_t n = 0; n < edit->inserted; ++n) {
                result.lines.push_back("local " + std::to_string(++added));
                result.origin.push_back(-1);
            }
            line += edit->removed;
            ++edit;
            continue;
        }
        if (line == original.size())
            break;
        result.lines.push_back(original[line]);
        result.origin.push_back(static_cast<long>(line));
        ++line;
    }
    return result;
}

std::string svnOrThrow(const std::vector<std::string>& arguments)
{
    const auto result = tessera_test::svn(arguments);
    if (result.status != 0)
        throw std::runtime_error("svn " + arguments.front() + " failed: " + result.output);
    return result.output;
}

std::string utf16(const std::string& ascii, bool bigEndian)
{
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char character : ascii) {
        bytes += bigEndian ? '\0' : character;
        bytes += bigEndian ? character : '\0';
    }
    return bytes;
}

const HistoryRepository& HistoryRepository::shared()
{
    static const HistoryRepository repository(false);
    return repository;
}

const HistoryRepository& HistoryRepository::withMerges()
{
    static const HistoryRepository repository(true);
    return repository;
}

HistoryRepository::HistoryRepository(bool withMerges)
{
    url_ = tessera_test::makeRepository(directory_ / "repo");
    if (withMerges)
        fillWithMerges();
    else
        fill();
}

void HistoryRepository::fillWithMerges()
{
    using tessera_test::writeFile;
    const std::string wc = workingCopy();
    tessera_test::checkout(url_, wc);
    std::filesystem::create_directories(item("trunk"));
    std::filesystem::create_directories(item("branches"));
    writeFile(item("trunk/f.txt"), "1\n2\n3\n4\n");
    svnOrThrow({"add", "-q", item("trunk"), item("branches")});
    commit("alice", "Add", wc);
    svnOrThrow({"copy", "-q", "--username", "bob", "-m", "Branch", url_ + "/trunk", url_ + "/branches/b"});
    svnOrThrow({"update", "-q", wc});
    writeFile(item("branches/b/f.txt"), "1\nB2\n3\n4\n");
    commit("bob", "Two", wc);
    writeFile(item("branches/b/f.txt"), "1\nB2\n3\nB4\n");
    svnOrThrow({"propset", "-q", "colour", "green", item("branches/b/f.txt")});
    commit("carol", "Four", wc);
    svnOrThrow({"update", "-q", wc});
    svnOrThrow({"merge", "-q", url_ + "/branches/b", item("trunk")});
    commit("alice", "Merge b", wc);
    svnOrThrow({"update", "-q", wc});
    svnOrThrow({"merge", "-q", "-c", "-3", url_ + "/branches/b", item("trunk")});
    commit("alice", "Undo r3", wc);
    svnOrThrow({"update", "-q", wc});
}

void HistoryRepository::fill()
{
    using tessera_test::writeFile;
    const std::string tree = directory_ / "tree";
    std::filesystem::create_directories(tree + "/trunk");
    writeFile(tree + "/trunk/a.txt", joinLines(numberedLines(12)));
    writeFile(tree + "/trunk/naïve-ü.txt", "héllo\nwörld\n");
    std::string binary;
    for (int byte = 0; byte < 512; ++byte)
        binary += static_cast<char>(byte % 256);
    writeFile(tree + "/trunk/bin.dat", binary);
    writeFile(tree + "/trunk/le.txt", utf16("one\ntwo\nthree\n", false));
    writeFile(tree + "/trunk/be.txt", utf16("one\ntwo\nthree\n", true));
    svnOrThrow({"import", "-q", "--username", "alice", "-m", "Import", tree, url_});

    const std::string wc = workingCopy();
    tessera_test::checkout(url_, wc);
    std::string a = joinLines(numberedLines(12));
    a.replace(a.find("line 3\n"), 7, "line three\n");
    writeFile(item("trunk/a.txt"), a + "line 13\n");
    writeFile(item("trunk/le.txt"), utf16("one\nzwei\nthree\n", false));
    svnOrThrow({"propset", "-q", "colour", "blau", item("trunk/naïve-ü.txt")});
    commit("bob", "Edits & a <property>\nsecond line: ünïcode", wc);

    svnOrThrow({"copy", "-q", "--username", "alice", "-m", "Branch", url_ + "/trunk", url_ + "/branch"});
    svnOrThrow({"update", "-q", wc});

    svnOrThrow({"move", "-q", item("trunk/a.txt"), item("trunk/moved.txt")});
    commit("bob", "Move", wc);

    svnOrThrow({"rm", "-q", item("trunk/bin.dat")});
    svnOrThrow({"copy", "-q", item("branch/bin.dat"), item("trunk/bin.dat")});
    commit("alice", "Replace", wc);

    std::string moved = a + "line 13\n";
    moved.replace(0, 7, "first\n");
    moved.replace(moved.find("line 10\n"), 8, "line ten\n");
    writeFile(item("trunk/moved.txt"), moved);
    writeFile(item("trunk/be.txt"), utf16("one\ntwo\ndrei\n", true));
    commit("carol", "Edit", wc);
    svnOrThrow({"update", "-q", wc});
}

std::shared_ptr<LuSVNContext> HistoryRepository::context(const char* bundlePath) const
{
    auto* loader = LuSVNBundleLoader::sharedInstance().get();
    auto context = LuSVNContext::contextWithBundle(
        bundlePath ? loader->loadBundleAtPath(bundlePath) : loader->newestBundle(), {}, config_.path());
    // Local repositories ask for a user name.
    context->authenticationStack()->addProvider(std::make_shared<LuSVNUsernameProvider>());
    return context;
}

}  // namespace tessera_history_test
