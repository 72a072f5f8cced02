// Realms as servers send them, read by LuSVNParseRealm: a realm parses
// exactly when it begins with "<" and its first ">" is not its last
// character; then the URL holds no ">", neither part has white space at its
// ends, and the realm rebuilt from the parts parses to the same parts.
#include <tessera/LuSVNAuthenticationProvider.h>

#include <cctype>

#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

namespace {

bool trimmedASCII(const std::string& text)
{
    const auto space = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    return text.empty() || (!space(text.front()) && !space(text.back()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string realm = tessera_fuzz::textOf(data, size);
    std::optional<std::string> name = "stale", url = "stale";
    const bool parsed = LuSVNParseRealm(realm, name, url);
    const std::size_t close = realm.find('>');
    require(parsed == (realm.starts_with('<') && close != std::string::npos && close + 1 < realm.size()),
            "parses exactly the realms of the form <...>...");
    require(parsed == url.has_value() && parsed == name.has_value(), "both parts exactly when parsed");
    if (!parsed)
        return 0;
    require(url->find('>') == std::string::npos, "the first > ends the URL");
    require(trimmedASCII(*url) && trimmedASCII(*name), "both parts are trimmed");
    std::optional<std::string> nameAgain, urlAgain;
    require(LuSVNParseRealm("<" + *url + "> " + *name, nameAgain, urlAgain) && nameAgain == name && urlAgain == url,
            "the rebuilt realm parses to the same parts");
    return 0;
}
