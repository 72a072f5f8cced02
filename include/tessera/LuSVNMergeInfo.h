// Merge tracking information: for each merge source path, the revision
// ranges already merged from it.
//
//   auto info = LuSVNMergeInfo::mergeInfoWithString("/trunk:3-7,9\n/branches/b:12*");
//   info->paths();                     // {"/branches/b", "/trunk"}
//   info->revisionRangesForPath("/trunk");
//                                      // { 3 - 7 }, { 9 - 9 } (LuSVNMergeRevisionRange)
//   info->mostRecentPath();            // "/branches/b", holder of the greatest range
//
// A merge info is a mutable value shared as std::shared_ptr<LuSVNMergeInfo>.
// Paths are kept in ascending byte order; that is the order of paths() and of
// every search over them.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNRevisionRange.h>

class TESSERA_EXPORT LuSVNMergeInfo {
public:
    using Range = std::shared_ptr<LuSVNRevisionRange>;
    using Ranges = std::vector<Range>;

    /// Empty.
    LuSVNMergeInfo() = default;

    /// A new empty merge info.
    static std::shared_ptr<LuSVNMergeInfo> mergeInfo();

    /// The merge info of an "svn:mergeinfo" property value, parsed by the
    /// loader's newest backend (entry point 121): one entry per source path
    /// (relative paths made absolute), each with its ranges in ascending
    /// order as LuSVNMergeRevisionRange values, "5-7" as { 5 - 7 } and "9" as
    /// { 9 - 9 }, not inheritable when written with a trailing "*". Empty
    /// text gives an empty merge info. Text Subversion refuses raises
    /// LuSVNException (status 200020, "Could not parse mergeinfo string
    /// ..."); text holding a NUL character raises
    /// LuSVNInvalidArgumentException, as does a range beyond the 32-bit
    /// revision numbers (which Subversion 1.14 itself refuses).
    static std::shared_ptr<LuSVNMergeInfo> mergeInfoWithString(std::string_view text);

    /// The ranges stored for the path, or nullopt.
    std::optional<Ranges> revisionRangesForPath(const std::string& path) const;
    /// Stores the ranges for the path, replacing earlier ones; nullopt removes
    /// the path's entry. A null range raises "Invalid parameter not
    /// satisfying: range != nil".
    void setRevisionRanges(std::optional<Ranges> ranges, const std::string& path);

    /// All paths, in ascending order.
    std::vector<std::string> paths() const;
    /// The ranges of all paths, path by path in the order of paths(), each
    /// path's in its stored order.
    Ranges revisionRanges() const;
    /// The first path, in the order of paths(), holding a range equal to the
    /// given one (LuSVNRevisionRange::isEqual); nullopt if none does. Raises
    /// "Invalid parameter not satisfying: range != nil" for null.
    std::optional<std::string> pathForRevisionRange(const std::shared_ptr<const LuSVNRevisionRange>& range) const;
    /// pathForRevisionRange of the greatest range of all in the order of
    /// LuSVNRevisionRange::compare (the later one of equals); nullopt when
    /// there are no ranges. Ranges of incompatible types raise
    /// LuSVNInvalidArgumentException "Ranges have incompatible types".
    std::optional<std::string> mostRecentPath() const;

    /// "{ <LuSVNMergeInfo: 0x...>, { /trunk = ({ 3 - 7 }, { 9 - 9 }); } }".
    std::string description() const;

    /// A new merge info with the same entries; the ranges are shared.
    std::shared_ptr<LuSVNMergeInfo> copy() const;

private:
    std::map<std::string, Ranges> dictionary_;
};
