#include <tessera/LuSVNPlatformExceptions.h>

#include "LuSVNAssert.h"

// Defined out of line so that each class has one home for its type
// information: catching across the library boundary depends on it.
#define LUSVN_DEFINE_PLATFORM_EXCEPTION(Name)                                                                \
    Name::Name(const std::string& reason) : LuSVNException(reason) {}                                        \
    Name::~Name() = default;                                                                                 \
    const LuSVNExceptionClass& Name::classObject()                                                           \
    {                                                                                                        \
        static const LuSVNExceptionClass exceptionClass{                                                     \
            #Name, &LuSVNException::classObject(), [](std::string reason, std::optional<LuSVNErrorDictionary>) { \
                return std::shared_ptr<LuSVNException>(std::make_shared<Name>(reason));                      \
            }};                                                                                              \
        return exceptionClass;                                                                               \
    }                                                                                                        \
    const LuSVNExceptionClass& Name::exceptionClass() const { return classObject(); }                       \
    void Name::raise() const { throw *this; }

LUSVN_DEFINE_PLATFORM_EXCEPTION(LuSVNGenericException)
LUSVN_DEFINE_PLATFORM_EXCEPTION(LuSVNInvalidArgumentException)
LUSVN_DEFINE_PLATFORM_EXCEPTION(LuSVNInternalInconsistencyException)

void tessera_private::LuSVNParameterAssertionFailed(const char* condition, const char*, int)
{
    throw LuSVNInternalInconsistencyException(std::string("Invalid parameter not satisfying: ") + condition);
}
