#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNURL.h>

#include <limits.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNPath+Internal.h"
#include "LuSVNTrace.h"

using namespace tessera_private;

namespace {

const LuSVNArchivableClassRegistrar<LuSVNLocalPath> registrar("LuSVNLocalPath");

std::optional<std::string> homeDirectoryOfUser(const char* name)
{
    std::vector<char> buffer(16384);
    passwd entry;
    passwd* found = nullptr;
    const int error = name ? getpwnam_r(name, &entry, buffer.data(), buffer.size(), &found)
                           : getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
    if (error != 0 || !found || !found->pw_dir)
        return std::nullopt;
    return std::string(found->pw_dir);
}

std::optional<std::string> homeDirectory()
{
    const char* home = std::getenv("HOME");
    if (home && *home)
        return std::string(home);
    return homeDirectoryOfUser(nullptr);
}

// "~" and "~/x" name the current user's home, "~name/x" that user's; an
// unknown user leaves the text as it is.
std::string expandingTilde(const std::string& text)
{
    const std::size_t slash = text.find('/');
    const std::string name = text.substr(1, slash == std::string::npos ? std::string::npos : slash - 1);
    const std::optional<std::string> home = name.empty() ? homeDirectory() : homeDirectoryOfUser(name.c_str());
    if (!home)
        return text;
    return slash == std::string::npos ? *home : LuSVNAppendingPathComponent(*home, text.substr(slash));
}

std::string abbreviatingHome(const std::string& text)
{
    std::optional<std::string> home = homeDirectory();
    while (home && !home->empty() && home->back() == '/')
        home->pop_back();
    if (!home || home->empty())
        return text;  // no home, or "/" whose abbreviation would swallow every path
    if (text == *home)
        return "~";
    if (text.starts_with(*home) && text[home->size()] == '/')
        return "~" + text.substr(home->size());
    return text;
}

}  // namespace

LuSVNLocalPath::LuSVNLocalPath(Made, std::string path) : path_(std::move(path)) {}

std::shared_ptr<const LuSVNLocalPath> LuSVNLocalPath::pathWithString(const std::string& text)
{
    LUSVN_PARAMETER_ASSERT(!text.empty(), "string != nil && [string length] > 0");
    std::string path = text.front() == '~' ? expandingTilde(text) : text;
    if (path.size() >= 2 && path.back() == '/')
        path.pop_back();
    return std::make_shared<const LuSVNLocalPath>(Made(), std::move(path));
}

const std::shared_ptr<const LuSVNLocalPath>& LuSVNLocalPath::fileSystemRoot()
{
    // Never freed: it may still be asked for while static objects go.
    static const auto* const root =
        new std::shared_ptr<const LuSVNLocalPath>(std::make_shared<const LuSVNLocalPath>(Made(), "/"));
    return *root;
}

bool LuSVNLocalPath::isValidPath(std::string_view text)
{
    return !text.empty() && (text.front() == '/' || text.front() == '~');
}

std::shared_ptr<LuSVNLocalPath> LuSVNLocalPath::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    std::optional<std::string> path = coder.decodeStringForKey("path");
    if (!path)
        throw LuSVNInvalidArgumentException("LuSVNLocalPath archive without \"path\"");
    return std::make_shared<LuSVNLocalPath>(Made(), std::move(*path));
}

std::string LuSVNLocalPath::denormalizedString() const
{
    return abbreviatingHome(path_);
}

std::optional<std::string> LuSVNLocalPath::location() const
{
    const Path up = parent();
    if (!up)
        return std::nullopt;
    return up->string();
}

std::optional<std::string> LuSVNLocalPath::denormalizedLocation() const
{
    const std::optional<std::string> text = location();
    if (!text)
        return std::nullopt;
    return abbreviatingHome(*text);
}

std::string LuSVNLocalPath::lastComponent() const
{
    if (path_ == "/")
        return "/";
    return LuSVNLastPathComponent(path_);
}

std::string LuSVNLocalPath::denormalizedLastComponent() const
{
    return lastComponent();
}

LuSVNPath::Path LuSVNLocalPath::pathByAddingComponent(const std::string& component) const
{
    LUSVN_PARAMETER_ASSERT(!component.empty(), "component != nil && [component length] > 0");
    if (component == "/")
        return self();
    return pathWithString(LuSVNAppendingPathComponent(path_, component));
}

LuSVNPath::Path LuSVNLocalPath::pathByNormalizingAndAddingComponent(const std::string& component) const
{
    return pathByAddingComponent(component);
}

LuSVNPath::Path LuSVNLocalPath::parent() const
{
    // The empty text (the parent of a one-component relative path) has no
    // parent either, so that every chain of parents ends.
    if (path_ == "/" || path_.empty())
        return nullptr;
    return std::make_shared<const LuSVNLocalPath>(Made(), LuSVNDeletingLastPathComponent(path_));
}

std::shared_ptr<const LuSVNURL> LuSVNLocalPath::URL() const
{
    return LuSVNURL::URLEncodeString("file://" + path_);
}

std::shared_ptr<const LuSVNLocalPath> LuSVNLocalPath::localPath() const
{
    return std::static_pointer_cast<const LuSVNLocalPath>(self());
}

const char* LuSVNLocalPath::SVNRepresentationInPool(apr_pool_t* pool) const
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    LUSVN_TRACE("LuSVNLocalPath", "SVNRepresentationInPool", {"path", path_});
    if (LuSVNCurrentHasEntryPoint(28))
        return LuSVNEntry<28>()(cString(), pool);
    return LuSVNEntry<26>()(cString(), pool);
}

LuSVNPath::Path LuSVNLocalPath::copy() const
{
    return std::make_shared<const LuSVNLocalPath>(Made(), path_);
}

LuSVNPath::Path LuSVNLocalPath::commonAncestorFor(const Path& path) const
{
    if (Path ancestor = LuSVNPath::commonAncestorFor(path))
        return ancestor;
    return fileSystemRoot();
}

std::optional<std::string> LuSVNLocalPath::pathRelativeTo(const Path& base) const
{
    if (base && base->isEqualToPath(fileSystemRoot()))
        return path_;
    return LuSVNPath::pathRelativeTo(base);
}

LuSVNPath::Path LuSVNLocalPath::resolve(bool& wasLink) const
{
    wasLink = false;
    struct stat status;
    if (lstat(path_.c_str(), &status) != 0 || !S_ISLNK(status.st_mode))
        return self();
    wasLink = true;
    std::vector<char> target(static_cast<std::size_t>(status.st_size > 0 ? status.st_size : PATH_MAX) + 1);
    const ssize_t length = readlink(path_.c_str(), target.data(), target.size());
    if (length < 0 || static_cast<std::size_t>(length) >= target.size())
        return self();  // gone or changed since lstat
    std::string combined(target.data(), static_cast<std::size_t>(length));
    if (combined.empty() || combined.front() != '/')
        combined = LuSVNAppendingPathComponent(LuSVNDeletingLastPathComponent(path_), combined);
    // A target that does not exist cannot be resolved further; it is answered
    // as the link names it.
    if (char* resolved = realpath(combined.c_str(), nullptr)) {
        combined = resolved;
        std::free(resolved);
    }
    return pathWithString(combined);
}

std::string LuSVNLocalPath::archiveClassName() const
{
    return "LuSVNLocalPath";
}

void LuSVNLocalPath::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNPath::encodeWithCoder(coder);
    coder.encodeString(path_, "path");
}
