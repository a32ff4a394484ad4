#include "ConnectProtocols.h"

#include <iterator>

#include "NoneConfig.h"
#include "ProtocolConnectConfig.h"

namespace {

using namespace ConnectProtocolKind;

constexpr wchar_t UserOption[] = L"/L";

// The parts of the network protocols: their port, and the remote host.
#define NETWORK_PROTOCOL(id, protocol, port, userOption)                                    \
    constexpr ConnectPartValue id##Values[] = {PartNumber(protocol L" Port", L"/P", port)}; \
    constexpr ConnectPartDefinition id##Part = {protocol, true, userOption, id##Values, 1};

NETWORK_PROTOCOL(Ssh2, L"SSH2", 22, UserOption)
NETWORK_PROTOCOL(Ssh1, L"SSH1", 22, UserOption)
NETWORK_PROTOCOL(Telnet, L"Telnet", 23, nullptr)
NETWORK_PROTOCOL(TelnetSsl, L"Telnet/SSL", 992, nullptr)
NETWORK_PROTOCOL(TelnetTls, L"Telnet/TLS", 992, nullptr)
NETWORK_PROTOCOL(RLogin, L"RLogin", 513, UserOption)
NETWORK_PROTOCOL(Sftp, L"SFTP", 22, UserOption)
NETWORK_PROTOCOL(FtpSslImplicit, L"FTP/SSL (implicit)", 990, UserOption)
NETWORK_PROTOCOL(FtpSslExplicit, L"FTP/SSL (explicit)", 21, UserOption)
NETWORK_PROTOCOL(FtpTlsImplicit, L"FTP/TLS (implicit)", 990, UserOption)
NETWORK_PROTOCOL(FtpTlsExplicit, L"FTP/TLS (explicit)", 21, UserOption)
#undef NETWORK_PROTOCOL

constexpr ConnectPartValue SerialValues[] = {
    PartText(L"Com Port", L"/COM", L"COM1"), PartNumber(L"Baud Rate", L"/BAUD", 9600),
    PartNumber(L"Data Bits", L"/DATA", 8),   PartNumber(L"Parity", L"/PARITY", 0),
    PartNumber(L"Stop Bits", L"/STOP", 0),   PartNumber(L"Flow Control", L"/FLOW", 0),
};
constexpr ConnectPartDefinition SerialPart = {L"Serial", false, nullptr, SerialValues,
                                              std::size(SerialValues)};

constexpr ConnectPartValue TapiValues[] = {
    PartText(L"Phone Number", L"/PHONE", L""),
    PartText(L"Modem", L"/MODEM", L""),
};
constexpr ConnectPartDefinition TapiPart = {L"TAPI", false, nullptr, TapiValues,
                                            std::size(TapiValues)};

constexpr ConnectPartValue LocalShellValues[] = {
    PartText(L"Shell Command Line", L"/COMMAND", L""),
};
constexpr ConnectPartDefinition LocalShellPart = {L"Local Shell", false, nullptr, LocalShellValues,
                                                  std::size(LocalShellValues)};

template <const ConnectPartDefinition& Definition>
ConnectConfig* CreatePart() {
    return new ProtocolConnectConfig(Definition);
}

ConnectConfig* CreateNonePart() { return new NoneConfig; }

template <const ConnectPartDefinition& Definition>
ConnectProtocolTableElement Element(uint32_t kind, const wchar_t* module, bool isDefault = false) {
    return {Definition.protocolName, kind, module, isDefault, CreatePart<Definition>};
}

ConnectProtocolTable MakeTable() {
    return {
        Element<Ssh2Part>(Network, L"SSH2.dll", true),
        Element<Ssh1Part>(Network, L"SSH2.dll"),
        Element<TelnetPart>(Network, L""),
        Element<TelnetSslPart>(Network, L"TelnetSSL.dll"),
        Element<TelnetTlsPart>(Network, L"TelnetSSL.dll"),
        Element<RLoginPart>(Network, L""),
        Element<SerialPart>(Device, L""),
        Element<TapiPart>(Device, L""),
        Element<LocalShellPart>(LocalShell, L""),
        Element<SftpPart>(FileTransferSsh, L"SSH2.dll", true),
        Element<FtpSslImplicitPart>(FileTransferFtp, L"FTPSSL.dll"),
        Element<FtpSslExplicitPart>(FileTransferFtp, L"FTPSSL.dll"),
        Element<FtpTlsImplicitPart>(FileTransferFtp, L"FTPSSL.dll"),
        Element<FtpTlsExplicitPart>(FileTransferFtp, L"FTPSSL.dll"),
        {NoneConfig::ProtocolName, NoConnection, L"", false, CreateNonePart},
    };
}

}  // namespace

const ConnectProtocolTable& GetConnectProtocolTable() {
    static const ConnectProtocolTable table = MakeTable();
    return table;
}
