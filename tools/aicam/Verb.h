// A subcommand (or a group of them) with its help, and the dispatch by name.
#ifndef AICAM_VERB_H
#define AICAM_VERB_H

#include <functional>
#include <string>
#include <vector>

#include "Arguments.h"

class Session;

struct Verb {
    // A leaf runs this; returns a result code (0, a negative code, a module status).
    using Run = std::function<int(Session& session, Arguments& args, const std::string& command)>;

    std::string name;
    std::string usage;     // what follows "aicam ", e.g. "faces add ID [--return-image FILE]"
    std::string summary;   // one line for the lists
    std::string details;   // the rest of its --help ("" for none)
    Run run;
    const std::vector<Verb>* actions;  // a group's actions instead of run
};

// Takes the next word as the name of one of `verbs` and runs it; "--help" at
// any level prints that level's help. `prefix` is the command so far ("faces").
int RunVerbs(const std::vector<Verb>& verbs, const std::string& prefix, Session& session, Arguments& args);
// The list of `verbs` with their summaries.
std::string VerbList(const std::vector<Verb>& verbs);

// The groups and subcommands, one list per file.
extern const std::vector<Verb> kDeviceVerbs;     // list, info, ping, reboot, reset, recovery
extern const std::vector<Verb> kFaceVerbs;       // faces ...
extern const std::vector<Verb> kConfigVerbs;     // config ...
extern const std::vector<Verb> kSettingsVerbs;   // settings ...
extern const Verb kRecognizeVerb;
extern const Verb kUpgradeVerb;
extern const Verb kSnapshotVerb;
extern const Verb kDoctorVerb;

#endif
