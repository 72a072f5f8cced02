#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNURL.h>

#include "LuSVNAssert.h"

namespace {

LuSVNURL::URLPath asURL(const LuSVNPath::Path& path)
{
    return std::static_pointer_cast<const LuSVNURL>(path);
}

// The form in which two URLs are compared for their relation.
LuSVNPath::Path comparable(const LuSVNURL& url)
{
    return url.stripUser()->canonicalize();
}

}  // namespace

LuSVNURLType LuSVNURL::typeOfURL(const std::string& url)
{
    LUSVN_PARAMETER_ASSERT(!url.empty(), "[url length] > 0");
    switch (url.front()) {
    case '.':
        return LuSVNURLTypeRelativeToDirectory;
    case '^':
        return LuSVNURLTypeRelativeToRepository;
    case '/':
        return url.size() > 1 && url[1] == '/' ? LuSVNURLTypeRelativeToScheme : LuSVNURLTypeRelativeToServer;
    default:
        return LuSVNURLTypeAbsolute;
    }
}

bool LuSVNURL::isRelative(const std::string& url)
{
    return typeOfURL(url) != LuSVNURLTypeAbsolute;
}

bool LuSVNURL::isAbsolute(const std::string& url)
{
    return typeOfURL(url) == LuSVNURLTypeAbsolute;
}

LuSVNURL::URLPath LuSVNURL::URLWithString(const std::string& text, const URLPath& relativeTo)
{
    switch (typeOfURL(text)) {
    case LuSVNURLTypeAbsolute:
        return URLWithString(text);
    case LuSVNURLTypeRelativeToDirectory:
        return URLWithStringRelativeToDirectory(text, relativeTo);
    case LuSVNURLTypeRelativeToRepository:
        return URLWithStringRelativeToRepository(text, relativeTo);
    case LuSVNURLTypeRelativeToServer:
        return URLWithStringRelativeToServer(text, relativeTo);
    default:
        // "//host/x" is deliberately not resolved here.
        throw LuSVNInvalidArgumentException("Unexpected URL format");
    }
}

LuSVNURL::URLPath LuSVNURL::URLWithStringRelativeToDirectory(const std::string& text, const URLPath& directoryURL)
{
    LUSVN_PARAMETER_ASSERT(directoryURL != nullptr, "directoryURL != nil");
    LUSVN_PARAMETER_ASSERT(typeOfURL(text) == LuSVNURLTypeRelativeToDirectory,
                           "[LuSVNURL typeOfURL:string] == LuSVNURLTypeRelativeToDirectory");
    return asURL(directoryURL->pathByAddingRelativePathWithSymlinks(text, false));
}

LuSVNURL::URLPath LuSVNURL::URLWithStringRelativeToRepository(const std::string& text,
                                                              const URLPath& repositoryRootURL)
{
    LUSVN_PARAMETER_ASSERT(repositoryRootURL != nullptr, "repositoryRootURL != nil");
    LUSVN_PARAMETER_ASSERT(typeOfURL(text) == LuSVNURLTypeRelativeToRepository,
                           "[LuSVNURL typeOfURL:string] == LuSVNURLTypeRelativeToRepository");
    const std::string path = text == "^" ? "/" : text.substr(1);
    return asURL(repositoryRootURL->pathByAddingComponent(path));
}

LuSVNURL::URLPath LuSVNURL::URLWithStringRelativeToServer(const std::string& text, const URLPath& serverURL)
{
    LUSVN_PARAMETER_ASSERT(serverURL != nullptr, "serverURL != nil");
    LUSVN_PARAMETER_ASSERT(typeOfURL(text) == LuSVNURLTypeRelativeToServer,
                           "[LuSVNURL typeOfURL:string] == LuSVNURLTypeRelativeToServer");
    return asURL(URLWithString(serverURL->hostAndScheme())->pathByAddingComponent(text));
}

LuSVNURL::URLPath LuSVNURL::URLWithStringRelativeToScheme(const std::string& text, const URLPath& schemeURL)
{
    LUSVN_PARAMETER_ASSERT(schemeURL != nullptr, "schemeURL != nil");
    LUSVN_PARAMETER_ASSERT(typeOfURL(text) == LuSVNURLTypeRelativeToScheme,
                           "[LuSVNURL typeOfURL:string] == LuSVNURLTypeRelativeToScheme");
    return URLWithString(schemeURL->scheme() + ":" + text);
}

std::optional<std::string> LuSVNURL::stringOfType(LuSVNURLType type, const URLPath& relativeTo) const
{
    switch (type) {
    case LuSVNURLTypeAbsolute:
        return url_;
    case LuSVNURLTypeRelativeToDirectory:
        return stringRelativeToDirectory(relativeTo);
    case LuSVNURLTypeRelativeToRepository:
        return stringRelativeToRepository(relativeTo);
    case LuSVNURLTypeRelativeToServer:
        return stringRelativeToServer();
    case LuSVNURLTypeRelativeToScheme:
        return stringRelativeToScheme();
    }
    throw LuSVNInvalidArgumentException("Unexpected URL type");
}

std::optional<std::string> LuSVNURL::stringRelativeToDirectory(const URLPath& directoryURL) const
{
    LUSVN_PARAMETER_ASSERT(directoryURL != nullptr, "directoryURL != nil");
    return comparable(*this)->pathWithSymlinksRelativeTo(comparable(*directoryURL), false);
}

std::optional<std::string> LuSVNURL::stringRelativeToRepository(const URLPath& repositoryURL) const
{
    LUSVN_PARAMETER_ASSERT(repositoryURL != nullptr, "repositoryURL != nil");
    const std::optional<std::string> relative =
        comparable(*this)->pathRelativeTo(comparable(*repositoryURL), false);
    if (!relative)
        return std::nullopt;
    return relative->empty() ? "^/" : "^" + *relative;
}

std::string LuSVNURL::stringRelativeToScheme() const
{
    return url_.substr(url_.find("://") + 1);
}
