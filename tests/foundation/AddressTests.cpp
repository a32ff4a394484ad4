// Addresses: the host:port rules, comparison, the setters, and two seeded
// checks: formatted random addresses read back the same, and generated texts
// read as Python's ipaddress (address_oracle.py) expects. Set
// TRAYWELL_TEST_SEED to replay a round-trip run; the texts' seed is fixed at
// build time (TRAYWELL_ADDRESS_SEED).
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>

#include "HostPortText.h"
#include "VAddressIPv4.h"
#include "VAddressIPv6.h"

namespace {

std::string Hex(const uint8_t* bytes, size_t length) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < length; ++i) text += {digits[bytes[i] >> 4], digits[bytes[i] & 15]};
    return text;
}

// Reads text with both classes: the formatted text (with port) of the one
// that accepted it, "v4 "/"v6 " before it, or "bad" when neither did.
template <class Text>
std::string Reading(const Text* text) {
    VAddressIPv4 v4;
    VAddressIPv6 v6;
    const bool is4 = v4.SetFromText(text);
    const bool is6 = v6.SetFromText(text);
    if (is4 == is6) return is4 ? "both" : "bad";
    return is4 ? "v4 " + std::string(v4.ToString(true).c_str())
               : "v6 " + std::string(v6.ToString(true).c_str());
}

TEST(Addresses, TextsReadAsTheHostAndPortRulesSay) {
    const struct {
        const char* text;
        const char* reading;
    } cases[] = {
        {"10.0.0.1:22", "v4 10.0.0.1:22"},
        {"10.0.0.1", "v4 10.0.0.1:0"},
        {"0.0.0.0", "v4 0.0.0.0:0"},
        {"255.255.255.255", "bad"},
        {"255.255.255.255:22", "bad"},
        {"10.0.0.1:70000", "bad"},
        {"10.0.0.1:65535", "v4 10.0.0.1:65535"},
        {"10.0.0.1:22 \t\r\n", "v4 10.0.0.1:22"},
        {"10.0.0.1:22x", "bad"},
        {"10.0.0.1:-1", "bad"},
        {"10.0.0.1:", "bad"},
        {"", "bad"},
        {":22", "bad"},
        {"10.0.0.1 ", "bad"},
        {"010.0.0.1", "bad"},
        {"1.2.3", "bad"},
        {"[10.0.0.1]:22", "bad"},
        {"[fe80::1]:2222", "v6 [fe80::1]:2222"},
        {"fe80::1", "v6 [fe80::1]:0"},
        {"fe80::1]", "bad"},
        {"x[::1]:22", "bad"},
        {"[::1", "bad"},
        {"[::1]", "v6 [::1]:0"},
        {"[::1]x:22", "bad"},
        {"[::1]:22:", "bad"},
        {"[::]:0", "v6 [::]:0"},
        {"[FE80:0000::0001]:7", "v6 [fe80::1]:7"},
        {"[fe80::1%3]:22", "v6 [fe80::1%3]:22"},
        {"fe80::1%0", "v6 [fe80::1]:0"},
        {"fe80::1%4294967296", "bad"},
        {"fe80::1%eth0", "bad"},
        {"fe80::1%", "bad"},
        {"[fe80::1]%3", "bad"},
        {"10.0.0.1%3", "bad"},
        {"::ffff:10.0.0.1", "v6 [::ffff:10.0.0.1]:0"},
        {"[64:ff9b::10.0.0.1]:53", "v6 [64:ff9b::a00:1]:53"},
        {"::ffff:010.0.0.1", "v6 [::ffff:10.0.0.1]:0"},  // the system reads it as decimal
        {"1:2:3:4:5:6:7:8:9", "bad"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Reading(c.text), c.reading) << c.text;
        const std::wstring wide(c.text, c.text + std::strlen(c.text));
        EXPECT_EQ(Reading(wide.c_str()), c.reading) << c.text << " (wide)";
    }
    // Look-alike digits must not turn into real ones on the way to narrow text.
    EXPECT_EQ(Reading(L"\uFF11\uFF10.0.0.1"), "bad");
    EXPECT_EQ(Reading(static_cast<const char*>(nullptr)), "bad");
}

TEST(Addresses, HostAndPortJoinForDisplay) {
    const struct {
        const wchar_t* host;
        const wchar_t* port;
        const wchar_t* joined;
    } cases[] = {
        {L"example.org", L"22", L"example.org:22"},
        {L"::1", L"22", L"[::1]:22"},
        {L"", L"", L"[]"},
        {L"", L"22", L"[]:22"},
        {L"10.0.0.1", L"", L"10.0.0.1"},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(JoinHostPort(VUnicodeString(c.host), VUnicodeString(c.port)).c_str(), c.joined)
            << c.host;
}

template <class Address>
bool Compare(const char* a, const char* b, int bits) {
    Address first;
    Address second;
    first.SetFromText(a);
    second.SetFromText(b);
    return bits < 0 ? first.Equals(second)
                    : first.MatchesPrefix(second, static_cast<uint32_t>(bits));
}

TEST(Addresses, EqualityAndPrefixesFollowThePortRule) {
    const struct {
        const char* a;
        const char* b;
        int bits;  // -1: equality
        bool expected;
    } v4[] =
        {
            {"10.0.0.1", "10.0.0.1:22", -1, true},
            {"10.0.0.1:21", "10.0.0.1:22", -1, false},
            {"10.0.0.1:22", "10.0.0.2:22", -1, false},
            {"10.1.2.3", "10.1.200.9", 16, true},
            {"10.1.2.3", "10.1.200.9", 17, false},
            {"10.0.0.1", "10.0.0.1", 33, true},
            {"10.0.0.1", "10.0.0.2", 40, false},
            {"0.0.0.0:1", "9.9.9.9:1", 0, true},
            {"0.0.0.0:1", "9.9.9.9:2", 0, false},
            {"255.255.255.255", "255.255.255.255", -1, false},
        },
      v6[] = {
          {"fe80::1", "fe80::2", 126, true},     {"fe80::1", "fe80::2", 127, false},
          {"[fe80::1]:22", "fe80::1", -1, true}, {"[fe80::1]:22", "[fe80::1]:23", 64, false},
          {"fe80::1%3", "fe80::1%4", -1, true},
      };
    for (const auto& c : v4)
        EXPECT_EQ(Compare<VAddressIPv4>(c.a, c.b, c.bits), c.expected) << c.a << " " << c.b;
    for (const auto& c : v6)
        EXPECT_EQ(Compare<VAddressIPv6>(c.a, c.b, c.bits), c.expected) << c.a << " " << c.b;

    VAddressIPv4 v4Address;
    VAddressIPv6 v6Address;
    v4Address.SetFromText("10.0.0.1");
    v6Address.SetFromText("::ffff:10.0.0.1");
    EXPECT_FALSE(v4Address.Equals(v6Address));
    EXPECT_FALSE(v6Address.MatchesPrefix(v4Address, 0));
}

TEST(Addresses, AnyAndLoopback) {
    const struct {
        const char* text;
        bool any;
        bool loopback;
    } cases[] = {
        {"0.0.0.0", true, false}, {"127.255.0.1", false, true}, {"128.0.0.1", false, false},
        {"::", true, false},      {"::1", false, true},         {"::ffff:127.0.0.1", false, false},
        {"::2", false, false},    {"1.2.3.4.5", false, false},  {"fe80::1%x", false, false},
    };
    for (const auto& c : cases) {
        VAddressIPv4 v4;
        VAddressIPv6 v6;
        const bool any = v4.SetFromText(c.text) ? v4.IsAnyAddress()
                                                : v6.SetFromText(c.text) && v6.IsAnyAddress();
        const bool loopback =
            v4.SetFromText(c.text) ? v4.IsLoopback() : v6.SetFromText(c.text) && v6.IsLoopback();
        EXPECT_EQ(any, c.any) << c.text;
        EXPECT_EQ(loopback, c.loopback) << c.text;
    }
    EXPECT_TRUE(VAddressIPv4().IsAnyAddress());
    EXPECT_TRUE(VAddressIPv6().IsAnyAddress());
}

TEST(Addresses, SystemRecordsAndBytesSetOnlyTheirOwnFamily) {
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST;
    hints.ai_socktype = SOCK_DGRAM;
    hints.ai_protocol = IPPROTO_UDP;
    addrinfo* found = nullptr;
    ASSERT_EQ(getaddrinfo("127.0.0.2", "8080", &hints, &found), 0);
    VAddressIPv4 v4;
    VAddressIPv6 v6;
    EXPECT_FALSE(v6.SetFromAddressInfo(*found));
    ASSERT_TRUE(v4.SetFromAddressInfo(*found));
    EXPECT_EQ(v4.ToString(true), "127.0.0.2:8080");
    EXPECT_EQ(v4.GetSocketType(), SOCK_DGRAM);
    EXPECT_EQ(v4.GetProtocol(), IPPROTO_UDP);
    EXPECT_FALSE(v4.SetFromSocketAddress(found->ai_addr, static_cast<int>(found->ai_addrlen) - 1));
    EXPECT_EQ(v4.ToString(false), "");
    freeaddrinfo(found);

    const uint8_t bytes[16] = {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 9};
    EXPECT_FALSE(v4.SetFromBytes(bytes, 5));
    EXPECT_TRUE(v4.SetFromBytes(bytes, 4));
    EXPECT_EQ(v4.ToString(false), "254.128.0.0");
    EXPECT_FALSE(v6.SetFromBytes(bytes, 4));
    EXPECT_TRUE(v6.SetFromBytes(bytes, 16));
    EXPECT_EQ(v6.ToString(false), "fe80::9");
    EXPECT_TRUE(v4.SetFromSocketAddress(reinterpret_cast<const sockaddr*>(&v4.GetSocketAddress()),
                                        sizeof(sockaddr_in)));
    EXPECT_FALSE(v6.SetFromSocketAddress(reinterpret_cast<const sockaddr*>(&v4.GetSocketAddress()),
                                         sizeof(sockaddr_in6)));
}

uint64_t TestSeed() {
    if (const char* fixed = std::getenv("TRAYWELL_TEST_SEED"))
        return std::strtoull(fixed, nullptr, 0);
    return std::random_device()() * 0x100000000ull + std::random_device()();
}

// Formats the address with its port, reads the text back (narrow and wide)
// and compares everything the text carries.
template <class Address>
void ExpectRoundTrip(const Address& address) {
    const VString text = address.ToString(true);
    Address narrow;
    Address wide;
    ASSERT_TRUE(narrow.SetFromText(text.c_str())) << text.c_str();
    ASSERT_TRUE(wide.SetFromText(address.ToUnicodeString(true).c_str())) << text.c_str();
    for (const Address* read : {&narrow, &wide}) {
        EXPECT_EQ(Hex(read->GetAddressBytes(), Address::AddressLength),
                  Hex(address.GetAddressBytes(), Address::AddressLength))
            << text.c_str();
        EXPECT_EQ(read->GetPort(), address.GetPort()) << text.c_str();
        EXPECT_EQ(read->ToString(true), text);
    }
}

TEST(Addresses, FormattedRandomAddressesReadBackTheSame) {
    const uint64_t seed = TestSeed();
    std::printf("round-trip seed %llu\n", static_cast<unsigned long long>(seed));
    SCOPED_TRACE("TRAYWELL_TEST_SEED=" + std::to_string(seed));
    std::mt19937_64 random(seed);
    // Mostly zero bytes, so that runs of zero groups (and "::") are common.
    const auto byte = [&random] { return random() % 3 ? 0 : static_cast<uint8_t>(random()); };
    for (int i = 0; i < 20000; ++i) {
        uint8_t bytes[16];
        for (uint8_t& b : bytes) b = byte();
        const auto port = static_cast<uint16_t>(random());
        VAddressIPv4 v4;
        v4.SetFromBytes(bytes, 4);
        v4.SetPort(port);
        if (v4.GetSocketAddress().sin_addr.s_addr != INADDR_BROADCAST) ExpectRoundTrip(v4);
        VAddressIPv6 v6;
        sockaddr_in6 socketAddress = v6.GetSocketAddress();
        std::memcpy(&socketAddress.sin6_addr, bytes, 16);
        socketAddress.sin6_port = htons(port);
        socketAddress.sin6_scope_id = random() % 2 ? 0 : static_cast<ULONG>(random());
        ASSERT_TRUE(v6.SetFromSocketAddress(reinterpret_cast<const sockaddr*>(&socketAddress),
                                            sizeof socketAddress));
        ExpectRoundTrip(v6);
        ASSERT_FALSE(testing::Test::HasFailure()) << "case " << i;
    }
}

std::string Unhex(const std::string& hex) {
    std::string bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

// What our classes make of text, in the oracle's line format.
std::string OurReading(const std::string& text) {
    VAddressIPv4 v4;
    VAddressIPv6 v6;
    if (v4.SetFromText(text.c_str()))
        return "v4\t" + Hex(v4.GetAddressBytes(), 4) + "\t" + std::to_string(v4.GetPort()) + "\t0";
    if (v6.SetFromText(text.c_str()))
        return "v6\t" + Hex(v6.GetAddressBytes(), 16) + "\t" + std::to_string(v6.GetPort()) + "\t" +
               std::to_string(v6.GetScopeId());
    return "bad\t\t0\t0";
}

TEST(Addresses, GeneratedTextsReadAsPythonsIpaddressExpects) {
    std::ifstream cases(ADDRESS_CASES_FILE);
    ASSERT_TRUE(cases) << ADDRESS_CASES_FILE;
    std::string header;
    std::getline(cases, header);
    std::map<std::string, int> kinds;
    int tried = 0;
    int decimalReadings = 0;
    int unexplained = 0;
    for (std::string line; std::getline(cases, line); ++tried) {
        std::istringstream fields(line);
        std::string hex, kind, bytes, port, scope;
        std::getline(fields, hex, '\t');
        std::getline(fields, kind, '\t');
        std::getline(fields, bytes, '\t');
        std::getline(fields, port, '\t');
        std::getline(fields, scope, '\t');
        std::string systemReading;
        std::getline(fields, systemReading);
        const std::string text = Unhex(hex);
        const std::string expected = kind + "\t" + bytes + "\t" + port + "\t" + scope;
        ++kinds[kind];
        const std::string reading = OurReading(text);
        if (reading != expected && reading == systemReading) {
            ++decimalReadings;
        } else if (reading != expected && ++unexplained <= 20) {
            ADD_FAILURE() << "text \"" << text << "\": ours " << reading << ", expected "
                          << expected;
        }
        // Whatever was accepted must also survive its own formatting.
        VAddressIPv6 v6;
        if (v6.SetFromText(text.c_str())) ExpectRoundTrip(v6);
    }
    std::printf(
        "%s: %d texts tried (ipaddress: %d IPv4, %d IPv6, %d refused); disagreements: %d where the "
        "system "
        "reads an IPv4 part of an IPv6 address with leading zeros as decimal, %d others\n",
        header.c_str(), tried, kinds["v4"], kinds["v6"], kinds["bad"], decimalReadings,
        unexplained);
    EXPECT_GE(tried, 100000);
    EXPECT_EQ(unexplained, 0);
}

}  // namespace
