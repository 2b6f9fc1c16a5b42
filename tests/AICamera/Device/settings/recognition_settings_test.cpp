// The recognition configuration text, the recognition and liveness counts and
// template updating.
#include "SettingsDevice.h"

using namespace std::string_literals;

namespace {
Call GetConfig(unsigned int length, int type = 0)
{
    return InBuffer(8, [=](void* d, char* t) { return GetRecConfig(d, t, length, type); });
}
}  // namespace

using RecognitionSettings = SettingsDevice;

TEST_F(RecognitionSettings, ExchangesAndRefusals)
{
    const Call setAbc = Invoke(SetRecConfig, "abc", 3, 0);
    const sim::Bytes abc = {0x00, 0x00, 'a', 'b', 'c'}, get = {0x01, 0x00};
    const char* const setInputs = " pData : abc nDataLength : 3 nConfigType : 0";
    const char* const getInputs = " nDataLength : 8 nConfigType : 0";
    const std::string zeroed(8, '\0');
    Walk({
        {"SetRecConfig", 0x17, {0x00}, setAbc, 0, abc, setInputs, ""},
        {"SetRecConfig", 0x17, {0x00, 0x00}, setAbc, -8, abc, setInputs, "", "tlvMessage.nLength != 1"},
        // The buffer is zeroed, then the text copied up to a zero byte or the length, whatever the status.
        {"GetRecConfig", 0x17, {0x00, 'x', 'y', 'z'}, GetConfig(8), 0, get, getInputs, " pData : xyz ", "",
         "xyz\0\0\0\0\0"s},
        {"GetRecConfig", 0x17, {0x00, 'x', 'y', 'z'}, GetConfig(2), 0, get, " nDataLength : 2 nConfigType : 0",
         " pData : xy ", "", "xyQQQQQQ"},
        {"GetRecConfig", 0x17, {0x00, 'a', 0x00, 'b'}, GetConfig(8), 0, get, getInputs, " pData : a ", "",
         "a\0\0\0\0\0\0\0"s},
        {"GetRecConfig", 0x17, {0x07, 'o', 'k'}, GetConfig(8), 7, get, getInputs, " pData : ok ", "",
         "ok\0\0\0\0\0\0"s},
        {"GetRecConfig", 0x17, {0x05}, GetConfig(8), 5, get, getInputs, " pData :  ", "", zeroed},
        {"GetRecConfig", 0x17, {}, GetConfig(8), -8, get, getInputs, " invalid output",
         "tlvMessage.nLength  == 0", zeroed},
        {"SetRecognizeCount", 0x09, {0x00}, Invoke(SetRecognizeCount, 10, 10), 0, {0x01, 0x0A, 0x0A},
         " nRecCount : 10 nLivingCount : 10", ""},
        // The status byte widens unsigned here, but as a signed byte for the template switch.
        {"GetRecognizeCount", 0x09, {0xFE, 0x03, 0x04}, Outputs(GetRecognizeCount), 254, {0x00}, "",
         " pRecCount : 3 pLivingCount : 4", "", "3 4"},
        {"GetRecognizeCount", 0x09, {0x00, 0x03}, Outputs(GetRecognizeCount), -8, {0x00}, "", " invalid output",
         "tlvMessage.nLength != 3", "77 77"},
        {"SetTemplateUpdate", 0x0A, {0x00}, Invoke(SetTemplateUpdate, 1), 0, {0x01, 0x01}, " isUpdate : 1", ""},
        {"GetTemplateUpdate", 0x0A, {0xFE, 0x01}, Outputs(GetTemplateUpdate), -2, {0x00}, "", " isUpdate : 1", "", "1"},
        {"GetTemplateUpdate", 0x0A, {0x7F, 0x00}, Outputs(GetTemplateUpdate), 127, {0x00}, "",
         " isUpdate : 0", "", "0"},
        {"GetTemplateUpdate", 0x0A, {0x00, 0x01, 0x00}, Outputs(GetTemplateUpdate), -8, {0x00}, "",
         " invalid output", "tlvMessage.nLength != 2", "77"},
    });
    const char* recText = "(nRecCount == 0) || (nRecCount > 10)";
    const char* livingText = "(nLivingCount == 0) || (nLivingCount > 10)";
    const std::string untouched(8, 'Q');
    Walk({
        {"SetRecConfig", Invoke(SetRecConfig, nullptr, 3, 0), "pData == nullptr"},
        {"SetRecConfig", Invoke(SetRecConfig, "", 0, 0), "!strlen(static_cast<char*>(const_cast<void*>(pData)))"},
        {"SetRecConfig", Invoke(SetRecConfig, "abc", 2, 0),
         "nDataLength != strlen(static_cast<char*>(const_cast<void*>(pData)))"},
        {"SetRecConfig", Invoke(SetRecConfig, "abc", 3, 1), "nConfigType != 0"},
        {"GetRecConfig", Invoke(GetRecConfig, nullptr, 8, 0), "pData == nullptr", " invalid output"},
        {"GetRecConfig", GetConfig(0), "nDataLength == 0", " invalid output", " invalid input", -4, untouched},
        // The configuration type is refused under the length's text.
        {"GetRecConfig", GetConfig(8, 1), "nDataLength == 0", " invalid output", " invalid input", -4, untouched},
        {"SetRecognizeCount", Invoke(SetRecognizeCount, 0, 5), recText, "", " nRecCount : 0 nLivingCount : 5"},
        {"SetRecognizeCount", Invoke(SetRecognizeCount, 11, 5), recText, "", " nRecCount : 11 nLivingCount : 5"},
        {"SetRecognizeCount", Invoke(SetRecognizeCount, 5, 0), livingText, "", " nRecCount : 5 nLivingCount : 0"},
        {"SetRecognizeCount", Invoke(SetRecognizeCount, 5, 11), livingText, "", " nRecCount : 5 nLivingCount : 11"},
        {"SetTemplateUpdate", Invoke(SetTemplateUpdate, 2), "isUpdate != 0 && isUpdate != 1", "", " isUpdate : 2"},
    });
}
