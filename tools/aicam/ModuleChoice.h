// The module a run of the tool uses when --port or --video is not given.
#ifndef AICAM_MODULECHOICE_H
#define AICAM_MODULECHOICE_H

#include <string>
#include <vector>

#include "ModuleSelection.h"

struct GlobalOptions;

// The modules attached now, as the library lists them (flags as EnumModules takes them).
std::vector<AI_CAMERA_MODULE> AttachedModules(const UsbId& id, int flags);

// The module --module names, else the one whose node --port or --video gives,
// else the only one, else the one the user picks at a terminal. 0 with `index`
// into `modules`, or a tool code with the reason in `problem`.
int ChooseModule(const GlobalOptions& options, std::vector<AI_CAMERA_MODULE>& modules, int& index,
                 std::string& problem);

#endif
