#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <cmath>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

// Well-formed UTF-8 as JSON text requires: no overlong forms, no surrogates,
// nothing above U+10FFFF.
bool isValidUTF8(std::string_view text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* end = p + text.size();
    while (p < end) {
        unsigned char c = *p;
        if (c < 0x80) {
            ++p;
            continue;
        }
        int length;
        unsigned char low = 0x80, high = 0xBF; // range of the second byte
        if (c >= 0xC2 && c <= 0xDF)
            length = 2;
        else if (c >= 0xE0 && c <= 0xEF) {
            length = 3;
            if (c == 0xE0)
                low = 0xA0;
            else if (c == 0xED)
                high = 0x9F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            length = 4;
            if (c == 0xF0)
                low = 0x90;
            else if (c == 0xF4)
                high = 0x8F;
        } else
            return false;
        if (end - p < length || p[1] < low || p[1] > high)
            return false;
        for (int i = 2; i < length; ++i)
            if ((p[i] & 0xC0) != 0x80)
                return false;
        p += length;
    }
    return true;
}

std::string base64Encode(const LuSVNData& data)
{
    static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const std::uint8_t* bytes = data.data();
    const std::size_t size = data.size();
    std::string text;
    text.reserve((size + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 3 <= size; i += 3) {
        std::uint32_t group = (std::uint32_t(bytes[i]) << 16) | (std::uint32_t(bytes[i + 1]) << 8) | bytes[i + 2];
        text += alphabet[(group >> 18) & 63];
        text += alphabet[(group >> 12) & 63];
        text += alphabet[(group >> 6) & 63];
        text += alphabet[group & 63];
    }
    if (size - i == 1) {
        std::uint32_t group = std::uint32_t(bytes[i]) << 16;
        text += alphabet[(group >> 18) & 63];
        text += alphabet[(group >> 12) & 63];
        text += "==";
    } else if (size - i == 2) {
        std::uint32_t group = (std::uint32_t(bytes[i]) << 16) | (std::uint32_t(bytes[i + 1]) << 8);
        text += alphabet[(group >> 18) & 63];
        text += alphabet[(group >> 12) & 63];
        text += alphabet[(group >> 6) & 63];
        text += '=';
    }
    return text;
}

} // namespace

struct LuSVNKeyedArchiver::Impl {
    // The object being encoded is the last; the root is the first.
    std::vector<Json*> objects;

    Json& current() { return *objects.back(); }

    void checkKey(std::string_view key) const
    {
        if (!isValidUTF8(key))
            throw LuSVNInvalidArgumentException("Cannot encode a key that is not valid UTF-8");
        if (!key.empty() && key.front() == '$')
            throw LuSVNInvalidArgumentException("Cannot encode reserved key " + std::string(key));
        if (objects.back()->contains(key))
            throw LuSVNInvalidArgumentException("Key " + std::string(key) + " encoded twice");
    }

    void put(std::string_view key, Json value)
    {
        checkKey(key);
        current()[std::string(key)] = std::move(value);
    }

    static void checkString(const std::string& value, std::string_view key)
    {
        if (!isValidUTF8(value))
            throw LuSVNInvalidArgumentException("Cannot encode string for key " + std::string(key)
                                                + ": not valid UTF-8");
    }

    // The archive of one object, made while that object is the current one.
    Json archive(const LuSVNCoding& object, LuSVNKeyedArchiver& archiver, std::string_view key)
    {
        if (objects.size() >= static_cast<std::size_t>(LuSVNArchiveMaxNestingDepth))
            throw LuSVNInvalidArgumentException("Cannot encode object for key " + std::string(key)
                                                + ": objects nest too deeply");
        std::string className = object.archiveClassName();
        if (className.empty() || !isValidUTF8(className))
            throw LuSVNInvalidArgumentException("Cannot encode object for key " + std::string(key)
                                                + ": invalid class name");
        Json json = Json::object();
        json["$class"] = std::move(className);
        objects.push_back(&json);
        struct Pop {
            std::vector<Json*>& objects;
            ~Pop() { objects.pop_back(); }
        } pop{objects};
        object.encodeWithCoder(archiver);
        return json;
    }
};

LuSVNKeyedArchiver::LuSVNKeyedArchiver() : impl_(std::make_unique<Impl>()) {}

LuSVNKeyedArchiver::~LuSVNKeyedArchiver() = default;

std::string LuSVNKeyedArchiver::archivedDataWithRootObject(const LuSVNCoding& rootObject)
{
    LuSVNKeyedArchiver archiver;
    Json root = archiver.impl_->archive(rootObject, archiver, "root");
    return root.dump();
}

bool LuSVNKeyedArchiver::allowsKeyedCoding() const
{
    return true;
}

bool LuSVNKeyedArchiver::containsValueForKey(std::string_view key) const
{
    if (!key.empty() && key.front() == '$')
        return false;
    return !impl_->objects.empty() && impl_->objects.back()->contains(key);
}

void LuSVNKeyedArchiver::encodeInt64(std::int64_t value, std::string_view key)
{
    impl_->put(key, value);
}

void LuSVNKeyedArchiver::encodeBool(bool value, std::string_view key)
{
    impl_->put(key, value);
}

void LuSVNKeyedArchiver::encodeDouble(double value, std::string_view key)
{
    // JSON has no numbers for these; dump() would turn them into null.
    if (std::isnan(value))
        impl_->put(key, "NaN");
    else if (std::isinf(value))
        impl_->put(key, value > 0 ? "Infinity" : "-Infinity");
    else
        impl_->put(key, value);
}

void LuSVNKeyedArchiver::encodeString(const std::optional<std::string>& value, std::string_view key)
{
    if (!value) {
        impl_->put(key, nullptr);
        return;
    }
    Impl::checkString(*value, key);
    impl_->put(key, *value);
}

void LuSVNKeyedArchiver::encodeData(const std::optional<LuSVNData>& value, std::string_view key)
{
    impl_->put(key, value ? Json(base64Encode(*value)) : Json(nullptr));
}

void LuSVNKeyedArchiver::encodeStringArray(const std::optional<std::vector<std::string>>& values,
                                           std::string_view key)
{
    if (!values) {
        impl_->put(key, nullptr);
        return;
    }
    Json array = Json::array();
    for (const std::string& value : *values) {
        Impl::checkString(value, key);
        array.push_back(value);
    }
    impl_->put(key, std::move(array));
}

void LuSVNKeyedArchiver::encodeObjectReference(const LuSVNCoding* object, std::string_view key)
{
    impl_->checkKey(key);
    impl_->put(key, object ? impl_->archive(*object, *this, key) : Json(nullptr));
}

void LuSVNKeyedArchiver::encodeObjectReferences(const std::vector<const LuSVNCoding*>* objects,
                                                std::string_view key)
{
    impl_->checkKey(key);
    if (!objects) {
        impl_->put(key, nullptr);
        return;
    }
    Json array = Json::array();
    for (const LuSVNCoding* object : *objects) {
        if (!object)
            throw LuSVNInvalidArgumentException("Cannot encode a nil element in the array for key "
                                                + std::string(key));
        array.push_back(impl_->archive(*object, *this, key));
    }
    impl_->put(key, std::move(array));
}
