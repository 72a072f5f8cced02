// URLs made from arbitrary text. Construction either succeeds or raises
// LuSVNInvalidArgumentException; what it makes reconstructs from its own text,
// and from its parts into a URL with the same parts (no part of the path is
// lost on the way), survives copying and archiving, has a finite chain of
// parents of which it is a descendant, and converts to Subversion's form or
// is refused, never handed to a Subversion that would abort.
// Percent-escaping round-trips for every text, and a URL made from escaped
// display text shows that text again.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNStrings.h>
#include <tessera/LuSVNURL.h>

#include "LuSVNBackendFrame.h"
#include "LuSVNPath+Internal.h"
#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

namespace {

LuSVNURL::URLPath construct(const std::string& text)
{
    try {
        return LuSVNURL::URLWithString(text);
    } catch (const LuSVNInvalidArgumentException&) {
        return nullptr;
    }
}

// Whether the constructor removes a trailing "/" from the text.
bool losesTrailingSlash(const std::string& text)
{
    std::string lower = text;
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text.ends_with("/") && !text.ends_with("://") && lower != "file:///";
}

std::string decodedPath(const LuSVNURL& url)
{
    return tessera_private::LuSVNReplacePercentEscapes(url.relativePath());
}

void checkURL(const LuSVNURL::URLPath& url)
{
    const std::string& text = url->string();
    require(LuSVNIsValidUTF8(text), "the stored text is UTF-8");
    const auto again = LuSVNURL::URLWithString(text);
    if (losesTrailingSlash(text))
        require(again->string() == text.substr(0, text.size() - 1), "only a second trailing slash goes");
    else
        require(again->isEqualToPath(url), "a URL reconstructs from its text");
    require(url->copy()->isEqualToPath(url), "a copy is equal");
    const auto decoded =
        LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNURL>(LuSVNKeyedArchiver::archivedDataWithRootObject(*url));
    require(decoded->isEqualToPath(again), "decoding runs the construction rules");

    std::size_t steps = 0;
    for (LuSVNPath::Path child = url, parent = url->parent(); parent; child = parent, parent = parent->parent()) {
        require(++steps <= text.size(), "the chain of parents ends");
        if (!child->string().ends_with("/"))
            require(child->isDescendentOfPath(parent), "a URL is a descendant of its parent");
    }
    if (!url->relativePath().empty())
        require(url->location() == (url->parent() ? std::optional(url->parent()->string()) : std::nullopt),
                "the location is the parent's text");

    // Rebuilding may meet a user or host that cannot stand in a URL once
    // decoded; that is refused, never a crash. Canonical forms are stable.
    try {
        const auto rebuilt = LuSVNURL::URLWithScheme(url->scheme(), url->user(), url->host(), url->port(),
                                                     url->relativePath());
        require(rebuilt->user() == url->user() && rebuilt->host() == url->host() && rebuilt->port() == url->port(),
                "rebuilding keeps user, host and port");
        // Construction takes a trailing "/" off the text again.
        require(decodedPath(*rebuilt) == decodedPath(*url) || decodedPath(*rebuilt) + "/" == decodedPath(*url),
                "rebuilding keeps the path");
    } catch (const LuSVNInvalidArgumentException&) {
    }
    try {
        const auto canonical = url->canonicalize();
        if (!losesTrailingSlash(canonical->string()))
            require(canonical->canonicalize()->isEqualToPath(canonical), "canonicalize is idempotent");
        require(!url->stripUser()->user(), "stripUser leaves no user");
    } catch (const LuSVNInvalidArgumentException&) {
    }

    // Texts Subversion would abort on are refused before they reach it.
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    try {
        require(url->SVNRepresentationInPool(frame.pool()) != nullptr, "Subversion's form exists");
    } catch (const LuSVNInvalidArgumentException&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    tessera_fuzz::initializeLibrary();
    const std::string text = tessera_fuzz::textOf(data, size);

    const std::string escaped = tessera_private::LuSVNAddPercentEscapes(text);
    require(tessera_private::LuSVNReplacePercentEscapes(escaped) == text, "unescaping inverts escaping");
    if (text.empty())
        return 0;

    const bool valid = LuSVNURL::isValidURL(text);
    const auto url = construct(text);
    require(!valid || url, "a valid URL constructs");
    if (url)
        checkURL(url);

    if (LuSVNIsValidUTF8(text) && !text.ends_with("/")) {
        if (const auto fromDisplay = construct(escaped)) {
            require(fromDisplay->denormalizedString() == text, "escaped display text shows again");
            checkURL(fromDisplay);
        }
    }
    return 0;
}
