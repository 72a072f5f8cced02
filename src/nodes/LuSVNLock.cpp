#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNLock.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include "LuSVNAssert.h"
#include "LuSVNCodedDate.h"
#include "LuSVNObjectDescription.h"
#include "LuSVNSubversion.h"

static const LuSVNArchivableClassRegistrar<LuSVNLock> registrar("LuSVNLock");

namespace {

std::string dateDescription(const std::optional<LuSVNLock::Date>& date)
{
    return date ? LuSVNDateConversion::ISO8601StringValue(*date) : "(null)";
}

}  // namespace

LuSVNLock::LuSVNLock(LuSVNPath::Path path, std::string token, std::string owner, std::optional<std::string> comment,
                     std::optional<Date> creationDate, std::optional<Date> expirationDate)
    : path_(std::move(path)),
      token_(std::move(token)),
      owner_(std::move(owner)),
      comment_(std::move(comment)),
      creationDate_(creationDate),
      expirationDate_(expirationDate)
{
    LUSVN_PARAMETER_ASSERT(path_ != nullptr, "thePath != nil");
}

std::shared_ptr<const LuSVNLock> LuSVNLock::lockWithPath(LuSVNPath::Path path, std::string token, std::string owner,
                                                         std::optional<std::string> comment, Date creationDate,
                                                         std::optional<Date> expirationDate)
{
    return std::shared_ptr<const LuSVNLock>(new LuSVNLock(std::move(path), std::move(token), std::move(owner),
                                                          std::move(comment), creationDate, expirationDate));
}

std::shared_ptr<const LuSVNLock> LuSVNLock::lockWithSVNLock(const svn_lock_t* lock)
{
    LUSVN_PARAMETER_ASSERT(lock != nullptr, "lock != NULL");
    return std::shared_ptr<const LuSVNLock>(new LuSVNLock(
        lock->path ? LuSVNPath::pathWithString(lock->path) : nullptr, lock->token ? lock->token : "",
        lock->owner ? lock->owner : "", lock->comment ? std::optional<std::string>(lock->comment) : std::nullopt,
        LuSVNDateConversion::dateWithAPRTime(lock->creation_date),
        LuSVNDateConversion::dateWithAPRTime(lock->expiration_date)));
}

std::shared_ptr<LuSVNLock> LuSVNLock::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    auto path = coder.decodeObjectOfClassForKey<LuSVNPath>("path");
    if (!path)
        throw LuSVNInvalidArgumentException("Lock archived without a path");
    auto token = coder.decodeStringForKey("token");
    auto owner = coder.decodeStringForKey("owner");
    auto comment = coder.decodeStringForKey("comment");
    auto creationDate = tessera_private::LuSVNDecodeDate(coder, "creationDate");
    auto expirationDate = tessera_private::LuSVNDecodeDate(coder, "expirationDate");
    return std::shared_ptr<LuSVNLock>(new LuSVNLock(std::move(path), token.value_or(""), owner.value_or(""),
                                                    std::move(comment), creationDate, expirationDate));
}

bool LuSVNLock::isEqualToLock(const std::shared_ptr<const LuSVNLock>& other) const
{
    return other && *this == *other;
}

std::string LuSVNLock::description() const
{
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNLock", this) + " path: " + path_->description() +
           ", token: " + token_ + ", owner: " + owner_ + ", creationDate: " + dateDescription(creationDate_) +
           ", expirationDate: " + dateDescription(expirationDate_) + ", comment: " + comment_.value_or("(null)") +
           " }";
}

std::string LuSVNLock::archiveClassName() const
{
    return "LuSVNLock";
}

void LuSVNLock::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeObject(path_, "path");
    coder.encodeString(token_, "token");
    coder.encodeString(owner_, "owner");
    coder.encodeString(comment_, "comment");
    tessera_private::LuSVNEncodeDate(coder, creationDate_, "creationDate");
    tessera_private::LuSVNEncodeDate(coder, expirationDate_, "expirationDate");
}
