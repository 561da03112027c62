#pragma once

#include <string>

// The one place that knows about SYSMGT_ROOT. The appliance's code speaks of
// logical absolute paths ("/tmp/sockChan", "/etc/sysmgt/x.json"); at the system
// call they are resolved under $SYSMGT_ROOT when it is set and non-empty, so
// that several appliances can run side by side on a host without root rights.
// Relative paths, and every path on the device (no SYSMGT_ROOT), are unchanged.
// Messages and datasets keep carrying the logical paths.
std::string sysmgtPath(const std::string& logicalPath);
