#pragma once

#include "datacom/Export.h"

#include <string>

namespace datacom {

/// The one place that knows about SYSMGT_ROOT. The appliance's code speaks of
/// logical absolute paths ("/tmp/sockChan", "/etc/sysmgt/x.json"); at the system
/// call they are resolved under $SYSMGT_ROOT when it is set and non-empty, so
/// that several appliances can run side by side on a host without root rights.
/// Relative paths, and every path on the device (no SYSMGT_ROOT), are unchanged.
/// Messages and datasets keep carrying the logical paths.
DATACOM_API std::string sysmgtPath(const std::string& logicalPath);

/// The process environment is shared by every thread, and setenv may move the
/// variables while another thread reads them. Readers and writers of the
/// environment in this code base hold this one lock: sysmgtPath's read of
/// SYSMGT_ROOT, the spawn of a shell line (which copies the environment) and
/// setTimeZone. The lock is taken for a copy or a write only, never across a
/// wait.
DATACOM_API void lockEnvironment();
DATACOM_API void unlockEnvironment();

/// Sets "TZ" (overwriting) and re-reads the time-zone rules, under the lock.
DATACOM_API void setTimeZone(const std::string& zone);

}  // namespace datacom
