#include "ReadTarget.h"

#include "Operation.h"

TesseraReadTarget readTarget(const std::string& argument, const std::shared_ptr<const LuSVNRevisionSpec>& operative)
{
    TesseraReadTarget target;
    const auto [text, peg] = splitPegRevision(argument);
    target.text = text;
    target.isURL = isURL(text);
    if (target.isURL)
        target.path = LuSVNURL::URLWithString(text);
    else
        target.path = targetPath(text);
    const auto pegRevision = peg ? peg->keyRevision() : LuSVNRevision::UNSPECIFIED();
    const auto operativeRevision = operative ? operative->keyRevision() : LuSVNRevision::UNSPECIFIED();
    target.revision = LuSVNRevisionSpec::revisionWithRevision(operativeRevision, pegRevision);
    return target;
}
