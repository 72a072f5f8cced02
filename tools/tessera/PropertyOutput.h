// What the property commands share: the paths svn shows for the items a
// target reaches, values as svn prints them, and svn's refusals.
#pragma once

#include <tessera/Tessera.h>

#include <optional>
#include <string>

/// The item as svn names it: a URL as it is; a local item as the target was
/// written (canonically: no "." segments, no doubled or final "/"), joined
/// with the item's path below the target; "." for the current directory.
/// `absoluteTarget` is the absolute path the target was read as.
std::string propertyItemDisplay(const std::string& target, const std::string& absoluteTarget,
                                const std::string& reported);

/// The text with each "\r\n" and "\r" made "\n", as svn keeps the lines of
/// its own (svn:) properties.
std::string propertyLineFeeds(const std::string& text);

/// Bytes as a property value: text when they are UTF-8, else binary data.
LuSVNPropertyValue propertyValue(const std::string& bytes);

/// Raises svn's E195011 "'<name>' is not a valid Subversion property name".
void checkPropertyName(const std::string& name);

/// Rethrows the failure, as svn's E200005 when it is Subversion's older
/// E150000 "... is not under version control" of the property calls.
[[noreturn]] void rethrowPropertyFailure(const LuSVNException& failure);

/// The value's bytes.
std::string propertyBytes(const LuSVNPropertyValue& value);

/// "  name\n" and, with the value, its lines each indented by four blanks,
/// as svn lists properties (it prints a value up to its first NUL).
void appendListedProperty(std::string& out, const std::string& name, const LuSVNPropertyValue* value);

/// svn's property element of an XML listing: `<property name="..">value</property>`,
/// or empty without value.
void appendXMLProperty(std::string& out, const std::string& name, const LuSVNPropertyValue* value);

/// Whether --depth or -R ask for the items below the targets: svn_client_propset2
/// and its siblings know only "empty" and "infinity"; another depth raises E205000.
bool propertyRecursion(const std::optional<std::string>& depth, bool recursive);

/// The backends have no revision-property calls: --revprop raises E200007.
[[noreturn]] void refuseRevisionProperties();
