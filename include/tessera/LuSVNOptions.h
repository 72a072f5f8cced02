// Operation options: the base of the options family, and Subversion's depth
// codes.
//
// Every operation takes, besides its targets and its context, one options
// object of the class made for it (LuSVNAddOptions for adding, ...). Options
// are small mutable values: plain C++ classes, copied by their copy
// constructor and assignment (a copy has equal fields; revision fields are
// immutable values and are shared), passed to operations by const reference.
//
//   LuSVNAddOptions options;              // Tessera's defaults, as defaults()
//   options.setForce(false);
//   LuSVNAddOptions copy = options;       // independent of `options`
//   copy.description();                   // "{ <LuSVNAddOptions: 0x...> recursive: 1, force: 0, matchIgnore: 1 }"
//
// Field kinds, as each class's header names them:
//   flag     one bit. The setter takes an integer and keeps only its lowest
//            bit: setRecursive(2) stores false, setRecursive(3) true.
//   boolean  a plain bool.
//   depth    a Subversion depth code (LuSVNDepth below), stored as given.
//   revision an immutable revision value; never null (the setter asserts
//            "revision != nil").
//
// Descriptions begin with the generic description of the object,
// "<ClassName: address>", under its actual class; a class without a format
// of its own answers the inherited one.
//
// The classes: LuSVNOptionsWithRevision (and below it LuSVNCheckOutOptions,
// LuSVNExportOptions, LuSVNSwitchOptions), LuSVNRepositoryOptions (and below
// it LuSVNBerkeleyDBOptions, LuSVNFileSystemOptions), and directly below
// LuSVNOptions: LuSVNAddOptions, LuSVNCommitOptions, LuSVNCopyOptions,
// LuSVNDeleteOptions, LuSVNDiffOptions, LuSVNImportOptions, LuSVNLockOptions,
// LuSVNLogOptions, LuSVNMergeOptions, LuSVNMoveOptions, LuSVNResolveOptions,
// LuSVNRevertOptions, LuSVNStatusOptions, LuSVNUnlockOptions,
// LuSVNUpdateOptions.
#pragma once

#include <cstdint>
#include <string>

#include <tessera/LuSVNExport.h>

/// How far an operation reaches below its target: one of Subversion's depth
/// codes.
using LuSVNDepth = std::int32_t;
inline constexpr LuSVNDepth LuSVNDepthUnknown = -2;     ///< the operation's or the working copy's own choice
inline constexpr LuSVNDepth LuSVNDepthExclude = -1;     ///< the item is excluded
inline constexpr LuSVNDepth LuSVNDepthEmpty = 0;        ///< the target only
inline constexpr LuSVNDepth LuSVNDepthFiles = 1;        ///< the target and its file children
inline constexpr LuSVNDepth LuSVNDepthImmediates = 2;   ///< the target and all its children
inline constexpr LuSVNDepth LuSVNDepthInfinity = 3;     ///< the whole tree

/// The base of the options family; it has no fields.
class TESSERA_EXPORT LuSVNOptions {
public:
    LuSVNOptions() = default;
    LuSVNOptions(const LuSVNOptions&) = default;
    LuSVNOptions& operator=(const LuSVNOptions&) = default;
    virtual ~LuSVNOptions();

    /// A new object with the defaults; each class has its own, of its type.
    static LuSVNOptions defaults() { return {}; }

    /// "<LuSVNOptions: 0x...>", the generic description of the object.
    virtual std::string description() const;
};
