#include "app/CTonewrightApp.h"

int main(int argc, char** argv) {
    CTonewrightApp application(argc, argv);
    if (!application.InitInstance()) return 1;
    return application.ExitInstance(CTonewrightApp::exec());
}
