// A Subversion release number: major, minor, patch and a tag.
//
// Versions identify backends. They order by their numbers and then by the
// plain string order of their tags, so 1.6 < 1.6.1 and 1.6.0 < "1.6.0 dev".
//
//   auto v = LuSVNVersion::versionWithString("1.7.0-dev");   // 1.7.0, tag "dev"
//   v.versionString();                                        // "1.7 dev"
//   v.matches(LuSVNVersion::version(1, 7));                   // true
#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <tessera/LuSVNExport.h>

class TESSERA_EXPORT LuSVNVersion {
public:
    /// The designated constructor.
    LuSVNVersion(std::int32_t major, std::int32_t minor, std::int32_t patch, std::string tag);

    static LuSVNVersion version(std::int32_t major, std::int32_t minor, std::int32_t patch, std::string tag);
    static LuSVNVersion version(std::int32_t major, std::int32_t minor, std::int32_t patch);
    static LuSVNVersion version(std::int32_t major, std::int32_t minor);

    /// Parses texts like "1.6.17", "1.7.0-dev" (tag "dev") and "1.5 (r12345)"
    /// (tag "(r12345)"). The tag is what follows the first blank or dash;
    /// missing components are 0 and a component that is not a number reads
    /// as 0, so the empty text gives 0.0.0.
    static LuSVNVersion versionWithString(std::string_view text);

    std::int32_t major() const { return major_; }
    std::int32_t minor() const { return minor_; }
    std::int32_t patch() const { return patch_; }
    /// Never "none": the empty string when there is no tag.
    const std::string& tag() const { return tag_; }

    /// "1.6" when patch < 1, else "1.6.3"; a tag is appended after a blank.
    std::string versionString() const;
    std::string description() const { return versionString(); }

    /// Major and minor read back as a float: 1.6 gives 1.6f, 1.10 gives 1.1f.
    float majorMinor() const;

    /// This version with patch 0 and no tag.
    LuSVNVersion versionWithMajorAndMinorComponents() const;

    /// -1, 0 or 1: major, minor, patch as signed numbers, then the tags.
    int compare(const LuSVNVersion& other) const;
    bool isLessThan(const LuSVNVersion& other) const { return compare(other) == -1; }
    bool isLessThanOrEqualTo(const LuSVNVersion& other) const { return compare(other) != 1; }
    bool isGreaterThan(const LuSVNVersion& other) const { return compare(other) == 1; }
    bool isGreaterThanOrEqualTo(const LuSVNVersion& other) const { return compare(other) != -1; }
    bool isEqualToVersion(const LuSVNVersion& other) const { return compare(other) == 0; }

    /// Whether this version matches a pattern whose zero components (and
    /// empty tag) are wildcards: 1.6 matches 1.6.0, 1.6.17 and "1.6.5 dev".
    bool matches(const LuSVNVersion& pattern) const;

    /// "1.5+" for versions older than defaultVersion(), else versionString().
    std::string minimumVersionString() const;

    std::size_t hash() const;

    friend bool operator==(const LuSVNVersion& a, const LuSVNVersion& b) { return a.compare(b) == 0; }
    friend std::strong_ordering operator<=>(const LuSVNVersion& a, const LuSVNVersion& b)
    {
        return a.compare(b) <=> 0;
    }

    // Well-known versions, made once and held for the life of the process.
    static const LuSVNVersion& version1_4();
    static const LuSVNVersion& version1_5();
    static const LuSVNVersion& version1_6();
    static const LuSVNVersion& version1_7();
    /// 1.4, 1.5, 1.6, 1.7 in this order.
    static const std::vector<LuSVNVersion>& wellKnownVersions();
    /// A new list 1.3, 1.4, 1.5, 1.6, 1.7.
    static std::vector<LuSVNVersion> fileCompatibilityVersions();
    static const LuSVNVersion& oldestWellknownVersion();
    static const LuSVNVersion& newestWellknownVersion();
    /// The release the platform defaults to: 1.6 on Linux. It is not the
    /// loader's default backend, which is always the newest loaded one.
    static const LuSVNVersion& defaultVersion();

private:
    std::int32_t major_;
    std::int32_t minor_;
    std::int32_t patch_;
    std::string tag_;
};

template <>
struct std::hash<LuSVNVersion> {
    std::size_t operator()(const LuSVNVersion& v) const noexcept { return v.hash(); }
};
