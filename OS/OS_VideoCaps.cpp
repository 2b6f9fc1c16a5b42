#include "OS_VideoCaps.h"

#include <fcntl.h>
#include <linux/videodev2.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

int OS_IsVideoCaptureNode(const char* path)
{
    // Opening for the query does not disturb a stream another program runs.
    int fd = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return -1;
    struct v4l2_capability caps;
    memset(&caps, 0, sizeof caps);
    int result = ioctl(fd, VIDIOC_QUERYCAP, &caps);
    close(fd);
    if (result != 0)
        return -1;
    // capabilities describes the whole driver; device_caps this node alone.
    unsigned int nodeCaps = (caps.capabilities & V4L2_CAP_DEVICE_CAPS) ? caps.device_caps : caps.capabilities;
    return (nodeCaps & V4L2_CAP_VIDEO_CAPTURE) ? 1 : 0;
}
