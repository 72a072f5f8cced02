// An in-memory set of Subversion configuration options, kept apart from any
// context, that an application fills and then applies to contexts
// (LuSVNContext::setOptionsFromConfiguration).
//
// Three levels as in Subversion's files: category ("config", "servers"),
// section ("miscellany"), option ("global-ignores"); see LuSVNDefinitions.h for
// the names. A value is text, or nullopt for an option that is present without
// a value.
//
//   auto configuration = LuSVNConfiguration::configuration();
//   configuration->setValue("*.o *.tmp", "global-ignores", "miscellany", "config");
//   bool present = false;
//   auto value = configuration->valueForOption("global-ignores", "miscellany", "config", &present);
//
// Every operation takes the configuration's own lock. Enumerations hold it for
// their whole run: a callback may read the configuration but must not change
// it (a change raises LuSVNGenericException).
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <tessera/LuSVNExport.h>

class TESSERA_EXPORT LuSVNConfiguration {
public:
    using Value = std::optional<std::string>;

    /// An empty configuration.
    static std::shared_ptr<LuSVNConfiguration> configuration();

    /// The value of the option, or nullopt when it is absent or present
    /// without a value; *hasOption tells the two apart. Raises "Invalid
    /// parameter not satisfying: hasOption != NULL" for a null flag.
    Value valueForOption(const std::string& optionName, const std::string& sectionName,
                         const std::string& categoryName, bool* hasOption) const;
    Value valueForOption(const std::string& optionName, const std::string& sectionName,
                         const std::string& categoryName) const;

    /// Stores the value (nullopt: present without a value), making the
    /// category and section when missing.
    void setValue(const Value& value, const std::string& optionName, const std::string& sectionName,
                  const std::string& categoryName);

    /// Removes the option; a section left empty goes, and so does a category
    /// left empty.
    void removeOption(const std::string& optionName, const std::string& sectionName, const std::string& categoryName);
    /// Removes the section; an emptied category stays.
    void removeSection(const std::string& sectionName, const std::string& categoryName);
    void removeCategory(const std::string& categoryName);

    std::vector<std::string> categories() const;
    /// The section names, or an empty list.
    std::vector<std::string> sectionsOfCategory(const std::string& categoryName) const;
    /// The option names, or an empty list.
    std::vector<std::string> optionsInSection(const std::string& sectionName, const std::string& categoryName) const;

    /// Calls the block once per category, section or option, under the lock.
    /// Raises "Invalid parameter not satisfying: block != NULL" for an empty block.
    void enumerateCategoriesUsingBlock(const std::function<void(const std::string& category)>& block) const;
    void enumerateSectionsOfCategory(const std::string& categoryName,
                                     const std::function<void(const std::string& section)>& block) const;
    void enumerateOptionsInSection(const std::string& sectionName, const std::string& categoryName,
                                   const std::function<void(const std::string& option, const Value& value)>& block) const;

    /// A deep copy of the maps.
    std::shared_ptr<LuSVNConfiguration> copy() const;

    /// A copy of this configuration with every option of the other set into
    /// it, so the other's values win; this one is not changed.
    std::shared_ptr<LuSVNConfiguration> configurationByAddingOptionsFromConfiguration(
        const LuSVNConfiguration& other) const;

private:
    LuSVNConfiguration() = default;
    void checkNotEnumerating() const;

    using Options = std::map<std::string, Value>;
    using Sections = std::map<std::string, Options>;
    mutable std::recursive_mutex lock_;
    std::map<std::string, Sections> categories_;
    mutable int enumerations_ = 0;
};
