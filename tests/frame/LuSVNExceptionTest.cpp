// Conversion of Subversion error chains into the exception family, the error
// dictionary and its archive.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNErrorDictionary.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <typeinfo>

#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

namespace {

// True when raise() throws an object whose dynamic type is exactly T.
template <class T>
bool raisesExactly(const LuSVNException& exception)
{
    try {
        exception.raise();
    } catch (const T& caught) {
        return typeid(caught) == typeid(T);
    } catch (...) {
    }
    return false;
}

using RaiseCheck = bool (*)(const LuSVNException&);

extern "C" apr_status_t countPoolCleanup(void* counter)
{
    ++*static_cast<int*>(counter);
    return 0;
}

class ExceptionConversion : public testing::Test {
protected:
    // A new error through the backend (entry point 31); the chain is owned
    // by the caller, freed by exceptionWithError.
    svn_error_t* error(apr_status_t code, const char* message, svn_error_t* child = nullptr)
    {
        return LuSVNEntry<31>()(code, child, message);
    }

    LuSVNBackendFrame frame{LuSVNBundleLoader::sharedInstance()->newestBundle()};
};

TEST_F(ExceptionConversion, OutermostMappedCodeChoosesTheClass)
{
    auto notWorkingCopy = LuSVNException::exceptionWithError(error(155007, "outer", error(2, "inner")));
    EXPECT_EQ(notWorkingCopy->name(), "LuSVNNotWorkingCopyException");
    EXPECT_TRUE(raisesExactly<LuSVNNotWorkingCopyException>(*notWorkingCopy));
    EXPECT_EQ(notWorkingCopy->status(), 155007);

    // An unknown outer code leaves the choice to the child, but the reason
    // stays the outer message.
    auto noSuchEntry = LuSVNException::exceptionWithError(error(123456, "outer message", error(160013, "child")));
    EXPECT_EQ(noSuchEntry->name(), "LuSVNNoSuchEntryException");
    EXPECT_TRUE(raisesExactly<LuSVNNoSuchEntryException>(*noSuchEntry));
    EXPECT_EQ(noSuchEntry->reason(), "outer message");
    EXPECT_EQ(noSuchEntry->status(), 123456);
    ASSERT_TRUE(noSuchEntry->userInfo().has_value());
    ASSERT_NE(noSuchEntry->userInfo()->cause, nullptr);
    EXPECT_EQ(noSuchEntry->userInfo()->cause->message, "child");
    EXPECT_EQ(noSuchEntry->userInfo()->cause->status, 160013);
    EXPECT_EQ(noSuchEntry->userInfo()->cause->cause, nullptr);

    // No code known anywhere: the base class.
    auto plain = LuSVNException::exceptionWithError(error(123456, "a", error(123457, "b")));
    EXPECT_EQ(plain->name(), "LuSVNException");
    EXPECT_TRUE(raisesExactly<LuSVNException>(*plain));
}

TEST_F(ExceptionConversion, CommunicationFailuresAreRefinedByTheirMessages)
{
    struct Case {
        const char* outer;
        const char* child;  // null: no child
        const char* expectedName;
        RaiseCheck raises;
    };
    const Case cases[] = {
        {"Server sent unexpected return value (403 Forbidden) in response to OPTIONS", nullptr,
         "LuSVNAuthorizationException", raisesExactly<LuSVNAuthorizationException>},
        {"got 401 authorization required here", nullptr, "LuSVNAuthorizationException",
         raisesExactly<LuSVNAuthorizationException>},
        {"SSL handshake failed: a client certificate was requested", nullptr,
         "LuSVNSSLClientCertificateRequiredException", raisesExactly<LuSVNSSLClientCertificateRequiredException>},
        {"SSL handshake failed: client certificate was requested; certificate expired", nullptr,
         "LuSVNSSLClientCertificateExpiredException", raisesExactly<LuSVNSSLClientCertificateExpiredException>},
        {"ssl HANDSHAKE failed: CLIENT CERTIFICATE WAS REQUESTED", nullptr,
         "LuSVNSSLClientCertificateRequiredException", raisesExactly<LuSVNSSLClientCertificateRequiredException>},
        {"SSL handshake failed: connection reset", nullptr, "LuSVNSSLHandshakeFailureException",
         raisesExactly<LuSVNSSLHandshakeFailureException>},
        {"OPTIONS of 'https://example.invalid/repo' failed", "Server certificate verification failed: issuer unknown",
         "LuSVNSSLServerCertificateVerificationException",
         raisesExactly<LuSVNSSLServerCertificateVerificationException>},
        {"OPTIONS of 'https://example.invalid/repo' failed", "something else entirely", "LuSVNCommunicationException",
         raisesExactly<LuSVNCommunicationException>},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.outer);
        svn_error_t* child = c.child ? error(123456, c.child) : nullptr;
        auto exception = LuSVNException::exceptionWithError(error(175002, c.outer, child));
        EXPECT_EQ(exception->name(), c.expectedName);
        EXPECT_TRUE(c.raises(*exception));
        EXPECT_EQ(exception->reason(), c.outer);
        EXPECT_EQ(exception->status(), 175002);
    }
}

TEST_F(ExceptionConversion, EveryMappedCodeRaisesItsClass)
{
    struct Case {
        int code;
        const char* expectedName;
        RaiseCheck raises;
    };
#define MAPPED(code, Class) {code, #Class, raisesExactly<Class>}
    const Case cases[] = {
        MAPPED(2, LuSVNNoSuchEntryException),
        MAPPED(17, LuSVNEntryExistsException),
        MAPPED(60, LuSVNCommunicationTimeOutException),
        MAPPED(61, LuSVNConnectionRefusedException),
        MAPPED(65, LuSVNHostUnreachableException),
        MAPPED(150000, LuSVNNoSuchEntryException),
        MAPPED(150002, LuSVNEntryExistsException),
        MAPPED(155004, LuSVNWorkingCopyLockedException),
        MAPPED(155005, LuSVNWorkingCopyNotLockedException),
        MAPPED(155007, LuSVNNotWorkingCopyException),
        MAPPED(155015, LuSVNMergeConflictException),
        MAPPED(155021, LuSVNUnsupportedWorkingCopyFormatException),
        MAPPED(155023, LuSVNInvalidScheduleException),
        MAPPED(160006, LuSVNRevisionNotFoundException),
        MAPPED(160008, LuSVNNoSuchEntryException),
        MAPPED(160013, LuSVNNoSuchEntryException),
        MAPPED(160016, LuSVNNoSuchDirectoryException),
        MAPPED(160020, LuSVNEntryExistsException),
        MAPPED(160024, LuSVNVersionConflictException),
        MAPPED(160028, LuSVNTransactionOutOfDateException),
        MAPPED(160029, LuSVNBerkeleyDBException),
        MAPPED(160037, LuSVNEntryLockedException),
        MAPPED(160039, LuSVNEntryLockedException),
        MAPPED(160041, LuSVNLockExpiredException),
        MAPPED(160043, LuSVNUnsupportedRepositoryFormatException),
        MAPPED(170001, LuSVNAuthorizationException),
        MAPPED(175013, LuSVNAuthorizationException),
        MAPPED(175002, LuSVNCommunicationException),
        MAPPED(180001, LuSVNNotRepositoryException),
        MAPPED(195005, LuSVNInvalidExternalsDescriptionException),
        MAPPED(195006, LuSVNItemModifiedException),
        MAPPED(195016, LuSVNTargetNotReadyToMergeException),
        MAPPED(200005, LuSVNUnversionedResourceException),
        MAPPED(200007, LuSVNUnsupportedFeatureException),
        MAPPED(200015, LuSVNOperationCancelledException),
        MAPPED(210002, LuSVNConnectionClosedException),
        MAPPED(210005, LuSVNRepositoryNotFoundException),
    };
#undef MAPPED
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code);
        auto fromError = LuSVNException::exceptionWithError(error(c.code, "mapped"));
        EXPECT_EQ(fromError->name(), c.expectedName);
        EXPECT_TRUE(c.raises(*fromError));
        EXPECT_EQ(fromError->status(), c.code);

        auto fromReason = LuSVNException::exceptionWithReason("mapped", c.code);
        EXPECT_EQ(fromReason->name(), c.expectedName);
        EXPECT_TRUE(c.raises(*fromReason));

        ASSERT_NE(LuSVNException::mapClassToAPRStatus(c.code), nullptr);
        EXPECT_STREQ(LuSVNException::mapClassToAPRStatus(c.code)->name, c.expectedName);
    }
    for (int unknown : {0, 1, 20014, 123456, 155006, 160017}) {
        EXPECT_EQ(LuSVNException::mapClassToAPRStatus(unknown), nullptr) << unknown;
        EXPECT_EQ(LuSVNException::exceptionWithReason("x", unknown)->name(), "LuSVNException") << unknown;
    }
}

TEST_F(ExceptionConversion, ThrowIfErrorRaisesTheMappedClass)
{
    EXPECT_NO_THROW(LuSVNThrowIfError(nullptr));
    try {
        LuSVNThrowIfError(error(160016, "not a directory"));
        FAIL() << "nothing thrown";
    } catch (const LuSVNNoSuchEntryException& caught) {
        // The subclass is caught as its parent, without losing its class.
        EXPECT_EQ(caught.name(), "LuSVNNoSuchDirectoryException");
        EXPECT_EQ(caught.reason(), "not a directory");
    }
    try {
        LuSVNThrowIfError(error(175002, "SSL handshake failed: certificate expired"));
        FAIL() << "nothing thrown";
    } catch (const LuSVNCommunicationException& caught) {
        EXPECT_EQ(caught.name(), "LuSVNSSLClientCertificateExpiredException");
    }
}

TEST_F(ExceptionConversion, DictionaryKeepsTheChainAndCutsLongMessages)
{
    const std::string longMessage(2000, 'm');
    svn_error_t* chain = error(123456, longMessage.c_str(), error(2, "middle", error(17, "innermost")));
    const LuSVNErrorDictionary dictionary = LuSVNException::dictionaryForError(chain);
    ASSERT_TRUE(dictionary.message.has_value());
    EXPECT_EQ(dictionary.message->size(), 1023u);
    EXPECT_TRUE(longMessage.starts_with(*dictionary.message));
    EXPECT_EQ(dictionary.status, 123456);
    ASSERT_NE(dictionary.cause, nullptr);
    EXPECT_EQ(dictionary.cause->message, "middle");
    EXPECT_EQ(dictionary.cause->status, 2);
    ASSERT_NE(dictionary.cause->cause, nullptr);
    EXPECT_EQ(dictionary.cause->cause->message, "innermost");
    EXPECT_EQ(dictionary.cause->cause->status, 17);
    EXPECT_EQ(dictionary.cause->cause->cause, nullptr);

    auto exception = LuSVNException::exceptionWithError(chain);
    EXPECT_EQ(exception->reason().size(), 1023u);
    EXPECT_EQ(exception->reason(), *dictionary.message);
    // 1023 bytes exactly are kept whole.
    EXPECT_EQ(LuSVNException::exceptionWithError(error(2, longMessage.substr(0, 1023).c_str()))->reason(),
              longMessage.substr(0, 1023));
    // A cut never splits a character: "é" straddling byte 1023 goes whole.
    const std::string accented = std::string(1022, 'a') + "\xc3\xa9" + "tail";
    EXPECT_EQ(LuSVNException::exceptionWithError(error(2, accented.c_str()))->reason(), std::string(1022, 'a'));
}

TEST_F(ExceptionConversion, MessagelessErrorUsesSubversionsTextForTheCode)
{
    auto exception = LuSVNException::exceptionWithError(error(155007, nullptr));
    EXPECT_EQ(exception->name(), "LuSVNNotWorkingCopyException");
    EXPECT_FALSE(exception->reason().empty());
    EXPECT_EQ(exception->userInfo()->message, exception->reason());
}

TEST_F(ExceptionConversion, FileAndLineOnlyWhenTheErrorHasAFile)
{
    // Subversion records the location given to svn_error__locate only in
    // debug builds; whatever it did, the dictionary follows the error.
    LuSVNEntry<32>()("located.c", 42);
    svn_error_t* asBuilt = error(2, "as built");
    const LuSVNErrorDictionary asBuiltDictionary = LuSVNException::dictionaryForError(asBuilt);
    EXPECT_EQ(asBuiltDictionary.file.has_value(), asBuilt->file != nullptr);
    EXPECT_EQ(asBuiltDictionary.line.has_value(), asBuilt->file != nullptr);
    LuSVNEntry<30>()(asBuilt);

    // Both cases, set explicitly on real errors.
    svn_error_t* located = error(2, "located");
    located->file = "located.c";
    located->line = 42;
    svn_error_t* unlocated = error(2, "unlocated");
    unlocated->file = nullptr;
    unlocated->line = 0;

    const LuSVNErrorDictionary withFile = LuSVNException::dictionaryForError(located);
    EXPECT_EQ(withFile.file, "located.c");
    EXPECT_EQ(withFile.line, 42);
    const LuSVNErrorDictionary withoutFile = LuSVNException::dictionaryForError(unlocated);
    EXPECT_FALSE(withoutFile.file.has_value());
    EXPECT_FALSE(withoutFile.line.has_value());

    const std::string archived = LuSVNKeyedArchiver::archivedDataWithRootObject(withoutFile);
    EXPECT_EQ(archived.find("\"file\""), std::string::npos) << archived;
    EXPECT_EQ(archived.find("\"line\""), std::string::npos) << archived;

    EXPECT_EQ(LuSVNException::exceptionWithError(located)->userInfo()->file, "located.c");
    LuSVNEntry<30>()(unlocated);
}

TEST_F(ExceptionConversion, ChainIsFreedOnlyWhenClearing)
{
    // A chain lives in its innermost error's pool; a clean-up registered on
    // that pool tells when the chain is freed.
    for (bool clear : {true, false}) {
        SCOPED_TRACE(clear);
        int freed = 0;
        svn_error_t* chain = error(155007, "outer", error(2, "child"));
        LuSVNEntry<5>()(chain->pool, &freed, countPoolCleanup, LuSVNEntry<6>());
        auto exception = LuSVNException::exceptionWithError(chain, clear);
        EXPECT_EQ(exception->name(), "LuSVNNotWorkingCopyException");
        EXPECT_EQ(freed, clear ? 1 : 0);
        if (!clear) {
            // Still intact, and freed by the caller.
            EXPECT_EQ(LuSVNException::dictionaryForError(chain), *exception->userInfo());
            LuSVNEntry<30>()(chain);
            EXPECT_EQ(freed, 1);
        }
    }
    int freed = 0;
    svn_error_t* single = error(2, "single");
    LuSVNEntry<5>()(single->pool, &freed, countPoolCleanup, LuSVNEntry<6>());
    EXPECT_THROW(LuSVNThrowIfError(single), LuSVNNoSuchEntryException);
    EXPECT_EQ(freed, 1);
}

TEST_F(ExceptionConversion, NullArgumentsAreRefused)
{
    const struct {
        const char* label;
        std::function<void()> call;
        const char* reason;
    } cases[] = {
        {"exceptionWithError", [] { LuSVNException::exceptionWithError(nullptr); },
         "Invalid parameter not satisfying: error != NULL"},
        {"exceptionWithError, no clear", [] { LuSVNException::exceptionWithError(nullptr, false); },
         "Invalid parameter not satisfying: error != NULL"},
        {"dictionaryForError", [] { LuSVNException::dictionaryForError(nullptr); },
         "Invalid parameter not satisfying: error != nil"},
        {"constructor", [] { LuSVNNotWorkingCopyException exception(static_cast<const svn_error_t*>(nullptr)); },
         "Invalid parameter not satisfying: error != NULL"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        try {
            c.call();
            ADD_FAILURE() << "nothing thrown";
        } catch (const LuSVNInternalInconsistencyException& caught) {
            EXPECT_EQ(caught.reason(), c.reason);
        }
    }
}

TEST_F(ExceptionConversion, RealSubversionErrorsAreConverted)
{
    tessera_test::TemporaryDirectory directory;
    const std::string missing = directory / "missing";

    int format = -1;
    try {
        LuSVNThrowIfError(LuSVNEntry<99>()(missing.c_str(), &format, frame.pool()));
        FAIL() << "svn_wc_check_wc accepted a missing path";
    } catch (const LuSVNException& caught) {
        std::printf("svn_wc_check_wc(missing) -> %s %d: %s\n", caught.name().c_str(), caught.status(),
                    caught.reason().c_str());
        EXPECT_EQ(caught.name(), "LuSVNNoSuchEntryException");
        EXPECT_EQ(caught.status(), 2);
        EXPECT_NE(caught.reason().find("missing"), std::string::npos);
    }

    svn_repos_t* repository = nullptr;
    try {
        LuSVNThrowIfError(LuSVNEntry<105>()(&repository, directory.path().c_str(), frame.pool()));
        FAIL() << "svn_repos_open accepted a plain directory";
    } catch (const LuSVNException& caught) {
        std::printf("svn_repos_open(plain directory) -> %s %d: %s\n", caught.name().c_str(), caught.status(),
                    caught.reason().c_str());
        EXPECT_EQ(caught.name(), "LuSVNNoSuchEntryException");
        ASSERT_TRUE(caught.userInfo().has_value());
    }
}

TEST(ExceptionReason, ReasonOnlyAndReasonWithStatus)
{
    const LuSVNException plain = LuSVNException::exceptionWithReason("plain reason");
    EXPECT_EQ(plain.name(), "LuSVNException");
    EXPECT_EQ(plain.reason(), "plain reason");
    EXPECT_EQ(plain.status(), 20014);
    ASSERT_TRUE(plain.userInfo().has_value());
    EXPECT_FALSE(plain.userInfo()->message.has_value());

    const LuSVNLockException lock = LuSVNLockException::exceptionWithReason("locked");
    EXPECT_EQ(lock.name(), "LuSVNLockException");
    EXPECT_EQ(lock.status(), 20014);

    auto mapped = LuSVNException::exceptionWithReason("no entry", 160013);
    EXPECT_EQ(mapped->name(), "LuSVNNoSuchEntryException");
    EXPECT_EQ(mapped->reason(), "no entry");
    ASSERT_TRUE(mapped->userInfo().has_value());
    EXPECT_EQ(mapped->userInfo()->message, "no entry");
    EXPECT_EQ(mapped->userInfo()->status, 160013);
    EXPECT_EQ(mapped->status(), 160013);

    // A subclass keeps its own class whatever the code says.
    auto own = LuSVNLockException::exceptionWithReason("own", 2);
    EXPECT_EQ(own->name(), "LuSVNLockException");
    EXPECT_TRUE(raisesExactly<LuSVNLockException>(*own));
    EXPECT_EQ(own->status(), 2);

    const LuSVNException withoutInfo("no info", std::nullopt);
    EXPECT_EQ(withoutInfo.status(), 20014);
    EXPECT_FALSE(withoutInfo.userInfo().has_value());
}

TEST(ExceptionClasses, HierarchyAndClassChoice)
{
    EXPECT_EQ(LuSVNNoSuchEntryException::classForAPRStatus(155007), &LuSVNNoSuchEntryException::classObject());
    EXPECT_EQ(LuSVNSSLHandshakeFailureException::classForAPRStatus(123456),
              &LuSVNSSLHandshakeFailureException::classObject());
    EXPECT_EQ(LuSVNException::classForAPRStatus(155007), &LuSVNNotWorkingCopyException::classObject());
    EXPECT_EQ(LuSVNException::classForAPRStatus(123456), nullptr);

    struct Case {
        const LuSVNExceptionClass& subclass;
        const LuSVNExceptionClass& ancestor;
        bool expected;
    };
    const Case cases[] = {
        {LuSVNNoSuchDirectoryException::classObject(), LuSVNNoSuchEntryException::classObject(), true},
        {LuSVNSSLClientCertificateExpiredException::classObject(), LuSVNSSLHandshakeFailureException::classObject(),
         true},
        {LuSVNSSLServerCertificateVerificationException::classObject(), LuSVNCommunicationException::classObject(),
         true},
        {LuSVNEntryLockedException::classObject(), LuSVNLockException::classObject(), true},
        {LuSVNLockExpiredException::classObject(), LuSVNException::classObject(), true},
        {LuSVNNoSuchEntryException::classObject(), LuSVNNoSuchDirectoryException::classObject(), false},
        {LuSVNAuthorizationException::classObject(), LuSVNCommunicationException::classObject(), false},
        {LuSVNException::classObject(), LuSVNLockException::classObject(), false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.subclass.isSubclassOfClass(c.ancestor), c.expected) << c.subclass.name << " / " << c.ancestor.name;

    // The C++ types follow the same tree.
    EXPECT_THROW(LuSVNSSLClientCertificateRequiredException("x").raise(), LuSVNCommunicationException);
    EXPECT_THROW(LuSVNNoSuchDirectoryException("x").raise(), LuSVNNoSuchEntryException);
    EXPECT_THROW(LuSVNEntryLockedException("x").raise(), LuSVNLockException);
}

TEST(ErrorDictionaryArchive, RoundTripsWithNestedCauseInKeyOrder)
{
    auto innermost = std::make_shared<LuSVNErrorDictionary>();
    innermost->message = "inner";
    innermost->status = 2;
    auto cause = std::make_shared<LuSVNErrorDictionary>();
    cause->message = "middle";
    cause->status = 160013;
    cause->file = "subversion/libsvn_fs/tree.c";
    cause->line = 1234;
    cause->cause = innermost;
    LuSVNErrorDictionary root;
    root.message = "outer \"quoted\" message";
    root.status = 155007;
    root.file = "wc.c";
    root.line = 7;
    root.cause = cause;

    const std::string archived = LuSVNKeyedArchiver::archivedDataWithRootObject(root);
    auto decoded = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNErrorDictionary>(archived);
    ASSERT_NE(decoded, nullptr);
    EXPECT_EQ(*decoded, root);
    ASSERT_NE(decoded->cause, nullptr);
    ASSERT_NE(decoded->cause->cause, nullptr);
    EXPECT_EQ(decoded->cause->cause->message, "inner");
    EXPECT_FALSE(decoded->cause->cause->file.has_value());

    // The outer object's keys come first, in their fixed order.
    std::size_t previous = 0;
    for (const char* key : {"\"message\"", "\"status\"", "\"file\"", "\"line\"", "\"cause\""}) {
        const std::size_t position = archived.find(key);
        ASSERT_NE(position, std::string::npos) << key << " in " << archived;
        EXPECT_GT(position, previous) << key << " in " << archived;
        previous = position;
    }

    // A different cause makes the dictionaries differ.
    LuSVNErrorDictionary changed = root;
    auto otherCause = std::make_shared<LuSVNErrorDictionary>(*cause);
    otherCause->line = 1235;
    changed.cause = otherCause;
    EXPECT_FALSE(changed == root);
}

}  // namespace
