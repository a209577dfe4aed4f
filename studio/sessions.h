// Recording sessions of a project (`Sessions`) with the participating contacts (`Participants`), and a project's
// payments and charges (`ProjPayments`, `ProjActivities`).
#pragma once

#include <kvdb/records.h>

#include <array>

#include "studio/record_table.h"

namespace studio {

extern const TableMapping<SessionInfo> kSessions;
extern const TableMapping<ParticInfo> kParticipants;
extern const TableMapping<ProjPayInfo> kProjPayments;
extern const TableMapping<ProjActInfo> kProjActivities;

// The session filter, for SessionInfo and for the extended record that begins with the same members.
template <class Record>
constexpr std::array<Clause<Record>, 7> session_clauses() {
    return {
        filter::equals("ClientID", &Record::ClientID), filter::like("Engineer", &Record::Engineer),
        filter::equals("ArtistID", &Record::ArtistID), filter::equals("ProjID", &Record::ProjID),
        filter::equals("RoomID", &Record::RoomID),     filter::like("SongName", &Record::SongName),
        filter::equals("SongID", &Record::SongID),
    };
}

}  // namespace studio
