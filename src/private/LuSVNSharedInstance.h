// Well-known instances that live for the whole process.
//
//   std::shared_ptr<const LuSVNRevision> LuSVNRevision::HEAD()
//   {
//       return tessera_private::LuSVNSharedInstance([] { return std::make_shared<const LuSVNHeadRevision>(); });
//   }
//
// Each call site (each lambda type) makes its instance once, thread-safely,
// on first use, and never frees it: it may still be asked for while other
// static objects are destroyed.
#pragma once

#include <utility>

namespace tessera_private {

template <class Make>
const auto& LuSVNSharedInstance(Make make)
{
    using Instance = decltype(make());
    static const Instance* const instance = new Instance(make());
    return *instance;
}

}  // namespace tessera_private
