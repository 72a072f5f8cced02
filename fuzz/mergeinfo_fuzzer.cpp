// Merge info read from arbitrary text through the backend. Subversion either
// refuses the text (status 200020) or the result is well formed: absolute
// paths, ascending forward ranges of valid numbers that do not overlap, and
// a most recent path whenever there are ranges. Written back in Subversion's
// syntax, the result parses to the same merge info.
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNMergeInfo.h>
#include <tessera/LuSVNMergeRevisionRange.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

namespace {

// "/trunk:3-5,7*" lines, one per path.
std::string mergeInfoText(const LuSVNMergeInfo& info)
{
    std::string text;
    for (const std::string& path : info.paths()) {
        text += path + ":";
        const auto ranges = *info.revisionRangesForPath(path);
        for (std::size_t i = 0; i < ranges.size(); ++i) {
            const auto& range = ranges[i];
            text += (i ? "," : "") + std::to_string(range->firstNumber());
            if (range->lastNumber() != range->firstNumber())
                text += "-" + std::to_string(range->lastNumber());
            if (!std::static_pointer_cast<LuSVNMergeRevisionRange>(range)->isInheritable())
                text += "*";
        }
        text += "\n";
    }
    return text;
}

void checkWellFormed(const LuSVNMergeInfo& info)
{
    for (const std::string& path : info.paths()) {
        require(!path.empty() && path[0] == '/', "paths are absolute");
        const auto ranges = info.revisionRangesForPath(path);
        require(ranges && !ranges->empty(), "every path has ranges");
        std::int32_t previousLast = 0;
        for (const auto& range : *ranges) {
            require(dynamic_cast<const LuSVNMergeRevisionRange*>(range.get()) != nullptr, "ranges are merge ranges");
            require(range->firstNumber() >= 1 && range->firstNumber() <= range->lastNumber(),
                    "ranges run forward from revision 1 on");
            require(range->firstNumber() > previousLast, "ranges ascend without overlap");
            require(range->containsNumber(range->firstNumber()) && range->containsNumber(range->lastNumber()),
                    "ranges contain their bounds");
            previousLast = range->lastNumber();
        }
    }
    const auto mostRecent = info.mostRecentPath();
    require(mostRecent.has_value() == !info.revisionRanges().empty(), "a most recent path exactly with ranges");
}

bool sameMergeInfo(const LuSVNMergeInfo& a, const LuSVNMergeInfo& b)
{
    if (a.paths() != b.paths())
        return false;
    for (const std::string& path : a.paths()) {
        const auto left = *a.revisionRangesForPath(path);
        const auto right = *b.revisionRangesForPath(path);
        if (left.size() != right.size())
            return false;
        for (std::size_t i = 0; i < left.size(); ++i)
            if (!left[i]->isEqual(right[i]) ||
                std::static_pointer_cast<LuSVNMergeRevisionRange>(left[i])->isInheritable() !=
                    std::static_pointer_cast<LuSVNMergeRevisionRange>(right[i])->isInheritable())
                return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    tessera_fuzz::initializeLibrary();
    const std::string text = tessera_fuzz::textOf(data, size);
    std::shared_ptr<LuSVNMergeInfo> info;
    try {
        info = LuSVNMergeInfo::mergeInfoWithString(text);
    } catch (const LuSVNInvalidArgumentException&) {
        require(text.find('\0') != std::string::npos, "only text with NUL is refused before Subversion");
        return 0;
    } catch (const LuSVNException& e) {
        require(e.status() == 200020, "Subversion refuses with its merge info parse error");
        return 0;
    }
    checkWellFormed(*info);
    const auto again = LuSVNMergeInfo::mergeInfoWithString(mergeInfoText(*info));
    require(sameMergeInfo(*info, *again), "written back, the merge info parses to itself");
    return 0;
}
