#pragma once

#include "ChannelConsole.h"
#include "ConsoleFeed.h"
#include "GuardedServer.h"

// The console's API on its server: GET /api/status (the latest status with
// "daemon"), GET /api/events (the feed as Server-Sent Events, at most
// GuardedServer::MAX_STREAMS at once) and POST /api/press (a button, with the
// header X-Chanweb: 1). The feed and the console must outlive the server.
void addConsoleRoutes(GuardedServer& server, ConsoleFeed& feed, ChannelConsole& console);
