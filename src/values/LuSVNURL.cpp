#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNStrings.h>
#include <tessera/LuSVNURL.h>

#include <arpa/inet.h>
#include <netdb.h>
#include <uriparser/Uri.h>

#include <algorithm>
#include <tuple>
#include <vector>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNPath+Internal.h"
#include "LuSVNTrace.h"

using namespace tessera_private;

namespace {

const LuSVNArchivableClassRegistrar<LuSVNURL> registrar("LuSVNURL");

char lowerASCII(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string lowercased(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lowerASCII);
    return result;
}

bool isFileRoot(std::string_view text)
{
    return lowercased(text) == "file:///";
}

// Decoded for display; text whose escapes do not decode to UTF-8 is shown as
// it is.
std::string displayForm(std::string_view text)
{
    std::string decoded = LuSVNReplacePercentEscapes(text);
    return LuSVNIsValidUTF8(decoded) ? decoded : std::string(text);
}

std::string rangeText(const UriTextRangeA& range)
{
    return range.first ? std::string(range.first, range.afterLast) : std::string();
}

struct ParsedURL {
    std::optional<std::string> user;
    std::string host;
    std::optional<int> port;
    bool subversionAccepts = false;
};

// The characters of a scheme the parser accepts.
bool isSchemeCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '+' || c == '-' ||
           c == '.';
}

// Subversion 1.14 aborts the process on URLs it cannot canonicalise
// (svn_uri_canonicalize), and the backends offer no checking form, so only
// shapes it was seen to handle are handed to it: a scheme of letters, digits
// and "+-._", no future IP literal, no port with a leading zero, no empty
// port after an empty host.
bool subversionAccepts(std::string_view text, const UriUriA& uri)
{
    const std::string_view scheme = text.substr(0, text.find("://"));
    const std::string port = rangeText(uri.portText);
    const bool hasEmptyPort = uri.portText.first && port.empty();
    return !scheme.empty() &&
           std::all_of(scheme.begin(), scheme.end(), [](char c) { return isSchemeCharacter(c) || c == '_'; }) &&
           !uri.hostData.ipFuture.first && !(port.size() > 1 && port.front() == '0') &&
           !(hasEmptyPort && uri.hostText.first == uri.hostText.afterLast);
}

// Where the path starts: at the first "/" after "://", or npos.
std::size_t pathStartOf(std::string_view text)
{
    return text.find('/', text.find("://") + 3);
}

// Subversion reads "?" and "#" in a URL as part of its path, never as the
// start of a query or fragment; the parser is shown them escaped.
std::string withPathDelimitersEscaped(const std::string& text)
{
    const std::size_t pathStart = pathStartOf(text);
    if (pathStart == std::string::npos)
        return text;
    std::string result = text.substr(0, pathStart);
    for (std::size_t i = pathStart; i < text.size(); ++i) {
        if (text[i] == '?')
            result += "%3F";
        else if (text[i] == '#')
            result += "%23";
        else
            result += text[i];
    }
    return result;
}

// A user or host name with every character RFC 3986 does not let stand
// there as "%xx" (lower-case hex), so that it reads back whole.
std::string authorityEscaped(std::string_view text)
{
    static const char digits[] = "0123456789abcdef";
    std::string result;
    for (const char c : text) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
            std::string_view("-._~!$&'()*+,;=").find(c) != std::string_view::npos) {
            result += c;
        } else {
            result += '%';
            result += digits[static_cast<unsigned char>(c) >> 4];
            result += digits[static_cast<unsigned char>(c) & 0xF];
        }
    }
    return result;
}

// The parse of a text with "://", or nullopt when the parser refuses it.
std::optional<ParsedURL> parse(const std::string& text)
{
    // Bytes the parser never sees (the scheme is replaced) must still be text.
    if (!LuSVNIsValidUTF8(text) || text.find('\0') != std::string::npos)
        return std::nullopt;
    const std::string parsable = withPathDelimitersEscaped(LuSVNURL::parsableURLForString(text));
    UriUriA uri;
    const char* errorPosition = nullptr;
    if (uriParseSingleUriExA(&uri, parsable.data(), parsable.data() + parsable.size(), &errorPosition) !=
        URI_SUCCESS)
        return std::nullopt;
    std::optional<ParsedURL> parsed;
    const std::string portText = rangeText(uri.portText);  // digits only
    long port = 0;
    for (const char digit : portText)
        port = std::min(port * 10 + (digit - '0'), 65536L);
    // A query or fragment can only have come from the authority: refused.
    if (uri.scheme.first && port <= 65535 && !uri.query.first && !uri.fragment.first) {
        parsed.emplace();
        if (uri.userInfo.first) {
            const std::string userInfo = rangeText(uri.userInfo);
            parsed->user = displayForm(userInfo.substr(0, userInfo.find(':')));
        }
        const std::string host = rangeText(uri.hostText);
        const bool isIPLiteral = uri.hostData.ip6 || uri.hostData.ipFuture.first;
        parsed->host = isIPLiteral ? "[" + host + "]" : displayForm(host);
        if (!portText.empty())
            parsed->port = static_cast<int>(port);
        parsed->subversionAccepts = subversionAccepts(text, uri);
    }
    uriFreeUriMembersA(&uri);
    return parsed;
}

// Where the path stands in a parsed text: its offset and length (0 for
// none). It runs to the end: there is no query or fragment.
std::pair<std::size_t, std::size_t> rawPathOf(std::string_view text)
{
    const std::size_t start = pathStartOf(text);
    if (start == std::string_view::npos)
        return {text.size(), 0};
    return {start, text.size() - start};
}

}  // namespace

LuSVNURL::LuSVNURL(const std::string& text)
{
    LUSVN_PARAMETER_ASSERT(!text.empty(), "string != nil && [string length] > 0");
    std::string url = LuSVNTrim(text);
    if (url.find("://") == std::string::npos)
        throw LuSVNInvalidArgumentException("URL does not contain a scheme");
    if (!url.ends_with("://") && !isFileRoot(url) && url.back() == '/')
        url.pop_back();
    std::optional<ParsedURL> parsed = parse(url);
    if (!parsed)
        throw LuSVNInvalidArgumentException("Failed to parse \"" + url + "\". URL is probably malformed.");
    url_ = std::move(url);
    user_ = std::move(parsed->user);
    host_ = std::move(parsed->host);
    port_ = parsed->port;
    std::tie(rawPathStart_, rawPathLength_) = rawPathOf(url_);
    subversionAccepts_ = parsed->subversionAccepts;
}

LuSVNURL::URLPath LuSVNURL::URLWithString(const std::string& text)
{
    return URLPath(new LuSVNURL(text));
}

LuSVNURL::URLPath LuSVNURL::URLWithPath(const Path& path)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    return URLWithString(path->string());
}

LuSVNURL::URLPath LuSVNURL::URLEncodeString(const std::string& text)
{
    LUSVN_PARAMETER_ASSERT(!text.empty(), "string != nil && [string length] > 0");
    return URLWithString(LuSVNAddPercentEscapes(text));
}

LuSVNURL::URLPath LuSVNURL::URLWithScheme(const std::optional<std::string>& scheme,
                                          const std::optional<std::string>& user,
                                          const std::optional<std::string>& host, std::optional<int> port,
                                          const std::optional<std::string>& path)
{
    if (!scheme)
        return nullptr;
    std::string text = *scheme + "://";
    if (user)
        text += authorityEscaped(*user) + '@';
    if (host) {
        text += host->starts_with('[') ? *host : authorityEscaped(*host);  // an IP literal as it is
        if (port)
            text += ":" + std::to_string(*port);
    }
    if (path && !path->empty())
        text += path->front() == '/' ? *path : "/" + *path;
    return URLWithString(text);
}

std::string LuSVNURL::parsableURLForString(const std::string& text)
{
    const std::size_t separator = text.find("://");
    if (separator == std::string::npos)
        return text;
    if (std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(separator), isSchemeCharacter))
        return text;
    return "scheme://" + text.substr(separator + 3);
}

int LuSVNURL::defaultPortForScheme(const std::string& scheme)
{
    servent entry;
    servent* found = nullptr;
    std::vector<char> buffer(4096);
    if (getservbyname_r(lowercased(scheme).c_str(), "tcp", &entry, buffer.data(), buffer.size(), &found) != 0 ||
        !found)
        return 0;
    return ntohs(static_cast<std::uint16_t>(found->s_port));
}

bool LuSVNURL::isValidURL(const std::string& text)
{
    if (text.empty())
        return false;
    const std::string trimmed = LuSVNTrim(text);
    const std::size_t separator = trimmed.find("://");
    if (separator == std::string::npos)
        return false;
    if (trimmed.find("//", separator + 3) != std::string::npos)
        return false;
    if (trimmed.ends_with("/.") || trimmed.find("/./") != std::string::npos)
        return false;
    return parse(trimmed).has_value();
}

std::shared_ptr<LuSVNURL> LuSVNURL::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    const std::optional<std::string> text = coder.decodeStringForKey("string");
    if (!text || text->empty())
        throw LuSVNInvalidArgumentException("Cannot decode LuSVNURL without a string");
    // Decoding runs the rules of construction again, trailing "/" included.
    return std::shared_ptr<LuSVNURL>(new LuSVNURL(*text));
}

std::string LuSVNURL::denormalizedString() const
{
    return displayForm(url_);
}

std::string LuSVNURL::scheme() const
{
    return url_.substr(0, url_.find("://"));
}

std::optional<std::string> LuSVNURL::user() const
{
    return user_;
}

std::string LuSVNURL::relativePath() const
{
    return LuSVNAddPercentEscapes(LuSVNReplacePercentEscapes(std::string(rawPath())));
}

std::string LuSVNURL::denormalizedRelativePath() const
{
    return displayForm(std::string(rawPath()));
}

std::string LuSVNURL::hostAndScheme() const
{
    return URLWithScheme(scheme(), user_, host_, port_, std::nullopt)->string();
}

std::optional<std::string> LuSVNURL::location() const
{
    if (rawPath().empty())
        return url_;
    const Path up = parent();
    if (!up)
        return std::nullopt;
    return up->string();
}

std::optional<std::string> LuSVNURL::denormalizedLocation() const
{
    const std::optional<std::string> text = location();
    if (!text)
        return std::nullopt;
    return displayForm(*text);
}

std::string LuSVNURL::lastComponent() const
{
    if (rawPath().empty() || rawPath() == "/")
        return "/";
    return LuSVNLastPathComponent(url_);
}

std::string LuSVNURL::denormalizedLastComponent() const
{
    return displayForm(lastComponent());
}

LuSVNPath::Path LuSVNURL::parent() const
{
    if (isFileRoot(url_))
        return nullptr;
    const std::size_t afterScheme = url_.find("://") + 3;
    const std::size_t lastSlash = url_.rfind('/');
    if (lastSlash + 1 == afterScheme)
        return nullptr;  // no path at all: "svn://host"
    // Cutting the path short leaves the parts as they were, so the parent
    // needs no new parse (a listing asks every entry for its parent),
    // unless what is left might end in what the constructor trims (a slash,
    // white space, which may be a non-ASCII character).
    const bool pathEndsText = rawPathStart_ + rawPathLength_ == url_.size();
    const char before = lastSlash > 0 ? url_[lastSlash - 1] : '/';
    if (pathEndsText && lastSlash > rawPathStart_ && before > ' ' && before < 0x7f && before != '/') {
        auto up = std::make_shared<LuSVNURL>(Made(), *this);
        up->url_.resize(lastSlash);
        up->rawPathLength_ = lastSlash - rawPathStart_;
        return up;
    }
    if (lastSlash != afterScheme)
        return URLWithString(url_.substr(0, lastSlash));
    return URLWithString(scheme() + ":///");  // "file:///x"
}

bool LuSVNURL::isFileURL() const
{
    return lowercased(scheme()) == "file";
}

bool LuSVNURL::schemeUsesTunnel() const
{
    return scheme().find('+') != std::string::npos;
}

LuSVNURL::URLPath LuSVNURL::URL() const
{
    return std::static_pointer_cast<const LuSVNURL>(self());
}

std::shared_ptr<const LuSVNLocalPath> LuSVNURL::localPath() const
{
    if (!isFileURL())
        throw LuSVNInvalidArgumentException("URL is not a file:// URL");
    std::string path = denormalizedString().substr(std::string_view("file://").size());
    if (path.empty() || path.front() != '/') {
        const std::size_t slash = path.find('/');
        if (slash == std::string::npos)
            throw LuSVNInvalidArgumentException("URL is not a valid file URL");
        path.erase(0, slash);  // a host name
    }
    return LuSVNLocalPath::pathWithString(path);
}

LuSVNPath::Path LuSVNURL::stripUser() const
{
    if (!user_)
        return self();
    return URLWithScheme(scheme(), std::nullopt, host_, port_, relativePath());
}

LuSVNPath::Path LuSVNURL::canonicalize() const
{
    // Every form rebuilds the path escaped one way: Subversion reads "a#b"
    // and "a%23b" as the same name.
    if (isFileURL()) {
        static const std::string_view localhost = "file://localhost/";
        const std::string lower = lowercased(url_);
        std::string text;
        std::size_t from = 0;
        for (std::size_t at; (at = lower.find(localhost, from)) != std::string::npos; from = at + localhost.size())
            text += url_.substr(from, at - from) + "file:///";
        text += url_.substr(from);
        const URLPath local = URLWithString(text);
        return URLWithScheme(local->scheme(), local->user_, local->host_, local->port_, local->relativePath());
    }
    if (schemeUsesTunnel())
        return URLWithScheme(scheme(), std::nullopt, host_, port_, relativePath());
    const int port = port_ ? *port_ : defaultPortForScheme(scheme());
    if (port == 0)
        return URLWithScheme(scheme(), user_, host_, port_, relativePath());
    return URLWithScheme(scheme(), std::nullopt, host_, port, relativePath());
}

LuSVNURL::URLPath LuSVNURL::URLWithScheme(const std::string& newScheme) const
{
    return URLWithScheme(newScheme, user_, host_, port_, relativePath());
}

LuSVNURL::URLPath LuSVNURL::URLWithUser(const std::optional<std::string>& newUser) const
{
    return URLWithScheme(scheme(), newUser, host_, port_, relativePath());
}

LuSVNURL::URLPath LuSVNURL::URLWithPort(std::optional<int> newPort) const
{
    return URLWithScheme(scheme(), user_, host_, newPort, relativePath());
}

LuSVNPath::Path LuSVNURL::pathByAddingComponent(const std::string& component) const
{
    LUSVN_PARAMETER_ASSERT(!component.empty(), "component != nil && [component length] > 0");
    if (component == "/")
        return self();
    const std::size_t first = component.find_first_not_of('/');
    if (first == std::string::npos)
        throw LuSVNInvalidArgumentException("Valid component required");
    const std::string trimmed = component.substr(first, component.find_last_not_of('/') + 1 - first);
    std::string text = url_;
    if (text == "file://" || text.back() != '/')
        text += '/';
    return URLWithString(text + trimmed);
}

std::shared_ptr<const LuSVNURL> LuSVNURL::URLByAppendingEscapedRelativePath(std::string_view relativePath) const
{
    if (relativePath.empty())
        return std::static_pointer_cast<const LuSVNURL>(self());
    // The path must end the URL for the copy's parts to stay right.
    if (rawPathStart_ + rawPathLength_ != url_.size() || rawPathLength_ == 0)
        return std::static_pointer_cast<const LuSVNURL>(pathByAddingComponent(std::string(relativePath)));
    auto child = std::make_shared<LuSVNURL>(Made(), *this);
    child->url_.reserve(url_.size() + 1 + relativePath.size());
    if (child->url_.back() != '/')
        child->url_ += '/';
    child->url_ += relativePath;
    child->rawPathLength_ = child->url_.size() - child->rawPathStart_;
    return child;
}

LuSVNPath::Path LuSVNURL::pathByNormalizingAndAddingComponent(const std::string& component) const
{
    LUSVN_PARAMETER_ASSERT(!component.empty(), "component != nil && [component length] > 0");
    return pathByAddingComponent(LuSVNAddPercentEscapes(component));
}

const char* LuSVNURL::SVNRepresentationInPool(apr_pool_t* pool) const
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    LUSVN_TRACE("LuSVNURL", "SVNRepresentationInPool", {"url", url_});
    if (!subversionAccepts_)
        throw LuSVNInvalidArgumentException("Subversion cannot canonicalize \"" + url_ + "\"");
    if (LuSVNCurrentHasEntryPoint(29))
        return LuSVNEntry<29>()(cString(), pool);
    return LuSVNEntry<26>()(cString(), pool);
}

LuSVNPath::Path LuSVNURL::copy() const
{
    // Not through the constructor: its rules would remove a "/" that the
    // stored text still ends in.
    return URLPath(new LuSVNURL(*this));
}

std::string LuSVNURL::archiveClassName() const
{
    return "LuSVNURL";
}

void LuSVNURL::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNPath::encodeWithCoder(coder);
    coder.encodeString(url_, "string");
}
