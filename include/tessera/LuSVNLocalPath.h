// A path of the local file system, as working copies are named.
//
//   auto wc = LuSVNLocalPath::pathWithString("~/proj/trunk/");   // "/home/me/proj/trunk"
//   wc->denormalizedString();                                   // "~/proj/trunk"
//   wc->URL()->string();                                        // "file:///home/me/proj/trunk"
//   wc->pathByAddingComponent("a b")->string();                 // "/home/me/proj/trunk/a b"
//
// The text is kept as given apart from two rules: a leading "~" is expanded
// and one trailing "/" is removed. "//", "." and ".." inside it are kept and a
// relative text is accepted (isValidPath tells whether a text is absolute).
//
// The root "/" has no parent and no location, and "/" as its last component.
// The parent of any other path is its text without the last component, so
// the parent of "/a" is "/" and that of a one-component relative text the
// empty text, which has no parent.
//
// Archived under "path"; decoding takes the text as it is, without the rules.
#pragma once

#include <tessera/LuSVNPath.h>

class TESSERA_EXPORT LuSVNLocalPath final : public LuSVNPath {
public:
    /// A local path of the text: "~" or "~/..." is expanded to the home
    /// directory ($HOME, else the user database), "~name/..." to that user's;
    /// then, when the text has at least two characters and ends in "/",
    /// exactly one "/" is removed ("/a//" keeps one). An empty text raises
    /// "Invalid parameter not satisfying: string != nil && [string length] > 0".
    static std::shared_ptr<const LuSVNLocalPath> pathWithString(const std::string& text);

    /// The shared "/", made once and never freed.
    static const std::shared_ptr<const LuSVNLocalPath>& fileSystemRoot();

    /// Whether the text is non-empty and begins with "/" or "~".
    static bool isValidPath(std::string_view text);

    /// Reads "path" as it is; an archive without it raises
    /// LuSVNInvalidArgumentException.
    static std::shared_ptr<LuSVNLocalPath> initWithCoder(LuSVNCoder& coder);

    const std::string& string() const override { return path_; }
    /// The text with the home directory abbreviated to "~".
    std::string denormalizedString() const override;
    std::optional<std::string> location() const override;
    /// location() with the home directory abbreviated to "~".
    std::optional<std::string> denormalizedLocation() const override;
    std::string lastComponent() const override;
    /// lastComponent().
    std::string denormalizedLastComponent() const override;
    /// The text and the component joined with one "/" ("/" + "a" is "/a").
    Path pathByAddingComponent(const std::string& component) const override;
    /// pathByAddingComponent: local components need no normalising.
    Path pathByNormalizingAndAddingComponent(const std::string& component) const override;
    Path parent() const override;
    /// "file://" and the text, percent-escaped (LuSVNURL::URLEncodeString).
    std::shared_ptr<const LuSVNURL> URL() const override;
    /// The receiver.
    std::shared_ptr<const LuSVNLocalPath> localPath() const override;
    /// Subversion's svn_dirent_internal_style (entry point 28), or
    /// svn_path_internal_style (26) on backends without it.
    const char* SVNRepresentationInPool(apr_pool_t* pool) const override;
    Path copy() const override;

    /// fileSystemRoot when the two paths have nothing else in common.
    Path commonAncestorFor(const Path& path) const override;
    /// The whole string() against fileSystemRoot ("/a/b", not "a/b");
    /// otherwise as LuSVNPath.
    using LuSVNPath::pathRelativeTo;
    std::optional<std::string> pathRelativeTo(const Path& base) const override;
    /// When the item at the path is a symbolic link (the link itself, not
    /// followed): wasLink is set and the answer is its target, read relative
    /// to the link's directory, with every symbolic link in it resolved.
    /// Otherwise, and when the item cannot be read, the receiver.
    using LuSVNPath::resolve;
    Path resolve(bool& wasLink) const override;

    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    // Only the factories can name it; it lets them make the path and its
    // reference count in one allocation.
    struct Made {
        explicit Made() = default;
    };

public:
    /// For the factories; use pathWithString.
    LuSVNLocalPath(Made, std::string path);

private:

    std::string path_;
};
