#include "TestPaths.h"

namespace testpaths {

const char* const FACTORY_DIR = SYSMGT_FACTORY_DIR;
const char* const SIM_DATA_DIR = APPLIANCE_SIM_DATA_DIR;
const char* const PIPELINE_DATA_DIR = SYSMGT_PIPELINE_DATA_DIR;
const char* const SERVICE_UNIT = SYSMGT_SERVICE_UNIT;
const char* const INIT_SCRIPT = SYSMGT_INIT_SCRIPT;

}  // namespace testpaths
