#include "XMLText.h"

#include <cstdio>

namespace {

void appendEscaped(std::string& out, std::string_view text, bool attribute)
{
    for (const char c : text) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '\r': out += "&#13;"; break;
        case '"': out += attribute ? "&quot;" : "\""; break;
        case '\'': out += attribute ? "&apos;" : "'"; break;
        case '\n': out += attribute ? "&#10;" : "\n"; break;
        case '\t': out += attribute ? "&#9;" : "\t"; break;
        default: out += c;
        }
    }
}

}  // namespace

void appendXMLData(std::string& out, std::string_view text)
{
    appendEscaped(out, text, false);
}

void appendXMLFuzzyData(std::string& out, std::string_view text)
{
    std::string safe;
    safe.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 && c != '\t' && c != '\n' && c != '\r') {
            char code[8];
            std::snprintf(code, sizeof code, "?\\%03u", byte);
            safe += code;
        } else {
            safe += c;
        }
    }
    appendEscaped(out, safe, false);
}

void appendXMLAttribute(std::string& out, std::string_view name, std::string_view value)
{
    out += "\n   ";
    out += name;
    out += "=\"";
    appendEscaped(out, value, true);
    out += '"';
}

void appendXMLOpenTag(std::string& out, std::string_view name,
                      const std::vector<std::pair<std::string, std::string>>& attributes, bool protectData)
{
    out += '<';
    out += name;
    for (const auto& [key, value] : attributes)
        appendXMLAttribute(out, key, value);
    out += protectData ? ">" : ">\n";
}

void appendXMLTaggedData(std::string& out, std::string_view name, std::string_view text)
{
    out += '<';
    out += name;
    out += '>';
    appendXMLFuzzyData(out, text);
    out += "</";
    out += name;
    out += ">\n";
}
