#include "HistoryFixture.h"

#include <tessera/LuSVNBundleLoader.h>

#include <filesystem>
#include <stdexcept>

namespace tessera_history_test {

namespace {

std::string numberedLines(int count)
{
    std::string text;
    for (int line = 1; line <= count; ++line)
        text += "line " + std::to_string(line) + "\n";
    return text;
}

void commit(const std::string& author, const std::string& message, const std::string& path)
{
    svnOrThrow({"commit", "-q", "--username", author, "-m", message, path});
}

}  // namespace

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
    static const HistoryRepository repository;
    return repository;
}

HistoryRepository::HistoryRepository()
{
    using tessera_test::writeFile;
    url_ = tessera_test::makeRepository(directory_ / "repo");
    const std::string tree = directory_ / "tree";
    std::filesystem::create_directories(tree + "/trunk");
    writeFile(tree + "/trunk/a.txt", numberedLines(12));
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
    std::string a = numberedLines(12);
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

std::shared_ptr<LuSVNContext> HistoryRepository::context() const
{
    return LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle(), {}, config_.path());
}

}  // namespace tessera_history_test
