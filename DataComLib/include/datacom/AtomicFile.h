#pragma once

#include "datacom/Export.h"

#include <string>

namespace datacom {

/// Replaces a file so that a power cut at any moment leaves either the old
/// content or the new one, never a truncated file: the text goes to a temporary
/// file in the same directory, which is flushed, fsync'ed and renamed over the
/// target, and the directory is fsync'ed. `logicalPath` is resolved through
/// sysmgtPath. Returns 0, or the errno of the step that failed (the temporary
/// file is then removed and the target left as it was). A successful store
/// also removes the temporary files that earlier stores of the same file left
/// when the process died before their rename. Stores of one process are
/// serialised; a file is stored by one process only.
DATACOM_API int writeFileAtomically(const std::string& logicalPath, const std::string& content);

/// Test seam: when set, called after the temporary file is complete and
/// before the rename; a non-zero return is treated as that step's errno.
extern DATACOM_API int (*gAtomicFileBeforeRename)(const std::string& tempPath);

}  // namespace datacom
