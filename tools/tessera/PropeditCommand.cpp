// tessera propedit NAME PATH...: a property of working-copy items edited in
// the user's editor, as svn propedit does it.
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "HistoryOptions.h"
#include "LogMessage.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"
#include "PropertyOutput.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> targetsFile;
    std::optional<std::string> editorCommand;
    bool force = false;
    bool revprop = false;
};

// Where svn writes the file it edits: Subversion's temporary directory.
std::string temporaryDirectory()
{
    for (const char* name : {"TMPDIR", "TMP", "TEMP"})
        if (const char* value = std::getenv(name); value && *value)
            return value;
    return "/tmp";
}

void editTarget(const Settings& settings, const std::string& name, const std::string& target)
{
    if (isURL(target))
        LuSVNException::exceptionWithReason("Targets must be working copy paths", 200009)->raise();
    const auto path = targetPath(splitPegRevision(target).first);
    TesseraOperation operation(target, {true, false});
    std::optional<LuSVNPropertyValue> current;
    try {
        current = LuSVNNode::propertyWithName(
            name, path, LuSVNRevisionSpec::revisionWithRevision(LuSVNRevision::UNSPECIFIED()), operation.context());
    } catch (const LuSVNException& failure) {
        rethrowPropertyFailure(failure);
    }
    const std::string before = current ? propertyBytes(*current) : std::string();
    std::optional<std::string> file;
    std::optional<std::string> edited;
    try {
        edited = editExternally(*operation.context(), settings.editorCommand, temporaryDirectory(), "svn-prop",
                                before, file, "Could not use external editor to fetch log message; consider "
                                              "setting the $SVN_EDITOR environment variable or using the "
                                              "--message (-m) or --file (-F) options");
    } catch (...) {
        if (file)
            std::remove(file->c_str());
        throw;
    }
    std::remove(file->c_str());
    if (edited && name.starts_with("svn:"))
        edited = propertyLineFeeds(*edited);
    if (!edited || *edited == before) {
        writeOutput("No changes to property '" + name + "' on '" + target + "'\n");
        return;
    }
    LuSVNNode::setProperty(name, propertyValue(*edited), path, false, settings.force, operation.context());
    writeOutput("Set new value for property '" + name + "' on '" + target + "'\n");
}

int propedit(const CLI::App& command, const Settings& settings)
{
    if (settings.revprop)
        refuseRevisionProperties();
    std::vector<std::string> arguments = settings.arguments;
    if (settings.targetsFile)
        for (std::string& line : readTargetsFile(*settings.targetsFile))
            arguments.push_back(std::move(line));
    checkArgumentCount(command, arguments, 1, static_cast<std::size_t>(-1));
    if (arguments.size() == 1)
        throwUsageError(command.get_name(), TesseraInsufficientArgumentsError, "Explicit target argument required");
    const std::string name = arguments.front();
    checkPropertyName(name);
    for (auto target = arguments.begin() + 1; target != arguments.end(); ++target)
        editTarget(settings, name, *target);
    return 0;
}

const TesseraCommand propeditCommand(
    {"propedit",
     {"pedit", "pe"},
     "Edit a property with an external editor.",
     "propedit PROPNAME PATH...",
     "The editor is that of --editor-cmd, SVN_EDITOR, the configuration's\n"
     "editor-cmd, VISUAL or EDITOR."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addOption(
            command, "--editor-cmd", [settings](const std::string& editor) { settings->editorCommand = editor; },
            "use ARG as external editor");
        addFlag(command, "--force", settings->force, "force operation to run");
        addFlag(command, "--revprop", settings->revprop, "operate on a revision property (use with -r)");
        addTargetsOption(command, settings->targetsFile);
        addArguments(command, settings->arguments);
        return [&command, settings] { return propedit(command, *settings); };
    });

}  // namespace
