#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNRepositoryOptions.h>

#include <tuple>

#include "LuSVNAssert.h"
#include "LuSVNEntryPoints+Typed.h"

namespace {

// Subversion's code for both refusals of svnadmin create --compatible-version.
constexpr int unsupportedFeatureStatus = 200007;

auto numbersOf(const LuSVNVersion& version)
{
    return std::tuple(version.major(), version.minor(), version.patch());
}

}  // namespace

void LuSVNRepositoryOptions::addLuSVNOptionsTo(apr_hash_t* hash, apr_pool_t* pool) const
{
    LUSVN_PARAMETER_ASSERT(hash != nullptr, "hash != NULL");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    // What svnadmin refuses, refused in its words.
    if (numbersOf(compatibility_) < std::tuple(1, 0, 0))
        LuSVNException::exceptionWithReason("Cannot create pre-1.0-compatible repositories", unsupportedFeatureStatus)
            ->raise();
    const std::string running = LuSVNBundleCurrent()->description();
    if (numbersOf(compatibility_) > numbersOf(LuSVNVersion::versionWithString(running)))
        LuSVNException::exceptionWithReason(
            "Cannot guarantee compatibility beyond the current running version (" + running + ")",
            unsupportedFeatureStatus)
            ->raise();

    // File systems before 1.9 read only the "pre-" keys, later ones the
    // version, which alone tells 1.8 and 1.9 from newer releases. Like
    // svnadmin, every key that applies is set.
    static const struct {
        std::int32_t minor;
        const char* key;
    } olderReleases[] = {
        {4, "pre-1.4-compatible"},
        {5, "pre-1.5-compatible"},
        {6, "pre-1.6-compatible"},
        {8, "pre-1.8-compatible"},
    };
    for (const auto& release : olderReleases)
        if (std::tuple(compatibility_.major(), compatibility_.minor()) < std::tuple(1, release.minor))
            LuSVNEntry<18>()(hash, release.key, APR_HASH_KEY_STRING, "1");
    // Subversion ignores the patch level and the tag.
    const std::string version = std::to_string(compatibility_.major()) + "." + std::to_string(compatibility_.minor());
    LuSVNEntry<18>()(hash, "compatible-version", APR_HASH_KEY_STRING, LuSVNEntry<4>()(pool, version.c_str()));
}

std::string LuSVNRepositoryOptions::description() const
{
    return "{ " + LuSVNOptions::description() + " compatibility: " + compatibility_.description() + " }";
}
