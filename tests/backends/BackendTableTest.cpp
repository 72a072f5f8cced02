// The backends' entry-point tables, checked by loading the bundles' shared
// objects directly, as the loader does, and calling the real Subversion
// through them.

#include <tessera/LuSVNBundle.h>

#include "LuSVNEntryPointList.h"
#include "LuSVNExtensionEntryPointList.h"
#include "LuSVNSubversion.h"
#include "TesseraTestBundles.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct ListedSlot {
    int number;
    const char* symbol;  // after macro expansion: slot 20 is apr_pool_destroy
    int sinceMajor;
    int sinceMinor;
};

#define LUSVN_TEST_STRINGIZE(x) #x
#define LUSVN_TEST_SYMBOL(function) LUSVN_TEST_STRINGIZE(function)
#define LUSVN_TEST_LISTED_SLOT(slot, function, major, minor) {slot, LUSVN_TEST_SYMBOL(function), major, minor},
const std::vector<ListedSlot> listedSlots = {LUSVN_ENTRY_POINT_LIST(LUSVN_TEST_LISTED_SLOT)};
const std::vector<ListedSlot> listedExtensionSlots = {LUSVN_EXTENSION_ENTRY_POINT_LIST(LUSVN_TEST_LISTED_SLOT)};
#undef LUSVN_TEST_LISTED_SLOT

const std::set<int> unusedSlots = {74, 101};

fs::path temporaryRoot;

nlohmann::json readInfo(const fs::path& bundle)
{
    std::ifstream in(bundle / "Info.json");
    return nlohmann::json::parse(in);
}

// A loaded backend; like the loader, the test never unloads it.
struct Backend {
    void* handle = nullptr;
    LuSVNBundleFactory factory = nullptr;
    LuSVNBundle* principal = nullptr;
    const LuSVNBundleEntryPoints* table = nullptr;
    const LuSVNBundleExtensionEntryPoints* extensions = nullptr;

    template <class Function>
    Function slot(int number) const
    {
        return reinterpret_cast<Function>(table->slots[number]);
    }
};

Backend loadBackend(const fs::path& bundle)
{
    Backend backend;
    const fs::path executable = bundle / readInfo(bundle).at("LuSVNBundleExecutable").get<std::string>();
    backend.handle = dlopen(executable.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!backend.handle) {
        ADD_FAILURE() << "dlopen " << executable << ": " << dlerror();
        return backend;
    }
    backend.factory = reinterpret_cast<LuSVNBundleFactory>(dlsym(backend.handle, LUSVN_BUNDLE_FACTORY_NAME));
    if (!backend.factory) {
        ADD_FAILURE() << executable << " lacks " << LUSVN_BUNDLE_FACTORY_NAME;
        return backend;
    }
    backend.principal = backend.factory();
    if (!backend.principal) {
        ADD_FAILURE() << "factory of " << executable << " returned null";
        return backend;
    }
    backend.table = backend.principal->entryPoints();
    if (auto function = reinterpret_cast<LuSVNBundleExtensionsFunction>(dlsym(backend.handle, LUSVN_BUNDLE_EXTENSIONS_NAME)))
        backend.extensions = function();
    return backend;
}

struct DeclaredBundle {
    const char* path;
    const char* version;
    int format;
    int major;
    int minor;
};

DeclaredBundle realBundle()
{
    int major = 0;
    int minor = 0;
    EXPECT_EQ(std::sscanf(TESSERA_SVN_VERSION, "%d.%d", &major, &minor), 2);
    return {TESSERA_SVN_BUNDLE, TESSERA_SVN_VERSION, TESSERA_SVN_WC_FORMAT, major, minor};
}

const std::vector<DeclaredBundle> testBundles = {
    {TESSERA_TEST_BUNDLE_1_4_6, "1.4.6", 8, 1, 4},
    {TESSERA_TEST_BUNDLE_1_5_9, "1.5.9", 9, 1, 5},
    {TESSERA_TEST_BUNDLE_1_6_23, "1.6.23", 10, 1, 6},
    {TESSERA_TEST_BUNDLE_1_6_5, "1.6.5", 10, 1, 6},
    {TESSERA_TEST_BUNDLE_1_6_9, "1.6.9", 10, 1, 6},
    {TESSERA_TEST_BUNDLE_1_7_2, "1.7.2", 29, 1, 7},
    {TESSERA_TEST_BUNDLE_1_6_9_SECOND, "1.6.9", 10, 1, 6},
};

std::vector<DeclaredBundle> allBundles()
{
    std::vector<DeclaredBundle> bundles = testBundles;
    bundles.push_back(realBundle());
    return bundles;
}

bool declaredReleaseHas(const DeclaredBundle& bundle, const ListedSlot& slot)
{
    return slot.sinceMajor < bundle.major || (slot.sinceMajor == bundle.major && slot.sinceMinor <= bundle.minor);
}

// A pool from the backend, destroyed through it as well.
class BackendPool {
public:
    explicit BackendPool(const Backend& backend) : backend_(backend)
    {
        pool_ = backend_.slot<decltype(&::svn_pool_create_ex)>(19)(nullptr, nullptr);
    }
    ~BackendPool() { backend_.slot<decltype(&::svn_pool_destroy)>(20)(pool_); }
    BackendPool(const BackendPool&) = delete;
    BackendPool& operator=(const BackendPool&) = delete;
    apr_pool_t* get() const { return pool_; }

private:
    const Backend& backend_;
    apr_pool_t* pool_;
};

int run(const std::string& command)
{
    return std::system(command.c_str());
}

std::string shellQuoted(const fs::path& path)
{
    return "'" + path.string() + "'";
}

TEST(BackendTable, InfoFilesDeclareReleaseFormatAndAnExistingExecutable)
{
    for (const DeclaredBundle& bundle : allBundles()) {
        SCOPED_TRACE(bundle.path);
        const nlohmann::json info = readInfo(bundle.path);
        EXPECT_EQ(info.at("CFBundleVersion"), bundle.version);
        EXPECT_EQ(info.at("LuSVNWorkingCopyFormatVersion"), bundle.format);
        EXPECT_EQ(info.at("LuSVNBundleInterfaceVersion"), LuSVNBundleInterfaceVersion);
        EXPECT_TRUE(fs::is_regular_file(fs::path(bundle.path) / info.at("LuSVNBundleExecutable").get<std::string>()));
    }
}

TEST(BackendTable, RealBackendFillsEveryListedSlotWithItsFunction)
{
    const Backend backend = loadBackend(TESSERA_SVN_BUNDLE);
    ASSERT_NE(backend.table, nullptr);
    ASSERT_EQ(listedSlots.size() + unusedSlots.size(), LuSVNEntryPointCount);

    std::size_t filled = 0;
    for (LuSVNEntryPoint entry : backend.table->slots) {
        filled += entry != nullptr;
    }
    EXPECT_EQ(filled, listedSlots.size());
    for (int unused : unusedSlots) {
        EXPECT_EQ(backend.table->slots[unused], nullptr) << "slot " << unused;
    }
    for (const ListedSlot& slot : listedSlots) {
        SCOPED_TRACE(slot.symbol);
        ASSERT_NE(backend.table->slots[slot.number], nullptr);
        // The backend exports nothing but the factory, so dlsym finds the
        // symbol in the Subversion and APR libraries it links.
        void* symbol = dlsym(backend.handle, slot.symbol);
        if (slot.number == 75 || slot.number == 76) {
#if !defined(DARWIN)
            EXPECT_EQ(symbol, nullptr) << "Subversion has keychain providers on macOS only";
#endif
            continue;
        }
        EXPECT_EQ(backend.table->slots[slot.number], reinterpret_cast<LuSVNEntryPoint>(symbol));
    }
}

TEST(BackendTable, EachBundleFillsExactlyTheSlotsOfItsDeclaredRelease)
{
    for (const DeclaredBundle& bundle : allBundles()) {
        SCOPED_TRACE(bundle.path);
        const Backend backend = loadBackend(bundle.path);
        ASSERT_NE(backend.table, nullptr);
        for (const ListedSlot& slot : listedSlots) {
            EXPECT_EQ(backend.table->slots[slot.number] != nullptr, declaredReleaseHas(bundle, slot))
                << "slot " << slot.number << " " << slot.symbol;
        }
        for (int unused : unusedSlots) {
            EXPECT_EQ(backend.table->slots[unused], nullptr) << "slot " << unused;
        }
    }
}

// The extension table follows the same rule as the main one, and its slots
// are the linked Subversion's own functions.
TEST(BackendTable, ExtensionTableHoldsExactlyTheFunctionsOfTheDeclaredRelease)
{
    for (const DeclaredBundle& bundle : allBundles()) {
        SCOPED_TRACE(bundle.path);
        const Backend backend = loadBackend(bundle.path);
        ASSERT_NE(backend.extensions, nullptr);
        ASSERT_EQ(backend.extensions->count, listedExtensionSlots.size());
        for (const ListedSlot& slot : listedExtensionSlots) {
            SCOPED_TRACE(slot.symbol);
            const LuSVNEntryPoint entry = backend.extensions->slots[slot.number];
            if (!declaredReleaseHas(bundle, slot)) {
                EXPECT_EQ(entry, nullptr);
                continue;
            }
            EXPECT_EQ(entry, reinterpret_cast<LuSVNEntryPoint>(dlsym(backend.handle, slot.symbol)));
            EXPECT_NE(entry, nullptr);
        }
    }
}

TEST(BackendTable, OlderReleasesLackTheNewerForms)
{
    struct Expectation {
        const char* bundle;
        int slot;
        bool filled;
    };
    const Expectation expectations[] = {
        {TESSERA_TEST_BUNDLE_1_4_6, 41, true},   // svn_client_checkout2
        {TESSERA_TEST_BUNDLE_1_4_6, 68, true},   // svn_client_status2
        {TESSERA_TEST_BUNDLE_1_4_6, 72, true},   // svn_client_update2
        {TESSERA_TEST_BUNDLE_1_4_6, 75, true},   // keychain, simple
        {TESSERA_TEST_BUNDLE_1_4_6, 42, false},  // svn_client_checkout3
        {TESSERA_TEST_BUNDLE_1_4_6, 70, false},  // svn_client_status5
        {TESSERA_TEST_BUNDLE_1_4_6, 73, false},  // svn_client_update3
        {TESSERA_TEST_BUNDLE_1_4_6, 76, false},  // keychain, client certificate passphrase
        {TESSERA_TEST_BUNDLE_1_5_9, 42, true},
        {TESSERA_TEST_BUNDLE_1_5_9, 121, true},  // svn_mergeinfo_parse
        {TESSERA_TEST_BUNDLE_1_5_9, 69, false},  // svn_client_status4
        {TESSERA_TEST_BUNDLE_1_5_9, 78, false},  // svn_auth_get_simple_provider2
        {TESSERA_TEST_BUNDLE_1_6_23, 69, true},
        {TESSERA_TEST_BUNDLE_1_6_23, 76, true},
        {TESSERA_TEST_BUNDLE_1_6_23, 28, true},   // svn_dirent_internal_style
        {TESSERA_TEST_BUNDLE_1_6_23, 70, false},
        {TESSERA_TEST_BUNDLE_1_6_23, 27, false},  // svn_dirent_basename
        {TESSERA_TEST_BUNDLE_1_6_23, 126, false}, // svn_client_upgrade
        {TESSERA_TEST_BUNDLE_1_7_2, 70, true},
        {TESSERA_TEST_BUNDLE_1_7_2, 126, true},
    };
    for (const Expectation& expectation : expectations) {
        SCOPED_TRACE(std::string(expectation.bundle) + " slot " + std::to_string(expectation.slot));
        const Backend backend = loadBackend(expectation.bundle);
        ASSERT_NE(backend.table, nullptr);
        EXPECT_EQ(backend.table->slots[expectation.slot] != nullptr, expectation.filled);
    }
}

TEST(BackendTable, FactoryHandsOutOneObjectPerBundle)
{
    const Backend backend = loadBackend(TESSERA_SVN_BUNDLE);
    ASSERT_NE(backend.principal, nullptr);
    EXPECT_EQ(backend.factory(), backend.principal);
    EXPECT_EQ(backend.factory()->entryPoints(), backend.table);

    // Bundles with equal tables still tell apart by their principal objects.
    const Backend first = loadBackend(TESSERA_TEST_BUNDLE_1_6_9);
    const Backend second = loadBackend(TESSERA_TEST_BUNDLE_1_6_9_SECOND);
    ASSERT_NE(first.principal, nullptr);
    ASSERT_NE(second.principal, nullptr);
    EXPECT_NE(first.principal, second.principal);
    EXPECT_EQ(first.factory(), first.principal);
}

TEST(BackendTable, PoolsAreMadeAndDestroyedThroughTheTable)
{
    for (const char* bundle : {TESSERA_SVN_BUNDLE, TESSERA_TEST_BUNDLE_1_4_6}) {
        SCOPED_TRACE(bundle);
        const Backend backend = loadBackend(bundle);
        ASSERT_NE(backend.table, nullptr);
        BackendPool pool(backend);
        ASSERT_NE(pool.get(), nullptr);
        auto* bytes = static_cast<char*>(backend.slot<decltype(&::apr_palloc)>(3)(pool.get(), 4096));
        ASSERT_NE(bytes, nullptr);
        std::memset(bytes, 'x', 4096);
        const char* copy = backend.slot<decltype(&::apr_pstrdup)>(4)(pool.get(), "trunk/a b");
        EXPECT_STREQ(copy, "trunk/a b");
    }
}

TEST(BackendTable, GlobalIgnoresAreSubversionsDefault)
{
    const Backend backend = loadBackend(TESSERA_SVN_BUNDLE);
    ASSERT_NE(backend.principal, nullptr);
    const std::string ignores = backend.principal->defaultGlobalIgnoreString();
    EXPECT_EQ(ignores, SVN_CONFIG_DEFAULT_GLOBAL_IGNORES);

    const std::vector<std::string> patterns = backend.principal->defaultGlobalIgnoreList();
    ASSERT_FALSE(patterns.empty());
    std::string joined;
    for (const std::string& pattern : patterns) {
        EXPECT_FALSE(pattern.empty());
        EXPECT_EQ(pattern.find_first_of(" \t\n"), std::string::npos) << pattern;
        joined += (joined.empty() ? "" : " ") + pattern;
    }
    EXPECT_EQ(joined, ignores);
}

TEST(BackendTable, KeychainSlotsGiveAProviderThatNeverEndsTheChain)
{
    const Backend backend = loadBackend(TESSERA_SVN_BUNDLE);
    ASSERT_NE(backend.table, nullptr);
    using ProviderFunction = void (*)(svn_auth_provider_object_t**, apr_pool_t*);
    struct Case {
        int slot;
        const char* credentialKind;
        const char* realm;
    };
    const Case cases[] = {
        {75, SVN_AUTH_CRED_SIMPLE, "<https://svn.example.invalid:443> Tessera"},
        {76, SVN_AUTH_CRED_SSL_CLIENT_CERT_PW, "/nonexistent/client.p12"},
    };
    const fs::path configDir = temporaryRoot / "keychain-config";
    fs::create_directories(configDir);
    for (const Case& test : cases) {
        SCOPED_TRACE("slot " + std::to_string(test.slot));
        BackendPool pool(backend);
        svn_auth_provider_object_t* provider = nullptr;
        backend.slot<ProviderFunction>(test.slot)(&provider, pool.get());
        ASSERT_NE(provider, nullptr);
        ASSERT_NE(provider->vtable, nullptr);
        EXPECT_STREQ(provider->vtable->cred_kind, test.credentialKind);

        apr_array_header_t* providers = backend.slot<decltype(&::apr_array_make)>(11)(
            pool.get(), 1, sizeof(svn_auth_provider_object_t*));
        *static_cast<svn_auth_provider_object_t**>(backend.slot<decltype(&::apr_array_push)>(12)(providers)) =
            provider;
        svn_auth_baton_t* baton = nullptr;
        backend.slot<decltype(&::svn_auth_open)>(89)(&baton, providers, pool.get());
        const auto setParameter = backend.slot<decltype(&::svn_auth_set_parameter)>(90);
        setParameter(baton, SVN_AUTH_PARAM_CONFIG_DIR, configDir.c_str());
        setParameter(baton, SVN_AUTH_PARAM_NON_INTERACTIVE, "");

        void* credentials = nullptr;
        svn_auth_iterstate_t* state = nullptr;
        svn_error_t* error = backend.slot<decltype(&::svn_auth_first_credentials)>(92)(
            &credentials, &state, test.credentialKind, test.realm, baton, pool.get());
        // Keyring or none: nothing is stored for this realm, and no error ends
        // the iteration before the providers behind this one.
        EXPECT_EQ(error, nullptr);
        EXPECT_EQ(credentials, nullptr);
        if (error)
            backend.slot<decltype(&::svn_error_clear)>(30)(error);
    }
}

TEST(BackendTable, CheckoutHasTheDeclaredWorkingCopyFormat)
{
    const fs::path repository = temporaryRoot / "repository";
    const fs::path workingCopy = temporaryRoot / "working copy";
    ASSERT_EQ(run(std::string(TESSERA_SVNADMIN_PROGRAM) + " create " + shellQuoted(repository)), 0);
    ASSERT_EQ(run(std::string(TESSERA_SVN_PROGRAM) + " checkout --quiet --non-interactive --config-dir " +
                  shellQuoted(temporaryRoot / "config") + " " + shellQuoted("file://" + repository.string()) + " " +
                  shellQuoted(workingCopy)),
        0);

    const Backend backend = loadBackend(TESSERA_SVN_BUNDLE);
    ASSERT_NE(backend.table, nullptr);
    const auto checkWorkingCopy = backend.slot<decltype(&::svn_wc_check_wc)>(99);
    BackendPool pool(backend);

    int format = -1;
    svn_error_t* error = checkWorkingCopy(workingCopy.c_str(), &format, pool.get());
    ASSERT_EQ(error, nullptr) << error->message;
    EXPECT_EQ(format, readInfo(TESSERA_SVN_BUNDLE).at("LuSVNWorkingCopyFormatVersion"));

    format = -1;
    error = checkWorkingCopy(temporaryRoot.c_str(), &format, pool.get());
    ASSERT_EQ(error, nullptr) << error->message;
    EXPECT_EQ(format, 0) << "not a working copy";
}

TEST(BackendTable, BrokenBundlesHaveExactlyTheirOneDefect)
{
    const auto executableOf = [](const char* name) {
        return fs::path(TESSERA_TEST_BROKEN_BUNDLE_DIR) / (std::string(name) + ".bundle") /
               (std::string(name) + TESSERA_SHARED_MODULE_SUFFIX);
    };

    EXPECT_FALSE(fs::exists(fs::path(TESSERA_TEST_BUNDLE_NO_INFO) / "Info.json"));
    EXPECT_TRUE(fs::is_regular_file(executableOf("broken")));

    std::ifstream invalid(fs::path(TESSERA_TEST_BUNDLE_INVALID_JSON) / "Info.json");
    ASSERT_TRUE(invalid.is_open());
    EXPECT_FALSE(nlohmann::json::accept(invalid));
    EXPECT_TRUE(fs::is_regular_file(executableOf("invalid-json")));

    const nlohmann::json interface2 = readInfo(TESSERA_TEST_BUNDLE_INTERFACE_2);
    EXPECT_EQ(interface2.at("LuSVNBundleInterfaceVersion"), 2);
    const Backend refusedOnlyForItsVersion = loadBackend(TESSERA_TEST_BUNDLE_INTERFACE_2);
    EXPECT_NE(refusedOnlyForItsVersion.table, nullptr);

    const nlohmann::json missing = readInfo(TESSERA_TEST_BUNDLE_MISSING_EXECUTABLE);
    EXPECT_EQ(missing.at("LuSVNBundleInterfaceVersion"), LuSVNBundleInterfaceVersion);
    EXPECT_FALSE(fs::exists(fs::path(TESSERA_TEST_BUNDLE_MISSING_EXECUTABLE) /
                            missing.at("LuSVNBundleExecutable").get<std::string>()));
}

}  // namespace

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    // Subversion reads ~/.subversion unless told otherwise; keep it and any
    // keyring lookups away from the user's.
    std::string pattern = (fs::temp_directory_path() / "tessera-backend-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        std::perror("mkdtemp");
        return 1;
    }
    temporaryRoot = pattern;
    setenv("HOME", temporaryRoot.c_str(), 1);
    const int result = RUN_ALL_TESTS();
    std::error_code ignored;
    fs::remove_all(temporaryRoot, ignored);
    return result;
}
