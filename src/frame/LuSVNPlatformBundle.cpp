#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPlatformBundle.h>

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <nlohmann/json.hpp>

namespace {

constexpr const char* infoFileName = "Info.json";

[[noreturn]] void failToLoad(const std::string& path, const std::string& why)
{
    LuSVNErrorDictionary cause;
    cause.message = why;
    cause.status = LuSVNGenericErrorStatus;
    LuSVNErrorDictionary info;
    info.status = LuSVNGenericErrorStatus;
    info.cause = std::make_shared<LuSVNErrorDictionary>(std::move(cause));
    throw LuSVNException("Failed to load svn bundle at " + path, std::move(info));
}

LuSVNInfoDictionary readInfo(const std::string& path)
{
    const std::filesystem::path file = std::filesystem::path(path) / infoFileName;
    std::ifstream stream(file);
    if (!stream)
        failToLoad(path, std::string("Cannot read ") + infoFileName);
    nlohmann::json json;
    try {
        json = nlohmann::json::parse(stream);
    } catch (const nlohmann::json::exception& e) {
        failToLoad(path, std::string("Malformed ") + infoFileName + ": " + e.what());
    }
    if (!json.is_object())
        failToLoad(path, std::string(infoFileName) + " is not an object");
    std::map<std::string, LuSVNInfoDictionary::Value> values;
    for (const auto& [key, value] : json.items()) {
        if (value.is_string())
            values.emplace(key, value.get<std::string>());
        else if (value.is_boolean())
            values.emplace(key, value.get<bool>());
        else if (value.is_number_integer())
            values.emplace(key, value.get<std::int64_t>());
        else if (value.is_number())
            values.emplace(key, value.get<double>());
    }
    return LuSVNInfoDictionary(std::move(values));
}

}  // namespace

std::optional<std::string> LuSVNInfoDictionary::stringForKey(const std::string& key) const
{
    const auto found = values_.find(key);
    if (found == values_.end() || !std::holds_alternative<std::string>(found->second))
        return std::nullopt;
    return std::get<std::string>(found->second);
}

std::int64_t LuSVNInfoDictionary::integerForKey(const std::string& key) const
{
    const auto found = values_.find(key);
    if (found == values_.end())
        return 0;
    return std::visit(
        [](const auto& value) -> std::int64_t {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, std::string>)
                return std::strtoll(value.c_str(), nullptr, 10);
            else
                return static_cast<std::int64_t>(value);
        },
        found->second);
}

LuSVNPlatformBundle::LuSVNPlatformBundle(std::string path, LuSVNInfoDictionary info)
    : path_(std::move(path)), info_(std::move(info))
{
}

std::shared_ptr<LuSVNPlatformBundle> LuSVNPlatformBundle::bundleWithPath(const std::string& path)
{
    std::error_code error;
    if (!std::filesystem::is_directory(path, error))
        failToLoad(path, "Not a directory");
    LuSVNInfoDictionary info = readInfo(path);
    if (!info.stringForKey("CFBundleVersion"))
        failToLoad(path, std::string(infoFileName) + " has no CFBundleVersion");
    if (!info.stringForKey("LuSVNBundleExecutable"))
        failToLoad(path, std::string(infoFileName) + " has no LuSVNBundleExecutable");
    const std::int64_t interface = info.integerForKey("LuSVNBundleInterfaceVersion");
    if (interface != LuSVNBundleInterfaceVersion)
        failToLoad(path, "Backend interface version mismatch: expected " + std::to_string(LuSVNBundleInterfaceVersion) +
                             ", found " + std::to_string(interface));
    return std::shared_ptr<LuSVNPlatformBundle>(new LuSVNPlatformBundle(path, std::move(info)));
}

std::string LuSVNPlatformBundle::executablePath() const
{
    return (std::filesystem::path(path_) / info_.stringForKey("LuSVNBundleExecutable").value_or("")).string();
}

LuSVNBundle* LuSVNPlatformBundle::principalObject()
{
    std::lock_guard<std::mutex> guard(lock_);
    if (principal_)
        return principal_;
    // RTLD_LOCAL keeps each backend's Subversion apart from the others'.
    void* handle = dlopen(executablePath().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        failToLoad(path_, dlerror());
    auto factory = reinterpret_cast<LuSVNBundleFactory>(dlsym(handle, LUSVN_BUNDLE_FACTORY_NAME));
    if (!factory)
        failToLoad(path_, std::string("No ") + LUSVN_BUNDLE_FACTORY_NAME + " in " + executablePath());
    LuSVNBundle* object = factory();
    if (!object)
        failToLoad(path_, std::string(LUSVN_BUNDLE_FACTORY_NAME) + " returned no object");
    if (auto extensions =
            reinterpret_cast<LuSVNBundleExtensionsFunction>(dlsym(handle, LUSVN_BUNDLE_EXTENSIONS_NAME)))
        extensions_ = extensions();
    principal_ = object;
    return principal_;
}

const LuSVNBundleExtensionEntryPoints* LuSVNPlatformBundle::extensionEntryPoints()
{
    principalObject();
    std::lock_guard<std::mutex> guard(lock_);
    return extensions_;
}
