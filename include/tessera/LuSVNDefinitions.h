// Named constants: Subversion property names, configuration names,
// authentication parameter names and the default global-ignores.
#pragma once

#include <string_view>

// Subversion properties.
inline constexpr std::string_view LuSVNPropertyKeywords = "svn:keywords";
inline constexpr std::string_view LuSVNPropertyIgnore = "svn:ignore";
inline constexpr std::string_view LuSVNPropertyEOLStyle = "svn:eol-style";
inline constexpr std::string_view LuSVNPropertyMIMEType = "svn:mime-type";
inline constexpr std::string_view LuSVNPropertyExecutable = "svn:executable";
inline constexpr std::string_view LuSVNPropertyNeedsLock = "svn:needs-lock";
inline constexpr std::string_view LuSVNPropertyExternals = "svn:externals";
inline constexpr std::string_view LuSVNPropertyMergeInfo = "svn:mergeinfo";

// Configuration categories, sections and options.
inline constexpr std::string_view LuSVNConfigCategoryConfig = "config";
inline constexpr std::string_view LuSVNConfigCategoryServers = "servers";
inline constexpr std::string_view LuSVNConfigSectionGroups = "groups";
inline constexpr std::string_view LuSVNConfigSectionGlobal = "global";
inline constexpr std::string_view LuSVNConfigSectionAuth = "auth";
inline constexpr std::string_view LuSVNConfigSectionGeneral = "general";
inline constexpr std::string_view LuSVNConfigSectionHelpers = "helpers";
inline constexpr std::string_view LuSVNConfigSectionMiscellany = "miscellany";
inline constexpr std::string_view LuSVNConfigSectionTunnels = "tunnels";
inline constexpr std::string_view LuSVNConfigSectionAutoProps = "auto-props";
inline constexpr std::string_view LuSVNConfigOptionGlobalIgnores = "global-ignores";
inline constexpr std::string_view LuSVNConfigDefaultGlobalIgnores =
    "*.o *.lo *.la *.al .libs *.so *.so.[0-9]* *.a *.pyc *.pyo *.rej *~ #*# .#* .*.swp .DS_Store";
inline constexpr std::string_view LuSVNConfigOptionHelpersEditorCmd = "editor-cmd";
inline constexpr std::string_view LuSVNConfigOptionHelpersDiffCmd = "diff-cmd";
inline constexpr std::string_view LuSVNConfigOptionHelpersDiff3Cmd = "diff3-cmd";
inline constexpr std::string_view LuSVNConfigOptionHelpersDiff3HasProgramArg = "diff3-has-program-arg";
inline constexpr std::string_view LuSVNConfigOptionHelpersMergeToolCmd = "merge-tool-cmd";
inline constexpr std::string_view LuSVNConfigTrue = "TRUE";
inline constexpr std::string_view LuSVNConfigFalse = "FALSE";
inline constexpr std::string_view LuSVNConfigAsk = "ASK";

// Authentication parameters.
inline constexpr std::string_view LuSVNAuthParamDefaultUsername = "svn:auth:username";
inline constexpr std::string_view LuSVNAuthParamDefaultPassword = "svn:auth:password";
inline constexpr std::string_view LuSVNAuthParamNonInteractive = "svn:auth:non-interactive";
inline constexpr std::string_view LuSVNAuthParamDontStorePasswords = "svn:auth:dont-store-passwords";
inline constexpr std::string_view LuSVNAuthParamStorePlaintextPasswords = "svn:auth:store-plaintext-passwords";
inline constexpr std::string_view LuSVNAuthParamDontStoreSSLClientCertificatePassphrases =
    "svn:auth:dont-store-ssl-client-cert-pp";
inline constexpr std::string_view LuSVNAuthParamStorePlaintextSSLClientCertificatePassphrases =
    "svn:auth:store-ssl-client-cert-pp-plaintext";
inline constexpr std::string_view LuSVNAuthParamNoCache = "svn:auth:no-auth-cache";
inline constexpr std::string_view LuSVNAuthParamSSLServerFailures = "svn:auth:ssl:failures";
inline constexpr std::string_view LuSVNAuthParamSSLServerCertificateInfo = "svn:auth:ssl:cert-info";
inline constexpr std::string_view LuSVNAuthParamServerGroup = "svn:auth:server-group";
inline constexpr std::string_view LuSVNAuthParamConfigDirectory = "svn:auth:config-dir";
