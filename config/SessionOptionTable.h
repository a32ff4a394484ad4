// The values of a session key that SessionConfig holds itself, declared once.
// SESSION_OPTIONS(X) calls X(Member, Kind, L"Value Name", Default, Form) for
// each, in the order in which the session loads them (after "Is Session" and
// the terminal block); the members, loading, saving, copying and comparing of
// SessionConfig are derived from it. Kinds are those of SessionKind
// (SessionValueKinds.h); Form is Plain, Renamed(former), or for a secret
// Generations(older protected name, oldest plain name, plain text escaped).
//
// The defaults are ours unless the family fixes them ("chosen" marks the
// ones worth a word). Texts left empty mean "not set": the global option of
// the same purpose, or the program's own behaviour, applies. Enumerations,
// by number:
//   Log Mode            0 overwrite the log file, 1 append to it
//   Trace Level         0 off, 1 errors, 2 protocol events, 3 every packet
//   Highlighting Style  0 the keyword only, 1 the whole line
//   File System Case    0 as the server reports, 1 case-sensitive, 2 not
//   Filewright Trace Level  as Trace Level
#pragma once

#include "SessionValueKinds.h"

// clang-format off
#define SESSION_OPTIONS(X) \
    X(UseTitleBar, Flag, L"Use Title Bar", false, Plain) \
    X(TitleBar, Text, L"Title Bar", L"", Plain) /* chosen: empty, the session's name */ \
    X(ShowWyseLabelLine, Flag, L"Show Wyse Label Line", false, Plain) \
    X(SendInitialCarriageReturn, Flag, L"Send Initial Carriage Return", false, Plain) \
    X(UseLoginScript, Flag, L"Use Login Script", false, Plain) \
    X(LoginScript, Secret, L"Login Script V3", {}, Generations(L"Login Script V2", L"Login Script", true)) /* expect and send lines */ \
    X(UseScriptFile, Flag, L"Use Script File", false, Plain) \
    X(ScriptFilename, Text, L"Script Filename", L"", Plain) \
    X(ScriptArguments, Text, L"Script Arguments", L"", Plain) \
    X(UploadDirectory, Text, L"Upload Directory", L"", Plain) /* chosen: empty, the documents folder */ \
    X(DownloadDirectory, Text, L"Download Directory", L"", Plain) /* chosen: empty, the global "Default Download Directory" */ \
    X(XModemSendPacketSize, Number, L"XModem Send Packet Size", 1024, Plain) /* chosen: bytes, 128 or 1024 */ \
    X(ZModemReceiveCommand, Text, L"ZModem Receive Command", L"rz\\r", Plain) /* four characters: the client sends "\r" as a carriage return */ \
    X(DisableZModem, Flag, L"Disable ZModem", false, Plain) \
    X(ZModemUses32BitCrc, Flag, L"ZModem Uses 32 Bit CRC", true, Plain) /* chosen */ \
    X(Force1024ForZModem, Flag, L"Force 1024 for ZModem", false, Plain) \
    X(ZModemEncodesDel, Flag, L"ZModem Encodes DEL", false, Plain) \
    X(ZModemForceLowerCase, Flag, L"ZModem Force All Caps Filenames to Lower Case on Upload", false, Plain) \
    X(SendZmodemInitWhenUploadStarts, Flag, L"Send Zmodem Init When Upload Starts", false, Plain) \
    X(LogFilename, Text, L"Log Filename", L"", Plain) /* chosen: empty, no session log */ \
    X(CustomLogMessageConnect, Text, L"Custom Log Message Connect", L"", Plain) \
    X(CustomLogMessageDisconnect, Text, L"Custom Log Message Disconnect", L"", Plain) \
    X(CustomLogMessageEachLine, Text, L"Custom Log Message Each Line", L"", Plain) \
    X(LogOnlyCustom, Flag, L"Log Only Custom", false, Plain) \
    X(GenerateUniqueLogFileName, Flag, L"Generate Unique Log File Name When File In Use", false, Plain) \
    X(LogPrompt, Flag, L"Log Prompt", false, Plain) \
    X(LogMode, Number, L"Log Mode", 0, Plain) \
    X(StartLogUponConnect, Flag, L"Start Log Upon Connect", false, Plain) \
    X(RawLog, Flag, L"Raw Log", false, Plain) \
    X(LogMultipleSessions, Flag, L"Log Multiple Sessions", false, Plain) \
    X(NewLogFileAtMidnight, Flag, L"New Log File At Midnight", false, Plain) \
    X(TraceLevel, Number, L"Trace Level", 0, Plain) \
    X(KeyboardCharSendDelay, Number, L"Keyboard Char Send Delay", 0, Plain) /* milliseconds */ \
    X(UseWordDelimiterChars, Flag, L"Use Word Delimiter Chars", false, Plain) \
    X(WordDelimiterChars, Text, L"Word Delimiter Chars", L" \"'(),;<>[]`{|}", Plain) /* chosen: what ends a word on a double click */ \
    X(IdleTimeout, Number, L"Idle Timeout", 300, Plain) /* chosen: seconds */ \
    X(IdleCheck, Flag, L"Idle Check", false, Plain) \
    X(IdleString, Text, L"Idle String", L"", Plain) \
    X(IdleNoOpCheck, Flag, L"Idle NO-OP Check", false, Plain) \
    X(IdleNoOpTimeout, Number, L"Idle NO-OP Timeout", 60, Plain) /* chosen: seconds */ \
    X(AlwaysOnTop, Flag, L"AlwaysOnTop", false, Plain) \
    X(LineSendDelay, Number, L"Line Send Delay", 5, Plain) /* milliseconds, as the global option */ \
    X(CharacterSendDelay, Number, L"Character Send Delay", 0, Plain) /* milliseconds */ \
    X(WaitForPrompt, Flag, L"Wait For Prompt", false, Plain) \
    X(WaitForPromptText, Text, L"Wait For Prompt Text", L"", Plain) \
    X(WaitForPromptTimeout, Number, L"Wait For Prompt Timeout", 500, Plain) /* chosen: milliseconds */ \
    X(SendScrollWheelEventsToRemote, Flag, L"Send Scroll Wheel Events To Remote", false, Plain) \
    X(PositionCursorOnLeftClick, Flag, L"Position Cursor on Left Click", false, Plain) \
    X(HighlightingStyle, Number, L"Highlighting Style", 0, Plain) \
    X(HighlightReverseVideo, Flag, L"Highlight Reverse Video", true, Plain) \
    X(HighlightBold, Flag, L"Highlight Bold", false, Plain) \
    X(HighlightColor, Color, L"Highlight Color", RGB(255, 255, 0), Plain) /* chosen: yellow */ \
    X(KeywordSet, Text, L"Keyword Set", L"", Plain) /* chosen: empty, no keywords */ \
    X(IdentString, Text, L"Ident String", L"", Plain) /* chosen: empty, the program's own */ \
    X(RawEolMode, Flag, L"Raw EOL Mode", false, Plain) \
    X(EjectPageInterval, Number, L"Eject Page Interval", 0, Plain) /* seconds, 0 never, as the global option */ \
    X(MonitorListenAddress, Text, L"Monitor Listen Address", L"0.0.0.0:22", Plain) \
    X(MonitorUsername, Text, L"Monitor Username", L"", Plain) \
    X(MonitorPassword, Secret, L"Monitor Password V2", {}, Generations(L"Monitor Password", nullptr)) \
    X(MonitorAllowRemoteInput, Flag, L"Monitor Allow Remote Input", false, Plain) \
    X(DisableResize, Flag, L"Disable Resize", false, Plain) \
    X(AutoReconnect, Flag, L"Auto Reconnect", false, Plain) \
    X(UseGlobalPrintSettings, Flag, L"Use Global Print Settings", true, Plain) \
    X(OperatingSystem, Text, L"Operating System", L"", Plain) /* chosen: empty, told by the server ("UNIX", "Windows", ...) */ \
    X(TimeZone, Text, L"Time Zone", L"", Plain) /* a zone's key name; empty, the computer's zone */ \
    X(Description, Encoded, L"Description", L"", Plain) /* chosen: escaped, so that it may hold several lines */ \
    X(LastDirectory, Text, L"Last Directory", L"", Plain) \
    X(DefaultDownloadDirectory, Text, L"Default Download Directory", L"", Plain) \
    X(FileSystemCase, Number, L"File System Case", 0, Plain) \
    X(FileCreationMask, Number, L"File Creation Mask", 022, Plain) /* chosen: octal umask, files rw-r--r-- */ \
    X(DisableDirectoryTreeDetection, Flag, L"Disable Directory Tree Detection", false, Plain) \
    X(VerifyRetrieveFileStatus, Flag, L"Verify Retrieve File Status", true, Plain) \
    X(ResolveSymbolicLinks, Flag, L"Resolve Symbolic Links", false, Plain) \
    X(RestartDataSize, Number, L"Restart Data Size", 0, Plain) /* chosen: bytes, 0 the transfer's own */ \
    X(RestartDatafilePath, Text, L"Restart Datafile Path", L"", Plain) \
    X(MaxTransferBuffers, Number, L"Max Transfer Buffers", 4, Plain) /* chosen */ \
    X(FilenamesAlwaysUseUtf8, TriState, L"Filenames Always Use UTF8", VTriState::Automatic, Plain) /* chosen: as the server announces */ \
    X(UseASeparateTransportForEveryConnection, Flag, L"Use A Separate Transport For Every Connection", false, Plain) \
    X(UseMultipleSftpChannels, Flag, L"Use Multiple SFTP Channels", false, Plain) \
    X(DisableStatForSftpDirectoryValidation, Flag, L"Disable STAT For SFTP Directory Validation", false, Plain) \
    X(DisableMlsx, Flag, L"Disable MLSX", false, Plain) \
    X(RemoteFrameWindowPlacement, Placement, L"RemoteFrame Window Placement", {}, Plain) \
    X(RemoteExplorerFrameState, Pane, L"Remote ExplorerFrame State", L"1,1000,200", Plain) /* as the global option */ \
    X(RemoteListViewState, ListView, L"Remote ListView State", L"", Plain) \
    X(FilewrightRemoteTabState, Pane, L"Filewright Remote Tab State", L"1,1000,200", Plain) /* as the global option */ \
    X(FilewrightPostLoginUserCommands, MultiLine, L"Filewright Post Login User Commands", L"", Plain) \
    X(FilewrightBookmarks, TextList, L"Filewright Bookmarks", {}, Plain) /* one folder per entry */ \
    X(FilewrightTraceLevel, Number, L"Filewright Trace Level", 0, Plain) \
    X(FilewrightUseControlAddress, TriState, L"Filewright Use Control Address For Data Connections", VTriState::Automatic, Plain) /* chosen: when the server offers a private address */ \
    X(ScpShellPrompts, MultiLine, L"SCP Shell Prompts", L"", Plain) \
    X(ScpShellPassword, Secret, L"SCP Shell Password V2", {}, Generations(L"SCP Shell Password", nullptr)) \
    X(UsePgpForAllTransfers, Flag, L"Use PGP For All Transfers", false, Plain) \
    X(PgpUploadCommand, Secret, L"PGP Upload Command V2", {}, Generations(nullptr, L"PGP Upload Command")) \
    X(PgpDownloadCommand, Secret, L"PGP Download Command V2", {}, Generations(nullptr, L"PGP Download Command")) \
    X(DisableRemoteFileSystemWatches, Flag, L"Disable Remote File System Watches", false, Plain) \
    X(ProtocolName, Text, L"Protocol Name", L"", Plain) /* empty: the protocol table's default for terminals */ \
    X(TransferProtocolName, Text, L"Transfer Protocol Name", L"", Plain) /* empty: its default for transfers */
// clang-format on
