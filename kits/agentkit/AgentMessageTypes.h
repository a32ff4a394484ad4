// The message numbers and constraint codes of the SSH agent protocol, shared
// by the agent and our client.
#pragma once

#include <cstddef>
#include <cstdint>

namespace AgentMessage {
inline constexpr uint8_t Failure = 5;
inline constexpr uint8_t Success = 6;
inline constexpr uint8_t RequestIdentities = 11;
inline constexpr uint8_t IdentitiesAnswer = 12;
inline constexpr uint8_t SignRequest = 13;
inline constexpr uint8_t SignResponse = 14;
inline constexpr uint8_t AddIdentity = 17;
inline constexpr uint8_t RemoveIdentity = 18;
inline constexpr uint8_t RemoveAllIdentities = 19;
inline constexpr uint8_t Lock = 22;
inline constexpr uint8_t Unlock = 23;
inline constexpr uint8_t AddIdentityConstrained = 25;
}  // namespace AgentMessage

namespace AgentConstraint {
inline constexpr uint8_t Lifetime = 1;
inline constexpr uint8_t Confirm = 2;
}  // namespace AgentConstraint

// The largest message either side sends or takes: a frame announcing more is
// refused and its connection closed, since the stream cannot be resynchronised.
inline constexpr size_t MaximumAgentMessage = 256 * 1024;
