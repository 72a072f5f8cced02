#include <tessera/LuSVNBerkeleyDBOptions.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNFileSystemOptions.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNRepository.h>

#include <utility>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNBundlePushed.h"
#include "LuSVNTrace.h"

using tessera_private::LuSVNBundlePushed;

LuSVNRepository::LuSVNRepository(LocalPath path)
    : path_(std::move(path)), backend_(LuSVNBundleLoader::sharedInstance()->defaultBundle())
{
    LuSVNBundlePushed pushed(backend_);
    pool_ = LuSVNEntry<19>()(nullptr, nullptr);
}

LuSVNRepository::~LuSVNRepository()
{
    // The pool belongs to the default backend, whichever backend is current here.
    LuSVNBundlePushed pushed(backend_);
    LuSVNEntry<20>()(pool_);
}

std::shared_ptr<LuSVNRepository> LuSVNRepository::repositoryWithLocalPath(LocalPath thePath)
{
    LUSVN_PARAMETER_ASSERT(thePath != nullptr, "thePath != nil");
    return std::shared_ptr<LuSVNRepository>(new LuSVNRepository(std::move(thePath)));
}

std::shared_ptr<LuSVNRepository> LuSVNRepository::repositoryAtPath(LocalPath path)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_TRACE("LuSVNRepository", "repositoryAtPath", {"path", path->string()});
    auto repository = repositoryWithLocalPath(std::move(path));
    LuSVNBundlePushed pushed(repository->backend_);
    apr_pool_t* pool = repository->pool_;
    LuSVNThrowIfError(
        LuSVNEntry<105>()(&repository->repository_, repository->path_->SVNRepresentationInPool(pool), pool));
    return repository;
}

std::shared_ptr<LuSVNRepository> LuSVNRepository::createRepositoryOfType(const std::string& type, LocalPath path,
                                                                         const LuSVNRepositoryOptions& options)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_TRACE("LuSVNRepository", "createRepositoryOfType", {"type", type}, {"path", path->string()},
                {"options", options.description()});
    auto repository = repositoryWithLocalPath(std::move(path));
    LuSVNBundlePushed pushed(repository->backend_);
    apr_pool_t* pool = repository->pool_;

    // The file system keeps this table for its lifetime, so everything in it lives in the pool.
    apr_hash_t* fileSystemConfiguration = LuSVNEntry<13>()(pool);
    LuSVNEntry<18>()(fileSystemConfiguration, "fs-type", APR_HASH_KEY_STRING, LuSVNEntry<4>()(pool, type.c_str()));
    options.addLuSVNOptionsTo(fileSystemConfiguration, pool);

    apr_hash_t* configuration = nullptr;
    LuSVNThrowIfError(LuSVNEntry<38>()(&configuration, nullptr, pool));
    LuSVNThrowIfError(LuSVNEntry<106>()(&repository->repository_, repository->path_->SVNRepresentationInPool(pool),
                                        nullptr, nullptr, configuration, fileSystemConfiguration, pool));
    return repository;
}

std::shared_ptr<LuSVNRepository> LuSVNRepository::createFileSystemRepositoryAtPath(
    LocalPath localPath, const LuSVNRepositoryOptions& options)
{
    LUSVN_PARAMETER_ASSERT(localPath != nullptr, "localPath != nil");
    return createRepositoryOfType("fsfs", std::move(localPath), options);
}

std::shared_ptr<LuSVNRepository> LuSVNRepository::createBerkeleyDBRepositoryAtPath(
    LocalPath localPath, const LuSVNRepositoryOptions& options)
{
    LUSVN_PARAMETER_ASSERT(localPath != nullptr, "localPath != nil");
    return createRepositoryOfType("bdb", std::move(localPath), options);
}

std::shared_ptr<LuSVNRepository> LuSVNRepository::createRepositoryAtPath(LocalPath path, const LuSVNOptions& options)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    if (const auto* fileSystem = dynamic_cast<const LuSVNFileSystemOptions*>(&options))
        return createFileSystemRepositoryAtPath(std::move(path), *fileSystem);
    if (const auto* berkeleyDB = dynamic_cast<const LuSVNBerkeleyDBOptions*>(&options))
        return createBerkeleyDBRepositoryAtPath(std::move(path), *berkeleyDB);
    throw LuSVNInvalidArgumentException("Unrecognized repository options type");
}

void LuSVNRepository::deleteRepository()
{
    LUSVN_TRACE("LuSVNRepository", "deleteRepository", {"path", path_->string()});
    LuSVNBundlePushed pushed(backend_);
    LuSVNThrowIfError(LuSVNEntry<107>()(path_->SVNRepresentationInPool(pool_), pool_));
}
