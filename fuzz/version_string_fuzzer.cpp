// Versions read from arbitrary text: the printed form of a parsed version
// reads back as an equal version with the same tag, and the numbers are
// never negative (a dash always starts the tag, so no component carries a
// minus sign). Versions made from numbers rather than text are not covered:
// a negative component, a patch below 1 or a tag with white space at its
// ends prints in a form that reads back differently, as the parsing rules
// say it must.
#include <tessera/LuSVNVersion.h>

#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const LuSVNVersion version = LuSVNVersion::versionWithString(tessera_fuzz::textOf(data, size));
    require(version.major() >= 0 && version.minor() >= 0 && version.patch() >= 0, "parsed numbers are not negative");
    const LuSVNVersion again = LuSVNVersion::versionWithString(version.versionString());
    require(again == version && again.tag() == version.tag(), "the version string reads back as the version");
    require(again.hash() == version.hash(), "equal versions hash alike");
    require(again.versionString() == version.versionString(), "printing is stable");
    return 0;
}
