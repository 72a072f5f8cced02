// The editor's template of a commit and the message read back from it, as
// svn writes and reads them.
#include <tessera/Tessera.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "LogMessage.h"

namespace {

LuSVNCommitItem item(const std::string& path, std::int32_t actions, bool locked = false)
{
    LuSVNCommitItem made;
    made.setPath(LuSVNLocalPath::pathWithString(path));
    made.setActions(actions);
    made.setIsLocked(locked);
    return made;
}

TEST(TesseraLogMessage, TemplateListsTheItemsFromTheBaseDirectory)
{
    const std::vector<LuSVNCommitItem> items = {
        item("/wc/a.txt", LuSVNCommitActionModification),
        item("/wc/dir", LuSVNCommitActionPropertyModification),
        item("/wc/new", LuSVNCommitActionAdd | LuSVNCommitActionModification),
        item("/wc/copy", LuSVNCommitActionAdd | LuSVNCommitActionCopy | LuSVNCommitActionPropertyModification),
        item("/wc/gone", LuSVNCommitActionDelete),
        item("/wc/swap", LuSVNCommitActionAdd | LuSVNCommitActionDelete),
        item("/wc/locked", LuSVNCommitActionModification, true),
        item("/wc", LuSVNCommitActionPropertyModification),
        item("/elsewhere/x", LuSVNCommitActionModification),
    };
    EXPECT_EQ(TesseraLogMessageProvider::editorTemplate(items, "/wc"),
              "\n--This line, and those below, will be ignored--\n\n"
              "M    a.txt\n"
              "_M   dir\n"
              "A    new\n"
              "AM + copy\n"
              "D    gone\n"
              "R    swap\n"
              "M U  locked\n"
              "_M   .\n"
              "M    .\n");
}

TEST(TesseraLogMessage, TextBelowTheEndLineIsCut)
{
    const std::pair<std::string, std::string> cases[] = {
        {"fix\n\n--This line, and those below, will be ignored--\n\nM    a\n", "fix\n\n"},
        {"no line at all\n", "no line at all\n"},
        {"--This line, and those below, will be ignored--", ""},
        {"a --This line, and those below, will be ignored-- b", "a "},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(TesseraLogMessageProvider::withoutTemplate(text), expected) << text;
}

}  // namespace
