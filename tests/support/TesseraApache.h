// A real Apache httpd with mod_dav_svn and mod_ssl on 127.0.0.1 for the
// tests that authenticate over HTTPS.
#pragma once

#include <memory>
#include <string>

#include "TesseraServerProcess.h"
#include "TesseraTestSupport.h"

namespace tessera_test {

/// Apache serving one repository (trunk/file.txt with the property "color" =
/// "blue") at /svn on three ports of 127.0.0.1, each with certificates made
/// by openssl for this server:
///
///   basicURL()        a self-signed certificate for 127.0.0.1 (unknown
///                     authority only); Basic authentication of "alice",
///                     "wonderland" from an htpasswd file
///   mismatchURL()     a self-signed certificate for another host name
///                     (unknown authority and host mismatch); anonymous
///   clientCertificateURL()  the first certificate; only clients with a
///                     certificate of the server's client CA get in
///
/// The client certificate is a PKCS#12 file with the passphrase
/// clientPassphrase. Run from a configuration written here, as an
/// unprivileged process; stopped when the object goes.
class Apache {
public:
    static constexpr const char* realmName = "Tessera HTTPS Realm";
    static constexpr const char* username = "alice";
    static constexpr const char* password = "wonderland";
    static constexpr const char* clientPassphrase = "tweedledum";

    /// Why Apache cannot run on this machine (a program or module missing),
    /// or empty when it can.
    static std::string unavailableReason();

    Apache();
    Apache(const Apache&) = delete;
    Apache& operator=(const Apache&) = delete;

    std::string basicURL() const { return url(basicPort_); }
    std::string mismatchURL() const { return url(mismatchPort_); }
    std::string clientCertificateURL() const { return url(clientPort_); }
    /// Subversion's realm of Basic authentication.
    std::string basicRealm() const { return "<https://127.0.0.1:" + std::to_string(basicPort_) + "> " + realmName; }
    /// Subversion's realm of a server's certificate: "https://127.0.0.1:PORT".
    static std::string certificateRealm(const std::string& url) { return url.substr(0, url.rfind('/')); }
    /// The client's certificate.
    std::string clientCertificatePath() const { return root / "client.p12"; }

private:
    static std::string url(int port) { return "https://127.0.0.1:" + std::to_string(port) + "/svn"; }

    TemporaryDirectory root;
    int basicPort_ = 0;
    int mismatchPort_ = 0;
    int clientPort_ = 0;
    std::unique_ptr<ServerProcess> process_;
};

}  // namespace tessera_test
