#pragma once

// For a client tool (chanctl, chanweb): makes the process's debug-log client
// first, so that it neither hangs on a debug pipe without a reader nor prints
// a missing pipe's notice into its own output. With a reader present it logs
// as any process does; otherwise its lines are lost.
void openDebugLogQuietly();
