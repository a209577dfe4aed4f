#include "studio/songs.h"

namespace studio {
namespace {

// ---- Songs

constexpr Column<SongInfo> kSongRead[] = {
    column::integer("SongID", &SongInfo::SongID),
    column::integer("ProjID", &SongInfo::ProjID),
    column::text("Name", &SongInfo::Name),
    column::text("Artist", &SongInfo::Artist),
    column::integer("ArtistID", &SongInfo::ArtistID),
    column::text("Copyrights", &SongInfo::Copyrights),
    column::integer("CopyrightsID", &SongInfo::CopyrightsID),
    column::text("Notes", &SongInfo::Notes),
    column::text("MixFile", &SongInfo::MixFile),
    column::text("Folder", &SongInfo::Folder),
    column::text("SongFile", &SongInfo::SongFile),
    column::text("Sequencer", &SongInfo::Sequencer),
    column::text("Client", &SongInfo::Client),
    column::integer("ClientID", &SongInfo::ClientID),
    column::text("Producer", &SongInfo::Producer),
    column::integer("ProducerID", &SongInfo::ProducerID),
    column::integer("ComposerID", &SongInfo::ComposerID),
    column::integer("WriterID", &SongInfo::WriterID),
    column::integer("ExData", &SongInfo::ExData),
};

constexpr Column<SongInfo> kSongWrite[] = {
    column::text("Name", &SongInfo::Name),
    column::integer("ProjID", &SongInfo::ProjID),
    column::text("Artist", &SongInfo::Artist),
    column::integer("ArtistID", &SongInfo::ArtistID),
    column::text("Copyrights", &SongInfo::Copyrights),
    column::integer("CopyrightsID", &SongInfo::CopyrightsID),
    column::text("Notes", &SongInfo::Notes),
    column::text("MixFile", &SongInfo::MixFile),
    column::text("Folder", &SongInfo::Folder),
    column::text("SongFile", &SongInfo::SongFile),
    column::text("Sequencer", &SongInfo::Sequencer),
    column::text("Client", &SongInfo::Client),
    column::integer("ClientID", &SongInfo::ClientID),
    column::text("Producer", &SongInfo::Producer),
    column::integer("ProducerID", &SongInfo::ProducerID),
    column::integer("ComposerID", &SongInfo::ComposerID),
    column::integer("WriterID", &SongInfo::WriterID),
    column::integer("ExData", &SongInfo::ExData),
};

constexpr Clause<SongInfo> kSongFilter[] = {
    filter::equals("ArtistID", &SongInfo::ArtistID),
    filter::equals("ClientID", &SongInfo::ClientID),
    filter::equals("CopyrightsID", &SongInfo::CopyrightsID),
    filter::equals("ProducerID", &SongInfo::ProducerID),
    filter::equals("ProjID", &SongInfo::ProjID),
    filter::like("Sequencer", &SongInfo::Sequencer),
    filter::like("Name", &SongInfo::Name),
};

// ---- Tracks

constexpr Column<TrackInfo> kTrackRead[] = {
    column::integer("TrackID", &TrackInfo::TrackID),
    column::integer("SongID", &TrackInfo::SongID),
    column::integer("Number", &TrackInfo::Number),
    column::text("Name", &TrackInfo::Name),
    column::text("Type", &TrackInfo::Type),
    column::integer("TypeID", &TrackInfo::TypeID),
    // A track deliberately has its date twice: as free text and as a calendar date.
    column::text("Date", &TrackInfo::Date),
    column::date("TDate", &TrackInfo::TDate),
    column::text("Performer", &TrackInfo::Performer),
    column::integer("PerformerID", &TrackInfo::PerformerID),
    column::text("Destination", &TrackInfo::Destination),
    column::integer("DestinationID", &TrackInfo::DestinationID),
    column::integer("EngineerID", &TrackInfo::EngineerID),
    column::integer("ProducerID", &TrackInfo::ProducerID),
    column::integer("Status", &TrackInfo::Status),
    column::integer("Mode", &TrackInfo::Mode),
    column::text("Notes", &TrackInfo::Notes),
    column::integer("ExData", &TrackInfo::ExData),
};

constexpr Clause<TrackInfo> kTrackFilter[] = {
    filter::equals("DestinationID", &TrackInfo::DestinationID),
    filter::equals("PerformerID", &TrackInfo::PerformerID),
    filter::equals("SongID", &TrackInfo::SongID),
    filter::equals("TypeID", &TrackInfo::TypeID),
    filter::like("Destination", &TrackInfo::Destination),
    filter::like("Performer", &TrackInfo::Performer),
};

// ---- Mix files

constexpr Column<MixInfo> kMixRead[] = {
    column::integer("RecID", &MixInfo::RecID),    column::integer("SongID", &MixInfo::SongID),
    column::text("Descript", &MixInfo::Descript), column::text("Path", &MixInfo::Path),
    column::integer("ExData", &MixInfo::ExData),
};

constexpr Clause<MixInfo> kMixFilter[] = {filter::equals("SongID", &MixInfo::SongID)};

}  // namespace

constinit const TableMapping<SongInfo> kSongs{
    .table = "Songs",
    .key = {"SongID", &SongInfo::SongID},
    .read = kSongRead,
    .write = kSongWrite,
    .filter = kSongFilter,
    .add_opens = AddOpens::kParentRows,
    .parent = {"ProjID", &SongInfo::ProjID},
};

constinit const TableMapping<TrackInfo> kTracks{
    .table = "Tracks",
    .key = {"TrackID", &TrackInfo::TrackID},
    .read = kTrackRead,
    .write = std::span(kTrackRead).subspan(1),
    .filter = kTrackFilter,
    .add_opens = AddOpens::kParentRows,
    .parent = {"SongID", &TrackInfo::SongID},
};

constinit const TableMapping<MixInfo> kMixFiles{
    .table = "MixFiles",
    .key = {"RecID", &MixInfo::RecID},
    .read = kMixRead,
    .write = std::span(kMixRead).subspan(1),
    .filter = kMixFilter,
    .filter_rule = FilterRule::kParent,
    .add_opens = AddOpens::kParentRows,
    .parent = {"SongID", &MixInfo::SongID},
};

}  // namespace studio
