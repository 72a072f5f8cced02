// A lock on a versioned item: who holds it, since when and until when.
//
//   auto lock = LuSVNLock::lockWithPath(LuSVNPath::pathWithString("/trunk/a.c"), "opaquelocktoken:1",
//                                       "alice", std::nullopt, std::chrono::system_clock::now(), std::nullopt);
//   lock->isEqualToLock(other);     // by token alone
//
// An immutable value shared as std::shared_ptr<const LuSVNLock>. Archived
// under "path", "token", "owner", "comment", "creationDate" and
// "expirationDate" (dates as nanoseconds since 1970-01-01 00:00 UTC; a date
// that is absent is left out).
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNPath.h>

struct svn_lock_t;

class TESSERA_EXPORT LuSVNLock final : public LuSVNCoding {
public:
    using Date = std::chrono::system_clock::time_point;

    /// Raises "Invalid parameter not satisfying: thePath != nil" for a null
    /// path.
    static std::shared_ptr<const LuSVNLock> lockWithPath(LuSVNPath::Path path, std::string token, std::string owner,
                                                         std::optional<std::string> comment, Date creationDate,
                                                         std::optional<Date> expirationDate);

    /// The lock of a Subversion lock record: its path (LuSVNPath::pathWithString
    /// of the repository path), token, owner and comment; an APR time of 0 is
    /// no date. A null token or owner reads as "". Raises "Invalid parameter
    /// not satisfying: lock != NULL" for a null record, "... thePath != nil"
    /// for a record without path.
    static std::shared_ptr<const LuSVNLock> lockWithSVNLock(const svn_lock_t* lock);

    /// Reads the keys above; an archive without path raises
    /// LuSVNInvalidArgumentException "Lock archived without a path".
    static std::shared_ptr<LuSVNLock> initWithCoder(LuSVNCoder& coder);

    const LuSVNPath::Path& path() const { return path_; }
    const std::string& token() const { return token_; }
    const std::string& owner() const { return owner_; }
    const std::optional<std::string>& comment() const { return comment_; }
    /// Null only for a record that carried none.
    const std::optional<Date>& creationDate() const { return creationDate_; }
    const std::optional<Date>& expirationDate() const { return expirationDate_; }

    /// Whether the tokens are equal; nothing else is compared. False for null.
    bool isEqualToLock(const std::shared_ptr<const LuSVNLock>& other) const;
    friend bool operator==(const LuSVNLock& a, const LuSVNLock& b) { return a.token_ == b.token_; }

    /// "{ <LuSVNLock: 0x...> path: <path>, token: <token>, owner: <owner>,
    /// creationDate: <date>, expirationDate: <date>, comment: <comment> }", with
    /// "(null)" for what is absent and dates as
    /// LuSVNDateConversion::ISO8601StringValue writes them.
    std::string description() const;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    LuSVNLock(LuSVNPath::Path path, std::string token, std::string owner, std::optional<std::string> comment,
              std::optional<Date> creationDate, std::optional<Date> expirationDate);

    LuSVNPath::Path path_;
    std::string token_;
    std::string owner_;
    std::optional<std::string> comment_;
    std::optional<Date> creationDate_;
    std::optional<Date> expirationDate_;
};
