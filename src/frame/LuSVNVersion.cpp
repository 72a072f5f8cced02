#include <tessera/LuSVNVersion.h>
#include <tessera/LuSVNStrings.h>

#include <cstdio>
#include <cstdlib>
#include <string>

LuSVNVersion::LuSVNVersion(std::int32_t major, std::int32_t minor, std::int32_t patch, std::string tag)
    : major_(major), minor_(minor), patch_(patch), tag_(std::move(tag))
{
}

LuSVNVersion LuSVNVersion::version(std::int32_t major, std::int32_t minor, std::int32_t patch, std::string tag)
{
    return LuSVNVersion(major, minor, patch, std::move(tag));
}

LuSVNVersion LuSVNVersion::version(std::int32_t major, std::int32_t minor, std::int32_t patch)
{
    return LuSVNVersion(major, minor, patch, std::string());
}

LuSVNVersion LuSVNVersion::version(std::int32_t major, std::int32_t minor)
{
    return LuSVNVersion(major, minor, 0, std::string());
}

namespace {

// A component reads like C's atoi: leading blanks, an optional sign, then
// digits; anything else reads as 0. Out-of-range values saturate rather than
// overflow.
std::int32_t leadingInteger(std::string_view text)
{
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r' ||
                               text[i] == '\f' || text[i] == '\v'))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        negative = text[i] == '-';
        ++i;
    }
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > 2147483648LL)
            value = 2147483648LL;
    }
    if (negative)
        value = -value;
    if (value > 2147483647LL)
        value = 2147483647LL;
    return static_cast<std::int32_t>(value);
}

}  // namespace

LuSVNVersion LuSVNVersion::versionWithString(std::string_view text)
{
    const std::string trimmed = LuSVNTrim(std::string(text));
    std::string_view numbers = trimmed;
    std::string tag;
    if (const auto separator = trimmed.find_first_of(" -"); separator != std::string::npos) {
        tag = LuSVNTrim(trimmed.substr(separator + 1));
        numbers = std::string_view(trimmed).substr(0, separator);
    }
    std::int32_t components[3] = {0, 0, 0};
    for (int index = 0; index < 3; ++index) {
        const auto dot = numbers.find('.');
        components[index] = leadingInteger(numbers.substr(0, dot));
        if (dot == std::string_view::npos)
            break;
        numbers.remove_prefix(dot + 1);
    }
    return LuSVNVersion(components[0], components[1], components[2], std::move(tag));
}

std::string LuSVNVersion::versionString() const
{
    std::string text = std::to_string(major_) + "." + std::to_string(minor_);
    if (patch_ >= 1)
        text += "." + std::to_string(patch_);
    if (!tag_.empty())
        text += " " + tag_;
    return text;
}

float LuSVNVersion::majorMinor() const
{
    const std::string text = std::to_string(major_) + "." + std::to_string(minor_);
    return std::strtof(text.c_str(), nullptr);
}

LuSVNVersion LuSVNVersion::versionWithMajorAndMinorComponents() const
{
    return LuSVNVersion(major_, minor_, 0, std::string());
}

int LuSVNVersion::compare(const LuSVNVersion& other) const
{
    if (major_ != other.major_)
        return major_ < other.major_ ? -1 : 1;
    if (minor_ != other.minor_)
        return minor_ < other.minor_ ? -1 : 1;
    if (patch_ != other.patch_)
        return patch_ < other.patch_ ? -1 : 1;
    const int order = tag_.compare(other.tag_);
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

bool LuSVNVersion::matches(const LuSVNVersion& pattern) const
{
    return (pattern.major_ == 0 || pattern.major_ == major_) && (pattern.minor_ == 0 || pattern.minor_ == minor_) &&
           (pattern.patch_ == 0 || pattern.patch_ == patch_) && (pattern.tag_.empty() || pattern.tag_ == tag_);
}

std::string LuSVNVersion::minimumVersionString() const
{
    if (isLessThan(defaultVersion()))
        return versionString() + "+";
    return versionString();
}

std::size_t LuSVNVersion::hash() const
{
    const std::size_t numbers = ((static_cast<std::size_t>(patch_) & 0xff) << 16) |
                                ((static_cast<std::size_t>(minor_) & 0xff) << 8) |
                                (static_cast<std::size_t>(major_) & 0xff);
    return numbers ^ std::hash<std::string>()(tag_);
}
