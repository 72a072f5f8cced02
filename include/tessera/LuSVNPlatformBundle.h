// A backend bundle on disk: a directory NAME.bundle with an information file
// (Info.json) and a shared object (see LuSVNBundle.h for the keys).
//
// Opening a bundle reads and checks its information file only; the shared
// object is loaded (dlopen, RTLD_LOCAL) when the principal object is first
// asked for, and never unloaded.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

#include <tessera/LuSVNBundle.h>
#include <tessera/LuSVNExport.h>

/// The information file of a bundle: its top-level keys with their scalar
/// values (texts, integers, booleans, reals).
class TESSERA_EXPORT LuSVNInfoDictionary {
public:
    using Value = std::variant<std::string, std::int64_t, bool, double>;

    LuSVNInfoDictionary() = default;
    explicit LuSVNInfoDictionary(std::map<std::string, Value> values) : values_(std::move(values)) {}

    bool containsKey(const std::string& key) const { return values_.count(key) != 0; }
    /// The text under the key, or nullopt when absent or not a text.
    std::optional<std::string> stringForKey(const std::string& key) const;
    /// The value under the key read as an integer: integers as they are, reals
    /// truncated, texts by their leading digits; 0 when absent.
    std::int64_t integerForKey(const std::string& key) const;
    const std::map<std::string, Value>& values() const { return values_; }

private:
    std::map<std::string, Value> values_;
};

class TESSERA_EXPORT LuSVNPlatformBundle {
public:
    /// Opens the bundle at the path. Raises LuSVNException "Failed to load svn
    /// bundle at <path>" when the directory or its information file is missing
    /// or malformed, or when it declares another interface version; the user
    /// info's "cause" says why ("... expected 1, found 2").
    static std::shared_ptr<LuSVNPlatformBundle> bundleWithPath(const std::string& path);

    const std::string& bundlePath() const { return path_; }
    const LuSVNInfoDictionary& infoDictionary() const { return info_; }
    /// The full path of the bundle's shared object.
    std::string executablePath() const;

    /// Loads the shared object on first call and returns the object its
    /// factory makes; later calls return the same object. Raises LuSVNException
    /// "Failed to load svn bundle at <path>" when the shared object cannot be
    /// loaded or lacks the factory.
    LuSVNBundle* principalObject();

    /// The shared object's extension table, or null when it has none; loads
    /// the shared object as principalObject() does.
    const LuSVNBundleExtensionEntryPoints* extensionEntryPoints();

private:
    LuSVNPlatformBundle(std::string path, LuSVNInfoDictionary info);

    std::string path_;
    LuSVNInfoDictionary info_;
    std::mutex lock_;
    LuSVNBundle* principal_ = nullptr;
    const LuSVNBundleExtensionEntryPoints* extensions_ = nullptr;
};
