// The module explains a refused firmware package in an error text that the
// library writes only into its trace log. To show it, the call is made with
// the log turned to the console at debug level and the console captured.
#ifndef AICAM_MODULEERRORTEXT_H
#define AICAM_MODULEERRORTEXT_H

#include <functional>
#include <string>

// Runs `call` so; `errorText` gets the text after "errorInfo : " of the record
// that it writes (empty when there is none). The log configuration is put
// back afterwards. Returns call's result.
int CallWithModuleErrorText(const std::function<int()>& call, std::string& errorText);

#endif
