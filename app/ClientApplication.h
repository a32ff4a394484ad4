// Which client program the tray program works with, and how it starts one.
#pragma once

#include "VString.h"

struct ClientApplication {
    VUnicodeString name;  // "Termwright" or "Filewright"
    VUnicodeString path;  // the client's executable file
};

// The client that start-up and the Connect command use. In an integrated
// installation the client with a window open wins, the terminal client
// first; otherwise, and when neither has a window, the terminal client when
// it is installed, else the transfer client (installed or not).
ClientApplication SelectClientApplication();

// Starts executable with the command line: the executable in double quotes, a
// blank, configArgument ("/F \"<folder>\""), a blank and arguments. Does not
// wait for or watch the process. False when it cannot be started.
bool LaunchClient(const VUnicodeString& executable, const VUnicodeString& configArgument,
                  const VUnicodeString& arguments);
