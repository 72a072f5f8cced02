#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNPath.h>
#include <tessera/LuSVNURL.h>

LuSVNPath::Path LuSVNPath::pathWithString(const std::string& text)
{
    if (text.find("://") != std::string::npos)
        return LuSVNURL::URLWithString(text);
    return LuSVNLocalPath::pathWithString(text);
}

LuSVNPath::Path LuSVNPath::pathWithDenormalizedString(const std::string& text)
{
    if (text.find("://") != std::string::npos)
        return LuSVNURL::URLEncodeString(text);
    return LuSVNLocalPath::pathWithString(text);
}
