// The test machine in which a simulated module is plugged in over a virtual
// USB controller: what its environment names, where the kernel's drivers put
// the module's nodes, and the plug that takes it away and brings it back.
#ifndef TESTS_REALDEVICE_RIG_H
#define TESTS_REALDEVICE_RIG_H

#include <string>
#include <vector>

namespace rig {

// Whether this runs inside the test machine.
bool Inside();
// A variable of the machine's environment ("" when unset).
std::string Var(const char* name);

// The module's nodes as the host's drivers have them now ("" when absent):
// cdc_acm's serial node, and uvcvideo's capture and metadata nodes.
std::string SerialNode();
std::string CaptureNode();
std::string MetadataNode();

// Unplugs (false) or plugs in (true) the module as the host sees it, and
// waits until its nodes have gone or are all back; false when they do not
// within the time allowed.
bool SetPlugged(bool plugged);

// While silent, the camera keeps its stream on but sends no picture.
void SetCameraSilent(bool silent);

// The names in a directory, but . and .., in no order.
std::vector<std::string> Entries(const std::string& directory);

// The sizes the camera advertises, as "WxH" in the gadget's order.
std::string AdvertisedSizes();
// The advertised size that uvcvideo picks for the library's request of
// 1280x720: the nearest by its measure of overlapping area.
void StreamedSize(int* width, int* height);

}  // namespace rig

#endif
