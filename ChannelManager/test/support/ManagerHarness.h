#pragma once

// ManagerHarness lives beside the channel fixture whose peers it shares.
#include "support/ChannelHarness.h"
