// Options of comparing files (see LuSVNOptions.h for the conventions of the
// family).
//
//   field                       kind     default
//   whitespaceCompareBehavior   number   0: white space counts; 1 ignores
//                                        changes in the amount of white
//                                        space; 2 ignores all white space
//   ignoreEOLStyle              flag     false   all line ends compare equal
//   recursive                   flag     true
//   noticeAncestry              flag     true    an item replaced by an
//                                        unrelated one is a deletion and
//                                        an addition (svn diff
//                                        --notice-ancestry); without it the
//                                        two are compared as one item
//   diffDeleted                 flag     true    the text of deleted files
//                                        is shown; without it only their
//                                        "Index: PATH (deleted)" header
//   useGitDiffFormat            flag     false   git's extended headers
//                                        (svn diff --git)
//   propertiesOnly              flag     false   property changes alone
//   showCopiesAsAdds            flag     false   a copied file shows its
//                                        whole text as added
//
// The last three need Subversion 1.8 or newer in the diff between two
// locations; older backends refuse them.
//
// The description is the generic one: "<LuSVNDiffOptions: 0x...>".
#pragma once

#include <cstdint>

#include <tessera/LuSVNOptions.h>

struct apr_pool_t;
struct svn_diff_file_options_t;

class TESSERA_EXPORT LuSVNDiffOptions : public LuSVNOptions {
public:
    static LuSVNDiffOptions defaults() { return {}; }

    /// Any value is stored; convertOptions refuses all but 0, 1 and 2.
    std::int32_t whitespaceCompareBehavior() const { return whitespaceCompareBehavior_; }
    void setWhitespaceCompareBehavior(std::int32_t behavior) { whitespaceCompareBehavior_ = behavior; }

    bool ignoreEOLStyle() const { return ignoreEOLStyle_; }
    bool recursive() const { return recursive_; }
    /// Each keeps only the lowest bit of its argument.
    void setIgnoreEOLStyle(int ignoreEOLStyle) { ignoreEOLStyle_ = ignoreEOLStyle & 1; }
    void setRecursive(int recursive) { recursive_ = recursive & 1; }

    /// Whether the diff between two locations tells an item apart from an
    /// unrelated one that replaced it (Subversion's ignore_ancestry, negated).
    bool noticeAncestry() const { return noticeAncestry_; }
    /// Sets noticeAncestry.
    void setNoticeAncestry(bool noticeAncestry) { noticeAncestry_ = noticeAncestry; }
    /// Whether the diff between two locations shows the text of deleted
    /// files (Subversion's no_diff_deleted, negated).
    bool diffDeleted() const { return diffDeleted_; }
    /// Sets diffDeleted.
    void setDiffDeleted(bool diffDeleted) { diffDeleted_ = diffDeleted; }
    /// Whether the diff between two locations is written in git's format.
    bool useGitDiffFormat() const { return useGitDiffFormat_; }
    /// Sets useGitDiffFormat.
    void setUseGitDiffFormat(bool useGitDiffFormat) { useGitDiffFormat_ = useGitDiffFormat; }
    /// Whether the diff between two locations shows property changes only.
    bool propertiesOnly() const { return propertiesOnly_; }
    /// Sets propertiesOnly.
    void setPropertiesOnly(bool propertiesOnly) { propertiesOnly_ = propertiesOnly; }
    /// Whether a copied item is shown as an addition of its whole text
    /// rather than as its changes against the copy source.
    bool showCopiesAsAdds() const { return showCopiesAsAdds_; }
    /// Sets showCopiesAsAdds.
    void setShowCopiesAsAdds(bool showCopiesAsAdds) { showCopiesAsAdds_ = showCopiesAsAdds; }
    /// Whether any option that only Subversion 1.8's diff knows is set.
    bool needsNewerDiff() const { return useGitDiffFormat_ || propertiesOnly_ || showCopiesAsAdds_; }

    /// Subversion's file-diff options (svn_diff_file_options_create, through
    /// the backend on top of the calling thread's stack) in the pool, with
    /// ignore_space = whitespaceCompareBehavior and ignore_eol_style = 1 when
    /// ignoreEOLStyle is set, else 0; the other fields keep Subversion's
    /// defaults. A null pool raises "Invalid parameter not satisfying: pool
    /// != NULL"; a behaviour other than 0, 1, 2 raises
    /// LuSVNInternalInconsistencyException "Unrecognized whitespace compare
    /// behavior" before anything is allocated.
    static svn_diff_file_options_t* convertOptions(const LuSVNDiffOptions& options, apr_pool_t* pool);

private:
    std::int32_t whitespaceCompareBehavior_ = 0;
    unsigned ignoreEOLStyle_ : 1 = 0;
    unsigned recursive_ : 1 = 1;
    bool noticeAncestry_ = true;
    bool diffDeleted_ = true;
    bool useGitDiffFormat_ = false;
    bool propertiesOnly_ = false;
    bool showCopiesAsAdds_ = false;
};
