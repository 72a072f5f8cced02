#include <tessera/LuSVNOptions.h>

#include "LuSVNObjectDescription.h"

LuSVNOptions::~LuSVNOptions() = default;

std::string LuSVNOptions::description() const
{
    return tessera_private::LuSVNGenericDescription(*this);
}
