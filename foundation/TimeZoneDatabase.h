// The system's time-zone database, where a session's "Time Zone" text finds
// its zone: the text is the zone's key name in the registry, for example
// "W. Europe Standard Time", and an empty text means the machine's own zone.
#pragma once

#include "VContainers.h"
#include "VReportMessageParams.h"
#include "VString.h"
#include "VTimeZone.h"

// Fills zone from the database entry name (its rules and its standard and
// daylight names). False, with CONFIG_TIME_ZONE_UNKNOWN in report and zone
// untouched, when there is no such entry or it is damaged.
bool FindTimeZone(const VUnicodeString& name, VTimeZone& zone, VReportMessageParams& report);

// The names of every zone in the database. False, with the system's error in
// report, when the database cannot be read.
bool GetTimeZoneNames(VArray<VUnicodeString>& names, VReportMessageParams& report);
