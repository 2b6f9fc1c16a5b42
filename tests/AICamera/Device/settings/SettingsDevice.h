// Device handles against the simulator for the settings tests, and the tables
// their cases are written in.
#ifndef TESTS_SETTINGS_DEVICE_H
#define TESTS_SETTINGS_DEVICE_H

#include <stdint.h>

#include <functional>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "ModuleModel.h"
#include "SimulatedDevice.h"

// Calls an exported function and writes what it left in the caller's outputs.
using Call = std::function<int(void* dev, std::string& outputs)>;

// One call against a canned answer: its code, request, record and outputs.
struct Exchange {
    const char* function;
    uint16_t tag;  // 0: nothing may be sent
    sim::Bytes answer;
    Call call;
    int code;
    sim::Bytes request;
    std::string inputs, outputs;  // the record's texts after "[INPUT ] dev : %p" and "[OUTPUT]"
    std::string error = "";       // the record's "[ERROR] " condition, if any
    std::string seen = "";
};

// One call that fails before anything is sent, by default refused.
struct Unsent {
    const char* function;
    Call call;
    std::string error;
    std::string outputs = "";
    std::string inputs = " invalid input";
    int code = -4;
    std::string seen = "";
};

// `function` with these arguments after the handle, and no outputs.
template <class... Parameters, class... Values>
Call Invoke(int (*function)(void*, Parameters...), Values... values)
{
    return [=](void* dev, std::string&) { return function(dev, values...); };
}

// A getter of numbers, which start as 77; they are seen as "n n".
template <class... T>
Call OutputsOf(std::common_type_t<std::function<int(void* dev, T*...)>> get)
{
    return [get](void* dev, std::string& seen) {
        std::tuple<T...> values{T(77)...};
        int code = std::apply([&](T&... value) { return get(dev, &value...); }, values);
        std::apply([&](T&... value) { ((seen += (seen.empty() ? "" : " ") + std::to_string(value)), ...); }, values);
        return code;
    };
}
template <class... T>
Call Outputs(int (*get)(void*, T*...))
{
    return OutputsOf<T...>(get);
}
// The same with one input before the outputs.
template <class Input, class... T>
Call Outputs(int (*get)(void*, Input, T*...), std::common_type_t<Input> input)
{
    return OutputsOf<T...>([=](void* dev, T*... values) { return get(dev, input, values...); });
}

// A call writing into a buffer of `size` bytes that starts filled with 'Q'.
Call InBuffer(size_t size, std::function<int(void* dev, char* buffer)> call);

class SettingsDevice : public SimulatedDevice {
protected:
    void Walk(const std::vector<Exchange>& rows);
    // On an open port, then checks that none of these calls reached the module.
    void Walk(const std::vector<Unsent>& rows, bool portOpen = true);
};

// Against the module model, which answers every command.
class ModelDevice : public SettingsDevice {
protected:
    void SetUp() override;

    sim::ModuleModel model{sim};
};

#endif
