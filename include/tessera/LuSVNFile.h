// A file node of a working copy or a repository (see LuSVNNode.h).
//
//   auto file = LuSVNFile::nodeWithPath(LuSVNLocalPath::pathWithString("/home/me/wc/a.c"));
//   file->isDirectory();   // false
//
// Archived like LuSVNNode, under its own class name.
#pragma once

#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNStreams.h>

class TESSERA_EXPORT LuSVNFile : public LuSVNNode {
public:
    /// As LuSVNNode::node, a file.
    static std::shared_ptr<LuSVNFile> file();
    /// As LuSVNNode::nodeWithPath, a file.
    static std::shared_ptr<LuSVNFile> nodeWithPath(const Path& path);
    /// As LuSVNNode::nodeWithName, a file.
    static std::shared_ptr<LuSVNFile> nodeWithName(std::optional<std::string> name, const Path& path,
                                                   const URLPath& url, const svn_dirent_t* dirent,
                                                   const svn_lock_t* lock);

    std::shared_ptr<LuSVNNode> copy() const override;

    static std::shared_ptr<LuSVNFile> initWithCoder(LuSVNCoder& coder);
    std::string archiveClassName() const override;

    // --- Repository services --------------------------------------------------
    //
    //   auto file = LuSVNFile::fileAtPath(url, LuSVNRevisionSpec::HEAD(), true, context);
    //   std::ofstream copy("a.c", std::ios::binary);
    //   LuSVNFile::catRevision(revision, url, LuSVNStdOutputStream::streamWithStream(copy), context);

    /// The file at the path (a working-copy path or a URL) and revision, as
    /// svn info reports it (svn_client_info, entry point 54): name, path, URL,
    /// last-changed revision, date and author; a URL's size. A working-copy
    /// file's lock is the one its working copy holds. With `fetchLock` the
    /// repository is asked as well (svn_client_list, entry point 56): size,
    /// properties flag and the repository's lock, none when it has none.
    /// Raises LuSVNException "<path> does not exist" when Subversion reports
    /// nothing, "Node is not a file" for a directory, "Unexpected format of
    /// abs_path. Could not parse out name" when Subversion's path has no last
    /// component, the exception of Subversion's error otherwise, and
    /// "Invalid parameter not satisfying: path != nil" (and "revision !=
    /// nil", "context != nil").
    static std::shared_ptr<LuSVNFile> fileAtPath(const Path& path, const Revision& revision, bool fetchLock,
                                                 const Context& context);
    /// fileAtPath without asking the repository for the lock.
    static std::shared_ptr<LuSVNFile> fileAtPath(const Path& path, const Revision& revision,
                                                 const Context& context);

    /// Writes the file's contents at the revision (svn_client_cat2, entry
    /// point 40) to the stream as Subversion hands them out, keywords
    /// expanded and line ends translated as svn cat does; nothing of the
    /// file is held in memory beyond Subversion's own buffer. A stream that
    /// fails raises "Unable to write data to output stream"; a directory or
    /// missing path the exception of Subversion's error. Raises "Invalid
    /// parameter not satisfying: path != nil" (and "revision != nil",
    /// "stream != nil", "context != nil").
    static void catRevision(const Revision& revision, const Path& path,
                            const std::shared_ptr<LuSVNOutputStream>& stream, const Context& context);

protected:
    LuSVNFile() = default;
    LuSVNFile(const LuSVNFile&) = default;
};
