// A directory node of a working copy or a repository (see LuSVNNode.h), with
// the aggregate status of its descendants.
//
//   auto directory = LuSVNDirectory::nodeWithPath(LuSVNLocalPath::pathWithString("/home/me/wc"));
//   directory->setAggregateChildStatus(LuSVNStatusModified | LuSVNStatusNormal);
//   (directory->aggregateChildStatus() & LuSVNStatusModified) != 0;   // something below changed
//
// The aggregates are OR-ed LuSVNStatusKind bits: of the local text and
// property kinds of the descendants, and of their repository kinds. A status
// walk that propagates status to ancestors fills them; they are 0 otherwise.
// Archived like LuSVNNode, then "aggregateChildStatus" and
// "aggregateReposChildStatus".
#pragma once

#include <cstdint>

#include <tessera/LuSVNNode.h>

class TESSERA_EXPORT LuSVNDirectory : public LuSVNNode {
public:
    /// As LuSVNNode::node, a directory.
    static std::shared_ptr<LuSVNDirectory> directory();
    /// As LuSVNNode::nodeWithPath, a directory.
    static std::shared_ptr<LuSVNDirectory> nodeWithPath(const Path& path);
    /// As LuSVNNode::nodeWithName, a directory.
    static std::shared_ptr<LuSVNDirectory> nodeWithName(std::optional<std::string> name, const Path& path,
                                                        const URLPath& url, const svn_dirent_t* dirent,
                                                        const svn_lock_t* lock);

    /// True.
    bool isDirectory() const override;

    /// The OR of the local text and property kinds of the descendants.
    std::uint32_t aggregateChildStatus() const { return aggregateChildStatus_; }
    void setAggregateChildStatus(std::uint32_t kinds) { aggregateChildStatus_ = kinds; }
    /// The OR of the repository text and property kinds of the descendants.
    std::uint32_t aggregateRepositoryChildStatus() const { return aggregateRepositoryChildStatus_; }
    void setAggregateRepositoryChildStatus(std::uint32_t kinds) { aggregateRepositoryChildStatus_ = kinds; }

    /// A copy with both aggregates.
    std::shared_ptr<LuSVNNode> copy() const override;

    static std::shared_ptr<LuSVNDirectory> initWithCoder(LuSVNCoder& coder);
    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

    // --- Externals -----------------------------------------------------------------

    /// The target directories of the externals definitions ("svn:externals")
    /// on the directory and on every versioned directory below it, each
    /// joined to the directory that defines it, read from the working
    /// properties (svn_client_propget2, entry point 62). Raises "Invalid
    /// parameter not satisfying: path != nil" (and "context != nil").
    static PathSet externalsInDirectoryAtPath(
        const LocalPath& path, const Context& context);

    /// What externalsInDirectoryAtPath answers, and the targets of the
    /// definitions on each parent directory above the path for as long as
    /// it is a working copy, each joined to the directory that defines it:
    /// every external directory that a status walk of the path may meet.
    static PathSet externalsForPath(
        const LocalPath& path, const Context& context);

protected:
    LuSVNDirectory() = default;
    LuSVNDirectory(const LuSVNDirectory&) = default;

private:
    std::uint32_t aggregateChildStatus_ = 0;
    std::uint32_t aggregateRepositoryChildStatus_ = 0;
};
