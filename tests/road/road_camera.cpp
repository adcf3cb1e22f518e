// Tells the description of a camera with the standard color transformation features, for the fake camera to serve.

#include <cstdio>

#include "tests/acquisition/camera_description.h"

int main() { std::fputs(CameraDescription().ColorTransformation().Xml().c_str(), stdout); }
