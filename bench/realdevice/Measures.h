// The measurements of bench_realdevice; each prints its own lines.
#ifndef BENCH_REALDEVICE_MEASURES_H
#define BENCH_REALDEVICE_MEASURES_H

// Ping through the library over cdc_acm, next to a raw echo of the same
// number of bytes through the same two terminals.
void MeasureSerialRoundTrip(int pings);
// How long ConnectCamera takes on the capture node.
void MeasureConnectCamera(int opens);
// CPU per frame of the capture thread, next to the ffmpeg tool decoding the
// same stream to BGRA, over about `seconds` each, in alternating rounds.
void MeasureCaptureCpu(int seconds, int rounds);
// The capture thread's CPU while the camera streams nothing.
void MeasureIdleCapture(int seconds);
// From a picture leaving the feeder to GetFrame handing it out.
void MeasureFrameLatency(int pictures);

#endif
