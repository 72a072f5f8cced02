// The three general-purpose exceptions of the library.
//
// Failures of Subversion and of the library's own operations are
// LuSVNException (see LuSVNException.h). These three stand for programming and
// usage errors that are not Subversion's:
//
//   LuSVNGenericException               a call out of order (e.g. an unbalanced
//                                       backend stack pop)
//   LuSVNInvalidArgumentException       an argument of the wrong kind or value
//   LuSVNInternalInconsistencyException a broken precondition; every parameter
//                                       assertion raises it, in release builds
//                                       too, with "Invalid parameter not
//                                       satisfying: <condition>"
//
// what() is the reason text.
#pragma once

#include <stdexcept>
#include <string>

#include <tessera/LuSVNExport.h>

class TESSERA_EXPORT LuSVNGenericException : public std::runtime_error {
public:
    explicit LuSVNGenericException(const std::string& reason);
    std::string reason() const { return what(); }
};

class TESSERA_EXPORT LuSVNInvalidArgumentException : public std::invalid_argument {
public:
    explicit LuSVNInvalidArgumentException(const std::string& reason);
    std::string reason() const { return what(); }
};

class TESSERA_EXPORT LuSVNInternalInconsistencyException : public std::logic_error {
public:
    explicit LuSVNInternalInconsistencyException(const std::string& reason);
    std::string reason() const { return what(); }
};
