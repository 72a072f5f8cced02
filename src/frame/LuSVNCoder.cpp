#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <map>
#include <mutex>

namespace {

[[noreturn]] void raiseUnavailable(const char* member)
{
    throw LuSVNInvalidArgumentException(std::string(member) + " is not available in this coder");
}

// Function-local statics so that registrars running in static initialisers
// of any translation unit find the registry constructed.
std::mutex& registryMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::map<std::string, LuSVNDecodingFunction, std::less<>>& registry()
{
    static std::map<std::string, LuSVNDecodingFunction, std::less<>> classes;
    return classes;
}

} // namespace

LuSVNCoding::~LuSVNCoding() = default;

LuSVNCoder::~LuSVNCoder() = default;

bool LuSVNCoder::containsValueForKey(std::string_view) const
{
    raiseUnavailable("containsValueForKey");
}

void LuSVNCoder::encodeInt64(std::int64_t, std::string_view)
{
    raiseUnavailable("encodeInt64");
}

void LuSVNCoder::encodeBool(bool, std::string_view)
{
    raiseUnavailable("encodeBool");
}

void LuSVNCoder::encodeDouble(double, std::string_view)
{
    raiseUnavailable("encodeDouble");
}

void LuSVNCoder::encodeString(const std::optional<std::string>&, std::string_view)
{
    raiseUnavailable("encodeString");
}

void LuSVNCoder::encodeData(const std::optional<LuSVNData>&, std::string_view)
{
    raiseUnavailable("encodeData");
}

void LuSVNCoder::encodeStringArray(const std::optional<std::vector<std::string>>&, std::string_view)
{
    raiseUnavailable("encodeStringArray");
}

void LuSVNCoder::encodeObjectReference(const LuSVNCoding*, std::string_view)
{
    raiseUnavailable("encodeObject");
}

void LuSVNCoder::encodeObjectReferences(const std::vector<const LuSVNCoding*>*, std::string_view)
{
    raiseUnavailable("encodeObjectArray");
}

std::int64_t LuSVNCoder::decodeInt64ForKey(std::string_view)
{
    raiseUnavailable("decodeInt64ForKey");
}

bool LuSVNCoder::decodeBoolForKey(std::string_view)
{
    raiseUnavailable("decodeBoolForKey");
}

double LuSVNCoder::decodeDoubleForKey(std::string_view)
{
    raiseUnavailable("decodeDoubleForKey");
}

std::optional<std::string> LuSVNCoder::decodeStringForKey(std::string_view)
{
    raiseUnavailable("decodeStringForKey");
}

std::optional<LuSVNData> LuSVNCoder::decodeDataForKey(std::string_view)
{
    raiseUnavailable("decodeDataForKey");
}

std::optional<std::vector<std::string>> LuSVNCoder::decodeStringArrayForKey(std::string_view)
{
    raiseUnavailable("decodeStringArrayForKey");
}

std::shared_ptr<LuSVNCoding> LuSVNCoder::decodeObjectForKey(std::string_view)
{
    raiseUnavailable("decodeObjectForKey");
}

std::optional<std::vector<std::shared_ptr<LuSVNCoding>>> LuSVNCoder::decodeObjectArrayForKey(std::string_view)
{
    raiseUnavailable("decodeObjectArrayForKey");
}

void LuSVNCoder::raiseUnexpectedClass(const LuSVNCoding& object, std::string_view key)
{
    throw LuSVNInvalidArgumentException("Object of class " + object.archiveClassName() + " for key "
                                        + std::string(key) + " is not of the expected class");
}

void LuSVNRequireKeyedArchiver(const LuSVNCoder& coder)
{
    if (!coder.allowsKeyedCoding())
        throw LuSVNInvalidArgumentException("Keyed archiver required");
}

void LuSVNRequireKeyedUnarchiver(const LuSVNCoder& coder)
{
    if (!coder.allowsKeyedCoding())
        throw LuSVNInvalidArgumentException("Keyed unarchiver required");
}

void LuSVNRegisterArchivableClass(std::string_view className, LuSVNDecodingFunction decoder)
{
    if (className.empty())
        throw LuSVNInvalidArgumentException("Cannot register an archivable class without a name");
    std::lock_guard lock(registryMutex());
    auto& classes = registry();
    if (!decoder) {
        if (auto it = classes.find(className); it != classes.end())
            classes.erase(it);
        return;
    }
    classes.insert_or_assign(std::string(className), std::move(decoder));
}

LuSVNDecodingFunction LuSVNArchivableClassDecoder(std::string_view className)
{
    std::lock_guard lock(registryMutex());
    const auto& classes = registry();
    auto it = classes.find(className);
    return it == classes.end() ? LuSVNDecodingFunction() : it->second;
}
