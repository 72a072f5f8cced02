#include <tessera/LuSVNDirectory.h>

static const LuSVNArchivableClassRegistrar<LuSVNDirectory> registrar("LuSVNDirectory");

std::shared_ptr<LuSVNDirectory> LuSVNDirectory::directory()
{
    return std::shared_ptr<LuSVNDirectory>(new LuSVNDirectory());
}

std::shared_ptr<LuSVNDirectory> LuSVNDirectory::nodeWithPath(const Path& path)
{
    auto result = directory();
    result->initWithPath(path);
    return result;
}

std::shared_ptr<LuSVNDirectory> LuSVNDirectory::nodeWithName(std::optional<std::string> name, const Path& path,
                                                             const URLPath& url, const svn_dirent_t* dirent,
                                                             const svn_lock_t* lock)
{
    auto result = directory();
    result->initWithName(std::move(name), path, url, dirent, lock);
    return result;
}

bool LuSVNDirectory::isDirectory() const
{
    return true;
}

std::shared_ptr<LuSVNNode> LuSVNDirectory::copy() const
{
    return std::shared_ptr<LuSVNDirectory>(new LuSVNDirectory(*this));
}

std::shared_ptr<LuSVNDirectory> LuSVNDirectory::initWithCoder(LuSVNCoder& coder)
{
    auto result = directory();
    result->decodeFields(coder);
    result->aggregateChildStatus_ = static_cast<std::uint32_t>(coder.decodeInt64ForKey("aggregateChildStatus"));
    result->aggregateRepositoryChildStatus_ =
        static_cast<std::uint32_t>(coder.decodeInt64ForKey("aggregateReposChildStatus"));
    return result;
}

std::string LuSVNDirectory::archiveClassName() const
{
    return "LuSVNDirectory";
}

void LuSVNDirectory::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNNode::encodeWithCoder(coder);
    coder.encodeInt64(aggregateChildStatus_, "aggregateChildStatus");
    coder.encodeInt64(aggregateRepositoryChildStatus_, "aggregateReposChildStatus");
}
