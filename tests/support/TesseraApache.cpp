#include "TesseraApache.h"

#include <filesystem>
#include <stdexcept>
#include <vector>

namespace tessera_test {

namespace {

void runOrThrow(const std::vector<std::string>& arguments)
{
    const CommandResult result = run(arguments);
    if (result.status != 0)
        throw std::runtime_error(arguments[0] + " failed: " + result.output);
}

// A self-signed certificate and its key, NAME.pem and NAME.key.
void selfSigned(const std::string& directory, const std::string& name, const std::string& subject,
                const std::string& alternativeName)
{
    runOrThrow({TESSERA_OPENSSL_PROGRAM, "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                "-nodes", "-days", "2", "-keyout", directory + "/" + name + ".key", "-out",
                directory + "/" + name + ".pem", "-subj", subject, "-addext", "subjectAltName=" + alternativeName});
}

std::string virtualHost(int port, const std::string& certificate, const std::string& directory,
                        const std::string& access)
{
    return "<VirtualHost 127.0.0.1:" + std::to_string(port) + ">\n  SSLEngine on\n  SSLCertificateFile " + directory +
           "/" + certificate + ".pem\n  SSLCertificateKeyFile " + directory + "/" + certificate + ".key\n" + access +
           "</VirtualHost>\n";
}

std::string repositoryLocation(const std::string& directory, const std::string& access)
{
    return "  <Location /svn>\n    DAV svn\n    SVNPath " + directory + "/repo\n" + access + "  </Location>\n";
}

}  // namespace

std::string Apache::unavailableReason()
{
    for (const std::string program : {TESSERA_APACHE_PROGRAM, TESSERA_HTPASSWD_PROGRAM, TESSERA_OPENSSL_PROGRAM})
        if (program.ends_with("NOTFOUND"))
            return "not installed: " + program;
    const std::string modules = TESSERA_APACHE_MODULES;
    if (modules.ends_with("NOTFOUND"))
        return "Apache's mod_dav_svn is not installed";
    return {};
}

Apache::Apache()
{
    if (const std::string reason = unavailableReason(); !reason.empty())
        throw std::runtime_error(reason);
    const std::string directory = root.path();
    const std::string fileURL = makeRepository(directory + "/repo");
    std::filesystem::create_directories(directory + "/tree/trunk");
    writeFile(directory + "/tree/trunk/file.txt", "file\n");
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{"import", "-q", "-m", "layout", directory + "/tree", fileURL},
                                               {"checkout", "-q", fileURL + "/trunk", directory + "/wc"},
                                               {"propset", "-q", "color", "blue", directory + "/wc/file.txt"},
                                               {"commit", "-q", "-m", "color", directory + "/wc"}}) {
        const CommandResult result = svn(arguments);
        if (result.status != 0)
            throw std::runtime_error("svn " + arguments[0] + " failed: " + result.output);
    }
    std::filesystem::remove_all(directory + "/wc");
    std::filesystem::remove_all(directory + "/tree");

    selfSigned(directory, "server", "/CN=127.0.0.1", "IP:127.0.0.1");
    selfSigned(directory, "other", "/CN=tessera.invalid", "DNS:tessera.invalid");
    selfSigned(directory, "ca", "/CN=Tessera Client CA", "DNS:ca.tessera.invalid");
    runOrThrow({TESSERA_OPENSSL_PROGRAM, "req", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                "-keyout", directory + "/client.key", "-out", directory + "/client.csr", "-subj", "/CN=alice"});
    runOrThrow({TESSERA_OPENSSL_PROGRAM, "x509", "-req", "-days", "2", "-in", directory + "/client.csr", "-CA",
                directory + "/ca.pem", "-CAkey", directory + "/ca.key", "-CAcreateserial", "-out",
                directory + "/client.pem"});
    runOrThrow({TESSERA_OPENSSL_PROGRAM, "pkcs12", "-export", "-in", directory + "/client.pem", "-inkey",
                directory + "/client.key", "-out", clientCertificatePath(), "-passout",
                std::string("pass:") + clientPassphrase});
    runOrThrow({TESSERA_HTPASSWD_PROGRAM, "-bc", directory + "/htpasswd", username, password});

    basicPort_ = freeLoopbackPort();
    mismatchPort_ = freeLoopbackPort();
    clientPort_ = freeLoopbackPort();
    const std::string modules = TESSERA_APACHE_MODULES;
    std::string configuration = "ServerRoot " + directory + "\nServerName 127.0.0.1\nPidFile " + directory +
                                "/httpd.pid\nDefaultRuntimeDir " + directory + "\nMutex file:" + directory +
                                " default\nErrorLog " + directory +
                                "/error.log\nLogLevel warn\n"
                                "ServerLimit 2\nThreadsPerChild 16\nMaxRequestWorkers 32\n";
    for (const char* module :
         {"mpm_event", "authn_core", "authn_file", "authz_core", "authz_user", "auth_basic", "dav", "dav_svn", "ssl"})
        configuration += "LoadModule " + std::string(module) + "_module " + modules + "/mod_" + module + ".so\n";
    for (int port : {basicPort_, mismatchPort_, clientPort_})
        configuration += "Listen 127.0.0.1:" + std::to_string(port) + "\n";
    configuration +=
        virtualHost(basicPort_, "server", directory,
                    repositoryLocation(directory, "    AuthType Basic\n    AuthName \"" + std::string(realmName) +
                                                      "\"\n    AuthUserFile " + directory +
                                                      "/htpasswd\n    Require valid-user\n")) +
        virtualHost(mismatchPort_, "other", directory, repositoryLocation(directory, "    Require all granted\n")) +
        // Client certificates are asked for by the whole host: asking per
        // location needs a renegotiation that TLS 1.3 does not have.
        virtualHost(clientPort_, "server", directory,
                    "  SSLCACertificateFile " + directory +
                        "/ca.pem\n  SSLVerifyClient require\n"
                        "  SSLVerifyDepth 1\n" +
                        repositoryLocation(directory, "    Require all granted\n"));
    writeFile(directory + "/httpd.conf", configuration);
    ServerProcess::handOver(directory);
    process_ = std::make_unique<ServerProcess>(
        std::vector<std::string>{TESSERA_APACHE_PROGRAM, "-f", directory + "/httpd.conf", "-DFOREGROUND"},
        std::vector<int>{basicPort_, mismatchPort_, clientPort_});
}

}  // namespace tessera_test
