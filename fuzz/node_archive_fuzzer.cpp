// Nodes decoded from arbitrary archive text, with their status, conflict,
// conflict versions and lock. Decoding either succeeds or raises
// LuSVNInvalidArgumentException; what it decodes archives again, and round
// trips settle it: decoding that archive and archiving the result gives the
// same text, the same class and a node that orders the same. (A URL decodes
// through the rules of construction, which drop one trailing "/" each time,
// so a URL ending in several slashes takes as many round trips to settle.) A copy
// archives like its source but owns its status.
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <typeinfo>

#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::shared_ptr<LuSVNNode> decoded;
    try {
        decoded = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNNode>(tessera_fuzz::textOf(data, size));
    } catch (const LuSVNInvalidArgumentException&) {
        return 0;
    }
    require(decoded != nullptr, "a decoded node exists");
    require(decoded->isDirectory() == (dynamic_cast<const LuSVNDirectory*>(decoded.get()) != nullptr),
            "the class decides whether a node is a directory");
    std::string archive = LuSVNKeyedArchiver::archivedDataWithRootObject(*decoded);
    for (std::size_t round = 0; round <= size; ++round) {
        decoded = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNNode>(archive);
        const std::string next = LuSVNKeyedArchiver::archivedDataWithRootObject(*decoded);
        if (next == archive)
            break;
        require(next.size() < archive.size(), "round trips only shorten the archive");
        archive = next;
    }
    const LuSVNNode& node = *decoded;
    const auto again = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNNode>(archive);
    const LuSVNNode& restored = *again;
    require(typeid(restored) == typeid(node), "the class survives");
    require(LuSVNKeyedArchiver::archivedDataWithRootObject(*again) == archive, "a round trip changes nothing more");
    require(again->compare(decoded) == 0 && decoded->compare(again) == 0, "the restored node orders the same");

    const auto copy = decoded->copy();
    const LuSVNNode& copied = *copy;
    require(typeid(copied) == typeid(node), "a copy keeps the class");
    require(LuSVNKeyedArchiver::archivedDataWithRootObject(*copy) == archive, "a copy archives like its source");
    require(!decoded->status() || copy->status() != decoded->status(), "a copy owns its status");
    if (const auto& status = decoded->status()) {
        require(status->isAbnormal() == (LuSVNStatusIsAbnormal(status->textStatus()) ||
                                         LuSVNStatusIsAbnormal(status->propertyStatus())),
                "abnormal means a bit outside the quiet mask");
        (void)status->conflictOldRevision();
        (void)status->conflictNewRevision();
    }
    (void)decoded->lockStatus();
    (void)decoded->hasNewerRevisionInRepository();
    return 0;
}
