// The options family: defaults and descriptions, one-bit flags, copies, the
// file-system configuration entries and the conversion of diff options.
#include <tessera/LuSVNAddOptions.h>
#include <tessera/LuSVNBerkeleyDBOptions.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNCheckOutOptions.h>
#include <tessera/LuSVNCommitOptions.h>
#include <tessera/LuSVNCopyOptions.h>
#include <tessera/LuSVNDeleteOptions.h>
#include <tessera/LuSVNDiffOptions.h>
#include <tessera/LuSVNExportOptions.h>
#include <tessera/LuSVNFileSystemOptions.h>
#include <tessera/LuSVNImportOptions.h>
#include <tessera/LuSVNLockOptions.h>
#include <tessera/LuSVNLogOptions.h>
#include <tessera/LuSVNMergeOptions.h>
#include <tessera/LuSVNMoveOptions.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNResolveOptions.h>
#include <tessera/LuSVNRevertOptions.h>
#include <tessera/LuSVNStatusOptions.h>
#include <tessera/LuSVNSwitchOptions.h>
#include <tessera/LuSVNUnlockOptions.h>
#include <tessera/LuSVNUpdateOptions.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

namespace {

using Make = std::function<std::unique_ptr<LuSVNOptions>()>;

template <class Options>
Make make()
{
    return [] { return std::make_unique<Options>(Options::defaults()); };
}

// The format with "%@" standing for "<Class: address>" of the object.
std::string expectedDescription(std::string format, const std::string& className, const void* object)
{
    char address[32];
    std::snprintf(address, sizeof address, "%p", object);
    const auto at = format.find("%@");
    return format.replace(at, 2, "<" + className + ": " + address + ">");
}

TEST(LuSVNOptions, DefaultsAppearInTheDescriptions)
{
    struct Row {
        const char* className;
        Make make;
        const char* format;
    };
    const std::vector<Row> rows = {
        {"LuSVNOptions", make<LuSVNOptions>(), "%@"},
        {"LuSVNOptionsWithRevision", make<LuSVNOptionsWithRevision>(), "{ %@ revision: UNSPECIFIED@UNSPECIFIED}"},
        {"LuSVNAddOptions", make<LuSVNAddOptions>(), "{ %@ recursive: 1, force: 1, matchIgnore: 1 }"},
        {"LuSVNCheckOutOptions", make<LuSVNCheckOutOptions>(),
         "{ %@, depth: 3,  processExternals: 1, allowUnversionedObstructions: 0}"},
        {"LuSVNCommitOptions", make<LuSVNCommitOptions>(), "{ %@ depth: -2, releaseLocks: 1 }"},
        {"LuSVNCopyOptions", make<LuSVNCopyOptions>(), "{ %@ revision: UNSPECIFIED }"},
        {"LuSVNDeleteOptions", make<LuSVNDeleteOptions>(), "{ %@ force: 0 }"},
        {"LuSVNExportOptions", make<LuSVNExportOptions>(),
         "{ %@ depth: 3, processExternals: 1, overwriteExisting: 0, EOLMarkers:  }"},
        {"LuSVNImportOptions", make<LuSVNImportOptions>(), "{ %@ recursive: 1, matchIgnorePatterns: 1 }"},
        {"LuSVNLockOptions", make<LuSVNLockOptions>(), "{ %@ stealLocks: 0 }"},
        {"LuSVNUnlockOptions", make<LuSVNUnlockOptions>(), "{ %@ breakLocks: 0 }"},
        {"LuSVNLogOptions", make<LuSVNLogOptions>(),
         "{ %@ fromRevision: HEAD, toRevision: 0, pegRevision: UNSPECIFIED, limit: 0, discoverChangedPaths: 1, "
         "traverseCopyHistory: 1 }"},
        {"LuSVNMoveOptions", make<LuSVNMoveOptions>(), "{ %@ force: 0 }"},
        {"LuSVNRepositoryOptions", make<LuSVNRepositoryOptions>(), "{ %@ compatibility: 1.6 }"},
        {"LuSVNBerkeleyDBOptions", make<LuSVNBerkeleyDBOptions>(),
         "{ %@, syncAtTransactionCommit: 1, automaticLogFileRemoval: 1 }"},
        {"LuSVNFileSystemOptions", make<LuSVNFileSystemOptions>(), "{ %@ compatibility: 1.6 }"},
        {"LuSVNResolveOptions", make<LuSVNResolveOptions>(), "{ %@ recursive: 1 }"},
        {"LuSVNRevertOptions", make<LuSVNRevertOptions>(), "{ %@ depth: 3 }"},
        {"LuSVNStatusOptions", make<LuSVNStatusOptions>(),
         "{ %@ revision: UNSPECIFIED, recursive: 1, includeNormalFiles: 0, compareAgainstRepository: 0, "
         "respectIgnoreProperties: 1, processExternals: 1, propagateStatusToAncestor: 0, "
         "includeConflictVersionFiles: 1 }"},
        {"LuSVNUpdateOptions", make<LuSVNUpdateOptions>(),
         "{ %@ depth: -2, depthIsSticky: 0, processExternals: 1, allowUnversionedObstructions: 0 }"},
        {"LuSVNSwitchOptions", make<LuSVNSwitchOptions>(), "{ %@ depth: -2, depthIsSticky: 0, processExternals: 1}"},
        {"LuSVNDiffOptions", make<LuSVNDiffOptions>(), "%@"},
        {"LuSVNMergeOptions", make<LuSVNMergeOptions>(), "%@"},
    };
    for (const auto& row : rows) {
        const auto options = row.make();
        EXPECT_EQ(options->description(), expectedDescription(row.format, row.className, options.get()));
    }
}

TEST(LuSVNOptions, DefaultsTheDescriptionsLeaveOut)
{
    const LuSVNCheckOutOptions checkOut;
    EXPECT_TRUE(checkOut.revision()->isEqual(LuSVNRevisionSpec::HEAD()));
    EXPECT_EQ(checkOut.description().find("HEAD"), std::string::npos);

    const LuSVNExportOptions exportOptions;
    EXPECT_TRUE(exportOptions.revision()->isEqual(LuSVNRevisionSpec::UNSPECIFIED()));
    EXPECT_TRUE(exportOptions.initiatedByUser());
    EXPECT_EQ(exportOptions.EOLMarkers(), LuSVNEndOfLineDefault);

    const LuSVNSwitchOptions switchOptions;
    EXPECT_TRUE(switchOptions.revision()->isEqual(LuSVNRevisionSpec::UNSPECIFIED()));
    EXPECT_FALSE(switchOptions.allowUnversionedObstructions());

    const LuSVNBerkeleyDBOptions berkeleyDB;
    EXPECT_EQ(berkeleyDB.compatibility(), LuSVNVersion::defaultVersion());

    const LuSVNDiffOptions diff;
    EXPECT_EQ(diff.whitespaceCompareBehavior(), 0);
    EXPECT_FALSE(diff.ignoreEOLStyle());
    EXPECT_TRUE(diff.recursive());

    const LuSVNMergeOptions merge;
    EXPECT_EQ(merge.depth(), LuSVNDepthInfinity);
    EXPECT_EQ(merge.whitespaceCompareBehavior(), 0);
    EXPECT_FALSE(merge.ignoreAncestry() || merge.force() || merge.recordOnly() || merge.dryRun() ||
                 merge.ignoreEOLStyle());
}

// Sets one flag of a fresh object and reads it back.
template <class Options>
std::function<bool(int)> flag(void (Options::*set)(int), bool (Options::*get)() const)
{
    return [=](int value) {
        Options options;
        (options.*set)(value);
        return (options.*get)();
    };
}

TEST(LuSVNOptions, FlagSettersKeepOnlyTheLowestBit)
{
    using Add = LuSVNAddOptions;
    using CheckOut = LuSVNCheckOutOptions;
    using Export = LuSVNExportOptions;
    using Status = LuSVNStatusOptions;
    using Update = LuSVNUpdateOptions;
    using Switch = LuSVNSwitchOptions;
    using Merge = LuSVNMergeOptions;
    const std::vector<std::pair<const char*, std::function<bool(int)>>> flags = {
        {"add recursive", flag(&Add::setRecursive, &Add::recursive)},
        {"add force", flag(&Add::setForce, &Add::force)},
        {"add matchIgnorePatterns", flag(&Add::setMatchIgnorePatterns, &Add::matchIgnorePatterns)},
        {"checkout processExternals", flag(&CheckOut::setProcessExternals, &CheckOut::processExternals)},
        {"checkout allowUnversionedObstructions",
         flag(&CheckOut::setAllowUnversionedObstructions, &CheckOut::allowUnversionedObstructions)},
        {"commit releaseLocks", flag(&LuSVNCommitOptions::setReleaseLocks, &LuSVNCommitOptions::releaseLocks)},
        {"delete force", flag(&LuSVNDeleteOptions::setForce, &LuSVNDeleteOptions::force)},
        {"export processExternals", flag(&Export::setProcessExternals, &Export::processExternals)},
        {"export overwriteExisting", flag(&Export::setOverwriteExisting, &Export::overwriteExisting)},
        {"export initiatedByUser", flag(&Export::setInitiatedByUser, &Export::initiatedByUser)},
        {"import recursive", flag(&LuSVNImportOptions::setRecursive, &LuSVNImportOptions::recursive)},
        {"import matchIgnorePatterns",
         flag(&LuSVNImportOptions::setMatchIgnorePatterns, &LuSVNImportOptions::matchIgnorePatterns)},
        {"lock stealLocks", flag(&LuSVNLockOptions::setStealLocks, &LuSVNLockOptions::stealLocks)},
        {"unlock breakLocks", flag(&LuSVNUnlockOptions::setBreakLocks, &LuSVNUnlockOptions::breakLocks)},
        {"resolve recursive", flag(&LuSVNResolveOptions::setRecursive, &LuSVNResolveOptions::recursive)},
        {"status recursive", flag(&Status::setRecursive, &Status::recursive)},
        {"status includeNormalFiles", flag(&Status::setIncludeNormalFiles, &Status::includeNormalFiles)},
        {"status compareAgainstRepository",
         flag(&Status::setCompareAgainstRepository, &Status::compareAgainstRepository)},
        {"status respectIgnoreProperties", flag(&Status::setRespectIgnoreProperties, &Status::respectIgnoreProperties)},
        {"status processExternals", flag(&Status::setProcessExternals, &Status::processExternals)},
        {"status propagateStatusToAncestor",
         flag(&Status::setPropagateStatusToAncestor, &Status::propagateStatusToAncestor)},
        {"status includeConflictVersionFiles",
         flag(&Status::setIncludeConflictVersionFiles, &Status::includeConflictVersionFiles)},
        {"update depthIsSticky", flag(&Update::setDepthIsSticky, &Update::depthIsSticky)},
        {"update processExternals", flag(&Update::setProcessExternals, &Update::processExternals)},
        {"update allowUnversionedObstructions",
         flag(&Update::setAllowUnversionedObstructions, &Update::allowUnversionedObstructions)},
        {"switch depthIsSticky", flag(&Switch::setDepthIsSticky, &Switch::depthIsSticky)},
        {"switch processExternals", flag(&Switch::setProcessExternals, &Switch::processExternals)},
        {"switch allowUnversionedObstructions",
         flag(&Switch::setAllowUnversionedObstructions, &Switch::allowUnversionedObstructions)},
        {"diff ignoreEOLStyle", flag(&LuSVNDiffOptions::setIgnoreEOLStyle, &LuSVNDiffOptions::ignoreEOLStyle)},
        {"diff recursive", flag(&LuSVNDiffOptions::setRecursive, &LuSVNDiffOptions::recursive)},
        {"merge ignoreAncestry", flag(&Merge::setIgnoreAncestry, &Merge::ignoreAncestry)},
        {"merge force", flag(&Merge::setForce, &Merge::force)},
        {"merge recordOnly", flag(&Merge::setRecordOnly, &Merge::recordOnly)},
        {"merge dryRun", flag(&Merge::setDryRun, &Merge::dryRun)},
        {"merge ignoreEOLStyle", flag(&Merge::setIgnoreEOLStyle, &Merge::ignoreEOLStyle)},
    };
    for (const auto& [name, setAndGet] : flags) {
        EXPECT_FALSE(setAndGet(0)) << name;
        EXPECT_TRUE(setAndGet(1)) << name;
        EXPECT_FALSE(setAndGet(2)) << name;
        EXPECT_TRUE(setAndGet(3)) << name;
        EXPECT_TRUE(setAndGet(-1)) << name;
    }
}

TEST(LuSVNOptions, SettingOneFlagLeavesItsNeighbours)
{
    LuSVNStatusOptions options;
    options.setIncludeNormalFiles(1);
    options.setPropagateStatusToAncestor(3);
    options.setRecursive(2);
    EXPECT_EQ(options.description(),
              expectedDescription("{ %@ revision: UNSPECIFIED, recursive: 0, includeNormalFiles: 1, "
                                  "compareAgainstRepository: 0, respectIgnoreProperties: 1, processExternals: 1, "
                                  "propagateStatusToAncestor: 1, includeConflictVersionFiles: 1 }",
                                  "LuSVNStatusOptions", &options));
}

TEST(LuSVNOptions, CopiesAreIndependent)
{
    LuSVNLogOptions log;
    log.setLimit(5);
    log.setFromRevision(LuSVNRevision::revisionWithNumber(9));
    log.setTraverseCopyHistory(false);
    LuSVNLogOptions logCopy = log;
    log.setLimit(1);
    log.setFromRevision(LuSVNRevision::BASE());
    EXPECT_EQ(logCopy.limit(), 5);
    EXPECT_EQ(logCopy.fromRevision()->number(), 9);
    EXPECT_FALSE(logCopy.traverseCopyHistory());
    EXPECT_EQ(logCopy.toRevision()->number(), 0);

    LuSVNExportOptions exportOptions;
    exportOptions.setEOLMarkers(std::string(LuSVNEndOfLineCRLF));
    exportOptions.setOverwriteExisting(1);
    exportOptions.setDepth(LuSVNDepthFiles);
    LuSVNExportOptions exportCopy;
    exportCopy = exportOptions;
    exportOptions.setEOLMarkers(std::string(LuSVNEndOfLineLF));
    exportOptions.setOverwriteExisting(0);
    EXPECT_EQ(exportCopy.description(),
              expectedDescription("{ %@ depth: 1, processExternals: 1, overwriteExisting: 1, EOLMarkers: CRLF }",
                                  "LuSVNExportOptions", &exportCopy));

    LuSVNBerkeleyDBOptions berkeleyDB;
    berkeleyDB.setCompatibility(LuSVNVersion::version(1, 4));
    berkeleyDB.setAutomaticLogFileRemoval(false);
    const LuSVNBerkeleyDBOptions berkeleyDBCopy(berkeleyDB);
    berkeleyDB.setCompatibility(LuSVNVersion::version(1, 7));
    EXPECT_EQ(berkeleyDBCopy.compatibility(), LuSVNVersion::version(1, 4));
    EXPECT_FALSE(berkeleyDBCopy.automaticLogFileRemoval());
}

TEST(LuSVNOptions, RevisionSettersRefuseNull)
{
    const std::vector<std::function<void()>> setters = {
        [] { LuSVNOptionsWithRevision().setRevision(nullptr); },
        [] { LuSVNCheckOutOptions().setRevision(nullptr); },
        [] { LuSVNCopyOptions().setRevision(nullptr); },
        [] { LuSVNLogOptions().setPegRevision(nullptr); },
        [] { LuSVNLogOptions().setFromRevision(nullptr); },
        [] { LuSVNLogOptions().setToRevision(nullptr); },
        [] { LuSVNStatusOptions().setRevision(nullptr); },
    };
    for (const auto& setter : setters)
        tessera_test::expectParameterAssertion(setter, "revision != nil");
}

// The file-system configuration table the options fill, read back through the
// backend; each key must have been stored NUL-terminated (length -1).
std::map<std::string, std::string> fileSystemConfiguration(const LuSVNRepositoryOptions& options)
{
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->defaultBundle());
    apr_hash_t* hash = LuSVNEntry<13>()(frame.pool());
    options.addLuSVNOptionsTo(hash, frame.pool());
    std::map<std::string, std::string> entries;
    for (apr_hash_index_t* index = LuSVNEntry<14>()(frame.pool(), hash); index; index = LuSVNEntry<15>()(index)) {
        const void* key = nullptr;
        apr_ssize_t keyLength = 0;
        void* value = nullptr;
        LuSVNEntry<16>()(index, &key, &keyLength, &value);
        EXPECT_EQ(keyLength, static_cast<apr_ssize_t>(std::strlen(static_cast<const char*>(key))));
        entries[static_cast<const char*>(key)] = static_cast<const char*>(value);
    }
    return entries;
}

using Entries = std::map<std::string, std::string>;

TEST(LuSVNOptions, CompatibilitySetsTheKeysSvnadminSets)
{
    const std::vector<std::pair<LuSVNVersion, Entries>> rows = {
        {LuSVNVersion::version(1, 0),
         {{"pre-1.4-compatible", "1"},
          {"pre-1.5-compatible", "1"},
          {"pre-1.6-compatible", "1"},
          {"pre-1.8-compatible", "1"},
          {"compatible-version", "1.0"}}},
        {LuSVNVersion::version(1, 4, 6),
         {{"pre-1.5-compatible", "1"},
          {"pre-1.6-compatible", "1"},
          {"pre-1.8-compatible", "1"},
          {"compatible-version", "1.4"}}},
        {LuSVNVersion::version(1, 5, 2),
         {{"pre-1.6-compatible", "1"}, {"pre-1.8-compatible", "1"}, {"compatible-version", "1.5"}}},
        {LuSVNVersion::version(1, 6), {{"pre-1.8-compatible", "1"}, {"compatible-version", "1.6"}}},
        {LuSVNVersion::version(1, 7, 0, "dev"), {{"pre-1.8-compatible", "1"}, {"compatible-version", "1.7"}}},
        {LuSVNVersion::version(1, 8), {{"compatible-version", "1.8"}}},
        {LuSVNVersion::version(1, 14, 2), {{"compatible-version", "1.14"}}},
    };
    for (const auto& [version, expected] : rows) {
        LuSVNRepositoryOptions repository;
        repository.setCompatibility(version);
        EXPECT_EQ(fileSystemConfiguration(repository), expected) << version.versionString();
        LuSVNFileSystemOptions fileSystem;
        fileSystem.setCompatibility(version);
        EXPECT_EQ(fileSystemConfiguration(fileSystem), expected) << version.versionString();
    }
}

TEST(LuSVNOptions, BerkeleyDBEntriesFollowTheCompatibilityEntry)
{
    EXPECT_EQ(fileSystemConfiguration(LuSVNBerkeleyDBOptions()),
              (Entries{{"pre-1.8-compatible", "1"},
                       {"compatible-version", "1.6"},
                       {"bdb-txn-nosync", "0"},
                       {"bdb-log-autoremove", "1"}}));

    LuSVNBerkeleyDBOptions options;
    options.setSyncAtTransactionCommit(false);
    options.setAutomaticLogFileRemoval(false);
    options.setCompatibility(LuSVNVersion::version(1, 8));
    EXPECT_EQ(fileSystemConfiguration(options),
              (Entries{{"compatible-version", "1.8"}, {"bdb-txn-nosync", "1"}, {"bdb-log-autoremove", "0"}}));
}

TEST(LuSVNOptions, AddingToANullTableIsRefused)
{
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->defaultBundle());
    tessera_test::expectParameterAssertion(
        [&] { LuSVNRepositoryOptions().addLuSVNOptionsTo(nullptr, frame.pool()); }, "hash != NULL");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNBerkeleyDBOptions().addLuSVNOptionsTo(nullptr, frame.pool()); }, "hash != NULL");
    apr_hash_t* hash = LuSVNEntry<13>()(frame.pool());
    tessera_test::expectParameterAssertion([&] { LuSVNRepositoryOptions().addLuSVNOptionsTo(hash, nullptr); },
                                           "pool != NULL");
}

TEST(LuSVNDiffOptions, ConvertsIntoSubversionsFileDiffOptions)
{
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->defaultBundle());
    const svn_diff_file_options_t* plain = LuSVNEntry<95>()(frame.pool());
    struct Row {
        std::int32_t behavior;
        bool ignoreEOLStyle;
        svn_diff_file_ignore_space_t ignoreSpace;
    };
    const Row rows[] = {{0, false, svn_diff_file_ignore_space_none},
                        {1, true, svn_diff_file_ignore_space_change},
                        {2, false, svn_diff_file_ignore_space_all}};
    for (const Row& row : rows) {
        LuSVNDiffOptions options;
        options.setWhitespaceCompareBehavior(row.behavior);
        options.setIgnoreEOLStyle(row.ignoreEOLStyle);
        const svn_diff_file_options_t* converted = LuSVNDiffOptions::convertOptions(options, frame.pool());
        EXPECT_EQ(converted->ignore_space, row.ignoreSpace);
        EXPECT_EQ(converted->ignore_eol_style, row.ignoreEOLStyle ? 1 : 0);
        EXPECT_EQ(converted->show_c_function, plain->show_c_function);
        EXPECT_EQ(converted->context_size, plain->context_size);
    }
}

TEST(LuSVNDiffOptions, RefusesUnknownBehaviourAndNullPool)
{
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->defaultBundle());
    for (std::int32_t behavior : {3, -1}) {
        LuSVNDiffOptions options;
        options.setWhitespaceCompareBehavior(behavior);
        try {
            LuSVNDiffOptions::convertOptions(options, frame.pool());
            ADD_FAILURE() << "behaviour " << behavior << " accepted";
        } catch (const LuSVNInternalInconsistencyException& e) {
            EXPECT_EQ(e.reason(), "Unrecognized whitespace compare behavior");
        }
    }
    tessera_test::expectParameterAssertion([] { LuSVNDiffOptions::convertOptions(LuSVNDiffOptions(), nullptr); },
                                           "pool != NULL");
}

}  // namespace
