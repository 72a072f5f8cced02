// Tessera: a C++ client library for Subversion. Include this header for all
// of the public interface.
#pragma once

#include <tessera/LuSVNBundle.h>
#include <tessera/LuSVNBundleEntryPoints.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNData.h>
#include <tessera/LuSVNDebug.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNErrorDictionary.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNInitialize.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPlatformBundle.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNPool.h>
#include <tessera/LuSVNStreams.h>
#include <tessera/LuSVNStrings.h>
#include <tessera/LuSVNVersion.h>
