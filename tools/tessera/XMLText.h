// svn's XML output pieces, for the commands that print --xml.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Appends text escaped as svn escapes character data: &, <, > and carriage
/// returns.
void appendXMLData(std::string& out, std::string_view text);

/// Appends text as svn writes a revision property into XML: control
/// characters that XML cannot hold become "?\ddd" (their decimal code), then
/// the character data is escaped.
void appendXMLFuzzyData(std::string& out, std::string_view text);

/// One attribute of an open tag as svn writes it: "\n   name=\"value\"", the
/// value escaped for an attribute (quotes, line feeds and tabs too).
void appendXMLAttribute(std::string& out, std::string_view name, std::string_view value);

/// svn's open tag: "<name" then each attribute on a line of its own
/// ("\n   key=\"value\"", the value escaped for an attribute) then ">", and a
/// line break after it unless `protectData` (the element's text follows at
/// once).
void appendXMLOpenTag(std::string& out, std::string_view name,
                      const std::vector<std::pair<std::string, std::string>>& attributes, bool protectData = false);

/// "<name>text</name>\n" with the text fuzzily escaped.
void appendXMLTaggedData(std::string& out, std::string_view name, std::string_view text);
