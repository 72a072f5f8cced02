// How tessera finds credentials, as svn does: Subversion's stores in the
// configuration directory, the --username and --password of the command
// line, the certificate failures of --trust-server-cert-failures, and unless
// the run is non-interactive, questions on the terminal.
#pragma once

#include <cstdint>
#include <string>

class LuSVNContext;
struct TesseraGlobalSettings;

/// The certificate failures (LuSVNSSLFailures.h) of a comma-separated list
/// of svn's words: unknown-ca, cn-mismatch, expired, not-yet-valid, other.
/// Another word raises svn's error E205000 "Unknown value '<word>' for
/// --trust-server-cert-failures." with the supported values.
std::uint32_t parseTrustFailures(const std::string& list);

/// Checks the options that svn allows only together (E205000) and reads
/// the password of --password-from-stdin, the first line of standard input.
void completeAuthenticationSettings(TesseraGlobalSettings& settings);

/// Applies the --config-option settings to the context and gives it svn's
/// providers and parameters for the run's settings.
void setUpContext(LuSVNContext& context, const TesseraGlobalSettings& settings);
