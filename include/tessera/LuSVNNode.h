// Nodes: files and directories of working copies and repositories.
//
// This header holds the working-copy queries that choose a backend for an
// existing working copy; they need no client context.
//
//   int format = LuSVNNode::formatVersionForWorkingCopyAtPath("/home/me/wc");  // 31
//   LuSVNVersion release = LuSVNNode::versionForWorkingCopyAtPath("/home/me/wc");
//   auto backend = LuSVNBundleLoader::sharedInstance()->bundleForVersion(release);
#pragma once

#include <memory>
#include <string>

#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNVersion.h>

class TESSERA_EXPORT LuSVNNode {
public:
    /// The working-copy format of the directory as the backend reads it: 0
    /// when it is not a working copy. A format the backend does not support
    /// is returned, not raised. Raises LuSVNNoSuchEntryException when the path
    /// does not exist and LuSVNException for other Subversion errors.
    static int formatVersionForWorkingCopyAtPath(const std::string& path,
                                                 const std::shared_ptr<LuSVNBundleProxy>& bundle);

    /// The same through the newest loaded backend; when that raises, through
    /// the next older loaded backend, whose answer is final.
    static int formatVersionForWorkingCopyAtPath(const std::string& path);

    /// The release line of the oldest loaded backend that reads the working
    /// copy's format (major and minor only), or the newest loaded version when
    /// none does. Raises LuSVNNotWorkingCopyException "\"name\" is not a
    /// working copy" when the path is not one.
    static LuSVNVersion versionForWorkingCopyAtPath(const std::string& path);

    /// The path of the working copy's metadata directory in the directory
    /// (".svn"), through the default backend.
    static std::string adminAreaInDirectoryAtPath(const std::string& path);
};
