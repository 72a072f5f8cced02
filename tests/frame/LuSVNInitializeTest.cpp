// Start-up of the library, as the test program's main ran it.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNInitialize.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <optional>

namespace {

namespace fs = std::filesystem;

fs::path configurationArea()
{
    const char* home = std::getenv("HOME");
    return fs::path(home ? home : "") / ".subversion";
}

// Sets environment variables for its lifetime, then puts back what was there.
class ScopedEnvironment {
public:
    ScopedEnvironment(std::initializer_list<std::pair<const char*, const char*>> values)
    {
        for (const auto& [name, value] : values) {
            const char* old = std::getenv(name);
            saved_.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
            if (value)
                setenv(name, value, 1);
            else
                unsetenv(name);
        }
    }
    ~ScopedEnvironment()
    {
        for (const auto& [name, value] : saved_) {
            if (value)
                setenv(name.c_str(), value->c_str(), 1);
            else
                unsetenv(name.c_str());
        }
    }

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

// Puts the process locale back after a test changed it.
class ScopedLocale {
public:
    ScopedLocale() : saved_(std::setlocale(LC_ALL, nullptr)) {}
    ~ScopedLocale() { std::setlocale(LC_ALL, saved_.c_str()); }

private:
    std::string saved_;
};

TEST(Initialize, ConfigurationAreaWasCreated)
{
    const fs::path area = configurationArea();
    ASSERT_TRUE(fs::is_directory(area)) << area;
    for (const char* name : {"config", "servers"}) {
        EXPECT_TRUE(fs::is_regular_file(area / name)) << name;
        EXPECT_GT(fs::file_size(area / name), 0u) << name;
    }
}

TEST(Initialize, LaterCallsReturnAtOnce)
{
    auto loader = LuSVNBundleLoader::sharedInstance();
    const auto versions = loader->loadedVersions();
    ASSERT_FALSE(versions.empty());
    std::vector<std::shared_ptr<LuSVNBundleProxy>> proxies;
    for (const auto& version : versions)
        proxies.push_back(loader->bundleForVersion(version));

    // Were start-up to run again, it would recreate the missing file and
    // fail on the broken locale.
    const fs::path servers = configurationArea() / "servers";
    ASSERT_TRUE(fs::remove(servers));
    {
        ScopedLocale locale;
        ScopedEnvironment environment{{"LC_ALL", "xx_XX.no-such-locale"}};
        EXPECT_NO_THROW(LuSVNInitialize());
        EXPECT_NO_THROW(LuSVNInitializeWithOptions({{"option", "ignored"}}));
    }
    EXPECT_FALSE(fs::exists(servers));
    EXPECT_EQ(loader->loadedVersions(), versions);
    for (std::size_t i = 0; i < versions.size(); ++i)
        EXPECT_EQ(loader->bundleForVersion(versions[i]), proxies[i]) << versions[i].versionString();

    // Called on its own, the configuration step does make it again.
    LuSVNInitializeSubversionConfiguration();
    EXPECT_TRUE(fs::is_regular_file(servers));
}

TEST(Initialize, CLocaleFromTheEnvironment)
{
    ScopedLocale locale;
    {
        ScopedEnvironment environment{{"LC_ALL", "C.UTF-8"}};
        EXPECT_NO_THROW(LuSVNInitializeCLocale());
        EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C.UTF-8");
        EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C.UTF-8");
    }
    {
        // Not every category can be set: the character type alone is.
        std::setlocale(LC_ALL, "C");
        ScopedEnvironment environment{{"LC_ALL", nullptr}, {"LANG", "xx_XX.no-such-locale"}, {"LC_CTYPE", "C.UTF-8"}};
        EXPECT_NO_THROW(LuSVNInitializeCLocale());
        EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C.UTF-8");
    }
    {
        ScopedEnvironment environment{{"LC_ALL", "xx_XX.no-such-locale"}};
        try {
            LuSVNInitializeCLocale();
            ADD_FAILURE() << "an unknown locale was accepted";
        } catch (const LuSVNException& caught) {
            EXPECT_EQ(caught.reason(), "Failed to initialize locales");
            EXPECT_EQ(caught.name(), "LuSVNException");
        }
    }
}

}  // namespace
