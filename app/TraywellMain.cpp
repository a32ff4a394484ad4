// traywell.exe's entry point: one application object, run through its life cycle.
#include <windows.h>

#include "Traywell.h"

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int showCommand) {
    Traywell application;
    return application.Main(instance, showCommand);
}
