// Whether a V4L2 node captures video, as its driver says through VIDIOC_QUERYCAP.
#ifndef OS_VIDEO_CAPS_H
#define OS_VIDEO_CAPS_H

// 1: the node captures video; 0: it does not (a metadata or output node);
// -1: unknown, the node could not be opened or is not a V4L2 node.
int OS_IsVideoCaptureNode(const char* path);

#endif
