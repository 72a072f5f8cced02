#include <tessera/LuSVNException.h>

#include <strings.h>

#include <cstring>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"

bool LuSVNExceptionClass::isSubclassOfClass(const LuSVNExceptionClass& other) const
{
    for (const LuSVNExceptionClass* c = this; c; c = c->superclass)
        if (c == &other)
            return true;
    return false;
}

namespace {

LuSVNErrorDictionary reasonOnlyInfo()
{
    LuSVNErrorDictionary info;
    info.status = LuSVNGenericErrorStatus;
    return info;
}

LuSVNErrorDictionary reasonAndStatusInfo(const std::string& reason, int status)
{
    LuSVNErrorDictionary info;
    info.message = reason;
    info.status = status;
    return info;
}

const svn_error_t* checkedError(const svn_error_t* error)
{
    LUSVN_PARAMETER_ASSERT(error != nullptr, "error != NULL");
    return error;
}

// Case-insensitive substring test on a message that may be null.
bool contains(const char* message, const char* text)
{
    return message && strcasestr(message, text) != nullptr;
}

}  // namespace

LuSVNException::LuSVNException(std::string reason) : LuSVNException(std::move(reason), reasonOnlyInfo()) {}

LuSVNException::LuSVNException(std::string reason, std::optional<LuSVNErrorDictionary> userInfo)
    : std::runtime_error(reason), userInfo_(std::move(userInfo))
{
}

LuSVNException::LuSVNException(const svn_error_t* error)
    : LuSVNException(std::string(), dictionaryForError(checkedError(error)))
{
    static_cast<std::runtime_error&>(*this) = std::runtime_error(userInfo_->message.value_or(""));
}

LuSVNException::~LuSVNException() = default;

int LuSVNException::status() const
{
    if (!userInfo_ || !userInfo_->status)
        return LuSVNGenericErrorStatus;
    return static_cast<int>(*userInfo_->status);
}

const LuSVNExceptionClass& LuSVNException::classObject()
{
    static const LuSVNExceptionClass exceptionClass{
        "LuSVNException", nullptr, [](std::string reason, std::optional<LuSVNErrorDictionary> userInfo) {
            return std::make_shared<LuSVNException>(std::move(reason), std::move(userInfo));
        }};
    return exceptionClass;
}

const LuSVNExceptionClass& LuSVNException::exceptionClass() const
{
    return classObject();
}

void LuSVNException::raise() const
{
    throw *this;
}

LuSVNException LuSVNException::exceptionWithReason(std::string reason)
{
    return LuSVNException(std::move(reason));
}

std::shared_ptr<LuSVNException> LuSVNException::exceptionWithReason(std::string reason, int status)
{
    const LuSVNExceptionClass* chosen = classForAPRStatus(status);
    LuSVNErrorDictionary info = reasonAndStatusInfo(reason, status);
    return (chosen ? chosen : &classObject())->make(std::move(reason), std::move(info));
}

LuSVNErrorDictionary LuSVNException::dictionaryForError(const svn_error_t* error)
{
    LUSVN_PARAMETER_ASSERT(error != nullptr, "error != nil");
    LuSVNErrorDictionary dictionary;
    char buffer[1024];
    const char* message = LuSVNEntry<33>()(error, buffer, sizeof buffer);
    // Subversion hands back the error's own message uncut when it has one, so
    // the cut to the buffer is made here; it backs off to a character boundary
    // so that the text stays valid UTF-8.
    std::string text(message ? message : "");
    if (text.size() > sizeof buffer - 1) {
        std::size_t cut = sizeof buffer - 1;
        while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80)
            --cut;
        text.resize(cut);
    }
    dictionary.message = std::move(text);
    dictionary.status = error->apr_err;
    if (error->file) {
        dictionary.file = std::string(error->file);
        dictionary.line = error->line;
    }
    if (error->child)
        dictionary.cause = std::make_shared<LuSVNErrorDictionary>(dictionaryForError(error->child));
    return dictionary;
}

const LuSVNExceptionClass& LuSVNException::classForCommunicationError(const svn_error_t* error)
{
    LUSVN_PARAMETER_ASSERT(error != nullptr, "error != NULL");
    for (const svn_error_t* current = error; current; current = current->child) {
        const char* message = current->message;
        if (contains(message, "401 Authorization Required") || contains(message, "403 Forbidden"))
            return LuSVNAuthorizationException::classObject();
        if (contains(message, "SSL handshake failed")) {
            if (contains(message, "certificate expired"))
                return LuSVNSSLClientCertificateExpiredException::classObject();
            if (contains(message, "client certificate was requested"))
                return LuSVNSSLClientCertificateRequiredException::classObject();
            return LuSVNSSLHandshakeFailureException::classObject();
        }
        if (contains(message, "Server certificate verification failed"))
            return LuSVNSSLServerCertificateVerificationException::classObject();
    }
    return LuSVNCommunicationException::classObject();
}

std::shared_ptr<LuSVNException> LuSVNException::exceptionWithError(svn_error_t* error)
{
    return exceptionWithError(error, true);
}

std::shared_ptr<LuSVNException> LuSVNException::exceptionWithError(svn_error_t* error, bool clear)
{
    LUSVN_PARAMETER_ASSERT(error != nullptr, "error != NULL");
    const LuSVNExceptionClass* chosen = &classObject();
    for (const svn_error_t* current = error; current; current = current->child) {
        if (const LuSVNExceptionClass* mapped = classForAPRStatus(current->apr_err)) {
            chosen = mapped;
            break;
        }
    }
    if (chosen == &LuSVNCommunicationException::classObject())
        chosen = &classForCommunicationError(error);
    LuSVNErrorDictionary info = dictionaryForError(error);
    std::string reason = info.message.value_or("");
    if (clear)
        LuSVNEntry<30>()(error);
    return chosen->make(std::move(reason), std::move(info));
}

const LuSVNExceptionClass* LuSVNException::classForAPRStatus(int status)
{
    return mapClassToAPRStatus(status);
}

const LuSVNExceptionClass* LuSVNException::mapClassToAPRStatus(int status)
{
    switch (status) {
    case 2:
    case 150000:
    case 160008:
    case 160013:
        return &LuSVNNoSuchEntryException::classObject();
    case 17:
    case 150002:
    case 160020:
        return &LuSVNEntryExistsException::classObject();
    case 60:
        return &LuSVNCommunicationTimeOutException::classObject();
    case 61:
        return &LuSVNConnectionRefusedException::classObject();
    case 65:
        return &LuSVNHostUnreachableException::classObject();
    case 155004:
        return &LuSVNWorkingCopyLockedException::classObject();
    case 155005:
        return &LuSVNWorkingCopyNotLockedException::classObject();
    case 155007:
        return &LuSVNNotWorkingCopyException::classObject();
    case 155015:
        return &LuSVNMergeConflictException::classObject();
    case 155021:
        return &LuSVNUnsupportedWorkingCopyFormatException::classObject();
    case 155023:
        return &LuSVNInvalidScheduleException::classObject();
    case 160006:
        return &LuSVNRevisionNotFoundException::classObject();
    case 160016:
        return &LuSVNNoSuchDirectoryException::classObject();
    case 160024:
        return &LuSVNVersionConflictException::classObject();
    case 160028:
        return &LuSVNTransactionOutOfDateException::classObject();
    case 160029:
        return &LuSVNBerkeleyDBException::classObject();
    case 160037:
    case 160039:
        return &LuSVNEntryLockedException::classObject();
    case 160041:
        return &LuSVNLockExpiredException::classObject();
    case 160043:
        return &LuSVNUnsupportedRepositoryFormatException::classObject();
    case 170001:
    case 175013:
        return &LuSVNAuthorizationException::classObject();
    case 175002:
        return &LuSVNCommunicationException::classObject();
    case 180001:
        return &LuSVNNotRepositoryException::classObject();
    case 195005:
        return &LuSVNInvalidExternalsDescriptionException::classObject();
    case 195006:
        return &LuSVNItemModifiedException::classObject();
    case 195016:
        return &LuSVNTargetNotReadyToMergeException::classObject();
    case 200005:
        return &LuSVNUnversionedResourceException::classObject();
    case 200007:
        return &LuSVNUnsupportedFeatureException::classObject();
    case 200015:
        return &LuSVNOperationCancelledException::classObject();
    case 210002:
        return &LuSVNConnectionClosedException::classObject();
    case 210005:
        return &LuSVNRepositoryNotFoundException::classObject();
    default:
        return nullptr;
    }
}

#define LUSVN_DEFINE_EXCEPTION_SUBCLASS(Name, Parent)                                                              \
    Name::Name(std::string reason) : Parent(std::move(reason)) {}                                                  \
    Name::Name(std::string reason, std::optional<LuSVNErrorDictionary> userInfo)                                   \
        : Parent(std::move(reason), std::move(userInfo))                                                           \
    {                                                                                                              \
    }                                                                                                              \
    Name::Name(const svn_error_t* error) : Parent(error) {}                                                        \
    Name::~Name() = default;                                                                                       \
    const LuSVNExceptionClass& Name::classObject()                                                                 \
    {                                                                                                              \
        static const LuSVNExceptionClass exceptionClass{                                                           \
            #Name, &Parent::classObject(), [](std::string reason, std::optional<LuSVNErrorDictionary> userInfo) { \
                return std::shared_ptr<LuSVNException>(std::make_shared<Name>(std::move(reason), std::move(userInfo))); \
            }};                                                                                                    \
        return exceptionClass;                                                                                     \
    }                                                                                                              \
    const LuSVNExceptionClass& Name::exceptionClass() const { return classObject(); }                             \
    void Name::raise() const { throw *this; }                                                                      \
    Name Name::exceptionWithReason(std::string reason) { return Name(std::move(reason)); }                         \
    std::shared_ptr<LuSVNException> Name::exceptionWithReason(std::string reason, int status)                     \
    {                                                                                                              \
        LuSVNErrorDictionary info = reasonAndStatusInfo(reason, status);                                           \
        return std::make_shared<Name>(std::move(reason), std::move(info));                                        \
    }                                                                                                              \
    const LuSVNExceptionClass* Name::classForAPRStatus(int) { return &classObject(); }

LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNNotWorkingCopyException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNTransactionOutOfDateException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNOperationCancelledException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNEntryExistsException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNAuthorizationException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNItemModifiedException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNUnversionedResourceException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNRepositoryNotFoundException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNNotRepositoryException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNUnsupportedFeatureException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNUnsupportedWorkingCopyFormatException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNUnsupportedRepositoryFormatException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNWorkingCopyLockedException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNVersionConflictException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNMergeConflictException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNWorkingCopyNotLockedException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNInvalidScheduleException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNBerkeleyDBException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNInvalidExternalsDescriptionException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNTargetNotReadyToMergeException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNRevisionNotFoundException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNNoSuchEntryException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNNoSuchDirectoryException, LuSVNNoSuchEntryException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNCommunicationException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNConnectionClosedException, LuSVNCommunicationException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNHostUnreachableException, LuSVNCommunicationException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNCommunicationTimeOutException, LuSVNCommunicationException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNConnectionRefusedException, LuSVNCommunicationException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNSSLHandshakeFailureException, LuSVNCommunicationException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNSSLClientCertificateExpiredException, LuSVNSSLHandshakeFailureException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNSSLClientCertificateRequiredException, LuSVNSSLHandshakeFailureException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNSSLServerCertificateVerificationException, LuSVNSSLHandshakeFailureException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNLockException, LuSVNException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNEntryLockedException, LuSVNLockException)
LUSVN_DEFINE_EXCEPTION_SUBCLASS(LuSVNLockExpiredException, LuSVNLockException)
