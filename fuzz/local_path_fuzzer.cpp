// Local paths made from arbitrary text. Every non-empty text makes a path;
// chains of parents end, each parent shorter than its child; an absolute
// path without empty components or a trailing "/" is its parent's child of
// its last component, a descendant of it, "./name" from it, and comes back
// from its file URL; archiving keeps the text; Subversion's form exists.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNStrings.h>
#include <tessera/LuSVNURL.h>

#include "LuSVNBackendFrame.h"
#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    tessera_fuzz::initializeLibrary();
    const std::string text = tessera_fuzz::textOf(data, size);
    if (text.empty())
        return 0;
    const auto path = LuSVNLocalPath::pathWithString(text);
    const std::string& stored = path->string();
    if (text.front() != '~')
        require(stored == (text.size() >= 2 && text.ends_with("/") ? text.substr(0, text.size() - 1) : text),
                "only one trailing slash goes");

    std::size_t steps = 0;
    for (LuSVNPath::Path child = path, parent = path->parent(); parent; child = parent, parent = parent->parent()) {
        require(++steps <= stored.size(), "the chain of parents ends");
        require(parent->string().size() < child->string().size(), "a parent is shorter");
    }

    const auto parent = path->parent();
    const bool plain = stored.front() == '/' && stored != "/" && !stored.ends_with("/") &&
                       stored.find("//") == std::string::npos;
    if (plain) {
        require(parent->pathByAddingComponent(path->lastComponent())->isEqualToPath(path),
                "a path is its parent's child of its last component");
        require(path->isDescendentOfPath(parent), "a path is a descendant of its parent");
        require(path->commonAncestorFor(parent)->isEqualToPath(parent), "the parent is the common ancestor");
        if (parent->string() != "/")
            require(path->pathWithSymlinksRelativeTo(parent, false) == "./" + path->lastComponent(),
                    "a child is ./name from its parent");
        if (LuSVNIsValidUTF8(stored)) {
            try {
                require(path->URL()->localPath()->isEqualToPath(path), "a path comes back from its URL");
            } catch (const LuSVNInvalidArgumentException&) {
                // "#" twice: the escaped text is no URL.
                require(stored.find('#') != stored.rfind('#'), "only a second \"#\" spoils the URL");
            }
        }
    }

    if (LuSVNIsValidUTF8(stored)) {
        const auto decoded = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNLocalPath>(
            LuSVNKeyedArchiver::archivedDataWithRootObject(*path));
        require(decoded->string() == stored, "archiving keeps the text");
    }

    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    require(path->SVNRepresentationInPool(frame.pool()) != nullptr, "Subversion's form exists");
    return 0;
}
