// The answer of a context's conflict resolver (LuSVNContext::setConflictResolver).
//
//   context->setConflictResolver([](const LuSVNConflict& conflict) {
//       if (conflict.kind() == 0)   // a text conflict: take the incoming file
//           return LuSVNConflictResolution::choose(LuSVNConflictChoiceTheirsFull);
//       return LuSVNConflictResolution::postpone();
//   });
//
// While a merge, update or switch runs, Subversion asks the resolver about
// each text and property conflict it meets (and, from 1.7 on, about some
// tree conflicts). The answer leaves the conflict for later, installs one of
// the versions Subversion offers, or installs a file the resolver merged.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include <tessera/LuSVNConflict.h>
#include <tessera/LuSVNResolveOptions.h>

/// A resolver's answer: a choice (LuSVNResolveOptions.h), and for
/// LuSVNConflictChoiceMerged the file to install.
struct LuSVNConflictResolution {
    /// What Subversion installs.
    LuSVNConflictChoice choice = LuSVNConflictChoicePostpone;
    /// With LuSVNConflictChoiceMerged: the file whose contents become the
    /// item's; nullopt keeps the working file (svn's "working"). Ignored
    /// with the other choices.
    std::optional<std::string> mergedFilePath;

    /// Leaves the conflict for later.
    static LuSVNConflictResolution postpone() { return {}; }
    /// Installs the chosen version.
    static LuSVNConflictResolution choose(LuSVNConflictChoice choice) { return {choice, std::nullopt}; }
    /// Installs the contents of the file at the path.
    static LuSVNConflictResolution mergedFile(std::string path)
    {
        return {LuSVNConflictChoiceMerged, std::move(path)};
    }
};

/// Asked once per conflict, on the operation's thread. The conflict is a
/// copy of Subversion's description; its file paths name Subversion's
/// temporary files and hold only while the resolver runs. An exception
/// stops the operation and reaches its caller.
using LuSVNConflictResolver = std::function<LuSVNConflictResolution(const LuSVNConflict& conflict)>;
