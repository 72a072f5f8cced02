#include <tessera/LuSVNCredentials.h>

LuSVNCredentials::~LuSVNCredentials() = default;

bool LuSVNCredentials::isEqual(const std::shared_ptr<const LuSVNCredentials>& other) const
{
    return other && credentialsClass().isInstance(*other) && isEqualToCredentials(other);
}

std::string LuSVNCredentials::description() const
{
    return kind();
}

bool LuSVNCredentials::validateWithParameters(const LuSVNAuthParameters&) const
{
    return true;
}

std::string LuSVNCredentials::maskedSecret(std::string_view secret)
{
    std::string mask;
    for (char byte : secret)
        if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80)
            mask += '*';
    return mask;
}
