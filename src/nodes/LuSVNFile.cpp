#include <tessera/LuSVNFile.h>

static const LuSVNArchivableClassRegistrar<LuSVNFile> registrar("LuSVNFile");

std::shared_ptr<LuSVNFile> LuSVNFile::file()
{
    return std::shared_ptr<LuSVNFile>(new LuSVNFile());
}

std::shared_ptr<LuSVNFile> LuSVNFile::nodeWithPath(const Path& path)
{
    auto result = file();
    result->initWithPath(path);
    return result;
}

std::shared_ptr<LuSVNFile> LuSVNFile::nodeWithName(std::optional<std::string> name, const Path& path,
                                                   const URLPath& url, const svn_dirent_t* dirent,
                                                   const svn_lock_t* lock)
{
    auto result = file();
    result->initWithName(std::move(name), path, url, dirent, lock);
    return result;
}

std::shared_ptr<LuSVNNode> LuSVNFile::copy() const
{
    return std::shared_ptr<LuSVNFile>(new LuSVNFile(*this));
}

std::shared_ptr<LuSVNFile> LuSVNFile::initWithCoder(LuSVNCoder& coder)
{
    auto result = file();
    result->decodeFields(coder);
    return result;
}

std::string LuSVNFile::archiveClassName() const
{
    return "LuSVNFile";
}
