// Subversion and APR headers, for types and structure layouts only.
//
// The library must not reference a single Subversion or APR symbol: every
// call goes through the entry-point table. Deprecated declarations are still
// needed as types of the older table slots, so the deprecation attribute is
// switched off here.
#pragma once

#ifndef SVN_DEPRECATED
#define SVN_DEPRECATED
#endif

#include <apr_file_io.h>
#include <apr_hash.h>
#include <apr_pools.h>
#include <apr_tables.h>

#include <svn_auth.h>
#include <svn_client.h>
#include <svn_cmdline.h>
#include <svn_config.h>
#include <svn_diff.h>
#include <svn_dirent_uri.h>
#include <svn_error.h>
#include <svn_io.h>
#include <svn_mergeinfo.h>
#include <svn_path.h>
#include <svn_pools.h>
#include <svn_repos.h>
#include <svn_string.h>
#include <svn_time.h>
#include <svn_types.h>
#include <svn_wc.h>

// Subversion declares the source-location recorder for its debug builds only;
// release builds export it all the same.
#if !defined(SVN_DEBUG)
extern "C" void svn_error__locate(const char* file, long line);
#endif

// Subversion declares the keychain providers on macOS only; their slots keep
// that signature everywhere.
#if !defined(DARWIN)
extern "C" {
void svn_auth_get_keychain_simple_provider(svn_auth_provider_object_t** provider, apr_pool_t* pool);
void svn_auth_get_keychain_ssl_client_cert_pw_provider(svn_auth_provider_object_t** provider, apr_pool_t* pool);
}
#endif
