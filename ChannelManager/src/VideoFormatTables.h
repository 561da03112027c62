#pragma once

#include <string>

// The default genlock setting of an encoding format ("1920x1080i" ->
// "1920x1080i @ 30"): the input format the genlock free-runs on when the
// channel has no signal to lock to. nullptr for a format the table lacks.
const char* defaultGenlockFor(const std::string& encodingFormat);
