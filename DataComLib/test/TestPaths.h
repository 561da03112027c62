#pragma once

// Folders and files of this checkout and its build that the tests read. Their
// paths are compiled into TestPaths.cpp alone, so that no other unit's text
// says where the checkout lies and a new clone's compiles are served from an
// older clone's (ccache).
namespace testpaths {

extern const char* const FACTORY_DIR;        // etc/sysmgt: the factory datasets
extern const char* const SIM_DATA_DIR;       // the simulator's mediator and device data
extern const char* const PIPELINE_DATA_DIR;  // the pipeline tests' expected mediator writes
extern const char* const SERVICE_UNIT;       // the configured systemd unit
extern const char* const INIT_SCRIPT;        // the configured init script

}  // namespace testpaths
