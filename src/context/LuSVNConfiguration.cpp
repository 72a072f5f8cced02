#include <tessera/LuSVNConfiguration.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include "LuSVNAssert.h"

namespace {

// Marks the configuration as being enumerated for the life of the guard, so
// that a callback that writes is caught instead of invalidating the walk.
class EnumerationGuard {
public:
    explicit EnumerationGuard(int& counter) : counter_(counter) { ++counter_; }
    ~EnumerationGuard() { --counter_; }
    EnumerationGuard(const EnumerationGuard&) = delete;
    EnumerationGuard& operator=(const EnumerationGuard&) = delete;

private:
    int& counter_;
};

template <class Map>
std::vector<std::string> keysOf(const Map& map)
{
    std::vector<std::string> keys;
    keys.reserve(map.size());
    for (const auto& entry : map)
        keys.push_back(entry.first);
    return keys;
}

}  // namespace

std::shared_ptr<LuSVNConfiguration> LuSVNConfiguration::configuration()
{
    return std::shared_ptr<LuSVNConfiguration>(new LuSVNConfiguration());
}

void LuSVNConfiguration::checkNotEnumerating() const
{
    if (enumerations_ > 0)
        throw LuSVNGenericException("LuSVNConfiguration was mutated while being enumerated");
}

LuSVNConfiguration::Value LuSVNConfiguration::valueForOption(const std::string& optionName,
                                                             const std::string& sectionName,
                                                             const std::string& categoryName, bool* hasOption) const
{
    LUSVN_PARAMETER_ASSERT(hasOption != nullptr, "hasOption != NULL");
    *hasOption = false;
    std::lock_guard<std::recursive_mutex> guard(lock_);
    const auto category = categories_.find(categoryName);
    if (category == categories_.end())
        return std::nullopt;
    const auto section = category->second.find(sectionName);
    if (section == category->second.end())
        return std::nullopt;
    const auto option = section->second.find(optionName);
    if (option == section->second.end())
        return std::nullopt;
    *hasOption = true;
    return option->second;
}

LuSVNConfiguration::Value LuSVNConfiguration::valueForOption(const std::string& optionName,
                                                             const std::string& sectionName,
                                                             const std::string& categoryName) const
{
    bool hasOption = false;
    return valueForOption(optionName, sectionName, categoryName, &hasOption);
}

void LuSVNConfiguration::setValue(const Value& value, const std::string& optionName, const std::string& sectionName,
                                  const std::string& categoryName)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    checkNotEnumerating();
    categories_[categoryName][sectionName][optionName] = value;
}

void LuSVNConfiguration::removeOption(const std::string& optionName, const std::string& sectionName,
                                      const std::string& categoryName)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    checkNotEnumerating();
    const auto category = categories_.find(categoryName);
    if (category == categories_.end())
        return;
    const auto section = category->second.find(sectionName);
    if (section == category->second.end())
        return;
    section->second.erase(optionName);
    if (section->second.empty())
        category->second.erase(section);
    if (category->second.empty())
        categories_.erase(category);
}

void LuSVNConfiguration::removeSection(const std::string& sectionName, const std::string& categoryName)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    checkNotEnumerating();
    if (const auto category = categories_.find(categoryName); category != categories_.end())
        category->second.erase(sectionName);
}

void LuSVNConfiguration::removeCategory(const std::string& categoryName)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    checkNotEnumerating();
    categories_.erase(categoryName);
}

std::vector<std::string> LuSVNConfiguration::categories() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return keysOf(categories_);
}

std::vector<std::string> LuSVNConfiguration::sectionsOfCategory(const std::string& categoryName) const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    const auto category = categories_.find(categoryName);
    return category == categories_.end() ? std::vector<std::string>() : keysOf(category->second);
}

std::vector<std::string> LuSVNConfiguration::optionsInSection(const std::string& sectionName,
                                                              const std::string& categoryName) const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    const auto category = categories_.find(categoryName);
    if (category == categories_.end())
        return {};
    const auto section = category->second.find(sectionName);
    return section == category->second.end() ? std::vector<std::string>() : keysOf(section->second);
}

void LuSVNConfiguration::enumerateCategoriesUsingBlock(const std::function<void(const std::string&)>& block) const
{
    LUSVN_PARAMETER_ASSERT(block != nullptr, "block != NULL");
    std::lock_guard<std::recursive_mutex> guard(lock_);
    EnumerationGuard enumerating(enumerations_);
    for (const auto& category : categories_)
        block(category.first);
}

void LuSVNConfiguration::enumerateSectionsOfCategory(const std::string& categoryName,
                                                     const std::function<void(const std::string&)>& block) const
{
    LUSVN_PARAMETER_ASSERT(block != nullptr, "block != NULL");
    std::lock_guard<std::recursive_mutex> guard(lock_);
    EnumerationGuard enumerating(enumerations_);
    if (const auto category = categories_.find(categoryName); category != categories_.end())
        for (const auto& section : category->second)
            block(section.first);
}

void LuSVNConfiguration::enumerateOptionsInSection(
    const std::string& sectionName, const std::string& categoryName,
    const std::function<void(const std::string&, const Value&)>& block) const
{
    LUSVN_PARAMETER_ASSERT(block != nullptr, "block != NULL");
    std::lock_guard<std::recursive_mutex> guard(lock_);
    EnumerationGuard enumerating(enumerations_);
    const auto category = categories_.find(categoryName);
    if (category == categories_.end())
        return;
    if (const auto section = category->second.find(sectionName); section != category->second.end())
        for (const auto& [option, value] : section->second)
            block(option, value);
}

std::shared_ptr<LuSVNConfiguration> LuSVNConfiguration::copy() const
{
    auto result = configuration();
    std::lock_guard<std::recursive_mutex> guard(lock_);
    result->categories_ = categories_;
    return result;
}

std::shared_ptr<LuSVNConfiguration> LuSVNConfiguration::configurationByAddingOptionsFromConfiguration(
    const LuSVNConfiguration& other) const
{
    auto result = copy();
    std::scoped_lock guard(other.lock_);
    for (const auto& [category, sections] : other.categories_)
        for (const auto& [section, options] : sections)
            for (const auto& [option, value] : options)
                result->categories_[category][section][option] = value;
    return result;
}
