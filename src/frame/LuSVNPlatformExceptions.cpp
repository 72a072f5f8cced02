#include <tessera/LuSVNPlatformExceptions.h>

// Defined out of line so that each class has one home for its type
// information: catching across the library boundary depends on it.
LuSVNGenericException::LuSVNGenericException(const std::string& reason) : std::runtime_error(reason) {}

LuSVNInvalidArgumentException::LuSVNInvalidArgumentException(const std::string& reason)
    : std::invalid_argument(reason)
{
}

LuSVNInternalInconsistencyException::LuSVNInternalInconsistencyException(const std::string& reason)
    : std::logic_error(reason)
{
}

#include "LuSVNAssert.h"

void tessera_private::LuSVNParameterAssertionFailed(const char* condition, const char*, int)
{
    throw LuSVNInternalInconsistencyException(std::string("Invalid parameter not satisfying: ") + condition);
}
