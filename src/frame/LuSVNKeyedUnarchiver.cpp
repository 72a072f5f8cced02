#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <limits>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

// Each nested object is one JSON object, and at most one array encloses it.
constexpr int maxJSONDepth = 2 * LuSVNArchiveMaxNestingDepth;

// Measured on the text before parsing, so that hostile nesting never reaches
// the parser's or our own recursion.
bool nestsTooDeeply(std::string_view text)
{
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (inString) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                inString = false;
        } else if (c == '"')
            inString = true;
        else if (c == '[' || c == '{') {
            if (++depth > maxJSONDepth)
                return true;
        } else if (c == ']' || c == '}')
            --depth;
    }
    return false;
}

const char* kindName(const Json& value)
{
    switch (value.type()) {
    case Json::value_t::null: return "nil";
    case Json::value_t::boolean: return "a boolean";
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned: return "an integer";
    case Json::value_t::number_float: return "a floating-point number";
    case Json::value_t::string: return "a string";
    case Json::value_t::array: return "an array";
    case Json::value_t::object: return "an object";
    default: return "an unknown value";
    }
}

[[noreturn]] void raiseWrongKind(const char* expected, std::string_view key, const Json& found)
{
    throw LuSVNInvalidArgumentException("Cannot decode " + std::string(expected) + " for key " + std::string(key)
                                        + ": the archive holds " + kindName(found));
}

int base64Value(unsigned char c)
{
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 26;
    if (c >= '0' && c <= '9')
        return c - '0' + 52;
    if (c == '+')
        return 62;
    if (c == '/')
        return 63;
    return -1;
}

// Only the canonical form that the archiver writes: padded, no line breaks,
// no stray bits in the last group.
std::optional<LuSVNData> base64Decode(const std::string& text)
{
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const bool last = i + 4 == text.size();
        int padding = 0;
        if (last && text[i + 3] == '=')
            padding = text[i + 2] == '=' ? 2 : 1;
        std::uint32_t group = 0;
        for (int j = 0; j < 4; ++j) {
            int value = j < 4 - padding ? base64Value(static_cast<unsigned char>(text[i + j])) : 0;
            if (value < 0)
                return std::nullopt;
            group = (group << 6) | static_cast<std::uint32_t>(value);
        }
        if ((padding == 1 && (group & 0xFF) != 0) || (padding == 2 && (group & 0xFFFF) != 0))
            return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(group >> 16));
        if (padding < 2)
            bytes.push_back(static_cast<std::uint8_t>(group >> 8));
        if (padding < 1)
            bytes.push_back(static_cast<std::uint8_t>(group));
    }
    return LuSVNData(std::move(bytes));
}

bool isReservedKey(std::string_view key)
{
    return !key.empty() && key.front() == '$';
}

} // namespace

struct LuSVNKeyedUnarchiver::Impl {
    Json archive;
    // The object being decoded is the last; the root is the first.
    std::vector<const Json*> objects;

    // The value under `key` in the current object; null when absent.
    const Json* find(std::string_view key) const
    {
        if (objects.empty() || isReservedKey(key))
            return nullptr;
        const Json& object = *objects.back();
        auto it = object.find(key);
        return it == object.end() ? nullptr : &*it;
    }

    std::shared_ptr<LuSVNCoding> decode(const Json& value, LuSVNKeyedUnarchiver& unarchiver, std::string_view key)
    {
        if (value.is_null())
            return nullptr;
        if (!value.is_object())
            raiseWrongKind("object", key, value);
        auto classEntry = value.find("$class");
        if (classEntry == value.end() || !classEntry->is_string())
            throw LuSVNInvalidArgumentException("Cannot decode object without class name for key " + std::string(key));
        const std::string& className = classEntry->get_ref<const std::string&>();
        LuSVNDecodingFunction decoder = LuSVNArchivableClassDecoder(className);
        if (!decoder)
            throw LuSVNInvalidArgumentException("Cannot decode object of unknown class " + className + " for key "
                                                + std::string(key));
        if (objects.size() >= static_cast<std::size_t>(LuSVNArchiveMaxNestingDepth))
            throw LuSVNInvalidArgumentException("Cannot decode object for key " + std::string(key)
                                                + ": objects nest too deeply");
        objects.push_back(&value);
        struct Pop {
            std::vector<const Json*>& objects;
            ~Pop() { objects.pop_back(); }
        } pop{objects};
        std::shared_ptr<LuSVNCoding> object = decoder(unarchiver);
        if (!object)
            throw LuSVNInvalidArgumentException("Decoding of class " + className + " for key " + std::string(key)
                                                + " made no object");
        return object;
    }
};

LuSVNKeyedUnarchiver::LuSVNKeyedUnarchiver() : impl_(std::make_unique<Impl>()) {}

LuSVNKeyedUnarchiver::~LuSVNKeyedUnarchiver() = default;

std::shared_ptr<LuSVNCoding> LuSVNKeyedUnarchiver::unarchiveObjectWithData(std::string_view data)
{
    if (nestsTooDeeply(data))
        throw LuSVNInvalidArgumentException("Cannot decode archive: objects nest too deeply");
    // The parser would take a NUL for the end of the text and ignore the rest.
    if (data.find('\0') != std::string_view::npos)
        throw LuSVNInvalidArgumentException("Cannot decode archive: malformed JSON: NUL character");
    LuSVNKeyedUnarchiver unarchiver;
    try {
        unarchiver.impl_->archive = Json::parse(data);
    } catch (const Json::exception& error) {
        throw LuSVNInvalidArgumentException(std::string("Cannot decode archive: malformed JSON: ") + error.what());
    }
    const Json& root = unarchiver.impl_->archive;
    if (root.is_null())
        throw LuSVNInvalidArgumentException("Cannot decode archive: no root object");
    return unarchiver.impl_->decode(root, unarchiver, "root");
}

void LuSVNKeyedUnarchiver::raiseUnexpectedRootClass(const LuSVNCoding& root)
{
    throw LuSVNInvalidArgumentException("Root object of class " + root.archiveClassName()
                                        + " is not of the expected class");
}

bool LuSVNKeyedUnarchiver::allowsKeyedCoding() const
{
    return true;
}

bool LuSVNKeyedUnarchiver::containsValueForKey(std::string_view key) const
{
    return impl_->find(key) != nullptr;
}

std::int64_t LuSVNKeyedUnarchiver::decodeInt64ForKey(std::string_view key)
{
    const Json* value = impl_->find(key);
    if (!value)
        return 0;
    if (value->is_number_unsigned()) {
        auto number = value->get<std::uint64_t>();
        if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            throw LuSVNInvalidArgumentException("Cannot decode integer for key " + std::string(key)
                                                + ": out of range");
        return static_cast<std::int64_t>(number);
    }
    if (value->is_number_integer())
        return value->get<std::int64_t>();
    raiseWrongKind("integer", key, *value);
}

bool LuSVNKeyedUnarchiver::decodeBoolForKey(std::string_view key)
{
    const Json* value = impl_->find(key);
    if (!value)
        return false;
    if (!value->is_boolean())
        raiseWrongKind("boolean", key, *value);
    return value->get<bool>();
}

double LuSVNKeyedUnarchiver::decodeDoubleForKey(std::string_view key)
{
    const Json* value = impl_->find(key);
    if (!value)
        return 0.0;
    if (value->is_number())
        return value->get<double>();
    if (value->is_string()) {
        const auto& text = value->get_ref<const std::string&>();
        if (text == "NaN")
            return std::numeric_limits<double>::quiet_NaN();
        if (text == "Infinity")
            return std::numeric_limits<double>::infinity();
        if (text == "-Infinity")
            return -std::numeric_limits<double>::infinity();
    }
    raiseWrongKind("double", key, *value);
}

std::optional<std::string> LuSVNKeyedUnarchiver::decodeStringForKey(std::string_view key)
{
    const Json* value = impl_->find(key);
    if (!value || value->is_null())
        return std::nullopt;
    if (!value->is_string())
        raiseWrongKind("string", key, *value);
    return value->get<std::string>();
}

std::optional<LuSVNData> LuSVNKeyedUnarchiver::decodeDataForKey(std::string_view key)
{
    const Json* value = impl_->find(key);
    if (!value || value->is_null())
        return std::nullopt;
    if (!value->is_string())
        raiseWrongKind("data", key, *value);
    std::optional<LuSVNData> data = base64Decode(value->get_ref<const std::string&>());
    if (!data)
        throw LuSVNInvalidArgumentException("Cannot decode data for key " + std::string(key) + ": invalid base64");
    return data;
}

std::optional<std::vector<std::string>> LuSVNKeyedUnarchiver::decodeStringArrayForKey(std::string_view key)
{
    const Json* value = impl_->find(key);
    if (!value || value->is_null())
        return std::nullopt;
    if (!value->is_array())
        raiseWrongKind("string array", key, *value);
    std::vector<std::string> strings;
    strings.reserve(value->size());
    for (const Json& element : *value) {
        if (!element.is_string())
            raiseWrongKind("string array element", key, element);
        strings.push_back(element.get<std::string>());
    }
    return strings;
}

std::shared_ptr<LuSVNCoding> LuSVNKeyedUnarchiver::decodeObjectForKey(std::string_view key)
{
    const Json* value = impl_->find(key);
    if (!value)
        return nullptr;
    return impl_->decode(*value, *this, key);
}

std::optional<std::vector<std::shared_ptr<LuSVNCoding>>>
LuSVNKeyedUnarchiver::decodeObjectArrayForKey(std::string_view key)
{
    const Json* value = impl_->find(key);
    if (!value || value->is_null())
        return std::nullopt;
    if (!value->is_array())
        raiseWrongKind("object array", key, *value);
    std::vector<std::shared_ptr<LuSVNCoding>> objects;
    objects.reserve(value->size());
    for (const Json& element : *value) {
        if (!element.is_object())
            raiseWrongKind("object array element", key, element);
        objects.push_back(impl_->decode(element, *this, key));
    }
    return objects;
}
