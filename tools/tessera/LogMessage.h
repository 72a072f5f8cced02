// The log message of tessera commit, found as svn finds it: the text of -m
// or -F, else what the user writes in an editor (--editor-cmd, SVN_EDITOR,
// the "editor-cmd" of the configuration, VISUAL, EDITOR) into svn's
// template, which lists the items to commit below the line
// "--This line, and those below, will be ignored--".
#pragma once

#include <tessera/Tessera.h>

#include <optional>
#include <string>
#include <vector>

/// What stands below the message in the editor's file, and is cut from any
/// message there or given with -m and -F.
inline constexpr const char* TesseraLogMessageEnd = "--This line, and those below, will be ignored--";

/// Writes the contents to a new file STEM.tmp (or STEM.2.tmp, ...) in the
/// directory, runs the editor on it there (--editor-cmd, SVN_EDITOR, the
/// configuration's editor-cmd, VISUAL, EDITOR) and answers the file's new
/// text, or none when the editor left it untouched. `file` names the file,
/// which stays. Raises svn's errors: no editor (`noEditorMessage` over
/// svn's list of where it looked), an editor that failed.
std::optional<std::string> editExternally(LuSVNContext& context, const std::optional<std::string>& editorCommand,
                                          const std::string& directory, const std::string& stem,
                                          const std::string& contents, std::optional<std::string>& file,
                                          const std::string& noEditorMessage);

class TesseraLogMessageProvider final : public LuSVNLogMessageProvider {
public:
    struct Settings {
        std::optional<std::string> message;  ///< -m or the file of -F
        std::optional<std::string> editorCommand;
        std::string baseDirectory;  ///< the common parent of the targets: paths shown from it, the file written there
        bool nonInteractive = false;
    };
    explicit TesseraLogMessageProvider(Settings settings);

    /// The message; false when the user chose to abandon the commit. Raises
    /// svn's errors: no editor, an editor that failed, a non-interactive run.
    bool contextPromptForLogMessage(LuSVNContext& context, std::optional<std::string>& message,
                                    const std::vector<LuSVNCommitItem>& items) override;
    std::shared_ptr<LuSVNLogMessageProvider> copy() const override;

    /// Removes the editor's file after a commit that succeeded; after a
    /// failure it stays, as svn leaves it. Its path, when one is left.
    const std::optional<std::string>& leftFile() const { return leftFile_; }
    void removeLeftFile();

    /// Whether finding the message failed (svn then says the commit did).
    bool failed() const { return failed_; }

    /// svn's template for the items: a blank line, the end line, a blank
    /// line, then one line per item ("M    a/b", "A  + c", "D    d").
    static std::string editorTemplate(const std::vector<LuSVNCommitItem>& items, const std::string& baseDirectory);

    /// The message with the end line and all after it cut off.
    static std::string withoutTemplate(const std::string& text);

private:
    bool promptForMessage(LuSVNContext& context, std::optional<std::string>& message,
                          const std::vector<LuSVNCommitItem>& items);
    std::optional<std::string> editMessage(LuSVNContext& context, const std::string& contents);

    Settings settings_;
    std::optional<std::string> leftFile_;
    bool failed_ = false;
};
