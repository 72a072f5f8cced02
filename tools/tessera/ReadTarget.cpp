#include "ReadTarget.h"

#include "Operation.h"
#include "RevisionDates.h"
#include "XMLText.h"

TesseraReadTarget readTarget(const std::string& argument, const std::shared_ptr<const LuSVNRevisionSpec>& operative)
{
    TesseraReadTarget target;
    const auto [text, peg] = splitPegRevision(argument);
    target.text = text;
    target.isURL = isURL(text);
    if (target.isURL)
        target.path = commandLineURL(text);
    else
        target.path = targetPath(text);
    const auto pegRevision = peg ? peg->keyRevision() : LuSVNRevision::UNSPECIFIED();
    const auto operativeRevision = operative ? operative->keyRevision() : LuSVNRevision::UNSPECIFIED();
    target.revision = LuSVNRevisionSpec::revisionWithRevision(operativeRevision, pegRevision);
    return target;
}

void appendXMLLock(std::string& out, const LuSVNLock& lock)
{
    out += "<lock>\n";
    appendXMLTaggedData(out, "token", lock.token());
    appendXMLTaggedData(out, "owner", lock.owner());
    if (lock.comment())
        appendXMLTaggedData(out, "comment", *lock.comment());
    if (lock.creationDate())
        appendXMLTaggedData(out, "created", repositoryDate(*lock.creationDate()));
    if (lock.expirationDate())
        appendXMLTaggedData(out, "expires", repositoryDate(*lock.expirationDate()));
    out += "</lock>\n";
}
