#include <tessera/LuSVNBlame.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <exception>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNLogItemMaker.h"
#include "LuSVNTrace.h"

static const LuSVNArchivableClassRegistrar<LuSVNBlame> registrar("LuSVNBlame");

namespace {

struct BlameBaton {
    LuSVNBlame& blame;
    std::exception_ptr pending;
};

svn_error_t* svn_client_blame_receiver(void* baton, apr_int64_t lineNumber, svn_revnum_t revision,
                                       const char* author, const char* date, const char*, apr_pool_t* pool)
{
    auto* blameBaton = static_cast<BlameBaton*>(baton);
    return LuSVNGuardCallback(blameBaton->pending, [&]() -> svn_error_t* {
        blameBaton->blame.receiveClientBlame(lineNumber, revision, author, date, pool);
        return nullptr;
    });
}

std::optional<LuSVNBlame::Date> optionalDate(const char* date, apr_pool_t* pool)
{
    return date ? LuSVNDateConversion::dateWithISO8601CString(date, pool) : std::nullopt;
}

// The form of 1.7: revision properties and the origin of merged lines.
svn_error_t* svn_client_blame_receiver3(void* baton, svn_revnum_t, svn_revnum_t, apr_int64_t lineNumber,
                                        svn_revnum_t revision, apr_hash_t* properties, svn_revnum_t mergedRevision,
                                        apr_hash_t* mergedProperties, const char* mergedPath, const char*,
                                        svn_boolean_t, apr_pool_t* pool)
{
    using tessera_private::LuSVNLogRevisionProperty;
    auto* blameBaton = static_cast<BlameBaton*>(baton);
    return LuSVNGuardCallback(blameBaton->pending, [&]() -> svn_error_t* {
        std::optional<LuSVNBlameOrigin> origin;
        if (mergedRevision != SVN_INVALID_REVNUM) {
            const auto author = LuSVNLogRevisionProperty(mergedProperties, "svn:author");
            origin = LuSVNBlameOrigin{mergedRevision,
                                      author ? std::optional<std::string>(author) : std::nullopt,
                                      optionalDate(LuSVNLogRevisionProperty(mergedProperties, "svn:date"), pool),
                                      mergedPath ? mergedPath : ""};
        }
        blameBaton->blame.receiveClientBlame(lineNumber, revision, LuSVNLogRevisionProperty(properties, "svn:author"),
                                             LuSVNLogRevisionProperty(properties, "svn:date"), std::move(origin),
                                             pool);
        return nullptr;
    });
}

}  // namespace

std::shared_ptr<LuSVNBlame> LuSVNBlame::blameForPath(const LuSVNPath::Path& path, const Revision& pegRevision,
                                                     const Revision& startRevision, const Revision& endRevision,
                                                     const LuSVNDiffOptions& options, const Context& context,
                                                     bool includeMergedRevisions)
{
    auto blame = std::make_shared<LuSVNBlame>();
    blame->load(path, pegRevision, startRevision, endRevision, options, true, includeMergedRevisions, context);
    return blame;
}

std::shared_ptr<LuSVNBlame> LuSVNBlame::blameForPath(const LuSVNPath::Path& path, const Revision& revision,
                                                     const LuSVNDiffOptions& options, const Context& context)
{
    // From revision 1, not 0: revision 0 holds no file.
    return blameForPath(path, LuSVNRevision::UNSPECIFIED(), LuSVNRevision::revisionWithNumber(1), revision, options,
                        context);
}

void LuSVNBlame::load(const LuSVNPath::Path& path, const Revision& pegRevision, const Revision& startRevision,
                      const Revision& endRevision, const LuSVNDiffOptions& options, bool,
                      bool includeMergedRevisions, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(pegRevision != nullptr, "pegRevision != nil");
    LUSVN_PARAMETER_ASSERT(startRevision != nullptr, "startRevision != nil");
    LUSVN_PARAMETER_ASSERT(endRevision != nullptr, "endRevision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNBlame", "load:pegRevision:startRevision:endRevision:options:ignoreMimeType:"
                "includeMergedRevisions:context", {"path", path->string()},
                {"pegRevision", pegRevision->description()}, {"startRevision", startRevision->description()},
                {"endRevision", endRevision->description()}, {"context", context->description()});
    blameSections_.clear();
    currentAuthorRevisionHash_ = 0;
    currentLocation_ = 0;
    LuSVNBackendFrame frame(context->bundle());
    const svn_opt_revision_t peg = pegRevision->SVNRevision();
    const svn_opt_revision_t start = startRevision->SVNRevision();
    const svn_opt_revision_t end = endRevision->SVNRevision();
    if (includeMergedRevisions && !tessera_private::LuSVNCurrentHasExtensionEntryPoint(1))
        throw LuSVNInvalidArgumentException("Blame of merged revisions requires 1.7 or newer");
    BlameBaton baton{*this, nullptr};
    const char* target = path->SVNRepresentationInPool(frame.pool());
    const auto* diffOptions = LuSVNDiffOptions::convertOptions(options, frame.pool());
    svn_error_t* error =
        includeMergedRevisions
            ? LuSVNExtensionEntry<1>()(target, &peg, &start, &end, diffOptions, true, true,
                                       svn_client_blame_receiver3, &baton, context->ctx(), frame.pool())
            : LuSVNEntry<122>()(target, &peg, &start, &end, diffOptions, true, svn_client_blame_receiver, &baton,
                                context->ctx(), frame.pool());
    if (baton.pending)
        LuSVNRethrowPending(baton.pending, error);
    context->throwIfError(error);
    closeOpenSection();
}

std::uint64_t LuSVNBlame::hashForAuthor(const std::optional<std::string>& author, std::int64_t revision)
{
    return (author ? std::hash<std::string>{}(*author) : 0) ^ static_cast<std::uint64_t>(revision);
}

void LuSVNBlame::closeOpenSection()
{
    if (blameSections_.empty())
        return;
    auto& last = *blameSections_.back();
    last.setLines({last.lines().location, currentLocation_ - last.lines().location});
}

void LuSVNBlame::receiveClientBlame(std::int64_t lineNumber, std::int64_t revision, const char* author,
                                    const char* date, apr_pool_t* pool)
{
    receiveClientBlame(lineNumber, revision, author, date, std::nullopt, pool);
}

void LuSVNBlame::receiveClientBlame(std::int64_t lineNumber, std::int64_t revision, const char* author,
                                    const char* date, std::optional<LuSVNBlameOrigin> mergedOrigin, apr_pool_t* pool)
{
    if (lineNumber < 0 || static_cast<std::uint64_t>(lineNumber) != currentLocation_)
        throw LuSVNInvalidArgumentException("Line number not sequential");
    const auto authorText = author ? std::optional<std::string>(author) : std::nullopt;
    const std::uint64_t hash = hashForAuthor(authorText, revision);
    // A hash of 0 (no author, revision 0) never counts as an open section.
    const bool open = currentAuthorRevisionHash_ != 0;
    if (!open || hash != currentAuthorRevisionHash_ || blameSections_.back()->mergedOrigin() != mergedOrigin) {
        if (open)
            closeOpenSection();
        blameSections_.push_back(LuSVNBlameSection::blameSectionWithAuthor(
            authorText, optionalDate(date, pool), revision, {currentLocation_, 0}, std::move(mergedOrigin)));
        currentAuthorRevisionHash_ = hash;
    }
    ++currentLocation_;
}

std::shared_ptr<LuSVNBlame> LuSVNBlame::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    auto blame = std::make_shared<LuSVNBlame>();
    if (auto sections = coder.decodeArrayOfObjectsOfClassForKey<LuSVNBlameSection>("blameSections"))
        blame->blameSections_ = std::move(*sections);
    return blame;
}

std::string LuSVNBlame::archiveClassName() const
{
    return "LuSVNBlame";
}

void LuSVNBlame::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeObjectArray(blameSections_, "blameSections");
}
