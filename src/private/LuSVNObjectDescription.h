// The generic description of an object, its class and identity, as the
// descriptions of several value classes begin: "<LuSVNMergeInfo: 0x55d0c1e2a2c0>".
#pragma once

#include <tessera/LuSVNPlatformExceptions.h>

#include <cxxabi.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <typeinfo>

namespace tessera_private {

inline std::string LuSVNGenericDescription(std::string_view className, const void* object)
{
    char address[2 * sizeof(void*) + 3];
    std::snprintf(address, sizeof address, "%p", object);
    return "<" + std::string(className) + ": " + address + ">";
}

/// The class's name as written in the source ("LuSVNAddOptions"), or the
/// compiler's mangled name when it cannot be demangled.
inline std::string LuSVNClassName(const std::type_info& type)
{
    int status = 0;
    char* name = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
    std::string result = status == 0 && name ? name : type.name();
    std::free(name);
    return result;
}

/// The generic description under the object's dynamic class, so that a
/// subclass inheriting a description is named as itself.
template <class T>
std::string LuSVNGenericDescription(const T& object)
{
    return LuSVNGenericDescription(LuSVNClassName(typeid(object)), &object);
}

/// For the copy() of a class whose subclasses copy themselves: raises
/// LuSVNInvalidArgumentException "<class> does not override copy()" when the
/// object is of a subclass that does not, since a copy of another class
/// would stand in for the application's object.
template <class Copying>
void LuSVNRequireOwnCopy(const Copying& object)
{
    if (typeid(object) != typeid(Copying))
        throw LuSVNInvalidArgumentException(LuSVNClassName(typeid(object)) + " does not override copy()");
}

}  // namespace tessera_private
