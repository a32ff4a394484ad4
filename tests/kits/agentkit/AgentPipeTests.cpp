// The agent over its pipe: our client as ssh-add, bad clients, malformed messages.

#include <gtest/gtest.h>

#include <aclapi.h>
#include <sddl.h>

#include <random>

#include "AgentMessageTypes.h"
#include "AgentPipeServer.h"
#include "AgentTestSupport.h"
#include "ChildProcess.h"
#include "TestSeed.h"
#include "VSecurityDescriptor.h"

namespace {

class AgentPipeTest : public testing::Test {
protected:
    void SetUp() override {
        store_.SetClock([this] { return now_.load(); });
        ASSERT_TRUE(server_.Start(report_)) << VString(report_.GetTextAsString()).c_str();
        ASSERT_TRUE(client_.Connect(pipe_.c_str(), 5000, report_));
    }

    void AddAll() {
        for (const char* name : {"ed25519", "ecdsa256", "ecdsa384", "ecdsa521", "rsa"}) {
            keys_.push_back(LoadTestKey(name));
            ASSERT_TRUE(client_.Add(keys_.back().key, keys_.back().comment, 0, false)) << name;
        }
    }

    std::vector<AgentIdentity> Listed() {
        std::vector<AgentIdentity> listed;
        EXPECT_TRUE(client_.List(listed));
        return listed;
    }

    std::atomic<uint64_t> now_{1'700'000'000};
    const VUnicodeString pipe_ = VUnicodeString(L"\\\\.\\pipe\\") + UniqueObjectName(L"agent");
    AgentKeyStore store_{UniqueObjectName(L"agent-store").c_str()};
    RecordingConfirm confirm_;
    AgentProtocol protocol_{store_, confirm_};
    AgentPipeServer server_{protocol_, store_, pipe_.c_str()};
    AgentPipeClient client_;
    VReportMessageParams report_;
    std::vector<LoadedKey> keys_;
};

const uint8_t Data[] = "session identifier and request";

}  // namespace

TEST_F(AgentPipeTest, ServesEveryKeyTypeAsSshAddAndSshUseIt) {
    AddAll();
    const std::vector<AgentIdentity> listed = Listed();
    ASSERT_EQ(listed.size(), keys_.size());
    const struct {
        size_t key;
        uint32_t flags;
        const char* signature;
    } signs[] = {
        // clang-format off
        {0, 0, "ssh-ed25519"}, {1, 0, "ecdsa-sha2-nistp256"}, {2, 0, "ecdsa-sha2-nistp384"},
        {3, 0, "ecdsa-sha2-nistp521"}, {4, SignRsaSha256, "rsa-sha2-256"},
        {4, SignRsaSha512, "rsa-sha2-512"}, {4, 0, "ssh-rsa"},
        // clang-format on
    };
    AgentBytes signature;
    for (const auto& sign : signs) {
        ASSERT_TRUE(
            client_.Sign(listed[sign.key].publicBlob, Data, sizeof Data, sign.flags, signature));
        SshReader reader(signature);
        AgentText name;
        EXPECT_TRUE(reader.String(name) && name == sign.signature) << sign.signature;
    }
    EXPECT_EQ(confirm_.asked, 0);

    // Added again with confirmation: each use asks, naming this program.
    ASSERT_TRUE(client_.Add(keys_[0].key, keys_[0].comment, 0, true));
    confirm_.answer = false;
    EXPECT_FALSE(client_.Sign(listed[0].publicBlob, Data, sizeof Data, 0, signature));
    confirm_.answer = true;
    EXPECT_TRUE(client_.Sign(listed[0].publicBlob, Data, sizeof Data, 0, signature));
    EXPECT_EQ(confirm_.asked, 2);
    EXPECT_TRUE(confirm_.client.StartsWith(L"agentcore_tests.exe (")) << confirm_.client.c_str();

    const AgentBytes passphrase = Utf8Bytes(VUnicodeString(L"away"));
    ASSERT_TRUE(client_.Lock(passphrase));
    EXPECT_FALSE(client_.Sign(listed[1].publicBlob, Data, sizeof Data, 0, signature));
    EXPECT_FALSE(client_.Unlock(Utf8Bytes(VUnicodeString(L"back"))));
    ASSERT_TRUE(client_.Unlock(passphrase));
    EXPECT_TRUE(client_.Remove(listed[1].publicBlob));
    EXPECT_FALSE(client_.Remove(listed[1].publicBlob));
    EXPECT_TRUE(client_.RemoveAll());
    EXPECT_TRUE(Listed().empty());

    // The server's own timer drops a key whose lifetime ended, with no client asking.
    ASSERT_TRUE(client_.Add(keys_[1].key, keys_[1].comment, 30, false));
    const uint32_t generation = store_.GetGeneration();
    now_ += 30;
    for (int wait = 0; wait < 40 && store_.GetGeneration() == generation; ++wait) Sleep(100);
    EXPECT_EQ(store_.RemoveExpired(), 0u) << "the server dropped it already";
    EXPECT_TRUE(store_.List().empty());
}

// Every malformed message gets SSH_AGENT_FAILURE and changes nothing.
TEST_F(AgentPipeTest, SurvivesBadClientsAndAHundredThousandMalformedMessages) {
    AddAll();
    auto raw = [this](const std::string& bytes) {
        AgentPipeClient other;
        EXPECT_TRUE(other.Connect(pipe_.c_str(), 5000, report_));
        DWORD written;
        WriteFile(other.GetPipe(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                  nullptr);
        return other;
    };
    AgentPipeClient stalled =
        raw(std::string("\0\0\0\x20\x0b", 5));  // half a message, then nothing
    AgentPipeClient oversized = raw(std::string("\x7f\xff\xff\xff\x0b", 5));
    raw(std::string("\0\0\0\x40\x0d\0\0", 7));  // goes away in the middle
    char byte;
    DWORD got = 0;
    EXPECT_FALSE(ReadFile(oversized.GetPipe(), &byte, 1, &got, nullptr))
        << "an oversized message ends its connection";
    EXPECT_EQ(Listed().size(), keys_.size()) << "others are served while one stalls";
    for (int wait = 0; wait < 100 && server_.GetClientCount() > 1; ++wait) Sleep(100);
    EXPECT_EQ(server_.GetClientCount(), 1u) << "the stalled client is dropped after the time-out";
    EXPECT_FALSE(ReadFile(stalled.GetPipe(), &byte, 1, &got, nullptr));

    std::mt19937 random(
        static_cast<uint32_t>(TestSeed("SurvivesBadClientsAndAHundredThousandMalformedMessages")));
    std::vector<AgentBytes> valid{{AgentMessage::RemoveAllIdentities},
                                  {AgentMessage::RequestIdentities}};
    for (const LoadedKey& key : keys_) {
        // (Not the constrained form: bytes after it could be read as a valid constraint.)
        AgentBytes add{AgentMessage::AddIdentity}, sign{AgentMessage::SignRequest},
            remove{AgentMessage::RemoveIdentity};
        SshWriter addWriter(add), signWriter(sign);
        key.key.Write(addWriter);
        addWriter.String("fuzzed");
        signWriter.String(key.key.GetPublicBlob());
        signWriter.String("data");
        signWriter.Uint32(0);
        SshWriter(remove).String(key.key.GetPublicBlob());
        valid.insert(valid.end(), {add, sign, remove});
    }
    for (uint8_t type : {AgentMessage::Lock, AgentMessage::Unlock})
        SshWriter(valid.emplace_back(1, type)).String("pass phrase");
    auto malformed = [&] {
        AgentBytes message = valid[random() % valid.size()];
        const uint32_t kind = random() % 3;
        if (kind == 0 && message.size() > 1) {  // cut short
            message.resize(1 + random() % (message.size() - 1));
        } else if (kind < 2) {  // with bytes after it
            for (uint32_t extra = 1 + random() % 8; extra > 0; --extra)
                message.push_back(static_cast<uint8_t>(random()));
        } else {  // a type the agent does not offer
            message.assign(1 + random() % 64, 0);
            for (auto& byte : message) byte = static_cast<uint8_t>(random());
            message[0] = static_cast<uint8_t>(28 + random() % 200);
        }
        return message;
    };

    constexpr int Total = 100000, Batch = 250;
    for (int sent = 0; sent < Total; sent += Batch) {
        AgentBytes frames;
        std::vector<AgentBytes> batch;
        for (int index = 0; index < Batch; ++index)
            SshWriter(frames).String(batch.emplace_back(malformed()));
        DWORD moved;
        ASSERT_TRUE(WriteFile(client_.GetPipe(), frames.data(), static_cast<DWORD>(frames.size()),
                              &moved, nullptr));
        for (const AgentBytes& message : batch) {
            uint8_t reply[5];  // a failure is 5 bytes; anything else shows in its first 5
            for (DWORD total = 0; total < sizeof reply; total += moved)
                ASSERT_TRUE(ReadFile(client_.GetPipe(), reply + total, sizeof reply - total, &moved,
                                     nullptr) &&
                            moved);
            ASSERT_EQ(AgentBytes(reply, reply + 5), (AgentBytes{0, 0, 0, 1, AgentMessage::Failure}))
                << "not refused: " << testing::PrintToString(message);
        }
    }
    const std::vector<AgentIdentity> listed = Listed();
    ASSERT_EQ(listed.size(), keys_.size());
    AgentBytes signature;
    for (size_t index = 0; index < keys_.size(); ++index) {
        EXPECT_EQ(listed[index].comment, keys_[index].comment);
        EXPECT_TRUE(client_.Sign(listed[index].publicBlob, Data, 1, 0, signature));
    }
}

TEST_F(AgentPipeTest, ThePipeAdmitsOnlyTheCurrentUserAndOneServer) {
    PACL acl = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_EQ(GetSecurityInfo(client_.GetPipe(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION,
                              nullptr, nullptr, &acl, nullptr, &descriptor),
              static_cast<DWORD>(ERROR_SUCCESS));
    const LocalMemory owner(descriptor);
    ASSERT_TRUE(acl && acl->AceCount == 1);
    ACCESS_ALLOWED_ACE* ace = nullptr;
    ASSERT_TRUE(GetAce(acl, 0, reinterpret_cast<void**>(&ace)));
    EXPECT_EQ(ace->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    wchar_t* sid = nullptr;
    ASSERT_TRUE(ConvertSidToStringSidW(&ace->SidStart, &sid));
    const LocalMemory sidOwner(sid);
    VUnicodeString user;
    ASSERT_TRUE(GetCurrentUserSidString(user));
    EXPECT_STREQ(sid, user.c_str());

    AgentPipeServer second(protocol_, store_, pipe_.c_str());
    VReportMessageParams report;
    EXPECT_FALSE(second.Start(report));
    EXPECT_NE(std::wstring(report.GetText()).find(L"Another program already serves"),
              std::wstring::npos);
}
