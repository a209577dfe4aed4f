// Songs, tracks and mix files through the gate.
#include <gtest/gtest.h>

#include "tests/gates/record_round_trip.h"
#include "tests/gates/songs_cases.h"

using namespace testing_support;

namespace {

LONG add_song(IDBgate1& gate, LONG project, const char* name) {
    SongInfo song;
    song.ProjID = project;
    song.Name = name;
    EXPECT_EQ(call(gate, &IDBgate1::AddSong, song), S_OK);
    return song.SongID;
}

// The names that an enumeration beginning with this record delivers, each behind a blank.
std::string song_names(IDBgate1& gate, SongInfo filter) {
    std::string names;
    HRESULT result = call(gate, &IDBgate1::EnumFirstSong, filter);
    while (result == S_OK) {
        names += std::string(" ") + filter.Name.GetString();
        result = call(gate, &IDBgate1::EnumNextSong, filter);
    }
    EXPECT_EQ(result, E_FAIL);
    return names;
}

TEST(SongsGate, members_make_the_round_trip) { expect_round_trip(kSongs); }
TEST(SongsGate, columns_hold_the_members_of_their_name) { expect_columns(kSongs); }
TEST(SongsGate, failure_leaves_the_record_alone) { expect_failures(kSongs); }
TEST(SongsGate, mappings_go_in_their_order) { expect_orders(kSongs); }
TEST(SongsGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kSongs); }

TEST(TracksGate, members_make_the_round_trip) { expect_round_trip(kTracks); }
TEST(TracksGate, columns_hold_the_members_of_their_name) { expect_columns(kTracks); }
TEST(TracksGate, failure_leaves_the_record_alone) { expect_failures(kTracks); }
TEST(TracksGate, mappings_go_in_their_order) { expect_orders(kTracks); }
TEST(TracksGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kTracks); }

TEST(MixesGate, members_make_the_round_trip) { expect_round_trip(kMixes); }
TEST(MixesGate, columns_hold_the_members_of_their_name) { expect_columns(kMixes); }
TEST(MixesGate, failure_leaves_the_record_alone) { expect_failures(kMixes); }
TEST(MixesGate, mappings_go_in_their_order) { expect_orders(kMixes); }
TEST(MixesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kMixes); }

TEST(SongsGate, first_song_with_nothing_set_enumerates_the_songs_of_all_projects) {
    OpenGate<IDBgate1> gate;
    add_song(*gate, 7, "one");
    add_song(*gate, 8, "two");
    add_song(*gate, 0, "three");
    EXPECT_EQ(song_names(*gate, SongInfo()), " one two three");
}

TEST(SongsGate, first_song_with_project_and_pattern_selects_by_both) {
    OpenGate<IDBgate1> gate;
    add_song(*gate, 7, "All my love, always");
    add_song(*gate, 7, "Clover");
    add_song(*gate, 7, "Lost");
    add_song(*gate, 8, "Love");
    add_song(*gate, 7, "LOVE");
    SongInfo filter;
    filter.ProjID = 7;
    filter.Name = "*love*";
    EXPECT_EQ(song_names(*gate, filter), " All my love, always Clover LOVE");
    filter.Name = "love";  // without wildcards of the caller's the whole value counts
    EXPECT_EQ(song_names(*gate, filter), " LOVE");
    filter.Name = "lo?t";
    EXPECT_EQ(song_names(*gate, filter), " Lost");
    filter.Name = "[A-C]*";
    EXPECT_EQ(song_names(*gate, filter), " All my love, always Clover");
}

TEST(SongsGate, name_with_trailing_blank_is_not_like_the_name_without) {
    OpenGate<IDBgate1> gate;
    add_song(*gate, 7, "Dan ");
    SongInfo filter;
    filter.Name = "Dan";
    EXPECT_EQ(song_names(*gate, filter), "");
    filter.Name = "Dan ";
    EXPECT_EQ(song_names(*gate, filter), " Dan ");
}

TEST(SongsGate, quote_in_a_pattern_fails) {
    OpenGate<IDBgate1> gate;
    add_song(*gate, 7, "one");
    SongInfo filter;
    filter.Name = "a\"b";
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstSong, filter), E_FAIL);
    EXPECT_EQ(filter.Name, "a\"b");
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextSong, filter), E_FAIL);
}

TEST(TracksGate, first_track_with_song_and_type_selects_by_both) {
    OpenGate<IDBgate1> gate;
    for (const auto& [song, type] : {std::pair{3, 2}, {3, 1}, {4, 2}, {3, 2}}) {
        TrackInfo track;
        track.SongID = song;
        track.TypeID = type;
        ASSERT_EQ(call(*gate, &IDBgate1::AddTrack, track), S_OK);
    }
    TrackInfo track;
    track.SongID = 3;
    track.TypeID = 2;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstTrack, track), S_OK);
    EXPECT_EQ(track.TrackID, 1);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumNextTrack, track), S_OK);
    EXPECT_EQ(track.TrackID, 4);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextTrack, track), E_FAIL);
}

TEST(TracksGate, two_dates_of_a_track_are_independent) {
    OpenGate<IDBgate1> gate;
    TrackInfo track;
    track.Date = "some day in May";
    track.TDate = CTime(2005, 3, 1, 23, 59, 59);
    ASSERT_EQ(call(*gate, &IDBgate1::AddTrack, track), S_OK);
    track.Date = "";
    track.TDate = CTime(0);
    ASSERT_EQ(call(*gate, &IDBgate1::FindTrack, track), S_OK);
    EXPECT_EQ(track.Date, "some day in May");
    EXPECT_EQ(track.TDate, CTime(2005, 3, 1, 0, 0, 0));
}

TEST(MixesGate, first_mix_of_song_0_enumerates_only_rows_of_song_0) {
    OpenGate<IDBgate1> gate;
    MixInfo mix;
    mix.SongID = 5;
    ASSERT_EQ(call(*gate, &IDBgate1::AddMix, mix), S_OK);
    mix = MixInfo();
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstMix, mix), E_FAIL);
    ASSERT_EQ(call(*gate, &IDBgate1::AddMix, mix), S_OK);
    mix = MixInfo();
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstMix, mix), S_OK);
    EXPECT_EQ(mix.RecID, 2);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextMix, mix), E_FAIL);
}

TEST(SongsGate, song_is_added_whatever_its_project_holds) {
    OpenGate<IDBgate1> gate;
    EXPECT_EQ(add_song(*gate, 7, "first of its project"), 1);
    EXPECT_EQ(add_song(*gate, 7, "second"), 2);
    EXPECT_EQ(add_song(*gate, 7, "second"), 3);
    EXPECT_EQ(add_song(*gate, 99, "of a project that is not there"), 4);
    SongInfo filter;
    filter.ProjID = 7;
    EXPECT_EQ(song_names(*gate, filter), " first of its project second second");
}

TEST(SongsGate, deleting_a_song_leaves_its_tracks_and_mix_files) {
    OpenGate<IDBgate1> gate;
    const LONG song = add_song(*gate, 7, "one");
    TrackInfo track;
    track.SongID = song;
    ASSERT_EQ(call(*gate, &IDBgate1::AddTrack, track), S_OK);
    MixInfo mix;
    mix.SongID = song;
    ASSERT_EQ(call(*gate, &IDBgate1::AddMix, mix), S_OK);
    ASSERT_EQ(gate->DeleteSong(song), S_OK);
    EXPECT_EQ(call(*gate, &IDBgate1::FindTrack, track), S_OK);
    EXPECT_EQ(call(*gate, &IDBgate1::FindMix, mix), S_OK);
}

TEST(SongsGate, enumerations_of_different_tables_run_side_by_side) {
    OpenGate<IDBgate1> gate;
    for (int i = 0; i < 2; ++i) {
        add_song(*gate, 7, "song");
        TrackInfo track;
        ASSERT_EQ(call(*gate, &IDBgate1::AddTrack, track), S_OK);
    }
    SongInfo song;
    TrackInfo track;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstSong, song), S_OK);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstTrack, track), S_OK);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumNextSong, song), S_OK);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextSong, song), E_FAIL);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumNextTrack, track), S_OK);
    EXPECT_EQ(track.TrackID, 2);
}

TEST(SongsGate, enumeration_passes_over_deleted_rows_ignores_added_ones_and_shows_changes) {
    OpenGate<IDBgate1> gate;
    for (const char* name : {"a", "b", "c"}) add_song(*gate, 7, name);
    SongInfo song;
    song.ProjID = 7;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstSong, song), S_OK);
    ASSERT_EQ(gate->DeleteSong(2), S_OK);
    add_song(*gate, 7, "d");
    SongInfo changed;
    changed.SongID = 3;
    changed.ProjID = 8;  // no longer selected by the filter
    changed.Name = "C";
    ASSERT_EQ(call(*gate, &IDBgate1::UpdateSong, changed), S_OK);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumNextSong, song), S_OK);
    EXPECT_EQ(song.Name, "C");
    EXPECT_EQ(song.ProjID, 8);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextSong, song), E_FAIL);
}

TEST(SongsGate, enumerations_of_two_gates_are_independent) {
    OpenGate<IDBgate1> gate;
    const auto other = gate.host().create<IDBgate1>();
    ASSERT_EQ(other->OpenDB(), S_OK);
    for (const char* name : {"a", "b"}) add_song(*gate, 7, name);
    SongInfo song;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstSong, song), S_OK);
    EXPECT_EQ(call(*other, &IDBgate1::EnumNextSong, song), E_FAIL);
    song = SongInfo();
    ASSERT_EQ(call(*other, &IDBgate1::EnumFirstSong, song), S_OK);
    EXPECT_EQ(song.Name, "a");
    ASSERT_EQ(call(*gate, &IDBgate1::EnumNextSong, song), S_OK);
    EXPECT_EQ(song.Name, "b");
}

}  // namespace
