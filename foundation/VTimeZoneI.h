// A VTimeZone behind the reference-counted ITimeZone interface.
#pragma once

#include "ITimeZone.h"
#include "VTimeZone.h"
#include "VUnknown.h"

class VTimeZoneI final : public VUnknown<ITimeZone> {
public:
    // The machine's current zone. Allocate with new; the last Release destroys it.
    VTimeZoneI() = default;
    explicit VTimeZoneI(const VTimeZone& zone) : zone_(zone) {}

    bool GetDaylightState(const FILETIME* utc, int& state) const override {
        return zone_.GetDaylightState(utc, state);
    }
    bool GetOffset(const FILETIME* utc, LONG& minutes) const override {
        return zone_.GetOffset(utc, minutes);
    }
    bool UtcToLocal(const FILETIME& utc, FILETIME& local) const override {
        return zone_.UtcToLocal(utc, local);
    }
    bool LocalToUtc(const FILETIME& local, FILETIME& utc) const override {
        return zone_.LocalToUtc(local, utc);
    }

    const VTimeZone& GetZone() const { return zone_; }

private:
    ~VTimeZoneI() override = default;

    VTimeZone zone_;
};
