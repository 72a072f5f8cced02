// Notifications decoded from arbitrary archive text. Decoding either succeeds
// or raises LuSVNInvalidArgumentException (or, for a URL archived without its
// text, the URL's own assertion on the empty text). What it decodes archives
// again, and one round trip settles it: decoding that archive and archiving
// the result gives the same text (nothing is lost or changed a second time,
// the lock, the error and its class included).
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNNotification.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <string_view>

#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::shared_ptr<LuSVNNotification> decoded;
    try {
        decoded = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNNotification>(tessera_fuzz::textOf(data, size));
    } catch (const LuSVNInvalidArgumentException&) {
        return 0;
    } catch (const LuSVNInternalInconsistencyException& e) {
        require(std::string_view(e.what()).ends_with("string != nil && [string length] > 0"),
                "only the URL's assertion on its empty text");
        return 0;
    }
    require(decoded != nullptr, "a decoded notification exists");
    std::string archive = LuSVNKeyedArchiver::archivedDataWithRootObject(*decoded);
    // A URL decodes through the rules of construction, which drop one
    // trailing "/" each time: a lock's URL ending in several takes as many
    // round trips to settle.
    for (std::size_t round = 0; round <= size; ++round) {
        const std::string next = LuSVNKeyedArchiver::archivedDataWithRootObject(
            *LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNNotification>(archive));
        if (next == archive)
            break;
        require(next.size() < archive.size(), "round trips only shorten the archive");
        archive = next;
    }
    const auto again = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNNotification>(archive);
    require(LuSVNKeyedArchiver::archivedDataWithRootObject(*again) == archive, "a round trip changes nothing more");
    require(again->action() == decoded->action() && again->revision() == decoded->revision(),
            "the numbers survive");
    if (decoded->error()) {
        require(again->error() != nullptr, "the error survives");
        require(again->error()->name() == decoded->error()->name(), "the error keeps its class");
        require(again->error()->reason() == decoded->error()->reason(), "the error keeps its reason");
    }
    require((again->lock() != nullptr) == (decoded->lock() != nullptr), "the lock survives");
    if (decoded->lock())
        require(again->lock()->isEqualToLock(decoded->lock()), "the lock keeps its token");
    (void)decoded->description();
    return 0;
}
