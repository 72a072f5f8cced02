#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNExternalDefinition.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNStrings.h>

#include <functional>
#include <optional>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNObjectDescription.h"

static const LuSVNArchivableClassRegistrar<LuSVNExternalDefinition> registrar("LuSVNExternalDefinition");

namespace {

// Subversion reads the APR time 0 as no date, so a definition at exactly
// 1970-01-01T00:00:00Z names a revision the library cannot hold.
std::shared_ptr<const LuSVNRevision> revisionOfDefinition(const svn_opt_revision_t& revision)
{
    if (revision.kind == svn_opt_revision_date && revision.value.date == 0)
        throw LuSVNInvalidArgumentException("Time out of range: 0");
    return LuSVNRevision::revisionFromSVNRevision(&revision);
}

std::size_t optionalHash(const std::optional<std::string>& text)
{
    return text ? std::hash<std::string>()(*text) : 0;
}

}  // namespace

LuSVNExternalDefinition::LuSVNExternalDefinition()
    : sourceRevision_(LuSVNMutableRevisionSpec::revisionWithRevision(LuSVNRevision::HEAD(), LuSVNRevision::HEAD()))
{
}

LuSVNExternalDefinition::LuSVNExternalDefinition(const LuSVNExternalDefinition& other)
    : LuSVNCoding(other),
      sourceDirectory_(other.sourceDirectory_),
      sourceRevision_(other.sourceRevision_->mutableCopy()),
      targetDirectory_(other.targetDirectory_)
{
}

LuSVNExternalDefinition& LuSVNExternalDefinition::operator=(const LuSVNExternalDefinition& other)
{
    sourceDirectory_ = other.sourceDirectory_;
    sourceRevision_ = other.sourceRevision_->mutableCopy();
    targetDirectory_ = other.targetDirectory_;
    return *this;
}

std::vector<LuSVNExternalDefinition> LuSVNExternalDefinition::externalDefinitionListValue(
    std::string_view description, apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    // Subversion keeps its own properties in UTF-8, and so do definitions.
    if (!LuSVNIsValidUTF8(description))
        throw LuSVNInvalidArgumentException("Externals description is not valid UTF-8");
    const std::string text(description);
    apr_array_header_t* items = nullptr;
    // Releases before 1.5 have no parser of today's syntax; parsing is the
    // same in every release, so the newest backend parses for them.
    std::optional<LuSVNBackendFrame> newest;
    if (!tessera_private::LuSVNCurrentHasEntryPoint(102)) {
        newest.emplace(LuSVNBundleLoader::sharedInstance()->newestBundle());
        pool = newest->pool();
    }
    LuSVNThrowIfError(LuSVNEntry<102>()(&items, "", text.c_str(), false, pool));
    std::vector<LuSVNExternalDefinition> definitions;
    for (int i = 0; items && i < items->nelts; ++i) {
        const auto* item = reinterpret_cast<svn_wc_external_item2_t* const*>(items->elts)[i];
        LuSVNExternalDefinition definition;
        definition.sourceDirectory_ = item->url;
        definition.targetDirectory_ = item->target_dir;
        definition.sourceRevision_ = LuSVNMutableRevisionSpec::revisionWithRevision(
            revisionOfDefinition(item->revision), revisionOfDefinition(item->peg_revision));
        definitions.push_back(std::move(definition));
    }
    return definitions;
}

std::vector<LuSVNExternalDefinition> LuSVNExternalDefinition::externalDefinitionListValue(
    std::string_view description)
{
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    return externalDefinitionListValue(description, frame.pool());
}

LuSVNExternalDefinition LuSVNExternalDefinition::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    LuSVNExternalDefinition definition;
    definition.sourceDirectory_ = coder.decodeStringForKey("sourceDirectory");
    if (auto revision = coder.decodeObjectOfClassForKey<LuSVNMutableRevisionSpec>("sourceRevision"))
        definition.sourceRevision_ = std::move(revision);
    definition.targetDirectory_ = coder.decodeStringForKey("targetDirectory");
    return definition;
}

void LuSVNExternalDefinition::setSourceRevision(std::shared_ptr<LuSVNMutableRevisionSpec> revision)
{
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    sourceRevision_ = std::move(revision);
}

bool LuSVNExternalDefinition::isEqualToDefinition(const LuSVNExternalDefinition& other) const
{
    return sourceDirectory_ == other.sourceDirectory_ && targetDirectory_ == other.targetDirectory_ &&
           sourceRevision_->isEqual(other.sourceRevision_);
}

std::size_t LuSVNExternalDefinition::hash() const
{
    return optionalHash(sourceDirectory_) ^ optionalHash(targetDirectory_) ^ sourceRevision_->hash();
}

std::string LuSVNExternalDefinition::description() const
{
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNExternalDefinition", this) +
           " sourceDirectory: " + sourceDirectory_.value_or("(null)") +
           ", sourceRevision: " + sourceRevision_->description() +
           ", targetDirectory: " + targetDirectory_.value_or("(null)") + " }";
}

std::string LuSVNExternalDefinition::archiveClassName() const
{
    return "LuSVNExternalDefinition";
}

void LuSVNExternalDefinition::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeString(sourceDirectory_, "sourceDirectory");
    coder.encodeObject(sourceRevision_, "sourceRevision");
    coder.encodeString(targetDirectory_, "targetDirectory");
}
