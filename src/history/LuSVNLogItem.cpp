#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNDebug.h>
#include <tessera/LuSVNLogItem.h>
#include <tessera/LuSVNRevisionRange.h>

#include "LuSVNObjectDescription.h"

LuSVNLogItem::LuSVNLogItem(std::optional<std::string> message, std::int32_t revision, std::optional<Date> date,
                           std::optional<std::string> author)
    : message_(std::move(message)), revision_(revision), date_(date), author_(std::move(author))
{
}

LuSVNLogItem::LuSVNLogItem(std::optional<std::string> message, std::int32_t revision, std::optional<Date> date,
                           std::optional<std::string> author, ChangesByPath changes)
    : message_(std::move(message)),
      revision_(revision),
      date_(date),
      author_(std::move(author)),
      changes_(std::move(changes))
{
}

std::vector<std::string> LuSVNLogItem::changedPaths() const
{
    std::vector<std::string> paths;
    paths.reserve(changes_.size());
    for (const auto& [path, change] : changes_)
        paths.push_back(path);
    return paths;
}

LuSVNLogItem::Changes LuSVNLogItem::changes() const
{
    Changes result;
    result.reserve(changes_.size());
    for (const auto& [path, change] : changes_)
        result.push_back(change);
    return result;
}

LuSVNLogItem::Changes LuSVNLogItem::changesWithAction(LuSVNLogAction action) const
{
    Changes result;
    for (const auto& [path, change] : changes_)
        if (change->action() == action)
            result.push_back(change);
    return result;
}

LuSVNLogItem::Change LuSVNLogItem::changeForPath(const std::string& path) const
{
    const auto found = changes_.find(path);
    return found == changes_.end() ? nullptr : found->second;
}

LuSVNLogItem::Change LuSVNLogItem::changeForAncestorOfPath(const std::optional<std::string>& path) const
{
    if (!path)
        return nullptr;
    std::string candidate = *path;
    while (!candidate.empty()) {
        if (auto change = changeForPath(candidate))
            return change;
        // The last component goes; "/trunk" becomes "/", "/" stays and ends the search.
        const auto slash = candidate.find_last_of('/');
        std::string parent = slash == std::string::npos ? std::string() : candidate.substr(0, slash == 0 ? 1 : slash);
        if (parent == candidate)
            break;
        candidate = std::move(parent);
    }
    return nullptr;
}

void LuSVNLogItem::addChange(Change change)
{
    auto path = change->path();
    changes_.insert_or_assign(std::move(path), std::move(change));
}

void LuSVNLogItem::assignFrom(const LuSVNLogItem& other)
{
    setRevision(other.revision_);
    setDate(other.date_);
    setAuthor(other.author_);
    setMessage(other.message_);
    changes_ = other.changes_;
    children_ = other.children_;
    subtractiveMerge_ = other.subtractiveMerge_;
}

bool LuSVNLogItem::isInRange(const LuSVNRevisionRange& range) const
{
    if (range.isNumberRange())
        return range.containsNumber(revision_);
    if (range.isDateRange())
        return date_ && range.containsDate(*date_);
    return true;
}

std::string LuSVNLogItem::description() const
{
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNLogItem", this) +
           " revision: " + std::to_string(revision_) +
           ", date: " + (date_ ? LuSVNDateConversion::ISO8601StringValue(*date_) : "(null)") + ", author: \"" +
           author_.value_or("(null)") + "\", message: \"" +
           LuSVNDebugSubstring(message_, 50).value_or("(null)") + "\", changes: " +
           std::to_string(changes_.size()) + " }";
}
