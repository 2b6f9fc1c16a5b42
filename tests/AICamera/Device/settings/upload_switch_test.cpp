// The switches of the module's own reports: recognition information, face
// information in frames and QR codes.
#include "SettingsDevice.h"

namespace {
const char* const kAnswerLength = "tlvMessage.nLength != 1";
}  // namespace

using UploadSwitches = SettingsDevice;

// The four upload switches test their answer's length twice; the QR-code switch once.
TEST_F(UploadSwitches, ExchangesAndRefusals)
{
    const Exchange switches[] = {
        {"OpenAutoUploadAiInfo", 0x18, {}, Invoke(OpenAutoUploadAiInfo, 4, 7), 0, {0x04, 0x07},
         " nUploadMode : 4 nImageMode : 7", ""},
        {"CloseAutoUploadAiInfo", 0x18, {}, Invoke(CloseAutoUploadAiInfo), 0, {0x01}, "", ""},
        {"OpenAutoUploadFaceInfoInFrame", 0x19, {}, Invoke(OpenAutoUploadFaceInfoInFrame), 0, {0x00}, "", ""},
        {"CloseAutoUploadFaceInfoInFrame", 0x19, {}, Invoke(CloseAutoUploadFaceInfoInFrame), 0, {0x01}, "", ""},
    };
    const std::tuple<sim::Bytes, int, const char*> answers[] = {
        {{0x09}, 9, ""}, {{}, -8, "tlvMessage.nLength  == 0"}, {{0x00, 0x00}, -8, kAnswerLength}};
    std::vector<Exchange> rows;
    for (Exchange row : switches) {
        for (const auto& answer : answers) {
            std::tie(row.answer, row.code, row.error) = answer;
            rows.push_back(row);
        }
    }
    const Call qrOff = Invoke(SetQRCodeSwitch, 0, 3);
    const char* const qrInputs = " isOpen : 0 interval : 3";
    rows.insert(rows.end(), {
        {"SetQRCodeSwitch", 0x22, {0x00}, Invoke(SetQRCodeSwitch, 1, 255), 0, {0x01, 0xFF},
         " isOpen : 1 interval : 255", ""},
        {"SetQRCodeSwitch", 0x22, {}, qrOff, -8, {0x00, 0x03}, qrInputs, "", kAnswerLength},
        {"SetQRCodeSwitch", 0x22, {0x00, 0x00}, qrOff, -8, {0x00, 0x03}, qrInputs, "", kAnswerLength},
    });
    Walk(rows);
    const char* const uploadText =
        "nUploadMode != 0x00 && nUploadMode != 0x02 && nUploadMode != 0x03 && nUploadMode != 0x04";
    const char* const imageText = "nImageMode < 0 || nImageMode > 7";
    Walk({
        {"OpenAutoUploadAiInfo", Invoke(OpenAutoUploadAiInfo, 1, 0), uploadText},
        {"OpenAutoUploadAiInfo", Invoke(OpenAutoUploadAiInfo, 5, 0), uploadText},
        {"OpenAutoUploadAiInfo", Invoke(OpenAutoUploadAiInfo, -1, 0), uploadText},
        {"OpenAutoUploadAiInfo", Invoke(OpenAutoUploadAiInfo, 0, 8), imageText},
        {"OpenAutoUploadAiInfo", Invoke(OpenAutoUploadAiInfo, 0, -1), imageText},
        {"OpenAutoUploadAiInfo", Invoke(OpenAutoUploadAiInfo, 4, -128), imageText},
        {"SetQRCodeSwitch", Invoke(SetQRCodeSwitch, 2, 10), "isOpen != 0 && isOpen != 1", "", " isOpen : 2"},
    });
}
