// The description of an SSL server certificate, as Subversion shows it to the
// code that decides whether to trust the server.
#pragma once

#include <string>
#include <utility>

#include <tessera/LuSVNExport.h>

class TESSERA_EXPORT LuSVNCertificate {
public:
    /// A certificate; `representation` is the certificate itself in ASCII
    /// (base-64) form.
    LuSVNCertificate(std::string hostname, std::string fingerprint, std::string validFrom, std::string validTo,
                     std::string issuer, std::string representation)
        : hostname_(std::move(hostname)), fingerprint_(std::move(fingerprint)), validFrom_(std::move(validFrom)),
          validTo_(std::move(validTo)), issuer_(std::move(issuer)), representation_(std::move(representation))
    {
    }

    const std::string& hostname() const { return hostname_; }
    const std::string& fingerprint() const { return fingerprint_; }
    const std::string& validFrom() const { return validFrom_; }
    const std::string& validTo() const { return validTo_; }
    /// The issuer's distinguished name.
    const std::string& issuer() const { return issuer_; }
    const std::string& representation() const { return representation_; }

    bool operator==(const LuSVNCertificate&) const = default;

private:
    std::string hostname_;
    std::string fingerprint_;
    std::string validFrom_;
    std::string validTo_;
    std::string issuer_;
    std::string representation_;
};
