// The statements of songs, tracks and mix files.
#include "studio/songs.h"

#include <gtest/gtest.h>

namespace {

TEST(SongStatements, nothing_set_is_the_whole_table) {
    SongInfo song;
    EXPECT_EQ(studio::kSongs.statement(&song), "SELECT * FROM [Songs]");
    TrackInfo track;
    EXPECT_EQ(studio::kTracks.statement(&track), "SELECT * FROM [Tracks]");
}

TEST(SongStatements, project_and_pattern) {
    SongInfo song;
    song.ProjID = 7;
    song.Name = "*love*";
    EXPECT_EQ(studio::kSongs.statement(&song), "SELECT * FROM [Songs] WHERE [ProjID]=7 AND [Name] LIKE \"*love*\"");
}

TEST(SongStatements, clauses_have_their_order) {
    SongInfo song;
    song.SongID = 1;
    song.ProjID = 2;
    song.Name = "n";
    song.Artist = "a";
    song.ArtistID = 3;
    song.Copyrights = "c";
    song.CopyrightsID = 4;
    song.Notes = song.MixFile = song.Folder = song.SongFile = "x";
    song.Sequencer = "s";
    song.Client = "c";
    song.ClientID = 5;
    song.Producer = "p";
    song.ProducerID = -6;
    song.ComposerID = song.WriterID = song.ExData = 9;
    EXPECT_EQ(studio::kSongs.statement(&song),
              "SELECT * FROM [Songs] WHERE [ArtistID]=3 AND [ClientID]=5 AND [CopyrightsID]=4 AND [ProducerID]=-6 AND "
              "[ProjID]=2 AND [Sequencer] LIKE \"s\" AND [Name] LIKE \"n\"");
}

TEST(SongStatements, quote_is_inserted_as_it_stands) {
    SongInfo song;
    song.Name = "6\" single";
    EXPECT_EQ(studio::kSongs.statement(&song), "SELECT * FROM [Songs] WHERE [Name] LIKE \"6\" single\"");
}

TEST(TrackStatements, song_and_type) {
    TrackInfo track;
    track.SongID = 3;
    track.TypeID = 2;
    EXPECT_EQ(studio::kTracks.statement(&track), "SELECT * FROM [Tracks] WHERE [SongID]=3 AND [TypeID]=2");
}

TEST(TrackStatements, clauses_have_their_order) {
    TrackInfo track;
    track.TrackID = 1;
    track.SongID = 2;
    track.Number = track.ExData = 3;
    track.Name = track.Type = track.Date = track.Notes = "x";
    track.TypeID = 4;
    track.TDate = CTime(2005, 3, 1, 0, 0, 0);
    track.Performer = "p";
    track.PerformerID = 5;
    track.Destination = "d";
    track.DestinationID = 6;
    track.EngineerID = track.ProducerID = track.Status = track.Mode = 7;
    EXPECT_EQ(studio::kTracks.statement(&track),
              "SELECT * FROM [Tracks] WHERE [DestinationID]=6 AND [PerformerID]=5 AND [SongID]=2 AND [TypeID]=4 AND "
              "[Destination] LIKE \"d\" AND [Performer] LIKE \"p\"");
}

TEST(MixStatements, song_alone_also_when_it_is_0) {
    MixInfo mix;
    mix.RecID = 1;
    mix.Descript = mix.Path = "x";
    EXPECT_EQ(studio::kMixFiles.statement(&mix), "SELECT * FROM [MixFiles] WHERE [SongID]=0");
    mix.SongID = 3;
    EXPECT_EQ(studio::kMixFiles.statement(&mix), "SELECT * FROM [MixFiles] WHERE [SongID]=3");
}

TEST(SongStatements, null_record_gives_the_empty_statement) {
    EXPECT_EQ(studio::kSongs.statement(nullptr), "");
    EXPECT_EQ(studio::kTracks.statement(nullptr), "");
    EXPECT_EQ(studio::kMixFiles.statement(nullptr), "");
}

}  // namespace
