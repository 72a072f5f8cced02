#include "LogMessage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>

#include "Messages.h"

namespace {

// svn's codes.
constexpr int NoExternalEditor = 205007;
constexpr int InsufficientArguments = 205001;
constexpr int ExternalProgram = 200012;
constexpr int EndOfFile = 70014;

std::optional<std::string> environment(const char* name)
{
    const char* value = std::getenv(name);
    return value && *value ? std::optional<std::string>(value) : std::nullopt;
}

bool blank(const std::string& text)
{
    return text.find_first_not_of(" \t\n\v\f\r") == std::string::npos;
}

struct Stamp {
    struct timespec modified;
    off_t size;
    bool operator==(const Stamp& other) const
    {
        return modified.tv_sec == other.modified.tv_sec && modified.tv_nsec == other.modified.tv_nsec &&
               size == other.size;
    }
};

Stamp stamp(const std::string& path)
{
    struct stat info {};
    ::stat(path.c_str(), &info);
    return {info.st_mtim, info.st_size};
}

}  // namespace

std::optional<std::string> editExternally(LuSVNContext& context, const std::optional<std::string>& editorCommand,
                                          const std::string& directory, const std::string& stem,
                                          const std::string& contents, std::optional<std::string>& file,
                                          const std::string& noEditorMessage)
{
    std::optional<std::string> editor = editorCommand;
    if (!editor)
        editor = environment("SVN_EDITOR");
    if (!editor)
        editor = context.optionForName("editor-cmd", "config", "helpers", std::nullopt);
    if (!editor)
        editor = environment("VISUAL");
    if (!editor)
        editor = environment("EDITOR");
    if (!editor || blank(*editor))
        throwErrorChain({{NoExternalEditor, noEditorMessage},
                         {NoExternalEditor,
                          "None of the environment variables SVN_EDITOR, VISUAL or EDITOR are set, and no "
                          "'editor-cmd' run-time configuration option was found"}});

    // STEM.tmp, STEM.2.tmp, ... in the directory, which the editor runs in.
    namespace fs = std::filesystem;
    std::string name = stem + ".tmp";
    for (int n = 2; fs::exists(fs::path(directory) / name); ++n)
        name = stem + "." + std::to_string(n) + ".tmp";
    file = (fs::path(directory) / name).string();
    std::ofstream(*file, std::ios::binary) << contents;
    // Two seconds back, so that a fast editor that keeps the size still
    // changes the time.
    struct timespec times[2] = {{0, UTIME_OMIT}, {0, 0}};
    times[1].tv_sec = stamp(*file).modified.tv_sec - 2;
    ::utimensat(AT_FDCWD, file->c_str(), times, 0);
    const Stamp before = stamp(*file);

    // svn quotes the file's name on the editor's command line.
    const std::string command = *editor + " \"" + name + "\"";
    const fs::path previous = fs::current_path();
    fs::current_path(directory);
    const int status = std::system(command.c_str());
    fs::current_path(previous);
    if (status != 0)
        throwErrorChain({{ExternalProgram, "system('" + command + "') returned " + std::to_string(status)}});
    if (stamp(*file) == before)
        return std::nullopt;
    std::ifstream in(*file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

TesseraLogMessageProvider::TesseraLogMessageProvider(Settings settings) : settings_(std::move(settings)) {}

std::shared_ptr<LuSVNLogMessageProvider> TesseraLogMessageProvider::copy() const
{
    return std::make_shared<TesseraLogMessageProvider>(settings_);
}

std::string TesseraLogMessageProvider::withoutTemplate(const std::string& text)
{
    const auto end = text.find(TesseraLogMessageEnd);
    return end == std::string::npos ? text : text.substr(0, end);
}

std::string TesseraLogMessageProvider::editorTemplate(const std::vector<LuSVNCommitItem>& items,
                                                      const std::string& baseDirectory)
{
    std::string text = std::string("\n") + TesseraLogMessageEnd + "\n\n";
    for (const LuSVNCommitItem& item : items) {
        std::string path = item.path() ? item.path()->string() : item.URL() ? item.URL()->string() : "";
        if (item.path() && path.size() > baseDirectory.size() && path.compare(0, baseDirectory.size(), baseDirectory) == 0 &&
            path[baseDirectory.size()] == '/')
            path = path.substr(baseDirectory.size() + 1);
        else if (item.path())
            path.clear();  // the base directory itself
        if (path.empty())
            path = ".";
        const std::int32_t actions = item.actions();
        const bool added = actions & LuSVNCommitActionAdd, deleted = actions & LuSVNCommitActionDelete;
        text += added && deleted ? 'R' : added ? 'A' : deleted ? 'D' : (actions & LuSVNCommitActionModification) ? 'M' : '_';
        text += (actions & LuSVNCommitActionPropertyModification) ? 'M' : ' ';
        text += item.isLocked() ? 'U' : ' ';
        text += (actions & LuSVNCommitActionCopy) ? "+ " : "  ";
        text += path + "\n";
    }
    return text;
}

bool TesseraLogMessageProvider::contextPromptForLogMessage(LuSVNContext& context, std::optional<std::string>& message,
                                                           const std::vector<LuSVNCommitItem>& items)
{
    try {
        return promptForMessage(context, message, items);
    } catch (...) {
        failed_ = true;
        throw;
    }
}

bool TesseraLogMessageProvider::promptForMessage(LuSVNContext& context, std::optional<std::string>& message,
                                                 const std::vector<LuSVNCommitItem>& items)
{
    if (settings_.message) {
        message = withoutTemplate(*settings_.message);
        return true;
    }
    if (items.empty()) {
        message = "";
        return true;
    }
    if (settings_.nonInteractive)
        throwErrorChain({{InsufficientArguments, "Cannot invoke editor to get log message when non-interactive"}});
    const std::string contents = editorTemplate(items, settings_.baseDirectory);
    for (;;) {
        std::optional<std::string> edited = editMessage(context, contents);
        if (edited) {
            edited = withoutTemplate(*edited);
            if (blank(*edited))
                edited.reset();
        }
        if (edited) {
            message = edited;
            return true;
        }
        std::fputs("\nLog message unchanged or not specified\n(a)bort, (c)ontinue, (e)dit:\n", stderr);
        std::string reply;
        if (!std::getline(std::cin, reply))
            throwErrorChain({{EndOfFile, "End of file while reading from terminal"}});
        const char letter = static_cast<char>(std::tolower(static_cast<unsigned char>(reply.empty() ? ' ' : reply[0])));
        if (letter == 'a' || letter == 'c') {
            removeLeftFile();
            if (letter == 'a')
                return false;
            message = "";
            return true;
        }
    }
}

std::optional<std::string> TesseraLogMessageProvider::editMessage(LuSVNContext& context, const std::string& contents)
{
    std::optional<std::string> file;
    const std::optional<std::string> edited = editExternally(
        context, settings_.editorCommand, settings_.baseDirectory, "svn-commit", contents, file,
        "Could not use external editor to fetch log message; consider setting the $SVN_EDITOR environment "
        "variable or using the --message (-m) or --file (-F) options");
    leftFile_ = file;
    return edited;
}

void TesseraLogMessageProvider::removeLeftFile()
{
    if (leftFile_)
        std::remove(leftFile_->c_str());
    leftFile_.reset();
}
