#pragma once

#include "side/KlvBranches.h"

// The pipeline's name for the KLV branches it makes follow a run, until it
// takes them by reference like the channel parts do.
using SideActions = KlvBranches;
