#pragma once
// Everything the module remembers besides its face library, with factory values.

#include <cstdint>
#include <string>

namespace sim {

struct ModuleIdentity {
    std::string firmwareVersion = "SIM-FW 3.1.7 (2026-11-02)";
    std::string appVersion = "SIM-APP 1.8.0";
    std::string model = "SIMCAM-M1";
    std::string serialNumber = "SIM000000017";        // serial mode 0: the module
    std::string boardSerialNumber = "SIMB00000342";   // serial mode 1: the sensor board
    uint32_t sensorModel = 0x0A53;
    uint32_t temperature = 42;
};

struct CameraSettings {
    uint8_t uvcOn = 1;
    uint8_t cameraOpen[2] = {1, 1};     // colour, infrared
    uint8_t rgbIr = 0;
    uint8_t streamFormat = 0;
    uint32_t luminousThreshold = 120;
    uint8_t flickerHz[2] = {0, 0};
    uint8_t flickerEnable[2] = {1, 1};
    uint8_t rotateAngle = 0;
    uint8_t screenDirection = 1;
    uint8_t resolution = 0;
    uint32_t frameRate = 25;
    uint8_t irLuminance = 100;
    uint8_t irCloseTime = 30;
};

struct RecognitionSettings {
    std::string config = "{\"threshold\":0.80,\"liveness\":true,\"maxFaces\":5}";
    uint8_t recognizeCount = 3;
    uint8_t livingCount = 3;
    uint8_t templateUpdate = 0;
};

struct ReportSwitches {
    bool uploadOpen = true;             // recognition reports flow by default
    uint8_t uploadMode = 0;             // proto::UploadMode
    uint8_t imageMode = 0;
    bool faceInfoInFrame = true;
    bool qrOpen = false;
    uint8_t qrInterval = 1;             // in report rounds
};

struct ModuleSettings {
    CameraSettings camera;
    RecognitionSettings recognition;
    ReportSwitches reports;
    bool engineeringMode = false;
};

}  // namespace sim
