// Locations: the abstract root of local paths and repository URLs.
//
// Every interface of the library that names a file, a directory or a
// repository location takes a path object, never a bare string. A path is an
// immutable value shared as std::shared_ptr<const LuSVNPath>; operations that
// "change" a path answer a new one. The concrete classes are
//
//   LuSVNLocalPath   an absolute path of the local file system ("/home/me/wc")
//   LuSVNURL         a repository URL ("svn://host/repo", "file:///srv/repo")
//
// Paths are made from text by the factories of the concrete classes, or by
// LuSVNPath::pathWithString, which picks the class: text containing "://" is
// a URL, anything else a local path.
//
//   auto wc = LuSVNPath::pathWithString("/home/me/proj/trunk");
//   wc->displayName();                             // "proj/trunk"
//   wc->parent()->string();                        // "/home/me/proj"
//   wc->pathRelativeTo(wc->parent());              // "/trunk"
//
// Two forms of the text are kept apart: the normalised form (string(),
// location(), lastComponent()) is stored, compared, hashed and handed to
// Subversion; the denormalised form (denormalizedString() ...) is for people:
// local paths abbreviate the home directory to "~", URLs decode their
// percent escapes.
//
// Operations answering a path declare std::shared_ptr<const LuSVNPath>; the
// object is always of the receiver's own class (cast with
// std::static_pointer_cast when the class is needed). "None" is nullptr or
// std::nullopt.
//
// Every path is archivable with the keyed coders (LuSVNCoder.h).
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNExport.h>

struct apr_pool_t;
class LuSVNLocalPath;
class LuSVNURL;

class TESSERA_EXPORT LuSVNPath : public LuSVNCoding, public std::enable_shared_from_this<LuSVNPath> {
public:
    using Path = std::shared_ptr<const LuSVNPath>;
    using Paths = std::vector<Path>;

    ~LuSVNPath() override;

    // --- Making paths from text -------------------------------------------

    /// LuSVNURL::URLWithString when the text contains "://" anywhere, else
    /// LuSVNLocalPath::pathWithString.
    static Path pathWithString(const std::string& text);

    /// For text a person typed: a URL is made with LuSVNURL::URLEncodeString
    /// (percent-escaping the text first), a local path with
    /// LuSVNLocalPath::pathWithString.
    static Path pathWithDenormalizedString(const std::string& text);

    // --- Primitives, supplied by the concrete classes ----------------------

    /// The normalised text.
    virtual const std::string& string() const = 0;
    /// The text for display.
    virtual std::string denormalizedString() const = 0;
    /// The text of the parent; nullopt for a root.
    virtual std::optional<std::string> location() const = 0;
    /// The display text of the parent; nullopt for a root.
    virtual std::optional<std::string> denormalizedLocation() const = 0;
    /// The last component, normalised ("/" for a root).
    virtual std::string lastComponent() const = 0;
    /// The last component for display.
    virtual std::string denormalizedLastComponent() const = 0;
    /// The child named by a normalised component; the component "/" answers
    /// the receiver. An empty component raises "Invalid parameter not
    /// satisfying: component != nil && [component length] > 0".
    virtual Path pathByAddingComponent(const std::string& component) const = 0;
    /// The child named by a component in display form.
    virtual Path pathByNormalizingAndAddingComponent(const std::string& component) const = 0;
    /// The parent; nullptr for a root.
    virtual Path parent() const = 0;
    /// The file:// URL of a local path; a URL answers itself.
    virtual std::shared_ptr<const LuSVNURL> URL() const = 0;
    /// A local path answers itself; a file:// URL answers its local path.
    virtual std::shared_ptr<const LuSVNLocalPath> localPath() const = 0;
    /// The text in Subversion's internal style, allocated in the pool, through
    /// the backend on top of the calling thread's stack. A null pool raises
    /// "Invalid parameter not satisfying: pool != nil".
    virtual const char* SVNRepresentationInPool(apr_pool_t* pool) const = 0;
    /// A new path of the receiver's class with the same text.
    virtual Path copy() const = 0;

    /// Supplied by no class of the family: raises
    /// LuSVNInvalidArgumentException "-[<class> pathAndFile]: unrecognized
    /// selector sent to instance".
    virtual std::string pathAndFile() const;
    /// Supplied by no class of the family: raises
    /// LuSVNInvalidArgumentException "-[<class> isRoot]: unrecognized
    /// selector sent to instance".
    virtual bool isRoot() const;

    // --- Derived parts ----------------------------------------------------

    /// The denormalised last component; "branches", "tags" and "trunk" are
    /// joined to their parent's ("proj/trunk"; "/trunk" for the local path
    /// "/trunk").
    std::string displayName() const;
    /// string().
    const std::string& description() const { return string(); }
    /// What follows the last "." of the last component: nullopt without a
    /// ".", "" when the name ends in ".", "profile" for ".profile".
    std::optional<std::string> extension() const;
    /// The user of a URL; nullopt for a local path.
    virtual std::optional<std::string> user() const;
    /// The URL without its user; a local path answers itself.
    virtual Path stripUser() const;
    /// The form in which two locations compare for identity (see
    /// LuSVNURL::canonicalize); a local path answers itself.
    virtual Path canonicalize() const;
    /// string() converted to an iconv encoding ("ISO-8859-1", "UTF-16LE");
    /// nullopt when the text cannot be represented in it. An encoding iconv
    /// does not know raises LuSVNInvalidArgumentException.
    std::optional<std::string> cStringUsingEncoding(const std::string& encoding) const;
    /// string() as a C string (UTF-8), valid as long as the path.
    const char* cString() const { return string().c_str(); }

    // --- Equality and order -----------------------------------------------
    //
    // By string() alone, exactly and case-sensitively; a local path and a URL
    // are never equal since their texts differ. A path is equal to the plain
    // text of its string() and hashes like it, on purpose.

    /// The hash of string().
    std::size_t hash() const;
    /// False for nullptr.
    bool isEqualToPath(const Path& other) const;
    bool isEqualToString(std::string_view text) const;
    /// -1, 0 or 1 by the byte order of the two string()s; nullptr gives 1.
    int compare(const Path& other) const;
    /// -1, 0 or 1 by user(): no user sorts first; nullptr gives 1.
    int compareUser(const Path& other) const;

    friend bool operator==(const LuSVNPath& a, const LuSVNPath& b) { return a.string() == b.string(); }
    friend bool operator==(const LuSVNPath& a, std::string_view b) { return a.string() == b; }

    // --- Ancestry ---------------------------------------------------------

    /// Whether string() begins with other's string() followed by "/" (one
    /// "/" is not doubled) and is longer: "/a/bc" is not below "/a/b", a
    /// path is never its own descendant. False for nullptr.
    bool isDescendentOfPath(const Path& other) const;
    /// isEqualToPath or isDescendentOfPath.
    bool isEqualToPathOrDescendentOf(const Path& other) const;
    /// The nearest path among the other's ancestors (the other included) that
    /// is also the receiver or one of its ancestors; nullptr when there is
    /// none (local paths answer fileSystemRoot instead). nullptr raises
    /// "Invalid parameter not satisfying: path != nil".
    virtual Path commonAncestorFor(const Path& path) const;
    /// Folds the list left to right with commonAncestorFor. When two paths
    /// have no common ancestor (URLs of different hosts) the fold starts
    /// again from the next path, so the answer describes only the paths after
    /// the last break. An empty list gives nullptr.
    static Path commonAncestorForPaths(const Paths& paths);

    // --- Relative texts ---------------------------------------------------

    /// pathRelativeTo(base, true).
    virtual std::optional<std::string> pathRelativeTo(const Path& base) const;
    /// "" when the receiver equals base; nullopt when it is not a
    /// descendant; else the receiver's text (denormalised when `denormalize`
    /// is set) without as many leading characters as base's text has: "/b/c"
    /// for "/a/b/c" against "/a", "a/b/c" against "/". nullptr raises
    /// "Invalid parameter not satisfying: base != nil".
    std::optional<std::string> pathRelativeTo(const Path& base, bool denormalize) const;
    /// pathWithSymlinksRelativeTo(base, true).
    std::optional<std::string> pathWithSymlinksRelativeTo(const Path& base) const;
    /// A relative reference usable as a symbolic link target: "." for base
    /// itself, "./b/c" for a descendant (".b/c" against "/", as required),
    /// else ".." steps up to the common ancestor followed by the way down
    /// ("../../a/b"); nullopt without a common ancestor. nullptr raises
    /// "Invalid parameter not satisfying: base != nil".
    std::optional<std::string> pathWithSymlinksRelativeTo(const Path& base, bool denormalize) const;
    /// pathByAddingRelativePathWithSymlinks(text, false).
    Path pathByAddingRelativePathWithSymlinks(const std::string& text) const;
    /// Follows a "/"-separated relative text: empty pieces and "." are
    /// skipped, ".." goes to the parent, other pieces are added (with
    /// pathByNormalizingAndAddingComponent when `normalize` is set). nullptr
    /// when ".." climbs above a root.
    Path pathByAddingRelativePathWithSymlinks(const std::string& text, bool normalize) const;

    // --- Rebasing ---------------------------------------------------------

    /// pathRebasedAt(baseName, ancestorName, 0).
    Path pathRebasedAt(const std::string& baseName, const std::string& ancestorName) const;
    /// The receiver moved from its nearest ancestor-or-self whose
    /// lastComponent() is ancestorName to that ancestor's sibling baseName,
    /// keeping the components below it except the first levelsToSkip:
    /// "/p/trunk/a/b" rebased at "tags" relative to "trunk" is "/p/tags/a/b".
    /// nullptr when no such ancestor exists or it has no parent. A negative
    /// levelsToSkip raises "Invalid parameter not satisfying: levelsToSkip >= 0".
    Path pathRebasedAt(const std::string& baseName, const std::string& ancestorName, int levelsToSkip) const;

    // --- Symbolic links and children ----------------------------------------

    /// The path a symbolic link points to, wasLink set when the receiver is
    /// one; otherwise the receiver, wasLink cleared. Only local paths are
    /// ever links.
    virtual Path resolve(bool& wasLink) const;
    Path resolve() const;
    /// pathByAddingComponent of each name, in order.
    Paths pathsForChildrenWithLastComponents(const std::vector<std::string>& lastComponents) const;

    // --- Lists of paths -----------------------------------------------------
    //
    // Each answers a new list of the same length and order, one result per
    // element, unless said otherwise. A null element raises "Invalid
    // parameter not satisfying: path != nil".

    /// string() of each.
    static std::vector<std::string> arrayWithStringsOfPaths(const Paths& paths);
    /// pathWithString of each text.
    static Paths arrayWithPathsForStrings(const std::vector<std::string>& texts);
    /// URL() of each: the URL objects of the paths.
    static std::vector<std::shared_ptr<const LuSVNURL>> arrayWithURLsForPaths(const Paths& paths);
    /// lastComponent() of each.
    static std::vector<std::string> arrayWithLastPathComponents(const Paths& paths);
    /// denormalizedLastComponent() of each.
    static std::vector<std::string> arrayWithDenormalizedLastPathComponents(const Paths& paths);
    /// The URL of each path's server (URL()->hostAndScheme()), each server
    /// once; the order is unspecified.
    static std::vector<std::shared_ptr<const LuSVNURL>> arrayWithUniqueHostURLsOfPaths(const Paths& paths);
    /// canonicalize() of each.
    static Paths arrayWithCanonicalPaths(const Paths& paths);
    /// stripUser() of each.
    static Paths arrayWithPathsStrippedOfUsers(const Paths& paths);

    // --- Archiving ----------------------------------------------------------

    /// Checks that the coder is keyed; the root itself writes nothing.
    void encodeWithCoder(LuSVNCoder& coder) const override;

protected:
    LuSVNPath() = default;
    LuSVNPath(const LuSVNPath&) = default;
    LuSVNPath& operator=(const LuSVNPath&) = delete;

    /// The receiver as a shared pointer (paths only exist inside one).
    Path self() const { return shared_from_this(); }
};

/// Hash and equality of shared paths by their text, for unordered containers
/// (std::hash of a std::shared_ptr would use the address).
struct TESSERA_EXPORT LuSVNPathHash {
    std::size_t operator()(const LuSVNPath::Path& path) const noexcept { return path ? path->hash() : 0; }
};
struct TESSERA_EXPORT LuSVNPathEqualTo {
    bool operator()(const LuSVNPath::Path& a, const LuSVNPath::Path& b) const noexcept
    {
        return a ? a->isEqualToPath(b) : !b;
    }
};

template <>
struct std::hash<LuSVNPath> {
    std::size_t operator()(const LuSVNPath& path) const noexcept { return path.hash(); }
};
