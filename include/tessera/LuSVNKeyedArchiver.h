// The keyed archiver and unarchiver: archivable objects to UTF-8 JSON text
// and back.
//
// The archive of an object is a JSON object whose first member is
// "$class" (the object's archiveClassName()), followed by the encoded keys in
// the order in which the class encoded them. The root object is the archive
// itself:
//
//     {"$class":"LuSVNLocalPath","path":"/a"}
//
// Values: integers and doubles are JSON numbers (NaN and the infinities are
// the strings "NaN", "Infinity" and "-Infinity"); booleans are JSON
// booleans; strings are JSON strings; data is a base64 string (standard
// alphabet, padded); nested objects are nested archives; arrays are JSON
// arrays; nil is null.
//
// Archives nest at most LuSVNArchiveMaxNestingDepth objects deep; deeper
// object graphs (a cycle, for one) are refused when encoding and such
// archives when decoding.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNExport.h>

/// Levels of nested objects an archive may have, the root being the first.
inline constexpr int LuSVNArchiveMaxNestingDepth = 128;

/// Encodes objects; made and used by archivedDataWithRootObject only.
class TESSERA_EXPORT LuSVNKeyedArchiver final : public LuSVNCoder {
public:
    /// The archive of `rootObject`. Raises LuSVNInvalidArgumentException
    /// when the object cannot be archived (a string that is not UTF-8, a key
    /// encoded twice, a reserved key, a nil array element, nesting too deep,
    /// or a refusal by the object itself).
    static std::string archivedDataWithRootObject(const LuSVNCoding& rootObject);

    ~LuSVNKeyedArchiver() override;

    /// Always true.
    bool allowsKeyedCoding() const override;

    /// Whether `key` was already encoded in the current object.
    bool containsValueForKey(std::string_view key) const override;

    void encodeInt64(std::int64_t value, std::string_view key) override;
    void encodeBool(bool value, std::string_view key) override;
    void encodeDouble(double value, std::string_view key) override;
    void encodeString(const std::optional<std::string>& value, std::string_view key) override;
    void encodeData(const std::optional<LuSVNData>& value, std::string_view key) override;
    void encodeStringArray(const std::optional<std::vector<std::string>>& values, std::string_view key) override;

protected:
    void encodeObjectReference(const LuSVNCoding* object, std::string_view key) override;
    void encodeObjectReferences(const std::vector<const LuSVNCoding*>* objects, std::string_view key) override;

private:
    LuSVNKeyedArchiver();

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// Decodes objects; made and used by unarchiveObjectWithData only.
class TESSERA_EXPORT LuSVNKeyedUnarchiver final : public LuSVNCoder {
public:
    /// The object archived in `data`, of the class recorded there. Raises
    /// LuSVNInvalidArgumentException when the text is not JSON, is not an
    /// archive, names a class that is not registered, holds a value of
    /// another kind than its class decodes, or nests too deeply.
    static std::shared_ptr<LuSVNCoding> unarchiveObjectWithData(std::string_view data);

    /// The same, requiring the root object to be of class T or a subclass of
    /// it; otherwise LuSVNInvalidArgumentException.
    template <class T>
    static std::shared_ptr<T> unarchiveObjectOfClass(std::string_view data)
    {
        std::shared_ptr<LuSVNCoding> root = unarchiveObjectWithData(data);
        std::shared_ptr<T> typed = std::dynamic_pointer_cast<T>(root);
        if (!typed)
            raiseUnexpectedRootClass(*root);
        return typed;
    }

    ~LuSVNKeyedUnarchiver() override;

    /// Always true.
    bool allowsKeyedCoding() const override;

    bool containsValueForKey(std::string_view key) const override;

    std::int64_t decodeInt64ForKey(std::string_view key) override;
    bool decodeBoolForKey(std::string_view key) override;
    double decodeDoubleForKey(std::string_view key) override;
    std::optional<std::string> decodeStringForKey(std::string_view key) override;
    std::optional<LuSVNData> decodeDataForKey(std::string_view key) override;
    std::optional<std::vector<std::string>> decodeStringArrayForKey(std::string_view key) override;
    std::shared_ptr<LuSVNCoding> decodeObjectForKey(std::string_view key) override;
    std::optional<std::vector<std::shared_ptr<LuSVNCoding>>> decodeObjectArrayForKey(std::string_view key) override;

private:
    LuSVNKeyedUnarchiver();

    [[noreturn]] static void raiseUnexpectedRootClass(const LuSVNCoding& root);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};
