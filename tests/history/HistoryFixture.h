// One repository and working copy shared by the history tests, made once per
// test program with the svn client: copies, a move, a replacement, property
// changes, non-ASCII names and texts, a binary file and UTF-16 text files
// with either byte-order mark, committed by three authors.
#pragma once

#include <tessera/LuSVNContext.h>

#include <memory>
#include <string>

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

    const std::string& url() const { return url_; }
    std::string workingCopy() const { return directory_ / "wc"; }
    std::string item(const std::string& name) const { return workingCopy() + "/" + name; }
    /// A scratch directory for a test's own files.
    std::string scratch(const std::string& name) const { return directory_ / name; }
    /// A context of the newest backend.
    std::shared_ptr<LuSVNContext> context() const;

private:
    HistoryRepository();

    tessera_test::TemporaryDirectory directory_;
    tessera_test::TemporaryDirectory config_;
    std::string url_;
};

/// The UTF-16 form of an ASCII text, with its byte-order mark.
std::string utf16(const std::string& ascii, bool bigEndian);

/// svn with the arguments; throws with its output when it fails.
std::string svnOrThrow(const std::vector<std::string>& arguments);

}  // namespace tessera_history_test
