// Revisions read from arbitrary text. The first byte chooses the parse
// behaviour (its low seven bits: every combination of flags), the rest is the
// text. What comes back must be allowed by the behaviour, and every revision
// must survive its own round trips: its description (for numbers and names),
// Subversion's revision record, archiving, copying, and equal to itself in
// equality, hash and order.
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNNumberedRevision.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRelativeRevision.h>
#include <tessera/LuSVNRevisionAtDate.h>

#include <cctype>

#include "LuSVNSubversion.h"
#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

namespace {

using Revision = std::shared_ptr<const LuSVNRevision>;

bool sameIgnoringASCIICase(const std::string& a, const std::string& b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

bool isName(const std::string& text, std::uint32_t behavior, const Revision& parsed)
{
    const std::pair<std::uint32_t, Revision> names[] = {
        {LuSVNParseHead, LuSVNRevision::HEAD()},         {LuSVNParsePrevious, LuSVNRevision::PREVIOUS()},
        {LuSVNParseBase, LuSVNRevision::BASE()},         {LuSVNParseWorking, LuSVNRevision::WORKING()},
        {LuSVNParseCommitted, LuSVNRevision::COMMITTED()},
    };
    for (const auto& [flag, revision] : names)
        if (parsed == revision)
            return (behavior & flag) && sameIgnoringASCIICase(text, revision->description());
    return false;
}

void checkValue(const Revision& revision)
{
    require(revision->isEqual(revision) && revision->compare(revision) == 0, "a revision equals itself");
    const Revision copy = revision->copy();
    require(copy->isEqual(revision) && revision->isEqual(copy) && copy->hash() == revision->hash(),
            "a copy is equal and hashes alike");
    const auto archived = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNRevision>(
        LuSVNKeyedArchiver::archivedDataWithRootObject(*revision));
    const LuSVNRevision& original = *revision;
    const LuSVNRevision& decoded = *archived;
    require(decoded.isEqual(revision) && typeid(decoded) == typeid(original), "archiving keeps the revision");
    const svn_opt_revision_t record = revision->SVNRevision();
    // Time 0 is no date to Subversion; reading it back is refused by design.
    if (record.kind != svn_opt_revision_date || record.value.date != 0)
        require(LuSVNRevision::revisionFromSVNRevision(&record)->isEqual(revision),
                "Subversion's record reads back as an equal revision");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const std::uint32_t behavior = data[0] & 127u;
    const std::string text = tessera_fuzz::textOf(data + 1, size - 1);
    Revision parsed;
    try {
        parsed = LuSVNRevision::revisionFromString(text, behavior);
    } catch (const LuSVNInternalInconsistencyException& e) {
        require((behavior & LuSVNParseNumber) && e.reason() == "Invalid parameter not satisfying: "
                                                               "SVN_IS_VALID_REVNUM(number)",
                "only a negative number fails, with the number assertion");
        return 0;
    }
    if (text.empty()) {
        require(parsed == LuSVNRevision::UNSPECIFIED(), "empty text is UNSPECIFIED");
        return 0;
    }
    if (!parsed)
        return 0;
    if (const auto* numbered = dynamic_cast<const LuSVNNumberedRevision*>(parsed.get())) {
        require(behavior & LuSVNParseNumber, "numbers only with the number flag");
        require(numbered->number() >= 0, "parsed numbers are valid");
        const Revision again = LuSVNRevision::revisionFromString(parsed->description(), LuSVNParseNumber);
        require(again && again->isEqual(parsed), "a number's description parses back to it");
    } else if (dynamic_cast<const LuSVNRevisionAtDate*>(parsed.get())) {
        require(behavior & LuSVNParseDate, "dates only with the date flag");
        require(LuSVNRevision::parseDateString(text) == parsed->date(), "the date is the text's date");
    } else {
        require(isName(text, behavior, parsed), "names only with their flags, as the shared instances");
        require(LuSVNRevision::revisionFromString(parsed->description(), behavior) == parsed,
                "a name's description parses back to the same instance");
    }
    checkValue(parsed);
    return 0;
}
