// A file node of a working copy or a repository (see LuSVNNode.h).
//
//   auto file = LuSVNFile::nodeWithPath(LuSVNLocalPath::pathWithString("/home/me/wc/a.c"));
//   file->isDirectory();   // false
//
// Archived like LuSVNNode, under its own class name.
#pragma once

#include <tessera/LuSVNNode.h>

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

protected:
    LuSVNFile() = default;
    LuSVNFile(const LuSVNFile&) = default;
};
