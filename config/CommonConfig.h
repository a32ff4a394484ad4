// CommonConfig: the parts of a session that every connection part shares:
// the remote host (RemoteHostConfig) and two further parts of the caller's
// choosing (a firewall definition, a client's own settings), each held as a
// clonable interface that may be null.
//
// Used by one thread at a time; reference-counted atomically.
#pragma once

#include <cstddef>

#include "IClonable.h"
#include "RemoteHostConfig.h"

class ICommonConfig : public IClonable {
public:
    // Null when the object holds none; the object keeps its reference.
    virtual RemoteHostConfig* GetRemoteHostConfig() const = 0;
    // The part at index 1 or 2 (index 0 is the remote host); null when there is none.
    virtual IClonable* GetPart(size_t index) const = 0;

protected:
    ~ICommonConfig() override = default;
};

class CommonConfig final : public VUnknown<ICommonConfig> {
public:
    static constexpr size_t PartCount = 3;

    // Takes a reference to each part given (any may be null).
    explicit CommonConfig(RemoteHostConfig* remoteHost, IClonable* second = nullptr,
                          IClonable* third = nullptr);
    // Holds a clone of each part of other, the first cast back to
    // RemoteHostConfig (std::bad_cast when a clone is not of its source's class).
    CommonConfig(const CommonConfig& other);
    CommonConfig& operator=(const CommonConfig&) = delete;

    IClonable* Clone() const override { return new CommonConfig(*this); }

    RemoteHostConfig* GetRemoteHostConfig() const override;
    // Parts 0 to 2; VContainerOutOfRange beyond.
    IClonable* GetPart(size_t index) const override;

private:
    // Releases each part, its pointer set to null first.
    ~CommonConfig() override;

    IClonable* parts_[PartCount];
};
