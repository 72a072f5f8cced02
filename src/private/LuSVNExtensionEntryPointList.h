// The fixed numbering of the extension table (LuSVNBundleExtensionEntryPoints),
// shared by the library and the backends like LuSVNEntryPointList.h: the
// functions of newer releases that the main table has no slot for.
//
// X(slot, function, major, minor): the function and the release that
// introduced it. New functions take the next number; a number is never reused.
#pragma once

#define LUSVN_EXTENSION_ENTRY_POINT_LIST(X)                                         \
    X(0, svn_client_log5, 1, 6)                                                     \
    X(1, svn_client_blame5, 1, 7)                                                   \
    X(2, svn_client_diff_summarize2, 1, 5)                                          \
    X(3, svn_client_diff_summarize_peg2, 1, 5)                                      \
    X(4, svn_client_diff6, 1, 8)                                                    \
    X(5, svn_client_diff_peg6, 1, 8)                                                \
    X(6, svn_client_get_merging_summary, 1, 8)                                      \
    X(7, svn_client_conflict_get, 1, 10)                                            \
    X(8, svn_client_conflict_get_conflicted, 1, 10)                                 \
    X(9, svn_client_conflict_tree_get_details, 1, 10)                               \
    X(10, svn_client_conflict_tree_get_description, 1, 10)                          \
    X(11, svn_client_conflict_tree_get_resolution_options, 1, 10)                   \
    X(12, svn_client_conflict_option_get_id, 1, 10)                                 \
    X(13, svn_client_conflict_option_get_label, 1, 10)                              \
    X(14, svn_client_conflict_option_get_description, 1, 10)                        \
    X(15, svn_client_conflict_tree_resolve_by_id, 1, 10)

/// Slots in the extension table of a backend built from these sources.
#define LUSVN_EXTENSION_ENTRY_POINT_COUNT 16
