// The protocol table of the family's programs: every protocol a session may
// name, its kind, the module that carries it, the default ones, and the
// connection part that keeps its settings.
#pragma once

#include "ConnectProtocolTable.h"

// The table, made once and kept for the life of the process. Any thread.
//
//   protocol             kind  default     part's values (command-line option)
//   SSH2                 1     terminals   "SSH2 Port" 22 (/P)
//   SSH1                 1                 "SSH1 Port" 22 (/P)
//   Telnet               1                 "Telnet Port" 23 (/P)
//   Telnet/SSL           1                 "Telnet/SSL Port" 992 (/P)
//   Telnet/TLS           1                 "Telnet/TLS Port" 992 (/P)
//   RLogin               1                 "RLogin Port" 513 (/P)
//   Serial               3                 "Com Port" COM1 (/COM), "Baud Rate" 9600
//                                          (/BAUD), "Data Bits" 8 (/DATA), "Parity"
//                                          0 none (/PARITY: 1 odd, 2 even, 3 mark,
//                                          4 space), "Stop Bits" 0 one (/STOP: 1
//                                          one and a half, 2 two), "Flow Control"
//                                          0 none (/FLOW: 1 XON/XOFF, 2 RTS/CTS,
//                                          3 DTR/DSR)
//   TAPI                 3                 "Phone Number" (/PHONE), "Modem" (/MODEM)
//   Local Shell          8                 "Shell Command Line" (/COMMAND), empty
//                                          for the user's command interpreter
//   SFTP                 6     transfers   "SFTP Port" 22 (/P)
//   FTP/SSL (implicit)   9                 "FTP/SSL (implicit) Port" 990 (/P)
//   FTP/SSL (explicit)   9                 "FTP/SSL (explicit) Port" 21 (/P)
//   FTP/TLS (implicit)   9                 "FTP/TLS (implicit) Port" 990 (/P)
//   FTP/TLS (explicit)   9                 "FTP/TLS (explicit) Port" 21 (/P)
//   None                 0                 none (NoneConfig)
//
// The network protocols connect to the session's host through its firewall,
// and all but Telnet's name the user (/L). SSH2, SSH1 and SFTP are carried by
// "SSH2.dll", the Telnet secure forms by "TelnetSSL.dll", the FTP ones by
// "FTPSSL.dll"; the others are built in.
const ConnectProtocolTable& GetConnectProtocolTable();
