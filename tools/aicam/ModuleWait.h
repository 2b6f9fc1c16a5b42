// After a restart: waiting until the module answers a ping again, across the
// serial link going away and coming back.
#ifndef AICAM_MODULEWAIT_H
#define AICAM_MODULEWAIT_H

#include <string>

class Session;

// Waits up to `seconds` for the module to echo a ping; a ping under way when
// the time is up still takes up to its 10 s. Says on stderr that it waits and
// how long it took, unless quiet. 0, or the last failure after its line.
int WaitUntilAnswering(Session& session, long seconds, const std::string& command);

#endif
