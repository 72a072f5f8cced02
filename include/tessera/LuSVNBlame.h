// Which revision, author and date last changed each line of a file, as runs
// of lines (LuSVNBlameSection) in line order.
//
//   auto blame = LuSVNBlame::blameForPath(file, LuSVNRevision::HEAD(), LuSVNDiffOptions(), context);
//
// Local edits laid over a blame: compare the blamed text with the working
// file and merge the diff, attributing new and changed lines to a revision of
// the caller's choice:
//
//   auto edits = LuSVNDiff::compareOriginalFileAtPath(pristine, working, context);
//   blame->mergeDiff(*edits, "me", -1, std::nullopt);
//
// Archived under "blameSections".
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tessera/LuSVNBlameSection.h>
#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNDiffOptions.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNPath.h>
#include <tessera/LuSVNRevision.h>

class LuSVNContext;
class LuSVNDiff;
struct apr_pool_t;

/// The blame of a file: its lines in runs by author and revision.
class TESSERA_EXPORT LuSVNBlame : public LuSVNCoding {
public:
    /// One run of lines.
    using Section = std::shared_ptr<LuSVNBlameSection>;
    /// The runs in line order.
    using Sections = std::vector<Section>;
    /// A commit date.
    using Date = LuSVNBlameSection::Date;
    /// A revision of the walk.
    using Revision = std::shared_ptr<const LuSVNRevision>;
    /// The context an operation runs in.
    using Context = std::shared_ptr<LuSVNContext>;

    /// An empty blame, to load or to be given sections.
    LuSVNBlame() = default;

    /// The blame of the path (working copy or URL) at the peg revision, over
    /// the revisions from start to end; with includeMergedRevisions each
    /// section also tells where its lines came from through merges
    /// (LuSVNBlameSection::mergedOrigin). Raises "Invalid parameter not
    /// satisfying: path != nil" (and for the revisions and "context != nil")
    /// and Subversion's errors.
    static std::shared_ptr<LuSVNBlame> blameForPath(const LuSVNPath::Path& path, const Revision& pegRevision,
                                                    const Revision& startRevision, const Revision& endRevision,
                                                    const LuSVNDiffOptions& options, const Context& context,
                                                    bool includeMergedRevisions = false);
    /// The same from revision 1 to the revision, without peg revision.
    static std::shared_ptr<LuSVNBlame> blameForPath(const LuSVNPath::Path& path, const Revision& revision,
                                                    const LuSVNDiffOptions& options, const Context& context);

    /// Replaces the sections with the walk's answer (MIME types ignored;
    /// ignoreMimeType is accepted and not used). includeMergedRevisions
    /// follows merges (svn_client_blame5), which backends before Subversion
    /// 1.7 cannot: they raise LuSVNInvalidArgumentException "Blame of merged
    /// revisions requires 1.7 or newer".
    void load(const LuSVNPath::Path& path, const Revision& pegRevision, const Revision& startRevision,
              const Revision& endRevision, const LuSVNDiffOptions& options, bool ignoreMimeType,
              bool includeMergedRevisions, const Context& context);

    /// The sections in line order.
    const Sections& blameSections() const { return blameSections_; }

    /// The hash of the author (0 for none) XOR the revision: lines of equal
    /// hash join one section.
    static std::uint64_t hashForAuthor(const std::optional<std::string>& author, std::int64_t revision);
    /// One line of the walk, in order from line 0: joins the open section or
    /// starts a new one. Raises LuSVNInvalidArgumentException "Line number not
    /// sequential" for a line out of order. The date is Subversion's
    /// ISO 8601 text, read in the pool; both may be null.
    void receiveClientBlame(std::int64_t lineNumber, std::int64_t revision, const char* author, const char* date,
                            apr_pool_t* pool);
    /// The same for a walk that follows merges: a line joins the open section
    /// only if its origin is the section's too.
    void receiveClientBlame(std::int64_t lineNumber, std::int64_t revision, const char* author, const char* date,
                            std::optional<LuSVNBlameOrigin> mergedOrigin, apr_pool_t* pool);

    // --- Local edits -----------------------------------------------------------

    /// Replaces the sections with a copy of the list.
    void setBlameSections(const Sections& sections);
    /// Rewrites the sections to describe the modified side of the diff,
    /// whose original side is the blamed text: common lines keep their
    /// attribution at their new places, differing lines are attributed to the
    /// given author, revision and date; sections are split where the diff
    /// splits them and adjacent sections of one attribution are joined.
    void mergeDiff(const LuSVNDiff& diff, const std::optional<std::string>& modifiedAuthor,
                   std::int64_t modifiedRevision, const std::optional<Date>& modifiedDate);

    /// Decodes a blame written by encodeWithCoder; a coder that is not keyed
    /// is refused with "Keyed unarchiver required".
    static std::shared_ptr<LuSVNBlame> initWithCoder(LuSVNCoder& coder);
    /// "LuSVNBlame".
    std::string archiveClassName() const override;
    /// Refuses a coder that is not keyed with "Keyed archiver required".
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    void closeOpenSection();

    Sections blameSections_;
    std::uint64_t currentAuthorRevisionHash_ = 0;
    std::uint64_t currentLocation_ = 0;
};
