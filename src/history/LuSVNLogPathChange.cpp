#include <tessera/LuSVNException.h>
#include <tessera/LuSVNLogPathChange.h>

#include "LuSVNObjectDescription.h"

LuSVNLogAction LuSVNLogActionFromChar(char character)
{
    switch (character) {
    case '-': return LuSVNLogActionNone;
    case 'A': return LuSVNLogActionAdded;
    case 'D': return LuSVNLogActionDeleted;
    case 'R': return LuSVNLogActionReplaced;
    case 'M': return LuSVNLogActionModified;
    default: return LuSVNLogActionUnrecognized;
    }
}

char LuSVNCharFromLogAction(LuSVNLogAction action)
{
    switch (action) {
    case LuSVNLogActionUnrecognized: return 'O';
    case LuSVNLogActionNone: return '-';
    case LuSVNLogActionAdded: return 'A';
    case LuSVNLogActionDeleted: return 'D';
    case LuSVNLogActionReplaced: return 'R';
    case LuSVNLogActionModified: return 'M';
    }
    throw LuSVNException("Unrecognized action");
}

std::string LuSVNStringFromLogAction(LuSVNLogAction action)
{
    return std::string(1, LuSVNCharFromLogAction(action));
}

LuSVNLogAction LuSVNLogActionFromString(std::optional<std::string_view> text)
{
    if (!text || text->empty())
        return LuSVNLogActionNone;
    return LuSVNLogActionFromChar(text->front());
}

LuSVNLogPathChange::LuSVNLogPathChange(std::string path, LuSVNLogAction action)
    : path_(std::move(path)), action_(action)
{
}

LuSVNLogPathChange::LuSVNLogPathChange(std::string path, LuSVNLogAction action, std::optional<std::string> copyPath,
                                       std::int32_t copyRevision)
    : path_(std::move(path)), action_(action), copyPath_(std::move(copyPath)), copyRevision_(copyRevision)
{
}

std::optional<std::string> LuSVNLogPathChange::adjustPath(const std::optional<std::string>& path) const
{
    if (action_ != LuSVNLogActionAdded)
        return path;
    if (!copyPath_ || !path)
        return std::nullopt;
    if (*path == path_)
        return copyPath_;
    return *copyPath_ + (path->size() > path_.size() ? path->substr(path_.size()) : std::string());
}

std::string LuSVNLogPathChange::stringFromAction(LuSVNLogAction action)
{
    switch (action) {
    case LuSVNLogActionNone: return "LuSVNLogActionNone";
    case LuSVNLogActionAdded: return "LuSVNLogActionAdded";
    case LuSVNLogActionDeleted: return "LuSVNLogActionDeleted";
    case LuSVNLogActionReplaced: return "LuSVNLogActionReplaced";
    case LuSVNLogActionModified: return "LuSVNLogActionModified";
    default: return "<unrecognized>";
    }
}

std::string LuSVNLogPathChange::description() const
{
    std::string text = "{ " + tessera_private::LuSVNGenericDescription("LuSVNLogPathChange", this) +
                       ", action: " + stringFromAction(action_) + ", path: " + path_;
    if (copyPath_)
        text += ", copyPath: " + *copyPath_ + ", copyRevision: " + std::to_string(copyRevision_);
    return text + " }";
}
