#include <tessera/LuSVNMutableRevisionSpec.h>

#include "LuSVNAssert.h"

static const LuSVNArchivableClassRegistrar<LuSVNMutableRevisionSpec> registrar("LuSVNMutableRevisionSpec");

using MutableSpec = std::shared_ptr<LuSVNMutableRevisionSpec>;

MutableSpec LuSVNMutableRevisionSpec::initWithCoder(LuSVNCoder& coder)
{
    return LuSVNRevisionSpec::initWithCoder(coder)->mutableCopy();
}

MutableSpec LuSVNMutableRevisionSpec::revisionWithNumber(std::int32_t number)
{
    return LuSVNRevisionSpec::revisionWithNumber(number)->mutableCopy();
}

MutableSpec LuSVNMutableRevisionSpec::pegRevisionWithNumber(std::int32_t number)
{
    return LuSVNRevisionSpec::pegRevisionWithNumber(number)->mutableCopy();
}

MutableSpec LuSVNMutableRevisionSpec::revisionAtDate(LuSVNRevision::Date date)
{
    return LuSVNRevisionSpec::revisionAtDate(date)->mutableCopy();
}

MutableSpec LuSVNMutableRevisionSpec::pegRevisionAtDate(LuSVNRevision::Date date)
{
    return LuSVNRevisionSpec::pegRevisionAtDate(date)->mutableCopy();
}

MutableSpec LuSVNMutableRevisionSpec::revisionWithRevision(Revision revision)
{
    return LuSVNRevisionSpec::revisionWithRevision(std::move(revision))->mutableCopy();
}

MutableSpec LuSVNMutableRevisionSpec::pegRevisionWithRevision(Revision pegRevision)
{
    return LuSVNRevisionSpec::pegRevisionWithRevision(std::move(pegRevision))->mutableCopy();
}

MutableSpec LuSVNMutableRevisionSpec::revisionWithRevision(Revision revision, Revision pegRevision)
{
    return LuSVNRevisionSpec::revisionWithRevision(std::move(revision), std::move(pegRevision))->mutableCopy();
}

void LuSVNMutableRevisionSpec::setOperativeRevision(Revision operativeRevision)
{
    LUSVN_PARAMETER_ASSERT(operativeRevision != nullptr, "theOperativeRevision != nil");
    operative_ = std::move(operativeRevision);
}

void LuSVNMutableRevisionSpec::setPegRevision(Revision pegRevision)
{
    LUSVN_PARAMETER_ASSERT(pegRevision != nullptr, "thePegRevision != nil");
    peg_ = std::move(pegRevision);
}

std::string LuSVNMutableRevisionSpec::archiveClassName() const
{
    return "LuSVNMutableRevisionSpec";
}
