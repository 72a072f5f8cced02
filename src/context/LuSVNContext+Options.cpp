#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNPropertyConversion.h>
#include <tessera/LuSVNStrings.h>

#include "LuSVNBackendFrame.h"
#include "LuSVNBundlePushed.h"
#include "LuSVNObjectDescription.h"
#include "LuSVNPoolCopies.h"
#include "LuSVNTrace.h"

using namespace tessera_private;

namespace {

constexpr const char* className = "LuSVNContext";

struct EnumerationBaton {
    LuSVNContext::Options options;
    std::exception_ptr failure;
};

// Subversion's enumeration callback: keeps each option and goes on. Nothing
// may unwind through Subversion, so a failure stops the enumeration and is
// raised after it.
svn_boolean_t LuSVNConfigCallbackFunction(const char* name, const char* value, void* baton) noexcept
{
    auto& enumeration = *static_cast<EnumerationBaton*>(baton);
    try {
        enumeration.options.insert_or_assign(name, LuSVNOptionalString(value));
        return TRUE;
    } catch (...) {
        enumeration.failure = std::current_exception();
        return FALSE;
    }
}

}  // namespace

void LuSVNContext::loadConfigurationInDirectory(std::optional<std::string> directory)
{
    LUSVN_TRACE(className, "loadConfigurationInDirectory", {"path", directory.value_or("(null)")});
    std::lock_guard<std::recursive_mutex> guard(lock_);
    configurationDirectory_ = std::move(directory);
    // Unbound, the directory is read when a backend is bound.
    if (!ctx_)
        return;
    LuSVNBundlePushed pushed(bundle_);
    // As svn does first: a directory named but missing gets its files and
    // the credential stores' subdirectories, else nothing can be stored there.
    // Reading goes on whatever this returns; the error is only freed.
    if (configurationDirectory_)
        if (svn_error_t* error = LuSVNEntry<37>()(configurationDirectory_->c_str(), pool_))
            LuSVNEntry<30>()(error);
    apr_hash_t* configuration = nullptr;
    LuSVNThrowIfError(LuSVNEntry<38>()(
        &configuration, configurationDirectory_ ? configurationDirectory_->c_str() : nullptr, pool_));
    ctx_->config = configuration;
}

void LuSVNContext::loadConfiguration()
{
    loadConfigurationInDirectory(configurationDirectory());
}

std::optional<std::string> LuSVNContext::configurationDirectory() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return configurationDirectory_;
}

svn_config_t* LuSVNContext::configurationOfCategory(const std::string& category) const
{
    if (!ctx_ || !ctx_->config)
        return nullptr;
    return static_cast<svn_config_t*>(LuSVNEntry<17>()(ctx_->config, category.c_str(), APR_HASH_KEY_STRING));
}

std::optional<std::string> LuSVNContext::optionForName(const std::string& name, const std::string& category,
                                                       const std::string& section,
                                                       const std::optional<std::string>& defaultValue) const
{
    LUSVN_TRACE(className, "optionForName:category:section:defaultValue", {"name", name}, {"category", category},
                {"section", section}, {"defaultValue", defaultValue.value_or("(null)")});
    std::lock_guard<std::recursive_mutex> guard(lock_);
    LuSVNBundlePushed pushed(bundle_);
    svn_config_t* configuration = configurationOfCategory(category);
    if (!configuration)
        return defaultValue;
    const char* value = nullptr;
    LuSVNEntry<34>()(configuration, &value, section.c_str(), name.c_str(),
                     defaultValue ? defaultValue->c_str() : nullptr);
    return LuSVNOptionalString(value);
}

void LuSVNContext::setOption(const std::optional<std::string>& value, const std::string& name,
                             const std::string& category, const std::string& section)
{
    LUSVN_TRACE(className, "setOption:forName:category:section", {"value", value.value_or("(null)")}, {"name", name},
                {"category", category}, {"section", section});
    std::lock_guard<std::recursive_mutex> guard(lock_);
    LuSVNBundlePushed pushed(bundle_);
    svn_config_t* configuration = configurationOfCategory(category);
    // Subversion offers no way to add a category to a read configuration.
    if (!configuration)
        throw LuSVNInvalidArgumentException("No configuration category " + category);
    LuSVNEntry<35>()(configuration, section.c_str(), name.c_str(), value ? value->c_str() : nullptr);
}

std::optional<LuSVNContext::Options> LuSVNContext::optionsForCategory(const std::string& category,
                                                                      const std::string& section) const
{
    LUSVN_TRACE(className, "optionsForCategory:section", {"category", category}, {"section", section});
    std::lock_guard<std::recursive_mutex> guard(lock_);
    LuSVNBundlePushed pushed(bundle_);
    svn_config_t* configuration = configurationOfCategory(category);
    if (!configuration)
        return std::nullopt;
    EnumerationBaton enumeration;
    LuSVNEntry<36>()(configuration, section.c_str(), &LuSVNConfigCallbackFunction, &enumeration);
    if (enumeration.failure)
        std::rethrow_exception(enumeration.failure);
    return std::move(enumeration.options);
}

void LuSVNContext::setOptionsFromConfiguration(const LuSVNConfiguration& configuration)
{
    LUSVN_TRACE(className, "setOptionsFromConfiguration",
                {"configuration", LuSVNGenericDescription("LuSVNConfiguration", &configuration)});
    configuration.enumerateCategoriesUsingBlock([&](const std::string& category) {
        configuration.enumerateSectionsOfCategory(category, [&](const std::string& section) {
            configuration.enumerateOptionsInSection(
                section, category, [&](const std::string& option, const LuSVNConfiguration::Value& value) {
                    setOption(value, option, category, section);
                });
        });
    });
}

std::optional<std::string> LuSVNContext::globalIgnoreString() const
{
    return optionForName(std::string(LuSVNConfigOptionGlobalIgnores), std::string(LuSVNConfigCategoryConfig),
                         std::string(LuSVNConfigSectionMiscellany), defaultGlobalIgnoreString());
}

std::vector<std::string> LuSVNContext::globalIgnoreList() const
{
    const auto ignores = globalIgnoreString();
    return ignores ? globalIgnoreListFromString(*ignores) : std::vector<std::string>();
}

std::string LuSVNContext::defaultGlobalIgnoreString()
{
    return std::string(LuSVNConfigDefaultGlobalIgnores);
}

std::vector<std::string> LuSVNContext::defaultGlobalIgnoreList()
{
    return globalIgnoreListFromString(LuSVNConfigDefaultGlobalIgnores);
}

std::vector<std::string> LuSVNContext::globalIgnoreListFromString(std::string_view ignoreList)
{
    std::vector<std::string> patterns;
    for (const std::string& piece : LuSVNPropertyConversion::keywordListValue(ignoreList)) {
        std::string pattern = LuSVNTrim(piece);
        if (!pattern.empty())
            patterns.push_back(std::move(pattern));
    }
    return patterns;
}
