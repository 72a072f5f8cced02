// The three general-purpose exceptions of the library.
//
// They stand for programming and usage errors that are not Subversion's, and
// like every exception of the library they are LuSVNException subclasses, so
// that one `catch (const LuSVNException&)` catches every failure:
//
//   LuSVNGenericException               a call out of order (e.g. an unbalanced
//                                       backend stack pop)
//   LuSVNInvalidArgumentException       an argument of the wrong kind or value
//                                       (e.g. a text that is no URL)
//   LuSVNInternalInconsistencyException a broken precondition; every parameter
//                                       assertion raises it, in release builds
//                                       too, with "Invalid parameter not
//                                       satisfying: <condition>"
//
// Their status() is 20014 (no Subversion error stands behind them); what() and
// reason() are the reason text, name() the class name.
#pragma once

#include <string>

#include <tessera/LuSVNException.h>
#include <tessera/LuSVNExport.h>

class TESSERA_EXPORT LuSVNGenericException : public LuSVNException {
public:
    explicit LuSVNGenericException(const std::string& reason);
    ~LuSVNGenericException() override;
    const LuSVNExceptionClass& exceptionClass() const override;
    [[noreturn]] void raise() const override;
    static const LuSVNExceptionClass& classObject();
};

class TESSERA_EXPORT LuSVNInvalidArgumentException : public LuSVNException {
public:
    explicit LuSVNInvalidArgumentException(const std::string& reason);
    ~LuSVNInvalidArgumentException() override;
    const LuSVNExceptionClass& exceptionClass() const override;
    [[noreturn]] void raise() const override;
    static const LuSVNExceptionClass& classObject();
};

class TESSERA_EXPORT LuSVNInternalInconsistencyException : public LuSVNException {
public:
    explicit LuSVNInternalInconsistencyException(const std::string& reason);
    ~LuSVNInternalInconsistencyException() override;
    const LuSVNExceptionClass& exceptionClass() const override;
    [[noreturn]] void raise() const override;
    static const LuSVNExceptionClass& classObject();
};
