#include "TesseraSvnserve.h"

#include <filesystem>
#include <stdexcept>
#include <vector>

namespace tessera_test {

namespace {

void addLayout(const TemporaryDirectory& root, const std::string& fileURL)
{
    const std::string tree = root / "tree";
    for (const char* file : {"trunk/file.txt", "private/secret.txt", "denied/hidden.txt"}) {
        std::filesystem::create_directories(std::filesystem::path(tree + "/" + file).parent_path());
        writeFile(tree + "/" + file, std::string(file) + "\n");
    }
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"import", "-q", "-m", "layout", tree, fileURL},
             {"checkout", "-q", fileURL, root / "wc"},
             {"propset", "-q", "color", "blue", root / "wc/private/secret.txt"},
             {"commit", "-q", "-m", "color", root / "wc"}}) {
        const CommandResult result = svn(arguments);
        if (result.status != 0)
            throw std::runtime_error("svn " + arguments[0] + " failed: " + result.output);
    }
    std::filesystem::remove_all(root / "wc");
    std::filesystem::remove_all(tree);
}

}  // namespace

Svnserve::Svnserve(SvnserveContent content, bool anonymousRead)
{
    const std::string repository = root / "repo";
    const std::string fileURL = makeRepository(repository);
    writeFile(repository + "/db/fsfs.conf", "[rep-sharing]\nenable-rep-sharing = false\n");
    if (content == SvnserveContent::Layout)
        addLayout(root, fileURL);
    writeFile(repository + "/conf/svnserve.conf",
              std::string("[general]\nanon-access = ") + (anonymousRead ? "read" : "none") +
                  "\nauth-access = write\npassword-db = passwd\nauthz-db = authz\nrealm = " + realmName + "\n");
    writeFile(repository + "/conf/passwd", std::string("[users]\n") + username + " = " + password + "\n");
    writeFile(repository + "/conf/authz", "[/]\n$anonymous = r\n$authenticated = rw\n"
                                          "[/private]\n$anonymous =\n"
                                          "[/denied]\n* =\n");
    const std::string svnserve =
        (std::filesystem::path(TESSERA_SVNADMIN_PROGRAM).parent_path() / "svnserve").string();
    ServerProcess::handOver(root.path());
    const int port = freeLoopbackPort();
    port_ = port;
    process_ = std::make_unique<ServerProcess>(
        std::vector<std::string>{svnserve, "-d", "--foreground", "--threads", "--listen-host", "127.0.0.1",
                                 "--listen-port", std::to_string(port), "-r", root.path()},
        std::vector<int>{port});
}

}  // namespace tessera_test
