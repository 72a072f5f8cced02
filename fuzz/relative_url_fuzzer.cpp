// Relative URLs of externals definitions. The input is a base URL, a line
// break and a relative text. Resolving raises nothing but
// LuSVNInvalidArgumentException; repository- and server-relative results lie
// below their base; and the repository and directory notations of a URL
// resolve back to it where its path has no "." or ".." steps, empty
// components or trailing "/", and it has a host or is a file URL.
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNURL.h>

#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

namespace {

LuSVNURL::URLPath asURL(const LuSVNPath::Path& path)
{
    return std::static_pointer_cast<const LuSVNURL>(path);
}

// A URL whose path the relative notations describe exactly. Without a host
// only file URLs qualify: "svn:///" is stored as "svn://", to which a
// component adds a host.
bool isPlain(const LuSVNURL& url)
{
    const std::string& text = url.string();
    return LuSVNURL::isValidURL(text) && !text.ends_with("/") && text.find("/../") == std::string::npos &&
           !text.ends_with("/..") && text.find_first_of("?#") == std::string::npos &&
           (!url.host().empty() || url.isFileURL());
}

void checkRendering(const LuSVNURL::URLPath& url, const LuSVNURL::URLPath& base)
{
    for (int type = LuSVNURLTypeAbsolute; type <= LuSVNURLTypeRelativeToScheme; ++type)
        url->stringOfType(static_cast<LuSVNURLType>(type), base);
    const auto plainURL = asURL(url->stripUser()->canonicalize());
    const auto plainBase = asURL(base->stripUser()->canonicalize());
    if (!isPlain(*plainURL) || !isPlain(*plainBase))
        return;
    if (const auto text = plainURL->stringRelativeToRepository(plainBase))
        require(LuSVNURL::URLWithString(*text, plainBase)->isEqualToPath(plainURL),
                "the repository notation resolves back");
    if (const auto text = plainURL->stringRelativeToDirectory(plainBase)) {
        const auto back = LuSVNURL::URLWithString(*text, plainBase);
        require(back && back->isEqualToPath(plainURL), "the directory notation resolves back");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input = tessera_fuzz::textOf(data, size);
    const std::size_t lineBreak = input.find('\n');
    if (lineBreak == std::string::npos || lineBreak == 0 || lineBreak + 1 == input.size())
        return 0;
    const std::string relative = input.substr(lineBreak + 1);
    try {
        const auto base = LuSVNURL::URLWithString(input.substr(0, lineBreak));
        const LuSVNURLType type = LuSVNURL::typeOfURL(relative);
        const auto resolved = LuSVNURL::URLWithString(relative, base);
        require(type != LuSVNURLTypeRelativeToScheme, "scheme-relative text is not resolved");
        if (type == LuSVNURLTypeRelativeToRepository)
            require(resolved->isEqualToPathOrDescendentOf(base), "repository-relative lies below the root");
        if (type == LuSVNURLTypeRelativeToServer)
            require(resolved->isEqualToPathOrDescendentOf(LuSVNURL::URLWithString(base->hostAndScheme())),
                    "server-relative lies below the server");
        if (resolved)
            checkRendering(resolved, base);
    } catch (const LuSVNInvalidArgumentException&) {
        // Malformed text, an unknown notation, or no component to add.
    }
    return 0;
}
