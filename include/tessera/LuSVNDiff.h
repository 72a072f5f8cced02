// Comparisons of files with Subversion's file differ.
//
//   auto diff = LuSVNDiff::compareOriginalFileAtPath(before, after, context);
//   for (const auto& section : diff->sections())   // in file order, common
//       draw(*section);                            // and differing runs alternate
//
// Unified diff text goes to a stream or a file, for two files or for two
// working-copy or repository locations at revisions. Files that begin with a
// UTF-16 byte-order mark are compared through UTF-8 temporary copies (the
// differ works on bytes); the copies are removed whatever happens.
//
// A summary lists the changed items between two locations, each handed to
// the receiver as Subversion reports it:
//
//   LuSVNDiff::summarizeOriginalAtPath(url, r1, url, r2, LuSVNDiffOptions(),
//       [](const LuSVNDiffSummary& item) { list(item); }, context);
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tessera/LuSVNDiffOptions.h>
#include <tessera/LuSVNDiffSection.h>
#include <tessera/LuSVNDiffSummary.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNPath.h>
#include <tessera/LuSVNRevision.h>

class LuSVNContext;
class LuSVNOutputStream;
struct apr_pool_t;
struct svn_diff_file_options_t;

/// The text encodings the comparison tells apart.
enum class LuSVNTextEncoding { UTF8, UTF16 };

/// The sections of a comparison of two files, and the comparisons.
class TESSERA_EXPORT LuSVNDiff {
public:
    /// One run of lines.
    using Section = std::shared_ptr<LuSVNDiffSection>;
    /// The runs in file order.
    using Sections = std::vector<Section>;
    /// A file.
    using LocalPath = std::shared_ptr<const LuSVNLocalPath>;
    /// A working-copy path or URL.
    using Path = LuSVNPath::Path;
    /// A revision of a location.
    using Revision = std::shared_ptr<const LuSVNRevision>;
    /// The context an operation runs in.
    using Context = std::shared_ptr<LuSVNContext>;
    /// Hears of each summarised item as it arrives; what it throws stops the
    /// summary and reaches the caller.
    using SummaryReceiver = std::function<void(const LuSVNDiffSummary&)>;

    /// An empty diff.
    static std::shared_ptr<LuSVNDiff> diff();

    /// The sections in file order.
    const Sections& sections() const { return sections_; }
    /// Replaces the sections with a copy of the list.
    void setSections(const Sections& sections);
    /// Raises "Invalid parameter not satisfying: section != nil" or "index >=
    /// 0 && index <= [sections count]".
    void insertObjectInSectionsAtIndex(const Section& section, std::size_t index);
    /// Raises "Invalid parameter not satisfying: index >= 0 && index <
    /// [sections count]".
    void removeObjectFromSectionsAtIndex(std::size_t index);
    /// Appends the section.
    void addSection(const Section& section) { insertObjectInSectionsAtIndex(section, sections_.size()); }
    /// Removes this very section; one not in the list fails the index assertion.
    void removeSection(const Section& section);
    /// Removes every section.
    void removeAllSections();

    /// Adds the offsets to the original and modified locations of the
    /// sections first to first + count - 1; lengths and latest ranges stay.
    void adjustRangesByOffset(std::int32_t originalOffset, std::int32_t modifiedOffset, std::size_t first,
                              std::size_t count);
    /// Merges every run of adjacent sections of the type into its first
    /// section, whose original and modified ranges then cover the run.
    void coaleseAdjacentSectionsOfType(LuSVNDiffSectionType type);

    /// "{ <LuSVNDiff: 0x...>, sections = (...) }".
    std::string description() const;

    /// LuSVNDiffOptions::convertOptions.
    static svn_diff_file_options_t* convertOptions(const LuSVNDiffOptions& options, apr_pool_t* pool);

    // --- Services ---------------------------------------------------------------

    /// UTF16 when the file has 4 bytes or more and begins with FF FE or FE
    /// FF, else UTF8. Raises LuSVNNoSuchEntryException "File not found at
    /// "<path>"" when it cannot be read.
    static LuSVNTextEncoding encodingOfFile(const LocalPath& path);
    /// A new temporary UTF-8 copy (in TMPDIR, else the system's temporary
    /// directory) of a UTF-16 file whose byte-order mark gives the byte
    /// order; the caller removes it.
    /// Raises LuSVNNoSuchEntryException "Failed to convert "<path>" from
    /// UTF-16 to UTF-8", "Failed to generate a temporary file name" or
    /// "Failed to write UTF-16 file to "<temporary path>"".
    static LocalPath convertFromUTF16ToUTF8(const LocalPath& path);

    /// The sections of the two files compared line by line with the default
    /// options.
    static std::shared_ptr<LuSVNDiff> compareOriginalFileAtPath(const LocalPath& originalFilePath,
                                                                const LocalPath& modifiedFilePath,
                                                                const Context& context);
    /// The same with options. Raises "Invalid parameter not satisfying:
    /// originalFilePath != nil" (and "modifiedFilePath != nil", "context !=
    /// nil").
    static std::shared_ptr<LuSVNDiff> compareOriginalFileAtPath(const LocalPath& originalFilePath,
                                                                const LocalPath& modifiedFilePath,
                                                                const LuSVNDiffOptions& options,
                                                                const Context& context);
    /// Writes the unified diff of the two files to the stream. The headers
    /// default to each path with its modification time; context lines are
    /// read from the files as given. Raises "Invalid parameter not
    /// satisfying: outputStream != nil" and the assertions above.
    static void compareOriginalFileAtPath(const LocalPath& originalFilePath,
                                          const std::optional<std::string>& originalHeader,
                                          const LocalPath& modifiedFilePath,
                                          const std::optional<std::string>& modifiedHeader,
                                          const std::shared_ptr<LuSVNOutputStream>& outputStream,
                                          const LuSVNDiffOptions& options, const Context& context);
    /// The same written into the file at outputPath (made or truncated).
    static void compareOriginalFileAtPath(const LocalPath& originalFilePath,
                                          const std::optional<std::string>& originalHeader,
                                          const LocalPath& modifiedFilePath,
                                          const std::optional<std::string>& modifiedHeader,
                                          const LocalPath& outputPath, const LuSVNDiffOptions& options,
                                          const Context& context);
    /// Writes the unified diff between two working-copy or repository
    /// locations at revisions into the file at outputPath, as svn diff
    /// prints it; paths in the headers are relative to relativeToPath when
    /// given (a backend before 1.5 refuses it: "relativeToPath requires 1.5
    /// or greater"). Raises "Invalid parameter not satisfying: originalPath
    /// != nil" (and "originalRevision != nil", "modifiedPath != nil",
    /// "modifiedRevision != nil", "path != nil", "context != nil"),
    /// LuSVNException "Failed to create diff output file", and Subversion's
    /// errors. With useGitDiffFormat, propertiesOnly or showCopiesAsAdds the
    /// backend must be 1.8 or newer, else LuSVNException "Git diffs,
    /// properties-only diffs and copies shown as additions require 1.8 or
    /// greater".
    static void compareOriginalAtPath(const Path& originalPath, const Revision& originalRevision,
                                      const Path& modifiedPath, const Revision& modifiedRevision,
                                      const Path& relativeToPath, const LocalPath& outputPath,
                                      const LuSVNDiffOptions& options, const Context& context);
    /// The same written to the stream as Subversion produces it, so a large
    /// tree's diff is never held whole (before 1.8's options are used, the
    /// stream is written from a thread of the library's own while the call
    /// runs; the call returns once all of it was written). Raises "Invalid parameter not satisfying:
    /// outputStream != nil", the stream's failure "Unable to write data to
    /// output stream", and the failures above.
    static void compareOriginalAtPath(const Path& originalPath, const Revision& originalRevision,
                                      const Path& modifiedPath, const Revision& modifiedRevision,
                                      const Path& relativeToPath,
                                      const std::shared_ptr<LuSVNOutputStream>& outputStream,
                                      const LuSVNDiffOptions& options, const Context& context);
    /// The same for one location as it was at pegRevision, between
    /// startRevision and endRevision (svn diff -r N:M TARGET@PEG), written by
    /// Subversion 1.8's diff on the calling thread; older backends raise
    /// LuSVNException "The peg form of the diff requires 1.8 or greater".
    /// Raises "Invalid parameter not satisfying: path != nil" (and
    /// "pegRevision != nil", "startRevision != nil", "endRevision != nil",
    /// "outputStream != nil", "context != nil") and Subversion's errors.
    static void compareAtPath(const Path& path, const Revision& pegRevision, const Revision& startRevision,
                              const Revision& endRevision, const Path& relativeToPath,
                              const std::shared_ptr<LuSVNOutputStream>& outputStream,
                              const LuSVNDiffOptions& options, const Context& context);
    /// The file form without relativeToPath.
    static void compareOriginalAtPath(const Path& originalPath, const Revision& originalRevision,
                                      const Path& modifiedPath, const Revision& modifiedRevision,
                                      const LocalPath& outputPath, const LuSVNDiffOptions& options,
                                      const Context& context);

    /// Hands the receiver each item that differs between the two locations
    /// (svn diff --summarize OLD NEW), with depth and ancestry from the
    /// options. Needs a backend of 1.5 or newer; older ones raise
    /// LuSVNException "Diff summaries require 1.5 or greater". Raises
    /// "Invalid parameter not satisfying: originalPath != nil" (and
    /// "originalRevision != nil", "modifiedPath != nil", "modifiedRevision !=
    /// nil", "receiver != nil", "context != nil") and Subversion's errors.
    static void summarizeOriginalAtPath(const Path& originalPath, const Revision& originalRevision,
                                        const Path& modifiedPath, const Revision& modifiedRevision,
                                        const LuSVNDiffOptions& options, const SummaryReceiver& receiver,
                                        const Context& context);
    /// The same for one location as it was at pegRevision, between
    /// startRevision and endRevision (svn diff --summarize -r N:M
    /// TARGET@PEG); "pegRevision != nil", "startRevision != nil" and
    /// "endRevision != nil" in place of the two locations' assertions.
    static void summarizePath(const Path& path, const Revision& pegRevision, const Revision& startRevision,
                              const Revision& endRevision, const LuSVNDiffOptions& options,
                              const SummaryReceiver& receiver, const Context& context);

private:
    Sections sections_;
};
