#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNNode.h>

#include "LuSVNAssert.h"
#include "LuSVNCodedDate.h"
#include "LuSVNSubversion.h"

using tessera_private::LuSVNDecodeDate;
using tessera_private::LuSVNEncodeDate;

static const LuSVNArchivableClassRegistrar<LuSVNNode> registrar("LuSVNNode");

namespace {

int sign(std::int32_t difference)
{
    return (difference > 0) - (difference < 0);
}

// The sign of the difference in 32 bits, wrapping as the stored words do.
int wrappedDifferenceSign(std::uint32_t a, std::uint32_t b)
{
    return sign(static_cast<std::int32_t>(a - b));
}

}  // namespace

LuSVNNode::LuSVNNode(const LuSVNNode& other)
    : LuSVNCoding(other),
      name_(other.name_),
      path_(other.path_),
      location_(other.location_),
      url_(other.url_),
      size_(other.size_),
      revision_(other.revision_),
      date_(other.date_),
      author_(other.author_),
      lock_(other.lock_),
      hasProperties_(other.hasProperties_),
      status_(other.status_ ? other.status_->copy() : nullptr)
{
}

std::shared_ptr<LuSVNNode> LuSVNNode::node()
{
    return std::shared_ptr<LuSVNNode>(new LuSVNNode());
}

std::shared_ptr<LuSVNNode> LuSVNNode::nodeWithPath(const Path& path)
{
    auto result = node();
    result->initWithPath(path);
    return result;
}

std::shared_ptr<LuSVNNode> LuSVNNode::nodeWithName(std::optional<std::string> name, const Path& path,
                                                   const URLPath& url, const svn_dirent_t* dirent,
                                                   const svn_lock_t* lock)
{
    auto result = node();
    result->initWithName(std::move(name), path, url, dirent, lock);
    return result;
}

void LuSVNNode::initWithPath(const Path& path)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    name_ = path->denormalizedLastComponent();
    path_ = path;
    location_ = path->parent();
    if (const auto url = std::dynamic_pointer_cast<const LuSVNURL>(path))
        url_ = url;
}

void LuSVNNode::initWithName(std::optional<std::string> name, const Path& path, const URLPath& url,
                             const svn_dirent_t* dirent, const svn_lock_t* lock)
{
    LUSVN_PARAMETER_ASSERT(dirent != nullptr, "dirent != NULL");
    name_ = std::move(name);
    path_ = path;
    location_ = path ? path->parent() : nullptr;
    url_ = url;
    size_ = dirent->size;
    revision_ = static_cast<std::int32_t>(dirent->created_rev);
    date_ = LuSVNDateConversion::dateWithAPRTime(dirent->time);
    if (dirent->last_author)
        author_ = dirent->last_author;
    hasProperties_ = dirent->has_props != 0;
    if (lock)
        lock_ = LuSVNLock::lockWithSVNLock(lock);
}

bool LuSVNNode::isDirectory() const
{
    return false;
}

int LuSVNNode::compare(const std::shared_ptr<const LuSVNNode>& other) const
{
    if (!other)
        return 1;
    if (isDirectory() != other->isDirectory())
        return isDirectory() ? -1 : 1;
    if (path_ && other->path_) {
        if (const int order = path_->compare(other->path_))
            return order;
    } else if (path_ || other->path_) {
        return path_ ? 1 : -1;
    }
    if (revision_ != other->revision_)
        return revision_ < other->revision_ ? -1 : 1;
    if (date_ != other->date_)
        return date_ < other->date_ ? -1 : 1;
    if (size_ != other->size_)
        return static_cast<std::uint64_t>(size_) < static_cast<std::uint64_t>(other->size_) ? -1 : 1;
    if (status_ && other->status_) {
        if (const int order = wrappedDifferenceSign(static_cast<std::uint32_t>(status_->lastChangedRevision()),
                                                    static_cast<std::uint32_t>(other->status_->lastChangedRevision())))
            return order;
        return wrappedDifferenceSign(status_->textStatus(), other->status_->textStatus());
    }
    if (other->status_)
        return -1;
    return status_ ? 1 : 0;
}

std::shared_ptr<LuSVNNode> LuSVNNode::copy() const
{
    return std::shared_ptr<LuSVNNode>(new LuSVNNode(*this));
}

std::string LuSVNNode::archiveClassName() const
{
    return "LuSVNNode";
}

void LuSVNNode::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeString(name_, "name");
    coder.encodeObject(path_, "path");
    coder.encodeObject(location_, "location");
    coder.encodeObject(url_, "url");
    coder.encodeInt64(size_, "size");
    coder.encodeInt64(revision_, "revision");
    LuSVNEncodeDate(coder, date_, "date");
    coder.encodeString(author_, "author");
    coder.encodeObject(lock_, "lock");
    coder.encodeBool(hasProperties_, "hasProperties");
    coder.encodeObject(status_, "status");
}

void LuSVNNode::decodeFields(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    name_ = coder.decodeStringForKey("name");
    path_ = coder.decodeObjectOfClassForKey<LuSVNPath>("path");
    location_ = coder.decodeObjectOfClassForKey<LuSVNPath>("location");
    url_ = coder.decodeObjectOfClassForKey<LuSVNURL>("url");
    size_ = coder.decodeInt64ForKey("size");
    revision_ = coder.containsValueForKey("revision") ? static_cast<std::int32_t>(coder.decodeInt64ForKey("revision"))
                                                      : LuSVNInvalidRevision;
    date_ = LuSVNDecodeDate(coder, "date");
    author_ = coder.decodeStringForKey("author");
    lock_ = coder.decodeObjectOfClassForKey<LuSVNLock>("lock");
    hasProperties_ = coder.decodeBoolForKey("hasProperties");
    status_ = coder.decodeObjectOfClassForKey<LuSVNStatus>("status");
}

std::shared_ptr<LuSVNNode> LuSVNNode::initWithCoder(LuSVNCoder& coder)
{
    auto result = node();
    result->decodeFields(coder);
    return result;
}
