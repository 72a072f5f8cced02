// The exception family of the library.
//
// Every exception the library throws is a LuSVNException: the failures of
// Subversion and of the library's operations, and also the usage errors of
// LuSVNPlatformExceptions.h (an invalid argument such as a text that is no
// URL, a broken precondition, a call out of order). One handler catches them
// all; the subclasses narrow the meaning. A Subversion error chain becomes the
// most specific class its codes map to, with the whole chain kept in the error
// dictionary (userInfo()):
//
//   try {
//       ...
//   } catch (const LuSVNNotWorkingCopyException& e) {
//       // e.reason(), e.status(), e.userInfo()->cause ...
//   } catch (const LuSVNException& e) {
//       // every other failure of the library
//   }
//
// An exception that the application's own code throws inside a call of the
// library (a notification handler, an authentication provider, a log-message
// provider) stops the operation and reaches the caller unchanged, as the
// object the application threw: it is neither wrapped nor turned into a
// LuSVNException. Two places differ: a failing cancellation query of the
// context's delegate is ignored (the operation goes on), and a failing read or
// write of an adapted stream (LuSVNStreams.h) becomes the LuSVNException
// "Unable to read data from input stream" or "Unable to write data to output
// stream". Exceptions of the standard library (std::bad_alloc and the like)
// pass through untranslated.
//
// The class tree (each subclass adds no fields, it only narrows the meaning):
//
//   LuSVNException
//     LuSVNNotWorkingCopyException, LuSVNTransactionOutOfDateException,
//     LuSVNOperationCancelledException, LuSVNEntryExistsException,
//     LuSVNAuthorizationException, LuSVNItemModifiedException,
//     LuSVNUnversionedResourceException, LuSVNRepositoryNotFoundException,
//     LuSVNNotRepositoryException, LuSVNUnsupportedFeatureException,
//     LuSVNUnsupportedWorkingCopyFormatException,
//     LuSVNUnsupportedRepositoryFormatException, LuSVNWorkingCopyLockedException,
//     LuSVNVersionConflictException, LuSVNMergeConflictException,
//     LuSVNWorkingCopyNotLockedException, LuSVNInvalidScheduleException,
//     LuSVNBerkeleyDBException, LuSVNInvalidExternalsDescriptionException,
//     LuSVNTargetNotReadyToMergeException, LuSVNRevisionNotFoundException
//     LuSVNNoSuchEntryException
//       LuSVNNoSuchDirectoryException
//     LuSVNCommunicationException
//       LuSVNConnectionClosedException, LuSVNHostUnreachableException,
//       LuSVNCommunicationTimeOutException, LuSVNConnectionRefusedException
//       LuSVNSSLHandshakeFailureException
//         LuSVNSSLClientCertificateExpiredException,
//         LuSVNSSLClientCertificateRequiredException,
//         LuSVNSSLServerCertificateVerificationException
//     LuSVNLockException
//       LuSVNEntryLockedException, LuSVNLockExpiredException
//     LuSVNGenericException, LuSVNInvalidArgumentException,
//     LuSVNInternalInconsistencyException      (LuSVNPlatformExceptions.h)
#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include <tessera/LuSVNErrorDictionary.h>
#include <tessera/LuSVNExport.h>

struct svn_error_t;
class LuSVNException;

/// The status used when an error has no code of its own.
inline constexpr int LuSVNGenericErrorStatus = 20014;
/// The status of a cancelled operation.
inline constexpr int LuSVNCancelledErrorStatus = 200015;

/// A class of the family as a value, so that a class can be chosen at run time
/// (by an error code) and compared.
struct TESSERA_EXPORT LuSVNExceptionClass {
    const char* name;
    const LuSVNExceptionClass* superclass;
    std::shared_ptr<LuSVNException> (*make)(std::string reason, std::optional<LuSVNErrorDictionary> userInfo);

    /// Whether this class is the other one or derives from it.
    bool isSubclassOfClass(const LuSVNExceptionClass& other) const;
};

class TESSERA_EXPORT LuSVNException : public std::runtime_error {
public:
    /// An exception with the reason and the user info {"status": 20014}.
    explicit LuSVNException(std::string reason);
    /// An exception with the reason and the given user info (nullopt: none).
    LuSVNException(std::string reason, std::optional<LuSVNErrorDictionary> userInfo);
    /// An exception describing a Subversion error chain: the reason is the
    /// best message of the outermost error, the user info its dictionary.
    /// The error is not cleared. Raises "Invalid parameter not satisfying:
    /// error != NULL" for null.
    explicit LuSVNException(const svn_error_t* error);
    ~LuSVNException() override;

    /// The class of this exception; name() is its name, such as
    /// "LuSVNNoSuchEntryException".
    virtual const LuSVNExceptionClass& exceptionClass() const;
    std::string name() const { return exceptionClass().name; }
    std::string reason() const { return what(); }
    const std::optional<LuSVNErrorDictionary>& userInfo() const { return userInfo_; }
    /// The user info's "status", or 20014 when there is none.
    int status() const;

    /// Throws this exception as its own class.
    [[noreturn]] virtual void raise() const;

    static const LuSVNExceptionClass& classObject();

    /// The exception for an error chain, of the class that the chain's codes
    /// choose; the chain is freed through the current backend (entry point 30).
    static std::shared_ptr<LuSVNException> exceptionWithError(struct svn_error_t* error);
    /// The same; the chain is freed only when clear is true.
    static std::shared_ptr<LuSVNException> exceptionWithError(struct svn_error_t* error, bool clear);
    static LuSVNException exceptionWithReason(std::string reason);
    /// User info {"message": reason, "status": status}, of the class the code
    /// maps to, else of this class.
    static std::shared_ptr<LuSVNException> exceptionWithReason(std::string reason, int status);
    /// The dictionary of an error chain; messages are cut to 1023 bytes.
    static LuSVNErrorDictionary dictionaryForError(const svn_error_t* error);
    /// On LuSVNException the class mapped to the code; each subclass answers
    /// itself for any code.
    static const LuSVNExceptionClass* classForAPRStatus(int status);
    /// The fixed map from codes to classes, or null for an unknown code.
    static const LuSVNExceptionClass* mapClassToAPRStatus(int status);
    /// The class of a communication failure, refined by its messages.
    static const LuSVNExceptionClass& classForCommunicationError(const svn_error_t* error);

private:
    std::optional<LuSVNErrorDictionary> userInfo_;
};

// Every subclass has the same members; they differ only in their class.
#define LUSVN_DECLARE_EXCEPTION_SUBCLASS(Name, Parent)                                                \
    class TESSERA_EXPORT Name : public Parent {                                                       \
    public:                                                                                           \
        explicit Name(std::string reason);                                                            \
        Name(std::string reason, std::optional<LuSVNErrorDictionary> userInfo);                       \
        explicit Name(const svn_error_t* error);                                                      \
        ~Name() override;                                                                             \
        const LuSVNExceptionClass& exceptionClass() const override;                                   \
        [[noreturn]] void raise() const override;                                                     \
        static const LuSVNExceptionClass& classObject();                                              \
        static Name exceptionWithReason(std::string reason);                                          \
        static std::shared_ptr<LuSVNException> exceptionWithReason(std::string reason, int status);   \
        static const LuSVNExceptionClass* classForAPRStatus(int status);                              \
    };

LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNNotWorkingCopyException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNTransactionOutOfDateException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNOperationCancelledException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNEntryExistsException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNAuthorizationException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNItemModifiedException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNUnversionedResourceException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNRepositoryNotFoundException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNNotRepositoryException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNUnsupportedFeatureException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNUnsupportedWorkingCopyFormatException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNUnsupportedRepositoryFormatException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNWorkingCopyLockedException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNVersionConflictException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNMergeConflictException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNWorkingCopyNotLockedException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNInvalidScheduleException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNBerkeleyDBException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNInvalidExternalsDescriptionException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNTargetNotReadyToMergeException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNRevisionNotFoundException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNNoSuchEntryException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNNoSuchDirectoryException, LuSVNNoSuchEntryException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNCommunicationException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNConnectionClosedException, LuSVNCommunicationException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNHostUnreachableException, LuSVNCommunicationException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNCommunicationTimeOutException, LuSVNCommunicationException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNConnectionRefusedException, LuSVNCommunicationException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNSSLHandshakeFailureException, LuSVNCommunicationException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNSSLClientCertificateExpiredException, LuSVNSSLHandshakeFailureException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNSSLClientCertificateRequiredException, LuSVNSSLHandshakeFailureException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNSSLServerCertificateVerificationException, LuSVNSSLHandshakeFailureException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNLockException, LuSVNException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNEntryLockedException, LuSVNLockException)
LUSVN_DECLARE_EXCEPTION_SUBCLASS(LuSVNLockExpiredException, LuSVNLockException)

#undef LUSVN_DECLARE_EXCEPTION_SUBCLASS
