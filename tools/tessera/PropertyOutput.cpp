#include "PropertyOutput.h"

#include <vector>

#include "HistoryOptions.h"
#include "Messages.h"
#include "Options.h"
#include "Operation.h"
#include "XMLText.h"

namespace {

// svn_dirent_canonicalize for the relative and absolute paths of a command line.
std::string canonicalTarget(const std::string& target)
{
    std::string result = !target.empty() && target.front() == '/' ? "/" : "";
    std::size_t start = 0;
    while (start <= target.size()) {
        std::size_t end = target.find('/', start);
        if (end == std::string::npos)
            end = target.size();
        const std::string segment = target.substr(start, end - start);
        if (!segment.empty() && segment != ".")
            result += (result.empty() || result.back() == '/' ? "" : "/") + segment;
        start = end + 1;
    }
    return result;
}

}  // namespace

std::string propertyItemDisplay(const std::string& target, const std::string& absoluteTarget,
                                const std::string& reported)
{
    if (isURL(reported))
        return reported;
    std::string below = reported.compare(0, absoluteTarget.size(), absoluteTarget) == 0
                            ? reported.substr(absoluteTarget.size())
                            : reported;
    std::string display = canonicalTarget(target);
    if (display.empty() && !below.empty() && below.front() == '/')
        below.erase(0, 1);
    display += below;
    return display.empty() ? "." : display;
}

std::string propertyLineFeeds(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r') {
            result += '\n';
            if (i + 1 < text.size() && text[i + 1] == '\n')
                ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

LuSVNPropertyValue propertyValue(const std::string& bytes)
{
    if (LuSVNIsValidUTF8(bytes))
        return bytes;
    return LuSVNData(bytes.data(), bytes.size());
}

void checkPropertyName(const std::string& name)
{
    if (!LuSVNPropertyConversion::isValidPropertyName(name))
        LuSVNException::exceptionWithReason("'" + name + "' is not a valid Subversion property name", 195011)
            ->raise();
}

void rethrowPropertyFailure(const LuSVNException& failure)
{
    if (failure.status() == 150000 && failure.reason().ends_with("is not under version control"))
        throw LuSVNException(*LuSVNException::exceptionWithReason(failure.reason(), 200005));
    throw;
}

std::string propertyBytes(const LuSVNPropertyValue& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return *text;
    const auto& data = std::get<LuSVNData>(value);
    return std::string(reinterpret_cast<const char*>(data.data()), data.size());
}

void appendListedProperty(std::string& out, const std::string& name, const LuSVNPropertyValue* value)
{
    out += "  " + name + "\n";
    if (!value)
        return;
    const std::string bytes = propertyBytes(*value);
    const std::string text = bytes.substr(0, bytes.find('\0'));
    out += "    ";
    for (const char c : text) {
        out += c;
        if (c == '\n')
            out += "    ";
    }
    out += "\n";
}

void appendXMLProperty(std::string& out, const std::string& name, const LuSVNPropertyValue* value)
{
    appendXMLOpenTag(out, "property", {{"name", name}}, true);
    if (!value) {
        out.back() = '/';
        out += ">\n";
        return;
    }
    appendXMLData(out, propertyBytes(*value));
    out += "</property>\n";
}

bool propertyRecursion(const std::optional<std::string>& depth, bool recursive)
{
    if (!depth)
        return recursive;
    const LuSVNDepth value = depthForWord(*depth);
    if (value != LuSVNDepthEmpty && value != LuSVNDepthInfinity)
        raiseArgumentError("Only the depths 'empty' and 'infinity' are supported for properties");
    return value == LuSVNDepthInfinity;
}

void refuseRevisionProperties()
{
    throw LuSVNException(*LuSVNException::exceptionWithReason(
        "Revision properties are not supported: the Subversion backends offer no calls for them", 200007));
}
