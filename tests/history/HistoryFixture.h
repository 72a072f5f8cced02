// One repository and working copy shared by the history tests, made once per
// test program with the svn client: copies, a move, a replacement, property
// changes, non-ASCII names and texts, a binary file and UTF-16 text files
// with either byte-order mark, committed by three authors.
#pragma once

#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNLocalPath.h>

#include <memory>
#include <string>
#include <vector>

#include "TesseraTestSupport.h"

namespace tessera_history_test {

/// r1 alice imports trunk: a.txt (12 lines), naïve-ü.txt, bin.dat, le.txt
///    (UTF-16LE), be.txt (UTF-16BE);
/// r2 bob edits a.txt and le.txt and sets a property on naïve-ü.txt;
/// r3 alice copies trunk to branch;
/// r4 bob moves trunk/a.txt to trunk/moved.txt;
/// r5 alice replaces trunk/bin.dat by a copy of branch/bin.dat;
/// r6 carol edits trunk/moved.txt and trunk/be.txt.
/// The working copy "wc" is a check-out of the repository root at r6.
class HistoryRepository {
public:
    static const HistoryRepository& shared();
    /// Another repository, with merges:
    /// r1 alice adds trunk/f.txt (lines "1" to "4") and branches;
    /// r2 bob copies trunk to branches/b;
    /// r3 bob changes line 2 of branches/b/f.txt;
    /// r4 carol changes line 4 of branches/b/f.txt and sets a property on
    ///    branches/b/f.txt;
    /// r5 alice merges branches/b into trunk;
    /// r6 alice merges r3 back out of trunk (a reverse merge).
    /// Its working copy is a check-out of the root at r6.
    static const HistoryRepository& withMerges();

    const std::string& url() const { return url_; }
    std::string workingCopy() const { return directory_ / "wc"; }
    std::string item(const std::string& name) const { return workingCopy() + "/" + name; }
    /// A scratch directory for a test's own files.
    std::string scratch(const std::string& name) const { return directory_ / name; }
    /// A context of the backend at the path (null: the newest one).
    std::shared_ptr<LuSVNContext> context(const char* bundlePath = nullptr) const;

private:
    explicit HistoryRepository(bool withMerges);
    void fill();
    void fillWithMerges();

    tessera_test::TemporaryDirectory directory_;
    tessera_test::TemporaryDirectory config_;
    std::string url_;
};

/// An edit of a text: at line `at` of the original, `removed` lines go and
/// `inserted` new lines come.
struct Edit {
    std::size_t at, removed, inserted;
};

/// A named list of edits.
struct EditCase {
    const char* name;
    std::vector<Edit> edits;
};

/// Edits of a 13-line text at its start, middle and end: insertions,
/// deletions, changes, all of them at once, all lines replaced, emptied.
const std::vector<EditCase>& editCases();

/// A text after edits, and for each of its lines the original line it came
/// from, or -1 for a new one.
struct EditedText {
    std::vector<std::string> lines;
    std::vector<long> origin;
    std::string text() const;
};

/// The edits (ascending, not overlapping) applied to the lines; new lines
/// read "local N", unlike any original line.
EditedText applyEdits(const std::vector<std::string>& original, const std::vector<Edit>& edits);

/// The local path of the text.
std::shared_ptr<const LuSVNLocalPath> localPath(const std::string& path);

/// The lines "line 1" to "line <count>".
std::vector<std::string> numberedLines(int count);

/// Joins lines, each ending in "\n".
std::string joinLines(const std::vector<std::string>& lines);

/// The UTF-16 form of an ASCII text, with its byte-order mark.
std::string utf16(const std::string& ascii, bool bigEndian);

/// svn with the arguments; throws with its output when it fails.
std::string svnOrThrow(const std::vector<std::string>& arguments);

}  // namespace tessera_history_test
