// One line of an "svn:externals" property: where an external comes from, at
// which revision, and the directory it goes into.
//
//   auto definitions = LuSVNExternalDefinition::externalDefinitionListValue(
//       "^/lib/tools tools\n-r 12 http://host/repo/doc@10 doc");
//   definitions[0].sourceDirectory();              // "^/lib/tools"
//   definitions[0].sourceRevision()->description(); // "HEAD@HEAD"
//   definitions[1].targetDirectory();              // "doc"
//
// A value: copying copies the revision spec too. The source is kept as the
// definition writes it (absolute or relative URL, see LuSVNURL::typeOfURL);
// the target is a relative path in Subversion's internal form. Archived with
// the keyed coders under "sourceDirectory", "sourceRevision" and
// "targetDirectory".
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNMutableRevisionSpec.h>

struct apr_pool_t;

/// The two line syntaxes of "svn:externals".
enum class LuSVNExternalFormat {
    /// "DIR URL", "DIR -r N URL": releases before 1.5; the URL is absolute
    /// and the peg revision is the revision.
    Old,
    /// "URL DIR", "-r N URL@PEG DIR": 1.5 and later, relative URLs allowed.
    New,
};

class TESSERA_EXPORT LuSVNExternalDefinition final : public LuSVNCoding {
public:
    /// No source or target; the revision HEAD at peg HEAD.
    LuSVNExternalDefinition();
    LuSVNExternalDefinition(const LuSVNExternalDefinition& other);
    LuSVNExternalDefinition& operator=(const LuSVNExternalDefinition& other);

    /// The definitions of an "svn:externals" value, in order, parsed by the
    /// backend on top of the calling thread's stack in the pool
    /// (svn_wc_parse_externals_description3, entry point 102; backends 1.5
    /// and later, and for older ones the loader's newest backend). Every syntax Subversion accepts: "DIR URL", "DIR -r N URL",
    /// "URL DIR", "-r N URL@PEG DIR"; comment and empty lines are skipped. A
    /// missing revision is the peg revision, a missing peg revision HEAD.
    /// Raises LuSVNInvalidExternalsDescriptionException (Subversion's
    /// message) for a line Subversion refuses, LuSVNInvalidArgumentException
    /// "Externals description is not valid UTF-8" for such text, and
    /// LuSVNInvalidArgumentException for a revision the library cannot hold
    /// ("Revision number out of range: <number>" beyond 32 bits, "Time out of
    /// range: 0" for the date 1970-01-01T00:00:00Z).
    static std::vector<LuSVNExternalDefinition> externalDefinitionListValue(std::string_view description,
                                                                            apr_pool_t* pool);
    /// The same with the loader's newest backend and a pool of its own.
    static std::vector<LuSVNExternalDefinition> externalDefinitionListValue(std::string_view description);

    /// The definitions as a property value: each printed with stringValue,
    /// one a line, each line ending in "\n".
    static std::string stringFromExternalDefinitionList(const std::vector<LuSVNExternalDefinition>& definitions);

    static LuSVNExternalDefinition initWithCoder(LuSVNCoder& coder);

    const std::optional<std::string>& sourceDirectory() const { return sourceDirectory_; }
    void setSourceDirectory(std::optional<std::string> source) { sourceDirectory_ = std::move(source); }
    /// Never null.
    const std::shared_ptr<LuSVNMutableRevisionSpec>& sourceRevision() const { return sourceRevision_; }
    /// Raises "Invalid parameter not satisfying: revision != nil" for null.
    void setSourceRevision(std::shared_ptr<LuSVNMutableRevisionSpec> revision);
    const std::optional<std::string>& targetDirectory() const { return targetDirectory_; }
    void setTargetDirectory(std::optional<std::string> target) { targetDirectory_ = std::move(target); }

    /// The syntax the definition was parsed from; New for a definition made
    /// otherwise (and for one decoded from an archive, which keeps only the
    /// keys above).
    LuSVNExternalFormat format() const { return format_; }
    /// The syntax stringValue writes the definition in.
    void setFormat(LuSVNExternalFormat format) { format_ = format; }

    /// The definition as one line of "svn:externals" (no line end) in its
    /// format, which the parser reads back as an equal definition: blanks,
    /// quotes and backslashes escaped with a backslash, a peg revision
    /// written where the URL needs one to keep its own "@", and the other
    /// format where this one cannot say it (a relative URL, a peg revision
    /// other than the revision, a revision keyword in the old format).
    /// Revisions as numbers, "{date}" in UTC with microseconds, or the
    /// keywords HEAD, BASE, COMMITTED, PREV.
    std::string stringValue() const;

    /// Source directory, target directory and source revision each equal.
    bool isEqualToDefinition(const LuSVNExternalDefinition& other) const;
    friend bool operator==(const LuSVNExternalDefinition& a, const LuSVNExternalDefinition& b)
    {
        return a.isEqualToDefinition(b);
    }
    /// The hashes of source, target and revision, exclusive-or-ed.
    std::size_t hash() const;
    /// "{ <LuSVNExternalDefinition: 0x...> sourceDirectory: <source>,
    /// sourceRevision: <spec>, targetDirectory: <target> }", "(null)" for
    /// what is absent.
    std::string description() const;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    std::optional<std::string> sourceDirectory_;
    std::shared_ptr<LuSVNMutableRevisionSpec> sourceRevision_;
    std::optional<std::string> targetDirectory_;
    LuSVNExternalFormat format_ = LuSVNExternalFormat::New;
};

template <>
struct std::hash<LuSVNExternalDefinition> {
    std::size_t operator()(const LuSVNExternalDefinition& definition) const noexcept { return definition.hash(); }
};
