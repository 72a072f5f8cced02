#include <tessera/LuSVNPath.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <iconv.h>

#include <deque>
#include <unordered_set>

#include "LuSVNAssert.h"
#include "LuSVNPath+Internal.h"

using namespace tessera_private;

namespace {

[[noreturn]] void raiseUnrecognizedSelector(const LuSVNPath& path, const char* selector)
{
    throw LuSVNInvalidArgumentException("-[" + path.archiveClassName() + " " + selector +
                                        "]: unrecognized selector sent to instance");
}

}  // namespace

LuSVNPath::~LuSVNPath() = default;

std::string LuSVNPath::pathAndFile() const
{
    raiseUnrecognizedSelector(*this, "pathAndFile");
}

bool LuSVNPath::isRoot() const
{
    raiseUnrecognizedSelector(*this, "isRoot");
}

std::string LuSVNPath::displayName() const
{
    std::string name = denormalizedLastComponent();
    if (name == "branches" || name == "tags" || name == "trunk") {
        if (const Path up = parent())
            return LuSVNAppendingPathComponent(up->denormalizedLastComponent(), name);
    }
    return name;
}

std::optional<std::string> LuSVNPath::extension() const
{
    const std::string name = lastComponent();
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos)
        return std::nullopt;
    return name.substr(dot + 1);
}

std::optional<std::string> LuSVNPath::user() const
{
    return std::nullopt;
}

LuSVNPath::Path LuSVNPath::stripUser() const
{
    return self();
}

LuSVNPath::Path LuSVNPath::canonicalize() const
{
    return self();
}

std::optional<std::string> LuSVNPath::cStringUsingEncoding(const std::string& encoding) const
{
    const iconv_t converter = iconv_open(encoding.c_str(), "UTF-8");
    if (converter == reinterpret_cast<iconv_t>(-1))
        throw LuSVNInvalidArgumentException("Unknown encoding \"" + encoding + "\"");
    std::string input = string();
    std::string output(input.size() * 4 + 8, '\0');
    char* in = input.data();
    std::size_t inLeft = input.size();
    char* out = output.data();
    std::size_t outLeft = output.size();
    // Four bytes per input byte hold every encoding iconv offers, so the only
    // failures left are characters the encoding lacks.
    const std::size_t failed = static_cast<std::size_t>(-1);
    const bool ok = iconv(converter, &in, &inLeft, &out, &outLeft) != failed &&
                    iconv(converter, nullptr, nullptr, &out, &outLeft) != failed;  // final shift state
    iconv_close(converter);
    if (!ok)
        return std::nullopt;
    output.resize(output.size() - outLeft);
    return output;
}

std::size_t LuSVNPath::hash() const
{
    return std::hash<std::string>()(string());
}

bool LuSVNPath::isEqualToPath(const Path& other) const
{
    if (!other)
        return false;
    return other.get() == this || other->string() == string();
}

bool LuSVNPath::isEqualToString(std::string_view text) const
{
    return string() == text;
}

int LuSVNPath::compare(const Path& other) const
{
    if (!other)
        return 1;
    const int order = string().compare(other->string());
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

int LuSVNPath::compareUser(const Path& other) const
{
    if (!other)
        return 1;
    if (other.get() == this)
        return 0;
    const std::optional<std::string> mine = user();
    const std::optional<std::string> theirs = other->user();
    if (!mine || !theirs)
        return mine ? 1 : (theirs ? -1 : 0);
    const int order = mine->compare(*theirs);
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

bool LuSVNPath::isDescendentOfPath(const Path& other) const
{
    if (!other)
        return false;
    std::string base = other->string();
    if (base.empty() || base.back() != '/')
        base += '/';
    const std::string& text = string();
    return text.size() > base.size() && text.starts_with(base);
}

bool LuSVNPath::isEqualToPathOrDescendentOf(const Path& other) const
{
    return isEqualToPath(other) || isDescendentOfPath(other);
}

LuSVNPath::Path LuSVNPath::commonAncestorFor(const Path& path) const
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    std::unordered_set<std::string> ancestors;
    for (Path step = self(); step; step = step->parent())
        ancestors.insert(step->string());
    for (Path step = path; step; step = step->parent()) {
        if (ancestors.contains(step->string()))
            return step;
    }
    return nullptr;
}

LuSVNPath::Path LuSVNPath::commonAncestorForPaths(const Paths& paths)
{
    // Kept as it was designed: a path without a common ancestor resets the
    // fold, so the answer covers only the paths after the last break.
    Path ancestor;
    for (const Path& path : paths)
        ancestor = ancestor ? ancestor->commonAncestorFor(path) : path;
    return ancestor;
}

std::optional<std::string> LuSVNPath::pathRelativeTo(const Path& base) const
{
    return pathRelativeTo(base, true);
}

std::optional<std::string> LuSVNPath::pathRelativeTo(const Path& base, bool denormalize) const
{
    LUSVN_PARAMETER_ASSERT(base != nullptr, "base != nil");
    if (isEqualToPath(base))
        return std::string();
    if (!isDescendentOfPath(base))
        return std::nullopt;
    if (denormalize) {
        // The display forms may differ in length from the stored ones (a home
        // directory abbreviated in one only); the stored forms then decide.
        const std::string text = denormalizedString();
        const std::string baseText = base->denormalizedString();
        if (text.starts_with(baseText))
            return text.substr(baseText.size());
    }
    return string().substr(base->string().size());
}

std::optional<std::string> LuSVNPath::pathWithSymlinksRelativeTo(const Path& base) const
{
    return pathWithSymlinksRelativeTo(base, true);
}

std::optional<std::string> LuSVNPath::pathWithSymlinksRelativeTo(const Path& base, bool denormalize) const
{
    LUSVN_PARAMETER_ASSERT(base != nullptr, "base != nil");
    if (isEqualToPath(base))
        return ".";
    if (isDescendentOfPath(base))
        return "." + *pathRelativeTo(base, denormalize);  // ".b/c" against "/", as designed
    const Path ancestor = commonAncestorFor(base);
    if (!ancestor)
        return std::nullopt;
    std::string result;
    for (Path step = base; !step->isEqualToPath(ancestor);) {
        if (!result.empty())
            result += '/';
        result += "..";
        step = step->parent();
        if (!step)
            return std::nullopt;  // a relative base never reaches the root "/"
    }
    const std::optional<std::string> down = pathRelativeTo(ancestor, denormalize);
    if (!down)
        return std::nullopt;  // a relative receiver is not below the root "/"
    if (!down->empty()) {
        if (down->front() != '/')
            result += '/';
        result += *down;
    }
    return result;
}

LuSVNPath::Path LuSVNPath::pathByAddingRelativePathWithSymlinks(const std::string& text) const
{
    return pathByAddingRelativePathWithSymlinks(text, false);
}

LuSVNPath::Path LuSVNPath::pathByAddingRelativePathWithSymlinks(const std::string& text, bool normalize) const
{
    Path current = self();
    std::size_t start = 0;
    while (current && start <= text.size()) {
        std::size_t end = text.find('/', start);
        if (end == std::string::npos)
            end = text.size();
        const std::string piece = text.substr(start, end - start);
        start = end + 1;
        if (piece.empty() || piece == ".")
            continue;
        if (piece == "..")
            current = current->parent();
        else
            current = normalize ? current->pathByNormalizingAndAddingComponent(piece)
                                : current->pathByAddingComponent(piece);
    }
    return current;
}

LuSVNPath::Path LuSVNPath::pathRebasedAt(const std::string& baseName, const std::string& ancestorName) const
{
    return pathRebasedAt(baseName, ancestorName, 0);
}

LuSVNPath::Path LuSVNPath::pathRebasedAt(const std::string& baseName, const std::string& ancestorName,
                                         int levelsToSkip) const
{
    LUSVN_PARAMETER_ASSERT(levelsToSkip >= 0, "levelsToSkip >= 0");
    // The ancestor is matched by its stored name while the components below
    // it are carried in display form and normalised again on adding, as
    // designed.
    std::deque<std::string> below;
    Path ancestor = self();
    while (ancestor->lastComponent() != ancestorName) {
        below.push_front(ancestor->denormalizedLastComponent());
        ancestor = ancestor->parent();
        if (!ancestor)
            return nullptr;
    }
    const Path above = ancestor->parent();
    if (!above)
        return nullptr;
    Path result = above->pathByAddingComponent(baseName);
    for (std::size_t i = static_cast<std::size_t>(levelsToSkip); i < below.size(); ++i)
        result = result->pathByNormalizingAndAddingComponent(below[i]);
    return result;
}

LuSVNPath::Path LuSVNPath::resolve(bool& wasLink) const
{
    wasLink = false;
    return self();
}

LuSVNPath::Path LuSVNPath::resolve() const
{
    bool wasLink;
    return resolve(wasLink);
}

LuSVNPath::Paths LuSVNPath::pathsForChildrenWithLastComponents(const std::vector<std::string>& lastComponents) const
{
    Paths children;
    children.reserve(lastComponents.size());
    for (const std::string& name : lastComponents)
        children.push_back(pathByAddingComponent(name));
    return children;
}

void LuSVNPath::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
}
