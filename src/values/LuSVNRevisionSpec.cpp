#include <tessera/LuSVNMutableRevisionSpec.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRevisionSpec.h>

#include "LuSVNAssert.h"
#include "LuSVNSharedInstance.h"

static const LuSVNArchivableClassRegistrar<LuSVNRevisionSpec> registrar("LuSVNRevisionSpec");

using Spec = std::shared_ptr<const LuSVNRevisionSpec>;

LuSVNRevisionSpec::LuSVNRevisionSpec(Revision operativeRevision)
    : LuSVNRevisionSpec(std::move(operativeRevision), LuSVNRevision::UNSPECIFIED())
{
}

LuSVNRevisionSpec::LuSVNRevisionSpec(Revision operativeRevision, Revision pegRevision)
    : operative_(std::move(operativeRevision)), peg_(std::move(pegRevision))
{
    LUSVN_PARAMETER_ASSERT(operative_ != nullptr, "theOperativeRevision != nil");
    LUSVN_PARAMETER_ASSERT(peg_ != nullptr, "thePegRevision != nil");
}

LuSVNRevisionSpec::~LuSVNRevisionSpec() = default;

std::shared_ptr<LuSVNRevisionSpec> LuSVNRevisionSpec::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    Revision operative = coder.decodeObjectOfClassForKey<LuSVNRevision>("operativeRevision");
    Revision peg = coder.decodeObjectOfClassForKey<LuSVNRevision>("pegRevision");
    if (!operative || !peg)
        throw LuSVNInvalidArgumentException("Revision spec archived without its revisions");
    return std::make_shared<LuSVNRevisionSpec>(std::move(operative), std::move(peg));
}

Spec LuSVNRevisionSpec::HEAD()
{
    return tessera_private::LuSVNSharedInstance([] { return revisionWithRevision(LuSVNRevision::HEAD()); });
}

Spec LuSVNRevisionSpec::WORKING()
{
    return tessera_private::LuSVNSharedInstance([] { return revisionWithRevision(LuSVNRevision::WORKING()); });
}

Spec LuSVNRevisionSpec::BASE()
{
    return tessera_private::LuSVNSharedInstance([] { return revisionWithRevision(LuSVNRevision::BASE()); });
}

Spec LuSVNRevisionSpec::PREVIOUS()
{
    return tessera_private::LuSVNSharedInstance([] { return revisionWithRevision(LuSVNRevision::PREVIOUS()); });
}

Spec LuSVNRevisionSpec::COMMITTED()
{
    return tessera_private::LuSVNSharedInstance([] { return revisionWithRevision(LuSVNRevision::COMMITTED()); });
}

Spec LuSVNRevisionSpec::UNSPECIFIED()
{
    return tessera_private::LuSVNSharedInstance([] { return revisionWithRevision(LuSVNRevision::UNSPECIFIED()); });
}

Spec LuSVNRevisionSpec::MINE()
{
    return tessera_private::LuSVNSharedInstance([] { return revisionWithRevision(LuSVNRevision::MINE()); });
}

Spec LuSVNRevisionSpec::revisionWithNumber(std::int32_t number)
{
    return revisionWithRevision(LuSVNRevision::revisionWithNumber(number));
}

Spec LuSVNRevisionSpec::pegRevisionWithNumber(std::int32_t number)
{
    return pegRevisionWithRevision(LuSVNRevision::revisionWithNumber(number));
}

Spec LuSVNRevisionSpec::revisionAtDate(LuSVNRevision::Date date)
{
    return revisionWithRevision(LuSVNRevision::revisionAtDate(date));
}

Spec LuSVNRevisionSpec::pegRevisionAtDate(LuSVNRevision::Date date)
{
    return pegRevisionWithRevision(LuSVNRevision::revisionAtDate(date));
}

Spec LuSVNRevisionSpec::revisionWithRevision(Revision revision)
{
    return std::make_shared<const LuSVNRevisionSpec>(std::move(revision));
}

Spec LuSVNRevisionSpec::pegRevisionWithRevision(Revision pegRevision)
{
    return std::make_shared<const LuSVNRevisionSpec>(LuSVNRevision::UNSPECIFIED(), std::move(pegRevision));
}

Spec LuSVNRevisionSpec::revisionWithRevision(Revision revision, Revision pegRevision)
{
    return std::make_shared<const LuSVNRevisionSpec>(std::move(revision), std::move(pegRevision));
}

const LuSVNRevisionSpec::Revision& LuSVNRevisionSpec::keyRevision() const
{
    return operative_->isEqual(LuSVNRevision::UNSPECIFIED()) ? peg_ : operative_;
}

std::int32_t LuSVNRevisionSpec::number() const
{
    return keyRevision()->number();
}

std::optional<LuSVNRevision::Date> LuSVNRevisionSpec::date() const
{
    return keyRevision()->date();
}

bool LuSVNRevisionSpec::isRelative() const
{
    return keyRevision()->isRelative();
}

Spec LuSVNRevisionSpec::copy() const
{
    return std::make_shared<const LuSVNRevisionSpec>(operative_, peg_);
}

std::shared_ptr<LuSVNMutableRevisionSpec> LuSVNRevisionSpec::mutableCopy() const
{
    return std::make_shared<LuSVNMutableRevisionSpec>(operative_, peg_);
}

std::size_t LuSVNRevisionSpec::hash() const
{
    return operative_->hash() ^ peg_->hash();
}

bool LuSVNRevisionSpec::isEqual(const Spec& other) const
{
    return other && operative_->isEqual(other->operative_) && peg_->isEqual(other->peg_);
}

std::string LuSVNRevisionSpec::description() const
{
    return operative_->description() + "@" + peg_->description();
}

std::string LuSVNRevisionSpec::archiveClassName() const
{
    return "LuSVNRevisionSpec";
}

void LuSVNRevisionSpec::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeObject(operative_, "operativeRevision");
    coder.encodeObject(peg_, "pegRevision");
}
