#pragma once

#include "datacom/Fcodes.h"

// The settings archive "/tmp/devsettings.tgz": a gzip'd tar of
// "/data/settings" that the other services fetch after a channel store.
//
// The appliance's /tmp is shared with every peer service, so no fixed name
// there is ever opened: the archive is built in a directory of the daemon's
// own (mkdtemp, mode 0700) and renamed into place, which replaces whatever
// was planted at the name (a link included) instead of following it. The
// private directory is removed afterwards, whether the archive was made or
// not. Called on the engine's server thread; one archive at a time.

// "OK" once the archive is in place; "Unavailable" when any step failed or
// outlasted its bound (the failure is logged).
datacom::Fcodes writeSettingsArchive();
