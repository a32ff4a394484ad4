#include "CommonConfig.h"

CommonConfig::CommonConfig(RemoteHostConfig* remoteHost, IClonable* second, IClonable* third)
    : parts_{remoteHost, second, third} {
    for (IClonable* part : parts_)
        if (part) part->AddRef();
}

CommonConfig::CommonConfig(const CommonConfig& other) : VUnknown(other), parts_{} {
    VRefPtr<IClonable> clones[PartCount];
    for (size_t i = 0; i < PartCount; ++i)
        if (other.parts_[i]) clones[i] = VRefPtr<IClonable>::Adopt(other.parts_[i]->Clone());
    if (clones[0] && !dynamic_cast<RemoteHostConfig*>(clones[0].Get())) throw std::bad_cast();
    for (size_t i = 0; i < PartCount; ++i) {
        parts_[i] = clones[i].Get();
        if (parts_[i]) parts_[i]->AddRef();
    }
}

CommonConfig::~CommonConfig() {
    for (IClonable*& part : parts_) {
        IClonable* const held = part;
        part = nullptr;
        if (held) held->Release();
    }
}

RemoteHostConfig* CommonConfig::GetRemoteHostConfig() const {
    return dynamic_cast<RemoteHostConfig*>(parts_[0]);
}

IClonable* CommonConfig::GetPart(size_t index) const {
    if (index >= PartCount) throw VContainerOutOfRange();
    return parts_[index];
}
