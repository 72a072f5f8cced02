// Archiving of the library's value classes.
//
// An archivable class implements LuSVNCoding: it names itself and writes its
// state into a LuSVNCoder under keys, and it has a decoding function that
// reads the same keys back from a coder. LuSVNKeyedArchiver turns a root
// object into an archive (UTF-8 JSON text); LuSVNKeyedUnarchiver turns the
// archive back into an object of the same concrete class. Nested objects are
// polymorphic: the archive stores each one's class name, and a process-wide
// registry maps the name to the class's decoding function.
//
// Only keyed coders are supported. Every archivable class starts its
// encodeWithCoder with LuSVNRequireKeyedArchiver(coder) and its decoding with
// LuSVNRequireKeyedUnarchiver(coder).
//
// Making a class archivable:
//
//     class LuSVNExample final : public LuSVNCoding {
//     public:
//         static LuSVNExample initWithCoder(LuSVNCoder& coder)
//         {
//             LuSVNRequireKeyedUnarchiver(coder);
//             return LuSVNExample(coder.decodeStringForKey("name"), coder.decodeInt64ForKey("size"));
//         }
//         std::string archiveClassName() const override { return "LuSVNExample"; }
//         void encodeWithCoder(LuSVNCoder& coder) const override
//         {
//             LuSVNRequireKeyedArchiver(coder);
//             coder.encodeString(name_, "name");   // keys in a fixed order
//             coder.encodeInt64(size_, "size");
//         }
//         ...
//     };
//     // In the class's source file:
//     static const LuSVNArchivableClassRegistrar<LuSVNExample> registrar("LuSVNExample");
//
// Keys must be valid UTF-8 and must not start with '$' (reserved for the
// archive's own use). Each key is written at most once per object.
//
// Nil: strings, data, nested objects and arrays may be nil. Encoding nil
// stores an explicit nil under the key; decoding an explicit nil or a key that
// is absent gives nil (std::nullopt or a null pointer). An empty string, empty
// data and an empty array are values, distinct from nil.
//
// Decoding a key that is absent gives the kind's zero: 0, false, 0.0 or nil,
// so that a class can add keys and still read older archives. Decoding a value
// of another kind, an object of an unknown class or any malformed content
// raises LuSVNInvalidArgumentException.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include <tessera/LuSVNData.h>
#include <tessera/LuSVNExport.h>

class LuSVNCoder;

/// An archivable object.
class TESSERA_EXPORT LuSVNCoding {
public:
    virtual ~LuSVNCoding();

    /// The name under which the class is registered with
    /// LuSVNRegisterArchivableClass; stored in the archive so that decoding
    /// finds the concrete class again.
    virtual std::string archiveClassName() const = 0;

    /// Writes the object's state into `coder`, one key per value, always in
    /// the same order. Refuses a coder that is not keyed (see
    /// LuSVNRequireKeyedArchiver).
    virtual void encodeWithCoder(LuSVNCoder& coder) const = 0;

protected:
    LuSVNCoding() = default;
    /// Subclasses copy their own state.
    LuSVNCoding(const LuSVNCoding&) = default;
    /// See the copy constructor.
    LuSVNCoding& operator=(const LuSVNCoding&) = default;
};

namespace tessera_detail {
// The forms in which the elements of an object array may be handed over.
inline const LuSVNCoding* codingPointer(const LuSVNCoding& object) { return &object; }
inline const LuSVNCoding* codingPointer(const LuSVNCoding* object) { return object; }
template <class T>
const LuSVNCoding* codingPointer(const std::shared_ptr<T>& object)
{
    return object.get();
}
template <class T, class D>
const LuSVNCoding* codingPointer(const std::unique_ptr<T, D>& object)
{
    return object.get();
}
} // namespace tessera_detail

/// Writes values into an archive or reads them back, by key.
///
/// The encode and decode members of this base class raise
/// LuSVNInvalidArgumentException ("<member> is not available in this
/// coder"); a coder overrides those of its direction. An archiver or
/// unarchiver works on one object at a time: while a nested object is encoded
/// or decoded, the keys are those of the nested object.
class TESSERA_EXPORT LuSVNCoder {
public:
    virtual ~LuSVNCoder();
    LuSVNCoder(const LuSVNCoder&) = delete;
    LuSVNCoder& operator=(const LuSVNCoder&) = delete;

    /// Whether the coder stores values under keys. Archivable classes refuse
    /// coders for which this is false.
    virtual bool allowsKeyedCoding() const = 0;

    /// Whether the current object has a value, possibly an explicit nil,
    /// under `key`.
    virtual bool containsValueForKey(std::string_view key) const;

    // --- Encoding -------------------------------------------------------

    /// A 64-bit signed integer.
    virtual void encodeInt64(std::int64_t value, std::string_view key);

    /// A boolean.
    virtual void encodeBool(bool value, std::string_view key);

    /// A double, stored exactly; NaN and the infinities included.
    virtual void encodeDouble(double value, std::string_view key);

    /// A string or nil. The string must be valid UTF-8.
    virtual void encodeString(const std::optional<std::string>& value, std::string_view key);

    /// Binary data or nil, stored byte for byte.
    virtual void encodeData(const std::optional<LuSVNData>& value, std::string_view key);

    /// An array of strings or nil. Each string must be valid UTF-8.
    virtual void encodeStringArray(const std::optional<std::vector<std::string>>& values, std::string_view key);

    /// A nested object, or nil when `object` is null. The archive records the
    /// object's archiveClassName().
    void encodeObject(const LuSVNCoding* object, std::string_view key) { encodeObjectReference(object, key); }
    void encodeObject(const LuSVNCoding& object, std::string_view key) { encodeObjectReference(&object, key); }
    template <class T>
        requires std::derived_from<T, LuSVNCoding>
    void encodeObject(const std::shared_ptr<T>& object, std::string_view key)
    {
        encodeObjectReference(object.get(), key);
    }
    template <class T>
        requires std::derived_from<T, LuSVNCoding>
    void encodeObject(const std::optional<T>& object, std::string_view key)
    {
        encodeObjectReference(object ? &*object : nullptr, key);
    }

    /// An array of nested objects, each possibly of another class. Elements
    /// may be objects, pointers, shared_ptr or unique_ptr; none may be null.
    template <std::ranges::input_range Range>
    void encodeObjectArray(const Range& objects, std::string_view key)
    {
        std::vector<const LuSVNCoding*> pointers;
        for (const auto& element : objects)
            pointers.push_back(tessera_detail::codingPointer(element));
        encodeObjectReferences(&pointers, key);
    }
    /// The same, or nil.
    template <std::ranges::input_range Range>
    void encodeObjectArray(const std::optional<Range>& objects, std::string_view key)
    {
        if (objects)
            encodeObjectArray(*objects, key);
        else
            encodeObjectReferences(nullptr, key);
    }

    // --- Decoding -------------------------------------------------------

    /// The integer under `key`; 0 when absent.
    virtual std::int64_t decodeInt64ForKey(std::string_view key);

    /// The boolean under `key`; false when absent.
    virtual bool decodeBoolForKey(std::string_view key);

    /// The double under `key`; 0.0 when absent.
    virtual double decodeDoubleForKey(std::string_view key);

    /// The string under `key`; nullopt when nil or absent.
    virtual std::optional<std::string> decodeStringForKey(std::string_view key);

    /// The data under `key`; nullopt when nil or absent.
    virtual std::optional<LuSVNData> decodeDataForKey(std::string_view key);

    /// The string array under `key`; nullopt when nil or absent.
    virtual std::optional<std::vector<std::string>> decodeStringArrayForKey(std::string_view key);

    /// The nested object under `key`, made by the decoding function registered
    /// for its class; null when nil or absent.
    virtual std::shared_ptr<LuSVNCoding> decodeObjectForKey(std::string_view key);

    /// The object array under `key`; nullopt when nil or absent. No element
    /// is null.
    virtual std::optional<std::vector<std::shared_ptr<LuSVNCoding>>> decodeObjectArrayForKey(std::string_view key);

    /// decodeObjectForKey, requiring an object of class T or a subclass of it.
    template <class T>
    std::shared_ptr<T> decodeObjectOfClassForKey(std::string_view key)
    {
        return checkedClass<T>(decodeObjectForKey(key), key);
    }

    /// The nested object under `key` as a value of exactly class T, for
    /// classes that hold their nested objects by value; nullopt when nil or
    /// absent.
    template <class T>
    std::optional<T> decodeValueOfClassForKey(std::string_view key)
    {
        std::shared_ptr<T> object = checkedExactClass<T>(decodeObjectForKey(key), key);
        if (!object)
            return std::nullopt;
        return std::optional<T>(*object);
    }

    /// decodeObjectArrayForKey, requiring every element to be of class T or a
    /// subclass of it.
    template <class T>
    std::optional<std::vector<std::shared_ptr<T>>> decodeArrayOfObjectsOfClassForKey(std::string_view key)
    {
        auto objects = decodeObjectArrayForKey(key);
        if (!objects)
            return std::nullopt;
        std::vector<std::shared_ptr<T>> result;
        result.reserve(objects->size());
        for (auto& object : *objects)
            result.push_back(checkedClass<T>(std::move(object), key));
        return result;
    }

    /// The object array under `key` as values of exactly class T; nullopt
    /// when nil or absent.
    template <class T>
    std::optional<std::vector<T>> decodeArrayOfValuesOfClassForKey(std::string_view key)
    {
        auto objects = decodeObjectArrayForKey(key);
        if (!objects)
            return std::nullopt;
        std::vector<T> result;
        result.reserve(objects->size());
        for (auto& object : *objects)
            result.push_back(*checkedExactClass<T>(std::move(object), key));
        return result;
    }

protected:
    LuSVNCoder() = default;

    /// Encodes one nested object; `object` null means nil.
    virtual void encodeObjectReference(const LuSVNCoding* object, std::string_view key);

    /// Encodes an array of nested objects; `objects` null means nil.
    virtual void encodeObjectReferences(const std::vector<const LuSVNCoding*>* objects, std::string_view key);

private:
    [[noreturn]] static void raiseUnexpectedClass(const LuSVNCoding& object, std::string_view key);

    template <class T>
    static std::shared_ptr<T> checkedClass(std::shared_ptr<LuSVNCoding> object, std::string_view key)
    {
        if (!object)
            return nullptr;
        std::shared_ptr<T> typed = std::dynamic_pointer_cast<T>(object);
        if (!typed)
            raiseUnexpectedClass(*object, key);
        return typed;
    }

    // Copying a subclass into a T would drop what the subclass adds.
    template <class T>
    static std::shared_ptr<T> checkedExactClass(std::shared_ptr<LuSVNCoding> object, std::string_view key)
    {
        std::shared_ptr<T> typed = checkedClass<T>(std::move(object), key);
        if (typed && typeid(*typed) != typeid(T))
            raiseUnexpectedClass(*typed, key);
        return typed;
    }
};

/// Raises LuSVNInvalidArgumentException "Keyed archiver required" unless
/// `coder` allows keyed coding. The first line of every encodeWithCoder.
TESSERA_EXPORT void LuSVNRequireKeyedArchiver(const LuSVNCoder& coder);

/// Raises LuSVNInvalidArgumentException "Keyed unarchiver required" unless
/// `coder` allows keyed coding. The first line of every decoding function.
TESSERA_EXPORT void LuSVNRequireKeyedUnarchiver(const LuSVNCoder& coder);

/// Makes an object of a registered class from the coder positioned on its
/// archived state. Never returns null; raises on bad content.
using LuSVNDecodingFunction = std::function<std::shared_ptr<LuSVNCoding>(LuSVNCoder&)>;

/// Registers the decoding function for the archived class name
/// `className`, replacing an earlier registration of the name; an empty
/// function removes it. Thread-safe, and safe to call from static
/// initialisers in any translation unit. An empty name raises
/// LuSVNInvalidArgumentException.
TESSERA_EXPORT void LuSVNRegisterArchivableClass(std::string_view className, LuSVNDecodingFunction decoder);

/// The decoding function registered for `className`; empty when none is.
TESSERA_EXPORT LuSVNDecodingFunction LuSVNArchivableClassDecoder(std::string_view className);

/// The decoding function of class T: T::initWithCoder(coder) when T has one
/// (returning a T or a pointer to one), otherwise the constructor T(coder).
template <class T>
    requires std::derived_from<T, LuSVNCoding>
std::shared_ptr<LuSVNCoding> LuSVNDecodeArchivableObject(LuSVNCoder& coder)
{
    if constexpr (requires { T::initWithCoder(coder); }) {
        using Result = decltype(T::initWithCoder(coder));
        if constexpr (std::is_convertible_v<Result, std::shared_ptr<LuSVNCoding>>)
            return std::shared_ptr<LuSVNCoding>(T::initWithCoder(coder));
        else
            return std::make_shared<T>(T::initWithCoder(coder));
    } else {
        return std::make_shared<T>(coder);
    }
}

/// Registers class T under `className` on construction; define one as a
/// static object in the class's source file.
template <class T>
class LuSVNArchivableClassRegistrar {
public:
    explicit LuSVNArchivableClassRegistrar(std::string_view className)
    {
        LuSVNRegisterArchivableClass(className, &LuSVNDecodeArchivableObject<T>);
    }
};
