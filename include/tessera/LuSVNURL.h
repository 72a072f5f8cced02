// A repository URL: "scheme://[user@]host[:port]/path" or "file:///path".
//
//   auto url = LuSVNURL::URLWithString(" svn://me@host/repo/trunk/ ");
//   url->string();                      // "svn://me@host/repo/trunk"
//   url->hostAndScheme();               // "svn://me@host"
//   url->canonicalize()->string();      // "svn://host:3690/repo/trunk"
//   url->stringRelativeToRepository(LuSVNURL::URLWithString("svn://host/repo"));   // "^/trunk"
//
// The text is kept as the caller gave it, after trimming white space and
// removing one trailing "/", with its percent escapes as given; it is compared
// and hashed as such. It is parsed once (RFC 3986) for its user, host, port
// and path. As for Subversion, the path runs from the "/" after the host to
// the end: "?" and "#" in it are path characters, not a query or fragment
// ("svn://h/a#b" names "a#b"), and a "?" or "#" before that "/" is refused.
// A scheme the parser would refuse (one holding "_", say) is replaced by the
// word "scheme" for parsing only.
//
// Percent-escaping (URLEncodeString, the "normalizing" operations, every URL
// the library makes from a name) escapes, as UTF-8 bytes, every character
// that may not stand in a URL's path, and ";", as Subversion does: controls,
// space, "%", "?", "#", ";", "\"<>\\^`{|}[]" and everything beyond ASCII;
// letters, digits, "-_.~!$&'()*+,=:@/" are kept. Decoding (the
// denormalised forms) inverts it exactly; a text whose escapes do not decode
// to UTF-8 is shown undecoded.
//
// Archived under "string"; decoding runs the same checks as URLWithString.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <tessera/LuSVNPath.h>

struct sockaddr;

/// The notations of a URL in an externals definition.
enum LuSVNURLType : int {
    LuSVNURLTypeAbsolute = 0,             ///< anything not below
    LuSVNURLTypeRelativeToDirectory = 1,  ///< begins with "."
    LuSVNURLTypeRelativeToRepository = 2, ///< begins with "^"
    LuSVNURLTypeRelativeToServer = 3,     ///< begins with "/" not followed by "/"
    LuSVNURLTypeRelativeToScheme = 4,     ///< begins with "//"
};

/// A repository URL, the LuSVNPath that names a location in a repository.
///
/// Make one with URLWithString() from text that is already percent-escaped
/// ("svn://host/repo/a%20b"), or with URLEncodeString() from text that is not
/// ("svn://host/repo/a b" gives the same URL); add path components with
/// pathByAddingComponent() (escaped) or pathByNormalizingAndAddingComponent()
/// (plain). Malformed text raises LuSVNInvalidArgumentException; an empty
/// text is a broken precondition (LuSVNInternalInconsistencyException).
///
/// A URL is an immutable value: share it freely, also between threads. It
/// needs neither LuSVNInitialize() nor a context, except
/// SVNRepresentationInPool(), which calls the backend on top of the calling
/// thread's stack (operations push their context's backend themselves).
///
/// Equality and hashing use the stored text: "svn://host/repo/"
/// equals "svn://host/repo" (one trailing "/" is removed), but a user, an
/// explicit default port, or another case of scheme or host makes another
/// URL. To ask whether two URLs name the same location, compare their
/// canonicalize() forms, which drop the user and make the port explicit;
/// the case of scheme and host is kept there too.
///
/// string() is the escaped text that Subversion takes; denormalizedString()
/// and the other denormalized forms are decoded for showing to a person.
class TESSERA_EXPORT LuSVNURL final : public LuSVNPath {
public:
    /// How URLs are handed around: shared, immutable.
    using URLPath = std::shared_ptr<const LuSVNURL>;

    // --- Making URLs ------------------------------------------------------

    /// The URL of the text. An empty text raises "Invalid parameter not
    /// satisfying: string != nil && [string length] > 0". White space and line
    /// ends around the text are trimmed; then a text without "://" raises
    /// LuSVNInvalidArgumentException "URL does not contain a scheme". Unless
    /// the text ends in "://" or is "file:///" (any case), one trailing "/"
    /// is removed. A text the parser refuses (characters not allowed in URLs,
    /// bad escapes, a port above 65535, bytes that are not UTF-8) raises
    /// LuSVNInvalidArgumentException "Failed to parse \"<text>\". URL is
    /// probably malformed.".
    static URLPath URLWithString(const std::string& text);
    /// URLWithString of the path's string(). nullptr raises "Invalid
    /// parameter not satisfying: path != nil".
    static URLPath URLWithPath(const Path& path);
    /// URLWithString of the text percent-escaped. An empty text raises
    /// "Invalid parameter not satisfying: string != nil && [string length] > 0".
    static URLPath URLEncodeString(const std::string& text);
    /// Builds "scheme://user@host:port/path" from the parts and answers
    /// URLWithString of it; nullptr without a scheme. In the user and the
    /// host every character RFC 3986 does not allow there is escaped
    /// (lower-case hex: "a@b:c" gives "a%40b%3ac"), but for an IP literal
    /// host ("[::1]"); the port is written only with a host; a path not
    /// beginning with "/" gets one, an empty path is left out.
    static URLPath URLWithScheme(const std::optional<std::string>& scheme, const std::optional<std::string>& user,
                                 const std::optional<std::string>& host, std::optional<int> port,
                                 const std::optional<std::string>& path);
    /// The text unchanged when it has no "://" or its scheme (what precedes
    /// the first "://") has only letters, digits and "+-."; else "scheme://"
    /// followed by what follows the "://".
    static std::string parsableURLForString(const std::string& text);
    /// The TCP port of the lower-cased scheme in the service database
    /// (/etc/services), 0 when the service is unknown.
    static int defaultPortForScheme(const std::string& scheme);
    /// Whether a text a person typed is a usable URL: non-empty; containing
    /// "://" after trimming; no "//" after the first "://"; not ending in
    /// "/."; no "/./"; accepted by the parser.
    static bool isValidURL(const std::string& text);

    /// Reads "string" and makes the URL as URLWithString does, with its
    /// errors.
    static std::shared_ptr<LuSVNURL> initWithCoder(LuSVNCoder& coder);

    // --- Parts --------------------------------------------------------------

    /// The stored text.
    const std::string& string() const override { return url_; }
    /// string() with its percent escapes decoded.
    std::string denormalizedString() const override;
    /// denormalizedString().
    std::string URLDecodedString() const { return denormalizedString(); }
    /// What precedes the first "://", exactly as stored (not lower-cased).
    std::string scheme() const;
    /// The user (decoded), without a password; nullopt when there is none.
    std::optional<std::string> user() const override;
    /// The host (decoded), "" for "file:///x"; an IPv6 address keeps its
    /// brackets.
    const std::string& host() const { return host_; }
    /// The port written in the URL; nullopt when there is none.
    std::optional<int> port() const { return port_; }
    /// The path decoded and escaped again; "" when there is none.
    std::string relativePath() const;
    /// The path decoded.
    std::string denormalizedRelativePath() const;
    /// URLWithScheme with this URL's scheme, user, host and port and no path:
    /// "svn://user@host:3690".
    std::string hostAndScheme() const;
    /// string() when there is no path, else the parent's string(); nullopt
    /// for "file:///".
    std::optional<std::string> location() const override;
    std::optional<std::string> denormalizedLocation() const override;
    /// "/" when the path is empty or "/", else the last component of string().
    std::string lastComponent() const override;
    std::string denormalizedLastComponent() const override;
    /// The text before the last "/": "svn://host" for "svn://host/repo",
    /// "file:///" for "file:///x"; nullptr for "svn://host" and "file:///".
    Path parent() const override;

    // --- Conversions ----------------------------------------------------------

    /// Whether the scheme is "file", ignoring case.
    bool isFileURL() const;
    /// Whether the scheme contains "+" ("svn+ssh").
    bool schemeUsesTunnel() const;
    /// The receiver.
    URLPath URL() const override;
    /// The local path of a file URL: the decoded text after "file://", from
    /// its first "/" on (a host name is dropped). Another scheme raises
    /// LuSVNInvalidArgumentException "URL is not a file:// URL"; a file URL
    /// without a path "URL is not a valid file URL".
    std::shared_ptr<const LuSVNLocalPath> localPath() const override;
    /// The receiver without a user; the receiver itself when it has none.
    Path stripUser() const override;
    /// The form in which two URLs compare for identity of location, its path
    /// always relativePath() (so "a#b" and "a%23b" agree, as "a%7e" and "a~"):
    ///  1. file URLs: "file://localhost/" (any case) becomes "file:///";
    ///  2. tunnelled schemes: no user;
    ///  3. others: no user and an explicit port (the URL's own, else
    ///     defaultPortForScheme), "svn://user@host/r" giving
    ///     "svn://host:3690/r"; user and port as they are when the port is
    ///     unknown (0).
    Path canonicalize() const override;
    /// This URL with another scheme, user or port (nullopt: none), rebuilt
    /// with URLWithScheme and relativePath().
    URLPath URLWithScheme(const std::string& scheme) const;
    /// This URL with another user (nullopt: none).
    URLPath URLWithUser(const std::optional<std::string>& user) const;
    /// This URL with another port (nullopt: none).
    URLPath URLWithPort(std::optional<int> port) const;
    /// The child named by an already escaped component; "/" around it is
    /// trimmed and "/" alone answers the receiver. A component of nothing but
    /// "/" raises LuSVNInvalidArgumentException "Valid component required".
    Path pathByAddingComponent(const std::string& component) const override;
    /// The URL below this one at a relative path that is escaped already
    /// and canonical, as Subversion makes them ("a/b%20c"), without parsing
    /// the result again: status walks make one for every item. An empty
    /// path answers the receiver.
    std::shared_ptr<const LuSVNURL> URLByAppendingEscapedRelativePath(std::string_view relativePath) const;
    /// pathByAddingComponent of the component percent-escaped.
    Path pathByNormalizingAndAddingComponent(const std::string& component) const override;
    /// Subversion's svn_uri_canonicalize (entry point 29), or
    /// svn_path_internal_style (26) on backends without it. Subversion would
    /// abort the process on URLs it cannot canonicalise; those raise
    /// LuSVNInvalidArgumentException "Subversion cannot canonicalize
    /// \"<text>\"" instead: a scheme with other characters than letters,
    /// digits and "+-._", a future IP literal ("[v1.x]"), a port with a
    /// leading zero, an empty port after an empty host ("svn://:").
    const char* SVNRepresentationInPool(apr_pool_t* pool) const override;
    Path copy() const override;

    // --- Relative URLs (externals definitions) --------------------------------

    /// The notation of a text by its first characters. An empty text raises
    /// "Invalid parameter not satisfying: [url length] > 0".
    static LuSVNURLType typeOfURL(const std::string& url);
    /// Whether the type is 1 to 4.
    static bool isRelative(const std::string& url);
    /// Whether the type is LuSVNURLTypeAbsolute.
    static bool isAbsolute(const std::string& url);
    /// The URL a text of any notation names relative to `url`: absolute text
    /// gives URLWithString of it, types 1 to 3 the operations below. "//"
    /// (type 4) is not resolved here: it raises LuSVNInvalidArgumentException
    /// "Unexpected URL format", as every notation not listed.
    static URLPath URLWithString(const std::string& text, const URLPath& relativeTo);
    /// "../x" and "./x" resolved against the directory's URL.
    static URLPath URLWithStringRelativeToDirectory(const std::string& text, const URLPath& directoryURL);
    /// "^/x" (and "^" alone, the root) added to the repository root.
    static URLPath URLWithStringRelativeToRepository(const std::string& text, const URLPath& repositoryRootURL);
    /// "/x" added to the server of the URL (its hostAndScheme()).
    static URLPath URLWithStringRelativeToServer(const std::string& text, const URLPath& serverURL);
    /// "//host/x" with the scheme of the URL.
    static URLPath URLWithStringRelativeToScheme(const std::string& text, const URLPath& schemeURL);
    // Each of the four raises "Invalid parameter not satisfying: ..." for a
    // null URL and for a text of another notation.

    /// The receiver in the notation of the type: string(),
    /// stringRelativeToDirectory, stringRelativeToRepository,
    /// stringRelativeToServer or stringRelativeToScheme. A value outside the
    /// enumeration raises LuSVNInvalidArgumentException "Unexpected URL type".
    std::optional<std::string> stringOfType(LuSVNURLType type, const URLPath& relativeTo) const;
    /// ".", "./a/b" or "../../a/b" against the directory, both compared
    /// without users and canonicalised; nullopt without a common ancestor.
    std::optional<std::string> stringRelativeToDirectory(const URLPath& directoryURL) const;
    /// "^/" for the root itself, "^/a/b" below it, nullopt elsewhere; both
    /// compared without users and canonicalised.
    std::optional<std::string> stringRelativeToRepository(const URLPath& repositoryURL) const;
    /// relativePath().
    std::string stringRelativeToServer() const { return relativePath(); }
    /// string() without the scheme and its ":" ("//host/path").
    std::string stringRelativeToScheme() const;

    // --- Reachability ---------------------------------------------------------

    /// Connects a non-blocking stream socket of the family and type to the
    /// address, passing an address length of 16 bytes whatever the family
    /// (so IPv6 addresses never connect). True on immediate success or when
    /// the socket becomes writable within the timeout (cut to whole seconds);
    /// the socket's pending error is not read, but a socket that the wait
    /// reports with an error or hang-up (a refused connection) is not
    /// writable. False on any other failure to connect. Raises LuSVNGenericException "Failed to open
    /// stream", "fcntl(F_GETFL) failed for socket" or "fcntl(F_SETFL) failed
    /// for socket" when the socket cannot be made. Blocks at most the timeout.
    static bool connectToAddress(const struct sockaddr* address, int family, int socketType, double timeout);
    /// True without a probe for the scheme "file" (exact case) and for
    /// tunnelled schemes. Otherwise resolves the host and the port (or the
    /// scheme as service name) and tries each address with
    /// connectToAddress; false when the name does not resolve or no address
    /// connects.
    bool isReachableWithinTimeout(double seconds) const;
    /// Raises LuSVNCommunicationException "<hostAndScheme> is currently
    /// unreachable" when isReachableWithinTimeout answers false.
    void testConnectivity(double seconds) const;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    explicit LuSVNURL(const std::string& text);
    LuSVNURL(const LuSVNURL&) = default;
    // Only the class can name it; it lets URLs made from others share one
    // allocation with their reference count.
    struct Made {
        explicit Made() = default;
    };

public:
    /// For the class's own factories.
    LuSVNURL(Made, const LuSVNURL& other) : LuSVNURL(other) {}

private:

    std::string url_;
    std::optional<std::string> user_;
    std::string host_;
    std::optional<int> port_;
    /// The path as it stands in url_, escapes included.
    std::string_view rawPath() const { return std::string_view(url_).substr(rawPathStart_, rawPathLength_); }

    std::size_t rawPathStart_ = 0;
    std::size_t rawPathLength_ = 0;
    bool subversionAccepts_;
};
