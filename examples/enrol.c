/* enrol: adds the face the module sees now to its face library and prints
 * how many faces the library holds.
 *   enrol /dev/ttyACM0 alice
 */
#include <stdio.h>
#include <string.h>

#include <ai_camera.h>

int main(int argc, char** argv)
{
    if (argc != 3) {
        fprintf(stderr, "usage: %s SERIAL-PORT ID\n", argv[0]);
        return 2;
    }
    const char* port = argv[1];
    const char* id = argv[2];

    void* dev = Init();
    int result = ConnectSerial(dev, port);
    if (result != 0) {
        fprintf(stderr, "cannot open %s (%d)\n", port, result);
        DeInit(dev);
        return 1;
    }

    /* The module looks for a face for up to 15 s. */
    result = AddFace(dev, id, (unsigned int)strlen(id));
    if (result != 0) {
        fprintf(stderr, "enrolment of %s failed (%d)\n", id, result);
        DeInit(dev);
        return 1;
    }

    unsigned int faces = 0;
    result = GetDeviceFaceLibraryNum(dev, &faces);
    if (result != 0) {
        fprintf(stderr, "cannot count the faces (%d)\n", result);
        DeInit(dev);
        return 1;
    }
    printf("enrolled %s; the module holds %u faces\n", id, faces);

    DeInit(dev); /* also closes the serial link */
    return 0;
}
