#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <vector>

#include "LuSVNBackendFrame.h"
#include "LuSVNBundleTop.h"

namespace {

using Stack = std::vector<std::shared_ptr<LuSVNBundleProxy>>;

// Made on a thread's first use; proxies on it are held strongly. A plain
// pointer, because the thread's own objects go before the program's static
// ones at exit, and a context kept in a static still pushes its backend
// while it goes: that late use gets a stack of its own, which stays.
thread_local Stack* threadStack = nullptr;

struct StackOwner {
    ~StackOwner()
    {
        delete threadStack;
        threadStack = nullptr;
    }
};
thread_local StackOwner owner;

Stack& stack()
{
    if (!threadStack) {
        threadStack = new Stack();
        // Registers the owner, which frees the stack when the thread ends.
        (void)&owner;
    }
    return *threadStack;
}

}  // namespace

void LuSVNBundlePush(std::shared_ptr<LuSVNBundleProxy> proxy)
{
    stack().push_back(std::move(proxy));
}

std::shared_ptr<LuSVNBundleProxy> LuSVNBundlePop()
{
    if (stack().empty())
        throw LuSVNGenericException("Unbalanced bundle stack pop");
    std::shared_ptr<LuSVNBundleProxy> top = std::move(stack().back());
    stack().pop_back();
    return top;
}

const std::shared_ptr<LuSVNBundleProxy>& tessera_private::LuSVNBundleTop()
{
    if (stack().empty())
        throw LuSVNGenericException("Bundle stack is empty");
    return stack().back();
}

std::shared_ptr<LuSVNBundleProxy> LuSVNBundleCurrent()
{
    return tessera_private::LuSVNBundleTop();
}

std::size_t tessera_private::LuSVNBundleStackDepth()
{
    return stack().size();
}
