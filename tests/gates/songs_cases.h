// Songs, tracks and mix files as the gates serve them: records, methods and how every member is stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

inline const RecordCase<IDBgate1, SongInfo> kSongs{
    .table = "Songs",
    .key_column = "SongID",
    .key = &SongInfo::SongID,
    .first = &IDBgate1::EnumFirstSong,
    .next = &IDBgate1::EnumNextSong,
    .find = &IDBgate1::FindSong,
    .add = &IDBgate1::AddSong,
    .update = &IDBgate1::UpdateSong,
    .remove_key = &IDBgate1::DeleteSong,
    .members = {member::integer("ProjID", &SongInfo::ProjID), member::text("Name", &SongInfo::Name),
                member::text("Artist", &SongInfo::Artist), member::integer("ArtistID", &SongInfo::ArtistID),
                member::text("Copyrights", &SongInfo::Copyrights),
                member::integer("CopyrightsID", &SongInfo::CopyrightsID), member::memo("Notes", &SongInfo::Notes),
                member::memo("MixFile", &SongInfo::MixFile), member::memo("Folder", &SongInfo::Folder),
                member::memo("SongFile", &SongInfo::SongFile), member::memo("Sequencer", &SongInfo::Sequencer),
                member::memo("Client", &SongInfo::Client), member::integer("ClientID", &SongInfo::ClientID),
                member::memo("Producer", &SongInfo::Producer), member::integer("ProducerID", &SongInfo::ProducerID),
                member::integer("ComposerID", &SongInfo::ComposerID), member::integer("WriterID", &SongInfo::WriterID),
                member::integer("ExData", &SongInfo::ExData)},
    .parents = {&SongInfo::ProjID},
    .opened_by = "ProjID",
    .read_order = {"ProjID", "Name", "Artist", "ArtistID", "Copyrights", "CopyrightsID", "Notes", "MixFile", "Folder",
                   "SongFile", "Sequencer", "Client", "ClientID", "Producer", "ProducerID", "ComposerID", "WriterID",
                   "ExData"},
    .write_order = {"Name", "ProjID", "Artist", "ArtistID", "Copyrights", "CopyrightsID", "Notes", "MixFile", "Folder",
                    "SongFile", "Sequencer", "Client", "ClientID", "Producer", "ProducerID", "ComposerID", "WriterID",
                    "ExData"},
};

inline const RecordCase<IDBgate1, TrackInfo> kTracks{
    .table = "Tracks",
    .key_column = "TrackID",
    .key = &TrackInfo::TrackID,
    .first = &IDBgate1::EnumFirstTrack,
    .next = &IDBgate1::EnumNextTrack,
    .find = &IDBgate1::FindTrack,
    .add = &IDBgate1::AddTrack,
    .update = &IDBgate1::UpdateTrack,
    .remove_key = &IDBgate1::DeleteTrack,
    .members = {member::integer("SongID", &TrackInfo::SongID), member::integer("Number", &TrackInfo::Number),
                member::integer("ExData", &TrackInfo::ExData), member::text("Name", &TrackInfo::Name),
                member::text("Type", &TrackInfo::Type), member::integer("TypeID", &TrackInfo::TypeID),
                member::text("Date", &TrackInfo::Date), member::date("TDate", &TrackInfo::TDate),
                member::text("Performer", &TrackInfo::Performer),
                member::integer("PerformerID", &TrackInfo::PerformerID),
                member::text("Destination", &TrackInfo::Destination),
                member::integer("DestinationID", &TrackInfo::DestinationID),
                member::integer("EngineerID", &TrackInfo::EngineerID),
                member::integer("ProducerID", &TrackInfo::ProducerID), member::integer("Status", &TrackInfo::Status),
                member::integer("Mode", &TrackInfo::Mode), member::memo("Notes", &TrackInfo::Notes)},
    .parents = {&TrackInfo::SongID},
    .opened_by = "SongID",
    .read_order = {"SongID", "Number", "Name", "Type", "TypeID", "Date", "TDate", "Performer", "PerformerID",
                   "Destination", "DestinationID", "EngineerID", "ProducerID", "Status", "Mode", "Notes", "ExData"},
    .write_order = {"SongID", "Number", "Name", "Type", "TypeID", "Date", "TDate", "Performer", "PerformerID",
                    "Destination", "DestinationID", "EngineerID", "ProducerID", "Status", "Mode", "Notes", "ExData"},
};

inline const RecordCase<IDBgate1, MixInfo> kMixes{
    .table = "MixFiles",
    .key = &MixInfo::RecID,
    .first = &IDBgate1::EnumFirstMix,
    .next = &IDBgate1::EnumNextMix,
    .find = &IDBgate1::FindMix,
    .add = &IDBgate1::AddMix,
    .update = &IDBgate1::UpdateMix,
    .remove = &IDBgate1::DeleteMix,
    .members = {member::integer("SongID", &MixInfo::SongID), member::text("Descript", &MixInfo::Descript),
                member::memo("Path", &MixInfo::Path), member::integer("ExData", &MixInfo::ExData)},
    .parents = {&MixInfo::SongID},
    .opened_by = "SongID",
    .read_order = {"SongID", "Descript", "Path", "ExData"},
    .write_order = {"SongID", "Descript", "Path", "ExData"},
};

}  // namespace testing_support
