#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNMergeInfo.h>
#include <tessera/LuSVNMergeRevisionRange.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <limits>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNObjectDescription.h"
#include "LuSVNTrace.h"

namespace {

// Subversion's start is exclusive ("5-7" is start 4, end 7); parsed merge
// info holds forward ranges only.
std::shared_ptr<LuSVNMergeRevisionRange> mergeRange(const svn_merge_range_t& range)
{
    if (range.start < -1 || range.end > std::numeric_limits<std::int32_t>::max())
        throw LuSVNInvalidArgumentException("Merge range out of range: " + std::to_string(range.start) + "-" +
                                            std::to_string(range.end));
    auto result = LuSVNMergeRevisionRange::from(LuSVNRevision::revisionWithNumber(std::int32_t(range.start + 1)),
                                                LuSVNRevision::revisionWithNumber(std::int32_t(range.end)));
    result->setInheritable(range.inheritable);
    return result;
}

}  // namespace

std::shared_ptr<LuSVNMergeInfo> LuSVNMergeInfo::mergeInfo()
{
    return std::make_shared<LuSVNMergeInfo>();
}

std::shared_ptr<LuSVNMergeInfo> LuSVNMergeInfo::mergeInfoWithString(std::string_view text)
{
    LUSVN_TRACE("LuSVNMergeInfo", "mergeInfoWithString", {"string", std::string(text)});
    // Subversion reads the text up to its first NUL, which would drop the rest unseen.
    if (text.find('\0') != std::string_view::npos)
        throw LuSVNInvalidArgumentException("Merge info text holds a NUL character");
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    svn_mergeinfo_t parsed = nullptr;
    LuSVNThrowIfError(LuSVNEntry<121>()(&parsed, std::string(text).c_str(), frame.pool()));
    auto info = mergeInfo();
    for (apr_hash_index_t* entry = LuSVNEntry<14>()(frame.pool(), parsed); entry; entry = LuSVNEntry<15>()(entry)) {
        const void* path = nullptr;
        void* value = nullptr;
        LuSVNEntry<16>()(entry, &path, nullptr, &value);
        const auto* list = static_cast<const svn_rangelist_t*>(value);
        Ranges ranges;
        for (int index = 0; index < list->nelts; ++index)
            ranges.push_back(mergeRange(*reinterpret_cast<const svn_merge_range_t* const*>(list->elts)[index]));
        info->dictionary_[static_cast<const char*>(path)] = std::move(ranges);
    }
    return info;
}

std::optional<LuSVNMergeInfo::Ranges> LuSVNMergeInfo::revisionRangesForPath(const std::string& path) const
{
    const auto found = dictionary_.find(path);
    if (found == dictionary_.end())
        return std::nullopt;
    return found->second;
}

void LuSVNMergeInfo::setRevisionRanges(std::optional<Ranges> ranges, const std::string& path)
{
    if (!ranges) {
        dictionary_.erase(path);
        return;
    }
    for (const Range& range : *ranges)
        LUSVN_PARAMETER_ASSERT(range != nullptr, "range != nil");
    dictionary_[path] = std::move(*ranges);
}

std::vector<std::string> LuSVNMergeInfo::paths() const
{
    std::vector<std::string> paths;
    for (const auto& entry : dictionary_)
        paths.push_back(entry.first);
    return paths;
}

LuSVNMergeInfo::Ranges LuSVNMergeInfo::revisionRanges() const
{
    Ranges all;
    for (const auto& entry : dictionary_)
        all.insert(all.end(), entry.second.begin(), entry.second.end());
    return all;
}

std::optional<std::string> LuSVNMergeInfo::pathForRevisionRange(
    const std::shared_ptr<const LuSVNRevisionRange>& range) const
{
    LUSVN_PARAMETER_ASSERT(range != nullptr, "range != nil");
    for (const auto& [path, ranges] : dictionary_)
        for (const Range& stored : ranges)
            if (stored->isEqual(range))
                return path;
    return std::nullopt;
}

std::optional<std::string> LuSVNMergeInfo::mostRecentPath() const
{
    // The last of a stable sort, found in one pass: sorting with an order
    // that is not strict and weak (UNSPECIFIED ties with every number) would
    // be undefined. Each range meets the greatest so far, so ranges of
    // different types always meet and raise as a sort would.
    Range greatest;
    for (const Range& range : revisionRanges())
        if (!greatest || range->compare(greatest) != -1)
            greatest = range;
    if (!greatest)
        return std::nullopt;
    return pathForRevisionRange(greatest);
}

std::string LuSVNMergeInfo::description() const
{
    std::string map = "{";
    for (const auto& [path, ranges] : dictionary_) {
        map += " " + path + " = (";
        for (std::size_t index = 0; index < ranges.size(); ++index)
            map += (index ? ", " : "") + ranges[index]->description();
        map += ");";
    }
    map += " }";
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNMergeInfo", this) + ", " + map + " }";
}

std::shared_ptr<LuSVNMergeInfo> LuSVNMergeInfo::copy() const
{
    return std::make_shared<LuSVNMergeInfo>(*this);
}
