#include "DeviceTest.h"

#include <stdio.h>
#include <stdlib.h>

#include "../../OS/OS_ByteOrder.h"

sim::Bytes Le32(uint32_t value)
{
    sim::Bytes bytes(4);
    OS_WriteOrdered(bytes.data(), value, 4, false);
    return bytes;
}

sim::Bytes Cat(std::initializer_list<sim::Bytes> pieces)
{
    sim::Bytes all;
    for (const sim::Bytes& piece : pieces)
        all.insert(all.end(), piece.begin(), piece.end());
    return all;
}

std::string Ptr(const void* p)
{
    char text[32];
    snprintf(text, sizeof text, "%p", p);
    return text;
}

void DeviceTest::AnswerPayload(uint16_t tag, const sim::Bytes& payload)
{
    sim::ModuleSimulator* module = &sim;
    sim.SetHandler(tag, [module, payload](const sim::Request&) {
        module->PushFrame(payload);
        return std::optional<sim::Bytes>();
    });
}

const char kCommandId[] = "alice";

namespace {
const char kBytes[] = "data";
char buffer[16];
void* image;
unsigned int length;

int FreeImage(int result)
{
    free(image);
    image = nullptr;
    return result;
}
}  // namespace

const std::vector<Command>& Commands()
{
    static const std::string feature(1384, 'f');
    const char* kId = kCommandId;
    const std::string id = " pID : " + Ptr(kId) + " nIDLength : 5", data = Ptr(kBytes), out = " invalid output";
    const std::string slice = " nImageTotalLength : 8 nPosition : 0 isLastSlice : 0 pSliceData : " + data;
    static const std::vector<Command> commands = {
        {"AddFace", [](void* d) { return AddFace(d, kCommandId, 5); }, id, ""},
        {"AddFaceByImage", [](void* d) { return AddFaceByImage(d, kCommandId, 5, kBytes, 4); },
         id + " pImage : " + data + " nImageLength : 4", ""},
        {"AddFaceReturnImage",
         [](void* d) { return FreeImage(AddFaceReturnImage(d, kCommandId, 5, &image, &length)); }, id, out},
        {"AddFaceSlice", [](void* d) { return AddFaceSlice(d, kCommandId, 5, 8, 0, 0, kBytes, 4); },
         id + slice + " nSliceDataLength :4", ""},
        {"DeleteFace", [](void* d) { return DeleteFace(d, 1, kCommandId, 5); }, " nMode : 1" + id, ""},
        {"QueryFace", [](void* d) { return QueryFace(d, kCommandId, 5, 0); }, id + " nMode : 0 ", ""},
        {"AddFeature", [](void* d) { return AddFeature(d, kCommandId, 5, feature.c_str(), 1384); },
         id + " pFeature : " + Ptr(feature.c_str()) + " nFeatureLength : 1384", ""},
        {"GetDeviceFaceID", [](void* d) { return GetDeviceFaceID(d, buffer, 16); }, " nIDListLength : 16", out},
        {"GetDeviceFaceLibraryNum", [](void* d) { return GetDeviceFaceLibraryNum(d, &length); }, "", out},
        {"StartOnetoNumRecognize", [](void* d) { return StartOnetoNumRecognize(d, 0, 1); },
         " nRecMode : 0 nMulMode : 1", ""},
        {"StartOnetoOneRecognize", [](void* d) { return StartOnetoOneRecognize(d, 1, 1, kBytes, 4); },
         " nRecMode : 1 nMulMode : 1 pImage : " + data + " nImageLength : 4", ""},
        {"StartOnetoOneRecognizeSlice",
         [](void* d) { return StartOnetoOneRecognizeSlice(d, 1, 0, 8, 0, 0, kBytes, 4); },
         " nRecMode : 1 nMulMode : 0" + slice + " nSliceDataLength : 4", ""},
        {"ResumeRecognize", ResumeRecognize, "", ""},
        {"PauseRecognize", PauseRecognize, "", ""},
        {"QueryRecognize", QueryRecognize, "", ""},
        {"GetSingleRecognize", [](void* d) { return GetSingleRecognize(d, buffer, 16); }, " nDataLength : 16", out},
        {"StaticFaceCompare", [](void* d) { return FreeImage(StaticFaceCompare(d, &image, &length)); }, "", out},
        {"StaticFaceCompareReturnImage",
         [](void* d) { return FreeImage(StaticFaceCompareReturnImage(d, kBytes, 4, &image, &length)); },
         " pImage : " + data + " nImageLength : 4", out},
        {"StaticFaceCompareSlice",
         [](void* d) { return FreeImage(StaticFaceCompareSlice(d, 0, 8, 0, 0, kBytes, 4, &image, &length)); },
         " nMode : 0" + slice + " nSliceDataLength : 4", out},
    };
    return commands;
}
