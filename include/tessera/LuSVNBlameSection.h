// A run of consecutive lines of a blamed file last changed by one author in
// one revision. Lines count from 0. Archived under "author", "date",
// "revision", "linesLocation" and "linesLength"; a blame that follows merges
// adds the origin under "mergedRevision", "mergedAuthor", "mergedDate" and
// "mergedPath".
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNDiffSection.h>
#include <tessera/LuSVNExport.h>

/// Where the lines of a blame that follows merges were last changed: the
/// revision of a merged branch (or, for lines not merged, the section's own
/// revision), its author and date, and the path the change was made at.
struct TESSERA_EXPORT LuSVNBlameOrigin {
    /// The revision of the change.
    std::int64_t revision = -1;
    /// Its author.
    std::optional<std::string> author;
    /// Its date.
    std::optional<std::chrono::system_clock::time_point> date;
    /// The repository path of the changed file ("/branches/b/f").
    std::string path;

    /// Whether both name the same revision and path.
    bool operator==(const LuSVNBlameOrigin& other) const
    {
        return revision == other.revision && path == other.path;
    }
};

/// A run of lines last changed by one author in one revision.
class TESSERA_EXPORT LuSVNBlameSection : public LuSVNCoding {
public:
    /// A commit date.
    using Date = std::chrono::system_clock::time_point;

    /// A section with no lines yet (location LuSVNNotFound, length 0).
    static std::shared_ptr<LuSVNBlameSection> blameSectionWithAuthor(std::optional<std::string> author,
                                                                     std::optional<Date> date, std::int64_t revision);
    /// A section of the lines.
    static std::shared_ptr<LuSVNBlameSection> blameSectionWithAuthor(std::optional<std::string> author,
                                                                     std::optional<Date> date, std::int64_t revision,
                                                                     LuSVNLineRange lines);
    /// A section of the lines of a blame that follows merges.
    static std::shared_ptr<LuSVNBlameSection> blameSectionWithAuthor(std::optional<std::string> author,
                                                                     std::optional<Date> date, std::int64_t revision,
                                                                     LuSVNLineRange lines,
                                                                     std::optional<LuSVNBlameOrigin> mergedOrigin);
    /// A copy of the section.
    static std::shared_ptr<LuSVNBlameSection> blameSectionWithBlameSection(const LuSVNBlameSection& section);
    /// A copy of the section's attribution for other lines.
    static std::shared_ptr<LuSVNBlameSection> blameSectionWithBlameSection(const LuSVNBlameSection& section,
                                                                           LuSVNLineRange lines);

    /// Who last changed the lines; none when the revision has no author.
    const std::optional<std::string>& author() const { return author_; }
    /// When.
    const std::optional<Date>& date() const { return date_; }
    /// In which revision; -1 for lines not committed.
    std::int64_t revision() const { return revision_; }
    /// Where the lines came from, when the blame followed merges; none
    /// otherwise.
    const std::optional<LuSVNBlameOrigin>& mergedOrigin() const { return mergedOrigin_; }
    /// Whether the lines came in by a merge of an older revision: the
    /// origin's revision precedes the section's.
    bool isMerged() const { return mergedOrigin_ && mergedOrigin_->revision < revision_; }
    /// The lines.
    const LuSVNLineRange& lines() const { return lines_; }
    /// See lines(); the only field that changes after creation.
    void setLines(LuSVNLineRange lines) { lines_ = lines; }

    /// "Author:ann Date:<ISO 8601 date> Revision:5 Lines:0,3", "(null)" for
    /// no author or date.
    std::string description() const;

    /// Decodes a section written by encodeWithCoder; a coder that is not
    /// keyed is refused with "Keyed unarchiver required".
    static std::shared_ptr<LuSVNBlameSection> initWithCoder(LuSVNCoder& coder);
    /// "LuSVNBlameSection".
    std::string archiveClassName() const override;
    /// Refuses a coder that is not keyed with "Keyed archiver required".
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    LuSVNBlameSection(std::optional<std::string> author, std::optional<Date> date, std::int64_t revision,
                      LuSVNLineRange lines, std::optional<LuSVNBlameOrigin> mergedOrigin);

    std::optional<std::string> author_;
    std::optional<Date> date_;
    std::int64_t revision_;
    LuSVNLineRange lines_;
    std::optional<LuSVNBlameOrigin> mergedOrigin_;
};
