// Objects the application keeps while the library lets go of what they were
// made for: an authentication stack held across rebinding, and one provider
// in the stacks of several contexts, one context at a time or on several
// threads at once. Each ends in a status walk against the repository, which
// is where Subversion asks the providers.
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNContextPool.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNSimpleCredentials.h>
#include <tessera/LuSVNStatusOptions.h>
#include <tessera/LuSVNUsernameCredentials.h>
#include <tessera/LuSVNUsernameProvider.h>

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <sstream>
#include <thread>

#include "LuSVNContextTestSupport.h"
#include "TesseraSvnserve.h"

namespace {

using context_test::AuthorProvider;
using tessera_test::TemporaryDirectory;

// Answers the svnserve's password request with the given password and
// counts how often it was asked.
using PasswordProvider = tessera_test::SvnservePasswordProvider;

// The nodes of a walk of the working copy compared against the repository,
// with the number of items the repository changed.
LuSVNNode::Nodes walkAgainstRepository(const std::string& workingCopy, const std::shared_ptr<LuSVNContext>& context,
                                       std::uint32_t& remoteChanges)
{
    LuSVNStatusOptions options;
    options.setCompareAgainstRepository(true);
    return LuSVNDirectory::statusForNodesInDirectoryAtPath(LuSVNLocalPath::pathWithString(workingCopy), options,
                                                           nullptr, nullptr, &remoteChanges, context);
}

// A working copy of a repository that has changed since, and the number of
// items that svn status -u marks out of date in it.
class ChangedRepository {
public:
    explicit ChangedRepository(const std::string& url, std::vector<std::string> credentials = {})
    {
        auto svn = [&](std::vector<std::string> arguments) {
            arguments.insert(arguments.end(), credentials.begin(), credentials.end());
            const auto result = tessera_test::svn(std::move(arguments));
            EXPECT_EQ(result.status, 0) << result.output;
            return result.output;
        };
        svn({"checkout", "-q", url, workingCopy});
        svn({"mkdir", "-q", "-m", "later", url + "/later"});
        std::istringstream lines(svn({"status", "-u", workingCopy}));
        for (std::string line; std::getline(lines, line);)
            remoteChanges += line.size() > 8 && line[8] == '*' ? 1 : 0;
        EXPECT_GT(remoteChanges, 0u);
    }

    TemporaryDirectory directory;
    const std::string workingCopy = directory / "wc";
    std::uint32_t remoteChanges = 0;
};

// Passes every request on, counting those made with another backend than
// the one of the context the calling thread walks with.
class BackendWitness : public LuSVNAuthenticationProvider {
public:
    const LuSVNCredentialsClass& credentialsClass() const override { return LuSVNUsernameCredentials::classObject(); }
    std::shared_ptr<LuSVNCredentials> credentialsForRealm(const std::optional<std::string>&, const LuSVNAuthParameters&,
                                                          std::shared_ptr<void>&) override
    {
        ++requests;
        mismatches += LuSVNBundleCurrent() == expected ? 0 : 1;
        return nullptr;
    }
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override { return std::make_shared<BackendWitness>(); }

    static thread_local std::shared_ptr<LuSVNBundleProxy> expected;
    std::atomic<int> requests = 0;
    std::atomic<int> mismatches = 0;
};

thread_local std::shared_ptr<LuSVNBundleProxy> BackendWitness::expected;

class ContextLifetimeTest : public context_test::ContextTest {
protected:
    std::shared_ptr<LuSVNContext> bareContext(
        std::shared_ptr<LuSVNBundleProxy> bundle = LuSVNBundleLoader::sharedInstance()->newestBundle()) const
    {
        return LuSVNContext::contextWithBundle(std::move(bundle), {}, configurationDirectory);
    }
};

TEST_F(ContextLifetimeTest, AStackHeldAcrossRebindingNeverReachesTheContext)
{
    const tessera_test::Svnserve server;
    const ChangedRepository repository(server.url(), {"--username", "alice", "--password", "wonderland",
                                                      "--no-auth-cache"});
    auto alice = std::make_shared<PasswordProvider>("wonderland");
    auto stranger = std::make_shared<PasswordProvider>("looking-glass");
    const auto rebound = bareContext();
    rebound->authenticationStack()->addProvider(alice);
    const auto held = rebound->authenticationStack();

    rebound->setBundle(rebound->bundle());
    // The held stack is no longer the context's: what the application does
    // with it stays in it.
    EXPECT_NE(rebound->authenticationStack(), held);
    EXPECT_EQ(held->delegate(), nullptr);
    held->addProvider(stranger);
    held->setDelegate(rebound);
    held->removeAllProviders();
    EXPECT_EQ(rebound->ctx()->auth_baton, rebound->authenticationStack()->baton());
    EXPECT_EQ(rebound->authenticationStack()->providers(), (std::vector<LuSVNAuthenticationStack::Provider>{alice}));

    std::uint32_t remoteChanges = 0;
    walkAgainstRepository(repository.workingCopy, rebound, remoteChanges);
    EXPECT_EQ(remoteChanges, repository.remoteChanges);
    EXPECT_GE(alice->asked, 1);
    EXPECT_EQ(stranger->asked, 0);
}

TEST_F(ContextLifetimeTest, OneProviderServesContextsThatOutliveEachOther)
{
    const ChangedRepository repository(repositoryURL);
    const auto witness = std::make_shared<BackendWitness>();
    const std::vector<LuSVNAuthenticationStack::Provider> providers{witness,
                                                                    std::make_shared<LuSVNUsernameProvider>()};
    const auto survivor = bareContext();
    survivor->authenticationStack()->setProviders(providers);
    for (int i = 0; i < 3; ++i) {
        // Each builds its stack of the same providers after the survivor's,
        // for another backend, and goes with its pool.
        const auto passing = bareContext(
            LuSVNBundleLoader::sharedInstance()->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_6_23));
        passing->authenticationStack()->setProviders(providers);
    }
    BackendWitness::expected = survivor->bundle();
    std::uint32_t remoteChanges = 0;
    walkAgainstRepository(repository.workingCopy, survivor, remoteChanges);
    BackendWitness::expected.reset();
    EXPECT_EQ(remoteChanges, repository.remoteChanges);
    EXPECT_EQ(witness->requests, 1);
    EXPECT_EQ(witness->mismatches, 0);
}

// The same providers in the contexts of two pools, one per backend; the
// threads walk at once while the pools make contexts and, after every walk,
// let go of them all. Each request runs with the backend of the context that
// asks.
TEST_F(ContextLifetimeTest, ThreadsShareTheProvidersOfThePoolsContexts)
{
    const ChangedRepository repository(repositoryURL);
    const auto witness = std::make_shared<BackendWitness>();
    const std::vector<LuSVNAuthenticationStack::Provider> providers{witness, std::make_shared<LuSVNUsernameProvider>(),
                                                                    std::make_shared<AuthorProvider>()};
    class Factory : public LuSVNContextFactory {
    public:
        Factory(std::shared_ptr<LuSVNBundleProxy> bundle, std::string configurationDirectory,
                std::vector<LuSVNAuthenticationStack::Provider> providers)
            : bundle_(std::move(bundle)),
              configurationDirectory_(std::move(configurationDirectory)),
              providers_(std::move(providers))
        {
        }
        std::shared_ptr<LuSVNContext> createContext() override
        {
            auto context = LuSVNContext::contextWithBundle(bundle_, {}, configurationDirectory_);
            context->authenticationStack()->setProviders(providers_);
            return context;
        }

    private:
        std::shared_ptr<LuSVNBundleProxy> bundle_;
        std::string configurationDirectory_;
        std::vector<LuSVNAuthenticationStack::Provider> providers_;
    };
    const auto loader = LuSVNBundleLoader::sharedInstance();
    const std::shared_ptr<LuSVNBundleProxy> backends[] = {loader->newestBundle(),
                                                          loader->loadBundleAtPath(TESSERA_TEST_BUNDLE_1_6_23)};
    const std::shared_ptr<LuSVNContextPool> pools[] = {
        LuSVNContextPool::poolWithFactory(std::make_shared<Factory>(backends[0], configurationDirectory, providers)),
        LuSVNContextPool::poolWithFactory(std::make_shared<Factory>(backends[1], configurationDirectory, providers))};

    constexpr int threads = 4;
    constexpr int rounds = 4;
    std::latch start(threads);
    std::atomic<int> walks = 0;
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&, t] {
            const auto& pool = pools[t % 2];
            BackendWitness::expected = backends[t % 2];
            start.arrive_and_wait();
            for (int round = 0; round < rounds; ++round) {
                try {
                    std::uint32_t remoteChanges = 0;
                    walkAgainstRepository(repository.workingCopy, pool->context(), remoteChanges);
                    walks += remoteChanges == repository.remoteChanges ? 1 : 0;
                    pool->removeAllContexts();
                } catch (const std::exception& e) {
                    ADD_FAILURE() << e.what();
                }
            }
            BackendWitness::expected.reset();
        });
    }
    for (auto& worker : workers)
        worker.join();
    EXPECT_EQ(walks, threads * rounds);
    EXPECT_EQ(witness->mismatches, 0);
}

}  // namespace
