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
