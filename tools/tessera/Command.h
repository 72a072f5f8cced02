// A command of the tessera program. Each command lives in a source file of its
// own and registers itself there with a static TesseraCommand, which declares
// its options on the command's parser and hands back what to run:
//
//   const TesseraCommand wc({"wc", {}, "Show a working copy's format.", "wc PATH", ""},
//                           [](CLI::App& command) -> TesseraCommand::Action {
//                               auto targets = std::make_shared<std::vector<std::string>>();
//                               addTargets(command, *targets);
//                               return [targets] { return describe(*targets); };
//                           });
//
// The options follow svn's conventions (see Options.h); parsing, help and the
// svn-style messages for bad arguments are the program's (CommandLine.h).
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

class TesseraCommand {
public:
    struct Info {
        std::string name;
        std::vector<std::string> aliases;
        std::string summary;      // one sentence, as "tessera help" lists it
        std::string usage;        // "status [PATH...]"; several forms one per line
        std::string description;  // paragraphs after the usage, may be empty
    };
    /// Runs the command once its arguments are parsed; the exit status.
    using Action = std::function<int()>;
    using Setup = std::function<Action(CLI::App& command)>;

    /// Registers the command; meant for objects of static storage duration.
    TesseraCommand(Info info, Setup setup);

    const Info& info() const { return info_; }
    Action setUp(CLI::App& command) const { return setup_(command); }

    /// The registered commands, ordered by name.
    static std::vector<const TesseraCommand*> all();

private:
    Info info_;
    Setup setup_;
};
