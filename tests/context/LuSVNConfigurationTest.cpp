#include <gtest/gtest.h>
#include <tessera/LuSVNConfiguration.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <algorithm>
#include <thread>

#include "TesseraTestSupport.h"

namespace {

std::vector<std::string> sorted(std::vector<std::string> names)
{
    std::sort(names.begin(), names.end());
    return names;
}

TEST(LuSVNConfiguration, NullValueIsPresentButEmpty)
{
    auto configuration = LuSVNConfiguration::configuration();
    configuration->setValue(std::nullopt, "store-passwords", "auth", "config");
    configuration->setValue("yes", "store-auth-creds", "auth", "config");

    bool present = false;
    EXPECT_EQ(configuration->valueForOption("store-passwords", "auth", "config", &present), std::nullopt);
    EXPECT_TRUE(present);
    EXPECT_EQ(configuration->valueForOption("store-auth-creds", "auth", "config", &present), "yes");
    EXPECT_TRUE(present);
    for (const auto& [option, section, category] : {std::tuple{"unknown", "auth", "config"},
                                                    std::tuple{"store-passwords", "unknown", "config"},
                                                    std::tuple{"store-passwords", "auth", "unknown"}}) {
        present = true;
        EXPECT_EQ(configuration->valueForOption(option, section, category, &present), std::nullopt);
        EXPECT_FALSE(present) << option << " " << section << " " << category;
    }
    tessera_test::expectParameterAssertion(
        [&] { configuration->valueForOption("a", "b", "c", nullptr); }, "hasOption != NULL");
}

TEST(LuSVNConfiguration, RemovingTheLastOptionRemovesSectionAndCategory)
{
    auto configuration = LuSVNConfiguration::configuration();
    configuration->setValue("a", "one", "section", "config");
    configuration->setValue("b", "two", "section", "config");
    configuration->setValue("c", "three", "other", "servers");

    configuration->removeOption("one", "section", "config");
    EXPECT_EQ(configuration->optionsInSection("section", "config"), std::vector<std::string>{"two"});
    configuration->removeOption("two", "section", "config");
    EXPECT_TRUE(configuration->sectionsOfCategory("config").empty());
    EXPECT_EQ(configuration->categories(), std::vector<std::string>{"servers"});

    // Removing a section keeps its emptied category; removing a category drops it.
    configuration->removeSection("other", "servers");
    EXPECT_EQ(configuration->categories(), std::vector<std::string>{"servers"});
    configuration->removeCategory("servers");
    EXPECT_TRUE(configuration->categories().empty());
    configuration->removeOption("x", "y", "absent");  // nothing to remove is no error
}

TEST(LuSVNConfiguration, AddingOptionsLetsTheOtherWinAndKeepsTheReceiver)
{
    auto base = LuSVNConfiguration::configuration();
    base->setValue("mine", "both", "s", "c");
    base->setValue("kept", "only-base", "s", "c");
    auto other = LuSVNConfiguration::configuration();
    other->setValue("theirs", "both", "s", "c");
    other->setValue(std::nullopt, "only-other", "t", "d");

    auto merged = base->configurationByAddingOptionsFromConfiguration(*other);
    EXPECT_EQ(merged->valueForOption("both", "s", "c"), "theirs");
    EXPECT_EQ(merged->valueForOption("only-base", "s", "c"), "kept");
    bool present = false;
    merged->valueForOption("only-other", "t", "d", &present);
    EXPECT_TRUE(present);
    EXPECT_EQ(base->valueForOption("both", "s", "c"), "mine");
    EXPECT_EQ(sorted(base->categories()), std::vector<std::string>{"c"});

    // A copy is deep: changing it leaves the original alone.
    auto copy = base->copy();
    copy->setValue("changed", "both", "s", "c");
    EXPECT_EQ(base->valueForOption("both", "s", "c"), "mine");
}

TEST(LuSVNConfiguration, EnumerationVisitsEverythingAndRefusesChanges)
{
    auto configuration = LuSVNConfiguration::configuration();
    configuration->setValue("1", "a", "s1", "c1");
    configuration->setValue(std::nullopt, "b", "s1", "c1");
    configuration->setValue("3", "c", "s2", "c2");

    std::vector<std::string> seen;
    configuration->enumerateCategoriesUsingBlock([&](const std::string& category) {
        configuration->enumerateSectionsOfCategory(category, [&](const std::string& section) {
            configuration->enumerateOptionsInSection(
                section, category, [&](const std::string& option, const LuSVNConfiguration::Value& value) {
                    seen.push_back(category + "/" + section + "/" + option + "=" + value.value_or("(null)"));
                });
        });
    });
    EXPECT_EQ(sorted(seen), (std::vector<std::string>{"c1/s1/a=1", "c1/s1/b=(null)", "c2/s2/c=3"}));

    EXPECT_THROW(configuration->enumerateCategoriesUsingBlock(
                     [&](const std::string&) { configuration->setValue("x", "y", "z", "w"); }),
                 LuSVNGenericException);
    // The refused change left nothing behind, and the configuration is usable.
    EXPECT_EQ(configuration->categories().size(), 2u);
    configuration->setValue("x", "y", "z", "w");
    EXPECT_EQ(configuration->categories().size(), 3u);
    tessera_test::expectParameterAssertion([&] { configuration->enumerateCategoriesUsingBlock(nullptr); },
                                           "block != NULL");
}

TEST(LuSVNConfiguration, ConcurrentWritersAndReaders)
{
    auto configuration = LuSVNConfiguration::configuration();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 500; ++i) {
                configuration->setValue(std::to_string(i), "o" + std::to_string(i % 7), "s" + std::to_string(t), "c");
                configuration->enumerateSectionsOfCategory("c", [](const std::string&) {});
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(configuration->sectionsOfCategory("c").size(), 4u);
    EXPECT_EQ(configuration->optionsInSection("s0", "c").size(), 7u);
}

}  // namespace
