// Addresses: Python's ipaddress (address_oracle.py) as oracle, every reading written back.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <tuple>

#include "HostPortText.h"
#include "VAddressIPv4.h"
#include "VAddressIPv6.h"

namespace {

template <class Char>
VRefPtr<IInternetAddress> Parse(const Char* text) {
    auto v4 = VRefPtr<IInternetAddress>::Adopt(new VAddressIPv4());
    if (v4->SetFromText(text)) return v4;
    auto v6 = VRefPtr<IInternetAddress>::Adopt(new VAddressIPv6());
    v6->SetFromText(text);
    return v6;
}

template <class Char>
std::string Reading(const Char* text) {
    const VRefPtr<IInternetAddress> address = Parse(text);
    if (!address->IsValid()) return "bad";
    return std::string(address->ToString(true).c_str()) + (address->IsAnyAddress() ? " any" : "") +
           (address->IsLoopback() ? " loopback" : "");
}

TEST(Addresses, TextsReadAndFormatAsTheRulesSay) {
    const char* cases[][2] = {{"10.0.0.1:22", "10.0.0.1:22"},
                              {"0.0.0.0", "0.0.0.0:0 any"},
                              {"127.255.0.1", "127.255.0.1:0 loopback"},
                              {"[fe80::1]:2222", "fe80::1:2222"},
                              {"[::1]", "::1:0 loopback"},
                              {"[::]:0", ":::0 any"},
                              {"[FE80:0000::0001]:7", "fe80::1:7"},
                              {"[fe80::1%3]:22", "fe80::1%3:22"},
                              {"fe80::1%0", "fe80::1:0"},
                              {"::ffff:127.0.0.1", "::ffff:127.0.0.1:0"},
                              {"10.0.0.1%3", "bad"}};
    for (const auto& [text, reading] : cases) {
        EXPECT_EQ(Reading(text), reading) << text;
        EXPECT_EQ(Reading(std::wstring(text, text + std::strlen(text)).c_str()), reading) << text;
    }
    // Look-alike digits must not turn into real ones on the way to narrow text.
    EXPECT_EQ(Reading(L"\uFF11\uFF10.0.0.1"), "bad");
    EXPECT_EQ(Reading(static_cast<const char*>(nullptr)), "bad");

    const wchar_t* joins[][3] = {{L"example.org", L"22", L"example.org:22"},
                                 {L"::1", L"22", L"[::1]:22"},
                                 {L"", L"", L"[]"},
                                 {L"10.0.0.1", L"", L"10.0.0.1"}};
    for (const auto& [host, port, joined] : joins)
        EXPECT_STREQ(JoinHostPort(VUnicodeString(host), VUnicodeString(port)).c_str(), joined);
}

TEST(Addresses, EqualityAndPrefixesFollowThePortRule) {
    const std::tuple<const char*, const char*, int, bool> cases[] = {
        // bits -1: equality
        {"10.0.0.1", "10.0.0.1:22", -1, true},    {"10.0.0.1:21", "10.0.0.1:22", -1, false},
        {"10.1.2.3", "10.1.200.9", 16, true},     {"10.1.2.3", "10.1.200.9", 17, false},
        {"10.0.0.1", "10.0.0.1", 33, true},       {"0.0.0.0:1", "9.9.9.9:1", 0, true},
        {"fe80::1", "fe80::2", 126, true},        {"fe80::1", "fe80::2", 127, false},
        {"fe80::1%3", "fe80::1%4", -1, true},     {"[fe80::1]:22", "[fe80::1]:23", 64, false},
        {"::ffff:10.0.0.1", "10.0.0.1", 0, false}};
    for (const auto& [a, b, bits, expected] : cases) {
        const VRefPtr<IInternetAddress> first = Parse(a), second = Parse(b);
        EXPECT_EQ(bits < 0 ? first->Equals(*second) : first->MatchesPrefix(*second, bits), expected)
            << a << " " << b << " " << bits;
    }
}

TEST(Addresses, SystemRecordsAndBytesSetOnlyTheirOwnFamily) {
    const addrinfo hints{AI_NUMERICHOST, AF_UNSPEC, SOCK_DGRAM, IPPROTO_UDP, 0, {}, {}, {}};
    addrinfo* found = nullptr;
    ASSERT_EQ(getaddrinfo("127.0.0.2", "8080", &hints, &found), 0);
    VAddressIPv4 v4;
    VAddressIPv6 v6;
    EXPECT_TRUE(!v6.SetFromAddressInfo(*found) && v4.SetFromAddressInfo(*found));
    EXPECT_TRUE(v4.ToString(true) == "127.0.0.2:8080" && v4.GetSocketType() == SOCK_DGRAM &&
                v4.GetProtocol() == IPPROTO_UDP);
    EXPECT_FALSE(v4.SetFromSocketAddress(found->ai_addr, static_cast<int>(found->ai_addrlen) - 1) ||
                 v4.IsValid() || v4.SetFromBytes("\1\2\3\4", 5) || v6.SetFromBytes("\1\2\3\4", 4));
    freeaddrinfo(found);
}

template <class Address>
void ExpectRoundTrip(const Address& address) {
    const VString text =
        JoinHostPort(address.ToString(false), VString(std::to_string(address.GetPort()).c_str()));
    Address narrow, wide;
    EXPECT_TRUE(narrow.SetFromText(text.c_str()) &&
                wide.SetFromText(VUnicodeString(text).c_str()) && narrow.Equals(address) &&
                narrow.GetPort() == address.GetPort() &&
                narrow.ToString(true) == address.ToString(true) &&
                wide.ToString(true) == address.ToString(true))
        << text.c_str();
}

std::string Line(const char* kind, const uint8_t* bytes, size_t length, uint16_t port,
                 ULONG scope) {
    std::string line = std::string(kind) + "\t";
    for (size_t i = 0; i < length; ++i)
        line += {"0123456789abcdef"[bytes[i] >> 4], "0123456789abcdef"[bytes[i] & 15]};
    return line + "\t" + std::to_string(port) + "\t" + std::to_string(scope);
}

std::string OurReading(const std::string& text) {
    VAddressIPv4 v4;
    VAddressIPv6 v6;
    if (v4.SetFromText(text.c_str())) {
        ExpectRoundTrip(v4);
        return Line("v4", v4.GetAddressBytes(), 4, v4.GetPort(), 0);
    }
    if (!v6.SetFromText(text.c_str())) return "bad\t\t0\t0";
    ExpectRoundTrip(v6);
    return Line("v6", v6.GetAddressBytes(), 16, v6.GetPort(), v6.GetScopeId());
}

TEST(Addresses, TextsReadAsPythonsIpaddressExpects) {
    std::ifstream cases(ADDRESS_CASES_FILE);
    std::string header;
    ASSERT_TRUE(std::getline(cases, header)) << ADDRESS_CASES_FILE;
    std::map<std::string, int> counts;
    for (std::string line; std::getline(cases, line);) {
        // hex text, tab, the expected reading, "|", the system's decimal reading or "-"
        const size_t tab = line.find('\t'), bar = line.find('|');
        std::string text;
        for (size_t i = 0; i + 1 < tab; i += 2)
            text += static_cast<char>(std::stoi(line.substr(i, 2), nullptr, 16));
        const std::string expected = line.substr(tab + 1, bar - tab - 1);
        const std::string reading = OurReading(text);
        ++counts[expected.substr(0, expected.find('\t'))];
        if (reading != expected && reading == line.substr(bar + 1))
            ++counts["decimal"];
        else if (reading != expected && ++counts["other"] <= 20)
            ADD_FAILURE() << "\"" << text << "\": ours " << reading << ", expected " << expected;
    }
    std::printf(
        "%s (ipaddress: %d IPv4, %d IPv6, %d refused); disagreements: %d where the system "
        "reads an IPv4 part of an IPv6 address with leading zeros as decimal, %d others\n",
        header.c_str(), counts["v4"], counts["v6"], counts["bad"], counts["decimal"],
        counts["other"]);
    EXPECT_GE(counts["v4"] + counts["v6"] + counts["bad"], 100000);
    EXPECT_EQ(counts["other"], 0);
}

}  // namespace
