#include "Command.h"

#include <algorithm>

namespace {

// Made on first use: commands register from the static initialisers of
// their own files, in no fixed order.
std::vector<const TesseraCommand*>& registry()
{
    static std::vector<const TesseraCommand*> commands;
    return commands;
}

}  // namespace

TesseraCommand::TesseraCommand(Info info, Setup setup) : info_(std::move(info)), setup_(std::move(setup))
{
    registry().push_back(this);
}

std::vector<const TesseraCommand*> TesseraCommand::all()
{
    std::vector<const TesseraCommand*> commands = registry();
    std::sort(commands.begin(), commands.end(),
              [](const TesseraCommand* a, const TesseraCommand* b) { return a->info().name < b->info().name; });
    return commands;
}
