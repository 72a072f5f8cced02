// A Subversion repository on the local disk: creating, opening and deleting
// it (the repository itself, not a working copy of it).
//
//   auto path = LuSVNLocalPath::pathWithString("/srv/svn/project");
//   LuSVNFileSystemOptions options;
//   options.setCompatibility(LuSVNVersion::version(1, 5));   // readable by 1.5
//   auto repository = LuSVNRepository::createRepositoryAtPath(path, options);
//   repository->path()->URL()->string();                     // "file:///srv/svn/project"
//   LuSVNRepository::repositoryAtPath(path)->deleteRepository();
//
// Every operation runs on the loader's default backend
// (LuSVNBundleLoader::sharedInstance()->defaultBundle(), taken when the
// object is made), whatever backend is current on the calling thread. A
// repository object owns a root pool of that backend, in which Subversion's
// handle of the opened repository lives; the pool goes with the object.
// Subversion's errors are raised as LuSVNException (or the subclass their
// code maps to).
#pragma once

#include <memory>
#include <string>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNRepositoryOptions.h>

struct apr_pool_t;
struct svn_repos_t;
class LuSVNBundleProxy;

class TESSERA_EXPORT LuSVNRepository {
public:
    using LocalPath = std::shared_ptr<const LuSVNLocalPath>;

    ~LuSVNRepository();
    LuSVNRepository(const LuSVNRepository&) = delete;
    LuSVNRepository& operator=(const LuSVNRepository&) = delete;

    /// An object for the path that has not opened anything, for
    /// deleteRepository. Raises "Invalid parameter not satisfying: thePath !=
    /// nil" for null; LuSVNException when no backend is loaded.
    static std::shared_ptr<LuSVNRepository> repositoryWithLocalPath(LocalPath thePath);

    /// Opens the existing repository at the path (svn_repos_open). Raises
    /// "Invalid parameter not satisfying: path != nil" for null.
    static std::shared_ptr<LuSVNRepository> repositoryAtPath(LocalPath path);

    /// Creates a repository of the file-system type named by `type` ("fsfs",
    /// "bdb", as Subversion names them) at the path, with Subversion's
    /// file-system configuration made of "fs-type" and the options' entries
    /// (LuSVNRepositoryOptions::addLuSVNOptionsTo) and the user's Subversion
    /// configuration. The directory must be missing or empty. Raises
    /// "Invalid parameter not satisfying: path != nil" for null. When
    /// Subversion fails (a type this Subversion lacks, say) it removes what
    /// it made, and the error is raised.
    static std::shared_ptr<LuSVNRepository> createRepositoryOfType(const std::string& type, LocalPath path,
                                                                   const LuSVNRepositoryOptions& options);

    /// createRepositoryOfType with "fsfs". Raises "Invalid parameter not
    /// satisfying: localPath != nil" for null.
    static std::shared_ptr<LuSVNRepository> createFileSystemRepositoryAtPath(LocalPath localPath,
                                                                             const LuSVNRepositoryOptions& options);

    /// createRepositoryOfType with "bdb". Raises "Invalid parameter not
    /// satisfying: localPath != nil" for null.
    static std::shared_ptr<LuSVNRepository> createBerkeleyDBRepositoryAtPath(LocalPath localPath,
                                                                             const LuSVNRepositoryOptions& options);

    /// The back end chosen by the options' class: LuSVNFileSystemOptions
    /// (and its subclasses) give createFileSystemRepositoryAtPath,
    /// LuSVNBerkeleyDBOptions createBerkeleyDBRepositoryAtPath. Any other
    /// options object, LuSVNRepositoryOptions itself included, raises
    /// LuSVNInvalidArgumentException "Unrecognized repository options type"
    /// before anything is created. Raises "Invalid parameter not satisfying:
    /// path != nil" for null.
    static std::shared_ptr<LuSVNRepository> createRepositoryAtPath(LocalPath path, const LuSVNOptions& options);

    /// Deletes the repository at path() from the disk (svn_repos_delete).
    void deleteRepository();

    const LocalPath& path() const { return path_; }

private:
    explicit LuSVNRepository(LocalPath path);

    LocalPath path_;
    std::shared_ptr<LuSVNBundleProxy> backend_;
    apr_pool_t* pool_ = nullptr;
    svn_repos_t* repository_ = nullptr;
};
