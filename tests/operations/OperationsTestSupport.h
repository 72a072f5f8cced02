// Shared by the working-copy operation tests: contexts on each backend,
// notification recording, and svn as the oracle.
#pragma once

#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNNotificationHandler.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNURL.h>
#include <tessera/LuSVNUsernameProvider.h>

#include <cctype>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "TesseraTestSupport.h"

namespace tessera_operations_test {

/// The backends every operation runs on: the real one (null) and the
/// interface bundles of the older releases.
inline const std::vector<const char*>& allBackends()
{
    static const std::vector<const char*> backends{nullptr, TESSERA_TEST_BUNDLE_1_6_23, TESSERA_TEST_BUNDLE_1_5_9,
                                                   TESSERA_TEST_BUNDLE_1_4_6};
    return backends;
}

/// The backend's name as a test-name suffix: its bundle's stem, letters
/// and digits only ("svn-newest" for the newest loaded one).
inline std::string backendName(const char* bundle)
{
    std::string name = std::filesystem::path(bundle ? bundle : "svn-newest").stem().string();
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)))
            c = '_';
    return name;
}

/// A context on the backend (null: the newest loaded one) that answers
/// file:// repositories' requests for a user name.
inline std::shared_ptr<LuSVNContext> contextFor(const char* bundle)
{
    const auto loader = LuSVNBundleLoader::sharedInstance();
    auto context = LuSVNContext::contextWithBundle(bundle ? loader->loadBundleAtPath(bundle) : loader->newestBundle());
    context->authenticationStack()->addProvider(std::make_shared<LuSVNUsernameProvider>());
    return context;
}

inline LuSVNNode::LocalPath local(const std::string& path)
{
    return LuSVNLocalPath::pathWithString(path);
}

inline LuSVNNode::URLPath url(const std::string& text)
{
    return LuSVNURL::URLWithString(text);
}

/// Keeps the actions of every notification; `onNotify` may act on each
/// (throw, kill a server) after it is recorded.
class Recorder : public LuSVNNotificationHandler {
public:
    void contextNotify(LuSVNContext&, const LuSVNNotification& notification) override
    {
        notifications.push_back(notification);
        if (onNotify)
            onNotify(notification);
    }
    std::shared_ptr<LuSVNNotificationHandler> copy() const override { return std::make_shared<Recorder>(); }

    std::size_t count(std::int32_t action) const
    {
        std::size_t found = 0;
        for (const auto& notification : notifications)
            found += notification.action() == action;
        return found;
    }
    std::vector<std::int32_t> actions() const
    {
        std::vector<std::int32_t> result;
        for (const auto& notification : notifications)
            result.push_back(notification.action());
        return result;
    }

    std::vector<LuSVNNotification> notifications;
    std::function<void(const LuSVNNotification&)> onNotify;
};

/// One field of svn info (--show-item), without the line end.
inline std::string svnInfo(const std::string& path, const std::string& item)
{
    auto result = tessera_test::svn({"info", "--show-item", item, path});
    while (!result.output.empty() && (result.output.back() == '\n' || result.output.back() == '\r'))
        result.output.pop_back();
    return result.status == 0 ? result.output : "error: " + result.output;
}

/// svn status of the path, "error: ..." when svn fails.
inline std::string svnStatus(const std::string& path)
{
    const auto result = tessera_test::svn({"status", path});
    return result.status == 0 ? result.output : "error: " + result.output;
}

}  // namespace tessera_operations_test
