#pragma once
// The simulated module's own side of the protocol: command tags, the status
// codes it answers with, and the layouts of the reports it sends by itself.
// Everything the module decides for itself is defined here and only here.

#include <cstddef>
#include <cstdint>

namespace sim::proto {

// Command tags (the request's first record and the answer's record carry the same tag).
enum Tag : uint16_t {
    kTagAddFace = 0x01,           // u8 variant: 0 camera, 1 image, 2 camera + image back
    kTagDeleteFace = 0x02,
    kTagQueryFace = 0x03,
    kTagStaticCompare = 0x04,     // u8 variant: 0 local capture, 1 host image
    kTagAddFeature = 0x05,
    kTagQueryFeature = 0x06,
    kTagAddFaceSlice = 0x07,
    kTagListFaces = 0x08,
    kTagRecognizeCount = 0x09,
    kTagTemplateUpdate = 0x0A,
    kTagStartOneToMany = 0x10,
    kTagResume = 0x14,
    kTagPause = 0x15,
    kTagQueryRecognition = 0x16,
    kTagRecConfig = 0x17,
    kTagAutoUpload = 0x18,
    kTagFaceInfoInFrame = 0x19,
    kTagFirmwareSlice = 0x20,
    kTagFirmwareApply = 0x21,
    kTagQrSwitch = 0x22,
    kTagCompareSlice = 0x23,
    kTagStartOneToOne = 0x24,
    kTagSingleResult = 0x25,
    kTagTrackReport = 0x30,
    kTagRecoReport = 0x31,
    kTagQrReport = 0x32,
    kTagImageReport = 0x33,       // the host acknowledges with an empty 0x33 record
    kTagFeatureReport = 0x34,
    kTagFaceCount = 0x35,
    kTagPing = 0x1000,
    kTagVersion = 0x1003,
    kTagReboot = 0x1004,
    kTagRecovery = 0x1005,
    kTagSerialNumber = 0x2001,
    kTagModel = 0x2002,
    kTagUvcSwitch = 0x2003,
    kTagCameraStream = 0x2004,
    kTagRgbIrSwitch = 0x2005,
    kTagIrLight = 0x2006,
    kTagFrameRate = 0x2007,
    kTagResolution = 0x2008,
    kTagScreenDirection = 0x2009,
    kTagRotateAngle = 0x200A,
    kTagNoFlicker = 0x200B,
    kTagLuminousThreshold = 0x200C,
    kTagAppVersion = 0x200D,
    kTagStreamFormat = 0x200E,
    kTagTemperature = 0x200F,
    kTagSensorModel = 0x2010,
};

// Status byte that starts most answers.
enum Status : uint8_t {
    kOk = 0x00,
    kFailed = 0x01,            // generic failure
    kInvalidParam = 0x02,      // a value out of its range or an unknown sub-command
    kBadRequest = 0x03,        // payload too short, too long, or its lengths disagree
    kUnknownCommand = 0x04,    // a tag the module does not know
    kFaceExists = 0x10,
    kFaceNotFound = 0x11,
    kLibraryFull = 0x12,
    kNoFace = 0x13,            // no face in front of the camera or in the image
    kBadSlice = 0x14,          // a slice outside its image, or a last slice with gaps
    kBadListOffset = 0x15,     // 0x08 offset beyond the end of the list
    kRecognitionPaused = 0x20, // 0x16 answer: paused (0x00 means running)
    kRecognitionIdle = 0x21,   // 0x16 answer, and 0x14/0x15 before any start
    kFirmwareEmpty = 0x30,     // 0x21 with no slice stored; error text follows
    kFirmwareIncomplete = 0x31,// 0x21 with a gap in the package; error text follows
    kFirmwareHashMismatch = 0x32, // MD5 differs; error text follows
    kFirmwareBadHashText = 0x33,  // not 32 hexadecimal characters; error text follows
    kFirmwareTooLarge = 0x34,
};

// Limits of the module.
constexpr size_t kFeatureLength = 1384;     // characters of one face feature
constexpr size_t kMaxIdLength = 255;        // identifiers: 1..255 bytes, no ',', no control characters
constexpr size_t kMaxFaces = 1000;
constexpr size_t kListChunk = 48;           // list text bytes per 0x08 answer
constexpr size_t kMaxImageBytes = 8u << 20; // largest image accepted whole or in slices
constexpr size_t kMaxPackageBytes = 64u << 20;
constexpr size_t kHashTextLength = 32;      // MD5 as hexadecimal text
constexpr size_t kSerialHeadBytes = 4;      // u32 LE length of the text that follows (0x2001, 0x2002)

// Answers after the status byte, all integers little-endian:
//  0x01 variant 2, 0x04, 0x23 (last slice): u32 image length; JPEG bytes
//  0x06: u32 id length; id; u32 feature length; feature
//  0x08: u8 isLastSlice; u32 position (the offset asked for); up to kListChunk bytes
//        of the identifiers joined by ","; an empty list is one zero byte
//  0x09: u8 recognition count; u8 liveness count      0x0A: u8 isUpdate
//  0x17 get: the configuration text                   0x35: u32 count
//  0x2004 get: u8 open   0x200B get: u8 hz; u8 enable 0x2009 get: u8 direction
//  0x2007 get: u32 fps   0x2006 get: u8 luminance; u8 close time
//  0x200C: u32 threshold 0x2010: u32 sensor model
//  0x21 failure: error text (no terminator)
// Answers without status byte: 0x1000 echoes the request; 0x1003 and 0x200D are
// text; 0x2001 and 0x2002 are the 4-byte head then text; 0x200F is a u32 in
// degrees Celsius; 0x25 is u32 text length then the latest recognition JSON.
// 0x16's status byte is the state: kOk running, kRecognitionPaused, kRecognitionIdle.

// Maintenance modes.
enum RebootMode : uint8_t {
    kRebootReset = 0,          // settings back to factory values, then restart
    kRebootNormal = 1,
    kRebootToLoader = 2,
    kRebootWarm = 3,           // restart of the application only
    kRebootEngineering = 4,    // restart into the engineering USB mode
};
enum RecoveryMode : uint8_t {
    kRecoverySettings = 0,     // factory settings, face library kept
    kRecoveryFull = 1,         // factory settings and an empty face library
};

// Automatic upload (0x18): first byte 0x01 closes; 0, 2, 3, 4 open with this mode,
// second byte is the image mode 0..7 (image reports are 16 + 8 * mode pixels wide).
enum UploadMode : uint8_t {
    kUploadResults = 0,        // recognition reports only
    kUploadClose = 1,
    kUploadImages = 2,         // + image reports
    kUploadFeatures = 3,       // + feature reports
    kUploadEverything = 4,     // + image and feature reports
};

// Report values (JSON texts ending in "}", no terminator):
//  0x30 {"type":"track","seq":N,"faces":[{"trackId":T,"x":X,"y":Y,"w":W,"h":H}]}
//  0x31 {"type":"recognition","seq":N,"trackId":T,"mode":"1:N"|"1:1","id":"ID","score":S,"live":0|1,"match":0|1}
//       ("id" is "" and "match" 0 when nothing in the library matches)
//  0x32 {"type":"qrcode","seq":N,"text":"..."}           (every `interval` rounds, 0 counts as 1)
//  0x34 {"type":"feature","seq":N,"trackId":T,"feature":"<kFeatureLength characters>"}
//  0x33 a JSON header {"type":"image","seq":N,"trackId":T,"width":W,"height":H,"jpegLength":L},
//       one zero byte, then L bytes of JPEG. The next image report waits for the host's
//       acknowledgement (an empty 0x33 record); a new start of recognition stops waiting.
// Side text in each video frame (a JPEG comment segment):
//  {"frame":N,"ts":MS,"faces":[{"x":X,"y":Y,"w":W,"h":H,"id":"ID"}]} ("faces" empty while
//  face information in frames is switched off with 0x19).

}  // namespace sim::proto
