// faces: enrol, delete, query and list the module's face library.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "FileData.h"
#include "JsonWriter.h"
#include "ResultText.h"
#include "Session.h"
#include "Verb.h"
#include "ai_camera.h"

namespace {
const unsigned int kFeatureLength = 1384;
// Identifiers are at most 255 bytes; one more for the separator.
const unsigned int kListBytesPerFace = 256;

unsigned int Length(const std::string& text) { return static_cast<unsigned int>(strlen(text.c_str())); }

// Enrolment from the camera or a whole image waits 15 s for the module, the
// other requests 10 s.
int Enrolled(const std::string& command, int result, const std::string& id, bool longWait = false)
{
    const std::string text = ResultText(result) + (longWait && result == -6 ? " (enrolment waits 15 s)" : "");
    if (result != 0)
        return Fail(command, result, text + " (" + id + ")");
    printf("enrolled %s\n", id.c_str());
    return 0;
}

int RunAdd(Session& session, Arguments& args, const std::string& command)
{
    std::string id, imageOut;
    bool returnImage = args.Option("--return-image", imageOut);
    args.Next("ID", id);
    if (int result = ReadySerial(session, args, command))
        return result;
    if (!returnImage)
        return Enrolled(command, AddFace(session.Dev(), id.c_str(), Length(id)), id, true);
    void* image = nullptr;
    unsigned int size = 0;
    int result = AddFaceReturnImage(session.Dev(), id.c_str(), Length(id), &image, &size);
    int written = result == 0 && image && size > 0 ? WriteWholeFile(command, imageOut, image, size) : 0;
    free(image);
    if (written != 0)
        return written;
    if (result == 0 && size > 0)
        printf("enrolment image: %s (%u bytes)\n", imageOut.c_str(), size);
    return Enrolled(command, result, id, true);
}

int RunAddImage(Session& session, Arguments& args, const std::string& command)
{
    std::string id, path;
    long slice = 0;
    bool sliced = args.Number("--slice", 1, kMaxSliceBytes, slice);
    args.Next("ID", id);
    ByteVector image;
    if (int result = FinishWithFile(args, command, path, image))
        return result;
    if (int result = session.ConnectSerial(command))
        return result;
    void* dev = session.Dev();
    if (!sliced) {
        unsigned int size = static_cast<unsigned int>(image.size());
        return Enrolled(command, AddFaceByImage(dev, id.c_str(), Length(id), image.data(), size), id, true);
    }
    const unsigned int total = static_cast<unsigned int>(image.size());
    int result = SendInSlices(image, static_cast<unsigned int>(slice),
                              [&](unsigned int offset, const unsigned char* bytes, unsigned int size, bool isLast) {
                                  return AddFaceSlice(dev, id.c_str(), Length(id), total, offset, isLast ? 1 : 0,
                                                      bytes, size);
                              });
    return Enrolled(command, result, id);
}

int RunAddFeature(Session& session, Arguments& args, const std::string& command)
{
    std::string id, path;
    args.Next("ID", id);
    ByteVector data;
    if (int result = FinishWithFile(args, command, path, data))
        return result;
    std::string feature(data.begin(), data.end());
    feature.erase(feature.find_last_not_of(" \t\r\n") + 1);
    if (feature.size() != kFeatureLength || strlen(feature.c_str()) != kFeatureLength)
        return Fail(command, kUsage,
                    "a feature is 1384 characters; " + path + " holds " + std::to_string(feature.size()));
    if (int result = session.ConnectSerial(command))
        return result;
    return Enrolled(command, AddFeature(session.Dev(), id.c_str(), Length(id), feature.c_str(), kFeatureLength),
                    id);
}

int RunDelete(Session& session, Arguments& args, const std::string& command)
{
    std::string id;
    bool all = args.Flag("--all");
    if (!all)
        args.Next("ID (or --all)", id);
    if (int result = ReadySerial(session, args, command))
        return result;
    int result = DeleteFace(session.Dev(), all ? 0 : 1, all ? nullptr : id.c_str(), all ? 0 : Length(id));
    if (result != 0)
        return Fail(command, result, ResultText(result) + (all ? "" : " (" + id + ")"));
    printf("deleted %s\n", all ? "every face" : id.c_str());
    return 0;
}

// Opens the link and reads the number of faces.
int FaceCount(Session& session, Arguments& args, const std::string& command, unsigned int& count)
{
    count = 0;
    if (int result = ReadySerial(session, args, command))
        return result;
    return Check(command, GetDeviceFaceLibraryNum(session.Dev(), &count));
}

int RunCount(Session& session, Arguments& args, const std::string& command)
{
    unsigned int count = 0;
    if (int result = FaceCount(session, args, command, count))
        return result;
    printf("%u\n", count);
    return 0;
}

int RunList(Session& session, Arguments& args, const std::string& command)
{
    const bool json = args.Flag("--json");
    unsigned int count = 0;
    if (int result = FaceCount(session, args, command, count))
        return result;
    // The list is cut to the buffer: size it from the count, with room for a
    // face enrolled in between.
    std::vector<char> list((count + 2) * kListBytesPerFace + 1, 0);
    if (int result = GetDeviceFaceID(session.Dev(), list.data(), static_cast<unsigned int>(list.size())))
        return Fail(command, result);
    const std::string text(list.data());
    std::vector<std::string> ids;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find(',', start);
        if (end == std::string::npos)
            end = text.size();
        if (end > start)
            ids.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    if (json) {
        std::vector<std::string> encoded;
        for (const std::string& id : ids)
            encoded.push_back(JsonString(id));
        JsonObject().Raw("ids", JsonArray(encoded)).PrintLine();
        return 0;
    }
    for (const std::string& id : ids)
        printf("%s\n", id.c_str());
    return 0;
}

int RunQuery(Session& session, Arguments& args, const std::string& command)
{
    std::string id;
    args.Next("ID", id);
    if (int result = ReadySerial(session, args, command))
        return result;
    int result = QueryFace(session.Dev(), id.c_str(), Length(id), 0);
    if (result != 0)
        return Fail(command, result, id + (result > 0 ? " is not enrolled" : " could not be looked up: " + ResultText(result)));
    printf("%s is enrolled\n", id.c_str());
    return 0;
}

int RunFeature(Session& session, Arguments& args, const std::string& command)
{
    std::string id, out;
    bool toFile = args.Option("--out", out);
    args.Next("ID", id);
    if (int result = ReadySerial(session, args, command))
        return result;
    char feature[kFeatureLength + 1] = {0};
    if (int result = QueryFeature(session.Dev(), id.c_str(), Length(id), feature, kFeatureLength))
        return Fail(command, result, ResultText(result) + " (" + id + ")");
    if (toFile)
        return WriteWholeFile(command, out, feature, strlen(feature));
    printf("%s\n", feature);
    return 0;
}
}  // namespace

const std::vector<Verb> kFaceVerbs = {
    {"add", "faces add ID [--return-image FILE]", "enrol the face the module sees now",
     "With --return-image the module's enrolment picture is written to FILE.\n", RunAdd, nullptr},
    {"add-image", "faces add-image ID FILE [--slice BYTES]", "enrol a face from an image file",
     "The image goes in one request, or with --slice in slices of BYTES bytes\n"
     "(at most 1 MiB).\n", RunAddImage, nullptr},
    {"add-feature", "faces add-feature ID FILE", "enrol a face from a 1384-character feature file", "",
     RunAddFeature, nullptr},
    {"delete", "faces delete ID | --all", "delete one face, or every face", "", RunDelete, nullptr},
    {"list", "faces list [--json]", "list the enrolled identifiers, one a line",
     "--json prints one object: {\"ids\":[...]}.\n", RunList, nullptr},
    {"count", "faces count", "print the number of enrolled faces", "", RunCount, nullptr},
    {"query", "faces query ID", "tell whether ID is enrolled", "", RunQuery, nullptr},
    {"feature", "faces feature ID [--out FILE]", "print (or write) the feature of ID", "", RunFeature, nullptr},
};
